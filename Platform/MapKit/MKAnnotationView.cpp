#include "Platform/MapKit/MKAnnotationView.h"

#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKSpriteCache.h"

#include <cmath>

namespace veyra {

namespace {

CGPoint finite(CGPoint offset) {
    return {std::isfinite(offset.x) ? offset.x : 0, std::isfinite(offset.y) ? offset.y : 0};
}

} // namespace

Class MKAnnotationView::classObject() {
    static auto* const cls = new ClassObject("MKAnnotationView", NSObject::classObject(), {});
    return cls;
}

const MKAnnotationView::Extras MKAnnotationView::noExtras{};

MKAnnotationView::MKAnnotationView(Maker, const std::shared_ptr<MKAnnotation>& annotation,
                                   const std::optional<NSString>& reuseIdentifier)
    : _annotation(annotation), _reuseIdentifier(reuseIdentifier.value_or(NSString())),
      _hasReuseIdentifier(reuseIdentifier.has_value()) {}

std::shared_ptr<MKAnnotationView>
MKAnnotationView::initWithAnnotationReuseIdentifier(const std::shared_ptr<MKAnnotation>& annotation,
                                                    const std::optional<NSString>& reuseIdentifier) {
    return std::make_shared<MKAnnotationView>(Maker(), annotation, reuseIdentifier);
}

MKAnnotationView::Extras& MKAnnotationView::changedExtras() {
    if (!_extras) {
        _extras = std::make_unique<Extras>();
    }
    return *_extras;
}

void MKAnnotationView::setAnnotation(const std::shared_ptr<MKAnnotation>& annotation) {
    _annotation = annotation;
    didChangeCallout();
}

void MKAnnotationView::setImage(const std::shared_ptr<UIImage>& image) {
    if (image != this->image()) {
        willChangeLook();
        changedExtras().image = image;
        didChangeLook();
    }
}

void MKAnnotationView::setCenterOffset(CGPoint offset) {
    if (!(finite(offset) == centerOffset())) {
        willChangeLook();
        changedExtras().centerOffset = finite(offset);
        didChangeLook();
    }
}

void MKAnnotationView::setCalloutOffset(CGPoint offset) {
    if (!(finite(offset) == calloutOffset())) {
        changedExtras().calloutOffset = finite(offset);
        didChangeCallout();
    }
}

CGRect MKAnnotationView::extent() const {
    const Extras& extras = this->extras();
    const CGSize size = extras.image ? extras.image->size() : CGSize{};
    return {{extras.centerOffset.x - size.width / 2, extras.centerOffset.y - size.height / 2}, size};
}

void MKAnnotationView::setEnabled(bool enabled) {
    _enabled = enabled;
}

void MKAnnotationView::setCanShowCallout(bool can) {
    if (can != _canShowCallout) {
        _canShowCallout = can;
        didChangeCallout();
    }
}

void MKAnnotationView::setLeftCalloutAccessoryView(const std::shared_ptr<UIView>& view) {
    if (view != leftCalloutAccessoryView()) {
        changedExtras().leftCalloutAccessoryView = view;
        didChangeCallout();
    }
}

void MKAnnotationView::setRightCalloutAccessoryView(const std::shared_ptr<UIView>& view) {
    if (view != rightCalloutAccessoryView()) {
        changedExtras().rightCalloutAccessoryView = view;
        didChangeCallout();
    }
}

void MKAnnotationView::setDraggable(bool draggable) {
    if (draggable != _draggable) {
        _draggable = draggable;
        didChangeCallout();
    }
}

void MKAnnotationView::setDragStateAnimated(MKAnnotationViewDragState state, bool) {
    _dragState = state;
}

CGRect MKAnnotationView::frame() const {
    return _observer ? _observer->frameOfAnnotationView(*this) : CGRect{};
}

const MKSprite* MKAnnotationView::sprite(MKSpriteCache& cache) {
    if (!image()) {
        return nullptr;
    }
    if (!_extras->imageSprite) {
        _extras->imageSprite = cache.spriteForImage(image());
    }
    return _extras->imageSprite.get();
}

void MKAnnotationView::forgetSprite() {
    if (_extras) {
        _extras->imageSprite = nullptr;
    }
}

void MKAnnotationView::leaveMap() {
    _observer = nullptr;
    forgetSprite();
}

void MKAnnotationView::willChangeLook() {
    if (_observer) {
        _observer->annotationViewWillChangeLook(*this);
    }
}

void MKAnnotationView::didChangeLook() {
    forgetSprite();
    if (_observer) {
        _observer->annotationViewDidChangeLook(*this);
    }
}

void MKAnnotationView::didChangeCallout() {
    if (_observer) {
        _observer->annotationViewDidChangeCallout(*this);
    }
}

} // namespace veyra
