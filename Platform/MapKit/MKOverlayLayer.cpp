#include "Platform/MapKit/MKOverlayLayer.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/MapKit/MKOverlayWorker.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace veyra {

namespace {

// Device pixels around the view that an image covers, and how near to its edge the view may come before the next one is
// drawn.
constexpr int margin = 160, nearEdge = 80;
// While the scale changes, an image serves within these ratios to its own scale,
constexpr double leastRatio = 0.8, greatestRatio = 1.6;
// unless the last one took less than this: then the next is drawn as soon as it is wanted. Seconds.
constexpr double littleTime = 0.006;

PixelRect wholeOf(const MKPixelView& view) {
    return {0, 0, view.width, view.height};
}

} // namespace

MKOverlayLayer::MKOverlayLayer(std::function<void(const CGRect&)> changed, std::function<void()> drawn)
    : _changed(std::move(changed)), _drawn(std::move(drawn)), _self(std::make_shared<MKOverlayLayer*>(this)),
      _figures(std::make_shared<const MKOverlayFigures>()) {}

MKOverlayLayer::~MKOverlayLayer() {
    if (_ticket) {
        _ticket->abandon();
    }
}

void MKOverlayLayer::setFigures(MKOverlayFigures figures) {
    std::erase_if(figures, [](const auto& figure) { return !figure || !figure->isVisible(); });
    if (figures != *_figures) {
        _figures = std::make_shared<const MKOverlayFigures>(std::move(figures));
        _hasFailed = false;
        // Every other drawing goes on all the same: a figure that changes all the time is drawn now and then, however
        // long it takes.
        if (_ticket && !_wasAbandoned) {
            _ticket->keep(_figures);
        }
        update();
    }
}

void MKOverlayLayer::setScene(const MKCamera& camera, CGSize viewSize, double deviceScale, bool scaleIsChanging) {
    const MKPixelView view(camera, viewSize, deviceScale);
    _hasFailed &= view == _view && deviceScale == _deviceScale;
    _view = view;
    _deviceScale = deviceScale;
    _scaleIsChanging = scaleIsChanging;
    update();
}

bool MKOverlayLayer::isExact() const {
    if (!_image || _image->scene().figures != _figures) {
        return _figures->empty() && !_image;
    }
    return covers(*_image);
}

bool MKOverlayLayer::covers(const MKOverlayImage& image) const {
    const MKPixelView& drawn = image.scene().view;
    return drawn.scale == _view.scale && image.scene().deviceScale == _deviceScale && drawn.left <= _view.left &&
           drawn.top <= _view.top && drawn.left + drawn.width >= _view.left + _view.width &&
           drawn.top + drawn.height >= _view.top + _view.height;
}

bool MKOverlayLayer::isNearEdge() const {
    if (!_image) {
        return false;
    }
    const MKPixelView& drawn = _image->scene().view;
    return drawn.left + nearEdge > _view.left || drawn.top + nearEdge > _view.top ||
           drawn.left + drawn.width < _view.left + _view.width + nearEdge ||
           drawn.top + drawn.height < _view.top + _view.height + nearEdge;
}

// For a scale that is changing.
bool MKOverlayLayer::isGoodEnough() const {
    if (!_image || _image->scene().figures != _figures || _lastDrawing < littleTime) {
        return false;
    }
    const MKPixelView& drawn = _image->scene().view;
    const double ratio = _view.scale / drawn.scale;
    return ratio >= leastRatio && ratio <= greatestRatio && placeOf(wholeOf(drawn), *_image).contains(wholeOf(_view));
}

bool MKOverlayLayer::isWaiting() const {
    return isShown() && !_hasFailed && !isExact();
}

void MKOverlayLayer::update() {
    if (!isShown() || _ticket || _hasFailed) {
        return;
    }
    if (_figures->empty()) {
        _wasAbandoned = false;
        if (const auto former = std::exchange(_image, nullptr)) {
            _changed({{0, 0}, {_view.width / _deviceScale, _view.height / _deviceScale}});
        }
        return;
    }
    if (isExact() ? !isNearEdge() : _scaleIsChanging && isGoodEnough()) {
        return;
    }
    MKOverlayScene scene{_view, _deviceScale, _figures};
    scene.view.left -= margin;
    scene.view.top -= margin;
    scene.view.width += 2 * margin;
    scene.view.height += 2 * margin;
    draw(scene);
}

void MKOverlayLayer::draw(const MKOverlayScene& scene) {
    _ticket = std::make_shared<MKDrawingTicket>();
    MKOverlayWorker::shared().run([scene, former = _image, ticket = _ticket, weak = std::weak_ptr(_self)]() mutable {
        const auto begin = std::chrono::steady_clock::now();
        std::shared_ptr<const MKOverlayImage> image;
        try {
            image = MKOverlayImage::draw(scene, former.get(), *ticket);
        } catch (const std::exception&) { // there is no memory, or nobody wants it
            image = nullptr;
        }
        former.reset();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        dispatch_async(dispatch_get_main_queue(), [image, weak, seconds = taken.count()] {
            if (const auto self = weak.lock()) {
                (*self)->take(image, seconds);
            }
        });
    });
}

void MKOverlayLayer::take(std::shared_ptr<const MKOverlayImage> image, double seconds) {
    const auto ticket = std::exchange(_ticket, nullptr);
    _lastDrawing = seconds;
    _wasAbandoned = !image && ticket->isAbandoned();
    if (!image && !_wasAbandoned) {
        NSLog("MKMapView: there is no memory for a picture of the overlays");
        _hasFailed = true;
    }
    if (!_wasAbandoned) {
        reportChanges(image.get());
    }
    if (image) {
        _image = std::move(image);
    }
    update();
    _drawn();
}

void MKOverlayLayer::reportChanges(const MKOverlayImage* image) {
    const auto report = [&](const PixelRect& part, const MKOverlayImage& of) {
        const PixelRect place = intersection(placeOf(part, of), wholeOf(_view));
        if (!place.isEmpty()) {
            _changed({{place.x / _deviceScale, place.y / _deviceScale},
                      {place.width / _deviceScale, place.height / _deviceScale}});
        }
    };
    if (image && _image && image->isMadeFrom(*_image) && covers(*_image) && covers(*image)) {
        for (const PixelRect& change : image->changes()) {
            report(change, *image);
        }
        return;
    }
    // Where the former picture was and where the new one is.
    for (const MKOverlayImage* const changed : {_image.get(), image}) {
        if (changed) {
            report(changed->content(), *changed);
        }
    }
}

MKPixelPoint MKOverlayLayer::offsetOf(const MKOverlayImage& image) const {
    const MKPixelView& drawn = image.scene().view;
    if (drawn.scale == _view.scale) {
        // A world further on, or back, when the map has come back into its middle copy in the meantime.
        const int copy = static_cast<int>(std::round((_view.left - drawn.left) / (MKWorldSide * _view.scale)));
        return {drawn.left + _view.worldLeft(copy), drawn.top - _view.top};
    }
    const double ratio = _view.scale / drawn.scale;
    const double middle = (_view.left + _view.width / 2.0) - (drawn.left + drawn.width / 2.0) * ratio;
    const double copy = std::round(middle / (MKWorldSide * _view.scale));
    return {drawn.left * ratio + copy * MKWorldSide * _view.scale - _view.left, drawn.top * ratio - _view.top};
}

} // namespace veyra
