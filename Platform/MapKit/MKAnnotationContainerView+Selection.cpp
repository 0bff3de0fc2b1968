// Selection and the callout: at most one annotation is selected, and it is in front of all.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKCalloutView.h"
#include "Platform/MapKit/MKCameraAnimation.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UIWindow.h"

#include <cmath>

namespace veyra {

CGRect MKAnnotationContainerView::frameOf(uint32_t number) const {
    const auto map = _map.lock();
    const MKAnnotationStore::Entry& entry = _store[number];
    if (!map || !map->hasLayout() || !entry.view || !entry.hasPoint) {
        return {};
    }
    CGPoint point = map->_camera.pointFor(_store.pointOf(number), map->_viewSize);
    const double world = MKWorldSide * map->_camera.scale;
    point.x -= std::round((point.x - map->_viewSize.width / 2) / world) * world;
    return entry.view->extent().offsetBy(point.x, point.y);
}

bool MKAnnotationContainerView::isOnScreen(uint32_t number) const {
    const CGRect frame = frameOf(number);
    const CGSize size = bounds().size;
    return frame.maxX() >= 0 && frame.maxY() >= 0 && frame.minX() <= size.width && frame.minY() <= size.height;
}

// What is in front and not clear there, else what is in front by its frame.
uint32_t MKAnnotationContainerView::numberAt(CGPoint point) {
    const auto map = _map.lock();
    if (!map || !map->hasLayout()) {
        return none;
    }
    updateSprites();
    const double scale = deviceScale();
    const MKPixelView view(map->_camera, map->_viewSize, scale);
    const double x = std::floor(point.x * scale), y = std::floor(point.y * scale);
    uint32_t framed = none;
    const auto isHit = [&](uint32_t number, const MKPlacedSprite& placed) {
        const double top = std::round(placed.point.y * view.scale) - view.top + placed.top;
        if (y < top || y >= top + placed.sprite->height() || !_store[number].view->isEnabled()) {
            return false;
        }
        for (int copy = view.firstCopy(0) - 1; copy <= view.lastCopy(view.width) + 1; ++copy) {
            const double left = view.worldLeft(copy) + std::round(placed.point.x * view.scale) + placed.left;
            if (x >= left && x < left + placed.sprite->width()) {
                if (placed.sprite->isVisibleAt(static_cast<int>(x - left), static_cast<int>(y - top))) {
                    return true;
                }
                framed = framed == none ? number : framed;
            }
        }
        return false;
    };
    for (const uint32_t number : {_dragged, _selected}) {
        if (number != none && _store[number].view) {
            const MKPlacedSprite placed = placedSprite(number, deviceScale());
            if (placed.sprite && isHit(number, placed)) {
                return number;
            }
        }
    }
    const auto& sprites = _layer.sprites();
    for (size_t i = sprites.size(); i-- > 0;) {
        if (sprites[i].sprite && isHit(static_cast<uint32_t>(_order[i]), sprites[i])) {
            return static_cast<uint32_t>(_order[i]);
        }
    }
    return framed;
}

void MKAnnotationContainerView::select(const std::shared_ptr<MKAnnotation>& annotation, bool animated) {
    const auto self = sharedView();
    if (!isShowingMap()) {
        return;
    }
    bringViewsUpToDate();
    uint32_t number = _store.find(annotation.get());
    if (number == none) {
        return;
    }
    if (!_store[number].view && isNear(number)) {
        askForView(number); // its turn has not come yet
        number = _store.find(annotation.get());
    }
    if (number != none && _store[number].view && isOnScreen(number)) {
        select(number, animated);
    }
}

void MKAnnotationContainerView::select(uint32_t number, bool animated) {
    if (number == _selected) {
        return;
    }
    const auto map = _map.lock();
    const auto annotation = _store[number].annotation;
    // The delegate hears of the view before it hears of its selection, and of the former one's deselection first.
    if (isUnreported(number)) {
        reportAddedViews();
    }
    deselect();
    number = _store.find(annotation.get());
    if (number == none || !_store[number].view || _selected != none) {
        return;
    }
    const auto view = _store[number].view;
    damage(number);
    _selected = number;
    view->_selected = true;
    damage(number);
    showCallout();
    publishKeys();
    if (const auto delegate = this->delegate()) {
        runGuarded("selected annotation view", [&] { delegate->mapViewDidSelectAnnotationView(*map, view); });
    }
    if (animated && _selected == _store.find(annotation.get())) {
        moveMapToCallout();
    }
}

void MKAnnotationContainerView::deselect(const std::shared_ptr<MKAnnotation>& annotation, bool) {
    const auto self = sharedView();
    if (_selected != none && _store.find(annotation.get()) == _selected) {
        deselect();
    }
}

void MKAnnotationContainerView::deselect() {
    if (_selected == none) {
        return;
    }
    const auto map = _map.lock();
    const auto annotation = _store[_selected].annotation;
    const auto view = _store[_selected].view;
    const uint32_t number = _selected;
    damage(number);
    _selected = none;
    view->_selected = false;
    damage(number);
    hideCallout();
    checkFocus();
    publishKeys();
    if (const auto delegate = this->delegate()) {
        runGuarded("deselected annotation view", [&] { delegate->mapViewDidDeselectAnnotationView(*map, view); });
    }
    // A view that was kept for its selection alone goes now.
    const uint32_t still = _store.find(annotation.get());
    if (still != none && still != _dragged && still != _selected && _store[still].view && !isNear(still)) {
        detach(still);
    }
}

std::vector<std::shared_ptr<MKAnnotation>> MKAnnotationContainerView::selectedAnnotations() const {
    if (_selected == none) {
        return {};
    }
    return {_store[_selected].annotation};
}

void MKAnnotationContainerView::mapTapped() {
    const auto self = sharedView();
    deselect();
}

void MKAnnotationContainerView::showCallout() {
    const auto& view = _store[_selected].view;
    const id title = view->annotation()->title();
    if (!view->canShowCallout() || title.isNil() || isDragging()) {
        hideCallout();
        return;
    }
    const id subtitle = view->annotation()->subtitle();
    if (!_callout) {
        _callout = MKCalloutView::make();
        addSubview(_callout);
    }
    _callout->setContent({.title = title.description().utf8(),
                          .subtitle = subtitle.isNil() ? std::string() : subtitle.description().utf8(),
                          .left = view->leftCalloutAccessoryView(),
                          .right = view->rightCalloutAccessoryView()});
    for (const auto& accessory : {view->leftCalloutAccessoryView(), view->rightCalloutAccessoryView()}) {
        if (const auto button = std::dynamic_pointer_cast<UIButton>(accessory)) {
            button->setTapHandler([weak = weak_from_this()](UIButton& tapped) {
                if (const auto self = std::static_pointer_cast<MKAnnotationContainerView>(weak.lock())) {
                    self->calloutButtonTapped(tapped.sharedView());
                }
            });
        }
    }
    placeCallout();
}

void MKAnnotationContainerView::hideCallout() {
    if (_callout) {
        const auto callout = std::move(_callout);
        _callout = nullptr;
        callout->setContent({});
        callout->removeFromSuperview();
    }
}

void MKAnnotationContainerView::placeCallout() {
    if (_callout && _selected != none && _store[_selected].view) {
        const CGRect frame = frameOf(_selected);
        const CGPoint offset = _store[_selected].view->calloutOffset();
        _callout->pointAt({frame.center().x + offset.x, frame.minY() + offset.y}, frame.maxY(), bounds().size);
    }
}

void MKAnnotationContainerView::moveMapToCallout() {
    const auto map = _map.lock();
    if (!_callout || !map) {
        return;
    }
    const CGRect frame = frameOf(_selected);
    const CGPoint offset = _store[_selected].view->calloutOffset();
    const CGPoint move = _callout->moveToFit({frame.center().x + offset.x, frame.minY() + offset.y}, bounds().size);
    if (std::abs(move.x) < 0.5 && std::abs(move.y) < 0.5) {
        return;
    }
    map->changeTo(map->_camera.movedBy(move.x, move.y).clamped(map->_viewSize), true, MKCameraAnimation::nearDuration);
}

void MKAnnotationContainerView::calloutButtonTapped(const std::shared_ptr<UIView>& button) {
    const auto self = sharedView();
    const auto map = _map.lock();
    const auto view = _selected != none ? _store[_selected].view : nullptr;
    const auto delegate = this->delegate();
    if (map && view && delegate && _callout && button->superview() == _callout) {
        runGuarded("callout accessory",
                   [&] { delegate->mapViewAnnotationViewCalloutAccessoryControlTapped(*map, view, button); });
    }
}

} // namespace veyra
