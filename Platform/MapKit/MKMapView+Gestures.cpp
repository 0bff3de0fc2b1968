// How the user moves the map: drags with inertia, pinches, taps, the wheel and keys.
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKCalloutView.h"
#include "Platform/MapKit/MKCameraAnimation.h"
#include "Platform/MapKit/MKInertia.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKTouchObserver.h"
#include "Platform/MapKit/MKWheelZoom.h"
#include "Platform/UIKit/UIPanGestureRecognizer.h"
#include "Platform/UIKit/UIPinchGestureRecognizer.h"
#include "Platform/UIKit/UITapGestureRecognizer.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

constexpr double tapZoomDuration = 0.3;
// An arrow key moves the map by that many points, or by a quarter of a smaller view.
constexpr double arrowStep = 100;

bool isUnderWay(const UIGestureRecognizer& recognizer) {
    return recognizer.state() == UIGestureRecognizerState::Began ||
           recognizer.state() == UIGestureRecognizerState::Changed;
}

/// Drags and pinches that begin on annotation views, with one finger or more, move the map as they do beside them: a
/// map full of pins can be moved. A callout is for reading and its buttons.
bool canMoveMap(const UIView& touched) {
    for (const UIView* view = &touched; view; view = view->superview().get()) {
        if (dynamic_cast<const MKCalloutView*>(view)) {
            return false;
        }
    }
    return true;
}

} // namespace

Class MKTouchObserver::classObject() {
    static auto* const cls = new ClassObject("MKTouchObserver", UIGestureRecognizer::classObject(), {});
    return cls;
}

void MKMapView::addRecognizers() {
    addGestureRecognizer(std::make_shared<MKTouchObserver>([this] {
        _annotationContainer->mapTouched();
        if (_motion) {
            endChange();
        }
    }));
    _panRecognizer = std::make_shared<UIPanGestureRecognizer>();
    _panRecognizer->setHandler([this](UIGestureRecognizer&) { handlePan(*_panRecognizer); });
    addGestureRecognizer(_panRecognizer);
    _pinchRecognizer = std::make_shared<UIPinchGestureRecognizer>();
    _pinchRecognizer->setHandler([this](UIGestureRecognizer&) { handlePinch(*_pinchRecognizer); });
    addGestureRecognizer(_pinchRecognizer);
    for (const auto& recognizer :
         std::initializer_list<std::shared_ptr<UIGestureRecognizer>>{_panRecognizer, _pinchRecognizer}) {
        recognizer->setTakesKeptTouches(true);
        recognizer->setTouchFilter([](UIView& touched, const UITouchEvent&) { return canMoveMap(touched); });
    }

    const auto addTap = [this](size_t taps, size_t fingers, double factor) {
        auto tap = std::make_shared<UITapGestureRecognizer>();
        tap->setNumberOfTapsRequired(taps);
        tap->setNumberOfTouchesRequired(fingers);
        tap->setHandler([this, factor](UIGestureRecognizer& recognizer) { handleZoomTap(recognizer, factor); });
        addGestureRecognizer(tap);
        _zoomTapRecognizers.push_back(std::move(tap));
    };
    const auto tap = std::make_shared<UITapGestureRecognizer>();
    tap->setHandler([this](UIGestureRecognizer& recognizer) {
        if (recognizer.state() == UIGestureRecognizerState::Ended) {
            _annotationContainer->mapTapped();
        }
    });
    addGestureRecognizer(tap);
    addTap(2, 1, 2);
    addTap(1, 2, 0.5);
}

void MKMapView::publishInputPolicy() {
    const auto window = this->window();
    _policyWindow = window;
    if (window) {
        UIInputPolicy policy{.usesDrags = _scrollEnabled,
                             .usesScrolls = _zoomEnabled,
                             .usesPinches = _zoomEnabled,
                             .usesPanKeys = _scrollEnabled,
                             .usesZoomKeys = _zoomEnabled};
        _annotationContainer->addKeysTo(policy);
        window->setInputPolicy(policy);
    }
}

// Called where a view that was added to a window is called first.
void MKMapView::publishInputPolicyToNewWindow() {
    if (window() != _policyWindow.lock()) {
        publishInputPolicy();
        publishCaption();
    }
}

void MKMapView::handlePan(UIPanGestureRecognizer& pan) {
    if (!hasLayout()) {
        return;
    }
    if (!isUnderWay(pan)) {
        // Fingers that pinched until now are lifted one after the other, which throws nothing.
        const bool wasLetGo = pan.state() == UIGestureRecognizerState::Ended &&
                              pan.timestamp() - _lastPinchTime >= VelocityTracker::window;
        _panVelocity = wasLetGo ? pan.velocityInView() : CGPoint{};
        endFingerChange();
        return;
    }
    const CGPoint moved = pan.translationInView();
    pan.setTranslation({});
    const auto self = sharedView();
    const bool pinchMoves = isUnderWay(*_pinchRecognizer) && _pinchRecognizer->numberOfTouches() == 2;
    if (pinchMoves) {
        _lastPinchTime = pan.timestamp();
    } else if (beginFingerChange()) {
        moveCamera(_camera.movedBy(moved.x, moved.y).clamped(_viewSize));
    }
}

void MKMapView::handlePinch(UIPinchGestureRecognizer& pinch) {
    if (!hasLayout()) {
        return;
    }
    if (!isUnderWay(pinch)) {
        endFingerChange();
        return;
    }
    _lastPinchTime = pinch.timestamp();
    const double factor = pinch.scale();
    pinch.setScale(1);
    // The map follows the fingers' middle from the first move on, whether a pan has been recognised or not.
    const CGPoint moved = _scrollEnabled ? pinch.translationInView() : CGPoint{};
    pinch.setTranslation({});
    const auto self = sharedView();
    if (beginFingerChange()) {
        moveCamera(
            _camera.movedBy(moved.x, moved.y).scaledTo(_camera.scale * factor, pinch.locationInView(), _viewSize));
    }
}

bool MKMapView::beginFingerChange() {
    if (_changing && _changedByFingers) {
        return true;
    }
    // What a request began meanwhile gives way to the fingers.
    if (!beginChange(false)) {
        return false;
    }
    _changedByFingers = true;
    _panVelocity = {};
    return true;
}

void MKMapView::endFingerChange() {
    if (!_changing || !_changedByFingers || isUnderWay(*_panRecognizer) || isUnderWay(*_pinchRecognizer)) {
        return;
    }
    if (canAnimate() && std::hypot(_panVelocity.x, _panVelocity.y) > MKInertia::slowestSpeed) {
        startMotion(std::make_unique<MKInertia>(_panVelocity));
    } else {
        endChange();
    }
}

void MKMapView::handleZoomTap(const UIGestureRecognizer& tap, double factor) {
    if (hasLayout() && tap.state() == UIGestureRecognizerState::Ended) {
        changeTo(_camera.scaledTo(_camera.scale * factor, tap.locationInView(), _viewSize), true, tapZoomDuration);
    }
}

bool MKMapView::handleScroll(const UIScrollEvent& event) {
    if (!hasLayout() || !_zoomEnabled || !std::isfinite(event.deltaY) || event.deltaY == 0) {
        return false;
    }
    auto* wheel = dynamic_cast<MKWheelZoom*>(_motion.get());
    if (!wheel) {
        if (!beginChange(false)) {
            return true;
        }
        auto started = std::make_unique<MKWheelZoom>(_camera.scale);
        wheel = started.get();
        startMotion(std::move(started));
    }
    wheel->turn(MKWheelZoom::levelsFor(event), convertPointFromWindow(event.location), _viewSize);
    if (!canAnimate()) {
        finishChange();
    }
    return true;
}

bool MKMapView::handleKey(const UIKeyEvent& event) {
    if (!hasLayout() || event.control || event.alternate || event.meta) {
        return false;
    }
    const std::string& key = event.key;
    if (key == "ArrowLeft" || key == "ArrowRight") {
        return panByKey(key == "ArrowRight" ? 1 : -1, 0);
    }
    if (key == "ArrowUp" || key == "ArrowDown") {
        return panByKey(0, key == "ArrowDown" ? 1 : -1);
    }
    if (key == "+" || key == "=") {
        return zoomByKey(2);
    }
    if (key == "-") {
        return zoomByKey(0.5);
    }
    return key == "Home" && showWorldByKey();
}

bool MKMapView::panByKey(double directionX, double directionY) {
    if (!_scrollEnabled) {
        return false;
    }
    const double stepX = directionX * std::min(arrowStep, _viewSize.width / 4);
    const double stepY = directionY * std::min(arrowStep, _viewSize.height / 4);
    changeByKey(cameraForKeys().movedBy(-stepX, -stepY).clamped(_viewSize));
    return true;
}

bool MKMapView::zoomByKey(double factor) {
    if (!_zoomEnabled) {
        return false;
    }
    const MKCamera from = cameraForKeys();
    changeByKey(from.scaledTo(from.scale * factor, bounds().center(), _viewSize));
    return true;
}

bool MKMapView::showWorldByKey() {
    if (!_zoomEnabled || !_scrollEnabled) {
        return false;
    }
    changeByKey(MKCamera::fitting(MKCoordinateRegionForMapRect(MKMapRectWorld), _viewSize));
    return true;
}

MKCamera MKMapView::cameraForKeys() const {
    const auto* animation = dynamic_cast<const MKCameraAnimation*>(_motion.get());
    return animation && _changedByKey ? animation->target() : _camera;
}

void MKMapView::changeByKey(const MKCamera& target) {
    changeTo(target, true, MKCameraAnimation::nearDuration);
    _changedByKey = _motion != nullptr;
}

} // namespace veyra
