// What the map shows, how that is asked for, and how its changes are reported.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKCameraAnimation.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKTileLayer.h"
#include "Platform/UIKit/UIWindow.h"

#include <cmath>

namespace veyra {

namespace {

// A window that is hidden steps no movement; a movement that has not been stepped for so long ends at once.
constexpr double longestPauseOfMotion = 1;

} // namespace

MKCoordinateRegion MKMapView::region() const {
    return hasLayout() ? _camera.region(_viewSize) : _regionBeforeLayout;
}

MKMapRect MKMapView::visibleMapRect() const {
    return hasLayout() ? _camera.visibleMapRect(_viewSize) : MKMapRectForCoordinateRegion(_regionBeforeLayout);
}

CLLocationCoordinate2D MKMapView::centerCoordinate() const {
    return region().center;
}

void MKMapView::setRegionAnimated(const MKCoordinateRegion& region, bool animated) {
    if (!MKCoordinateRegionIsFinite(region)) {
        NSLog("MKMapView: a region with a value that is not finite is ignored");
        return;
    }
    if (hasLayout()) {
        changeTo(MKCamera::fitting(region, _viewSize), animated, MKCameraAnimation::nearDuration);
    } else {
        _regionBeforeLayout = region;
    }
}

void MKMapView::setCenterCoordinateAnimated(CLLocationCoordinate2D coordinate, bool animated) {
    if (!std::isfinite(coordinate.latitude) || !std::isfinite(coordinate.longitude)) {
        NSLog("MKMapView: a centre with a value that is not finite is ignored");
        return;
    }
    if (hasLayout()) {
        MKCamera target = _camera;
        target.center = MKMapPointForCoordinate(coordinate);
        changeTo(target.normalized().clamped(_viewSize), animated, MKCameraAnimation::nearDuration);
    } else {
        _regionBeforeLayout.center = coordinate;
    }
}

MKCoordinateRegion MKMapView::regionThatFitsMapTypeViewSizeRegion(MKMapType, CGSize viewSize,
                                                                  const MKCoordinateRegion& region) {
    const bool fits = !viewSize.isEmpty() && std::isfinite(viewSize.width) && std::isfinite(viewSize.height) &&
                      MKCoordinateRegionIsFinite(region);
    return fits ? MKCamera::fitting(region, viewSize).region(viewSize) : region;
}

void MKMapView::layoutSubviews() {
    UIView::layoutSubviews();
    publishInputPolicyToNewWindow();
    const CGSize size = bounds().size;
    const bool isCreationSize = size == CGSize{1, 1} && !hasLayout();
    const bool changed = size != _lastSize;
    _lastSize = size;
    if (changed && !size.isEmpty() && !isCreationSize) {
        layOutAt(size);
    }
}

void MKMapView::layOutAt(CGSize size) {
    const auto self = sharedView();
    finishChange();
    const MKCamera camera = hasLayout() ? _camera.clamped(size) : MKCamera::fitting(_regionBeforeLayout, size);
    _viewSize = size;
    moveCamera(camera);
    layOutFurniture();
    if (beginChange(false)) {
        endChange();
    }
}

void MKMapView::changeTo(const MKCamera& target, bool animated, double duration) {
    const auto self = sharedView();
    if (!beginChange(animated)) {
        return;
    }
    if (animated && canAnimate() && target != _camera) {
        startMotion(std::make_unique<MKCameraAnimation>(_camera, target, _viewSize, duration));
    } else {
        moveCamera(target);
        endChange();
    }
}

bool MKMapView::beginChange(bool animated) {
    endChange();
    if (_changing) {
        return false;
    }
    _changing = true;
    _changeAnimated = animated;
    _tiles->forgetFailures();
    const unsigned serial = ++_changeSerial;
    if (const auto delegate = _delegate.lock()) {
        delegate->mapViewRegionWillChangeAnimated(*this, animated);
    }
    return _changing && _changeSerial == serial;
}

void MKMapView::endChange() {
    if (!_changing) {
        return;
    }
    const auto self = sharedView();
    _changing = _changedByFingers = _changedByKey = false;
    _motion.reset();
    _motionTimer->cancel();
    moveCamera(_camera.normalized());
    setNeedsDisplay(); // the picture of a movement gives way to the exact one
    _annotationContainer->bringViewsUpToDate();
    if (const auto delegate = _delegate.lock()) {
        delegate->mapViewRegionDidChangeAnimated(*this, _changeAnimated);
    }
    if (const auto window = this->window()) {
        window->idleStateChanged();
    }
}

void MKMapView::finishChange() {
    const auto self = sharedView();
    if (_motion) {
        MKCamera end = _camera;
        _motion->finish(_viewSize, end);
        moveCamera(end);
    }
    endChange();
}

void MKMapView::startMotion(std::unique_ptr<MKMotion> motion) {
    _motion = std::move(motion);
    setNeedsAnimationStep();
    awaitStep();
}

void MKMapView::awaitStep() {
    _motionTimer->start(dispatch_get_main_queue(), longestPauseOfMotion, [this] { finishChange(); });
}

bool MKMapView::stepAnimations(double timestamp) {
    if (!_motion) {
        return false;
    }
    MKCamera camera = _camera;
    const bool goesOn = _motion->step(timestamp, _viewSize, camera);
    moveCamera(camera);
    if (goesOn) {
        awaitStep();
    } else {
        endChange();
    }
    return _motion != nullptr; // the delegate may have begun another movement
}

void MKMapView::moveCamera(const MKCamera& camera) {
    if (_camera != camera) {
        _camera = camera;
        layOutFurniture();
        setNeedsDisplay();
        _annotationContainer->cameraDidChange();
    }
    askForOverlaysThatCameIntoSight();
}

bool MKMapView::canAnimate() const {
    const auto window = this->window();
    return window && window->isVisible();
}

} // namespace veyra
