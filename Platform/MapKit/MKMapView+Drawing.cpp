// Drawing of the map, and what is reported about its data.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/MapKit/MKAttributionView.h"
#include "Platform/MapKit/MKCameraAnimation.h"
#include "Platform/MapKit/MKLabelLayer.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKOverlayLayer.h"
#include "Platform/MapKit/MKTileLayer.h"
#include "Platform/UIKit/UIPinchGestureRecognizer.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>

namespace veyra {

namespace {

constexpr const char* errorDomain = "MKErrorDomain";
constexpr int errorUnknown = 1;

// Two changes of the scale within this time are one movement, which ends when the scale has rested for as long.
// Seconds.
constexpr double scaleRest = 0.15;

// Seconds before a source that failed is tried again: at first, and at most.
constexpr double firstRetryRest = 5.0, longestRetryRest = 80;

} // namespace

void MKMapView::drawRect(const UIGraphicsContext& context) {
    publishInputPolicyToNewWindow();
    if (!hasLayout()) {
        return;
    }
    const auto* animation = dynamic_cast<const MKCameraAnimation*>(_motion.get());
    const bool pinching = _changing && _changedByFingers && !_motion && _pinchRecognizer->numberOfTouches() > 1;
    const bool scaleIsChanging = followScale() || pinching || (_motion && _motion->changesScale());
    _tiles->setScene({.camera = _camera,
                      .viewSize = _viewSize,
                      .deviceScale = context.scale,
                      .mapType = _mapType,
                      .style = window()->userInterfaceStyle(),
                      .scaleIsChanging = scaleIsChanging,
                      .destination = animation ? std::optional(animation->target()) : std::nullopt});
    chooseFurnitureInk(window()->userInterfaceStyle());
    _tiles->draw(context);
    drawLabels(context);
    _overlayLayer->setScene(_camera, _viewSize, context.scale, scaleIsChanging);
    _overlayLayer->draw(context);
    reportLoading();
}

bool MKMapView::followScale() {
    if (_camera.scale != _drawnScale) {
        const double now = static_cast<double>(g_get_monotonic_time()) / 1e6;
        _scaleKeepsChanging |= _scaleChangeTime >= 0 && now - _scaleChangeTime < scaleRest;
        // The first scale of all is no change.
        _scaleChangeTime = _drawnScale > 0 ? now : -1;
        _drawnScale = _camera.scale;
        if (_scaleKeepsChanging) {
            _scaleTimer->start(dispatch_get_main_queue(), scaleRest, [this] {
                _scaleKeepsChanging = false;
                setNeedsDisplay();
            });
        }
    }
    return _scaleKeepsChanging;
}

bool MKMapView::isIdle() const {
    return !_changing && !_scaleKeepsChanging && _loading == Loading::Nothing && _queuedReports == 0 &&
           !_tiles->isWaiting() && _labels->isComplete() && !_overlayUpdateQueued && !_overlayLayer->isWaiting();
}

void MKMapView::tilesArrivedIn(const CGRect& area) {
    setNeedsDisplayInRect(area);
    if (_showsAttribution && _tiles->source().attribution(_mapType) != _attributionView->attribution()) {
        layOutFurniture(); // sources may learn whose data they are as they read them
    }
    if (!_tiles->isWaiting()) {
        setNeedsDisplay(); // that all is there is reported by drawing, even if the last tile lies outside the window
    }
}

void MKMapView::tileFailed(const std::string& reason, bool mayPass) {
    if (_loading == Loading::Tiles) {
        _loading = Loading::Failed;
        NSLog("MKMapView: a tile cannot be drawn: %s", {reason.c_str()});
        auto error = std::make_shared<NSError>(
            NSString(errorDomain), errorUnknown,
            NSDictionary::Map{{NSString("NSLocalizedDescription"), id(NSString(std::string_view(reason)))}});
        queueReport([error](MKMapView& map, MKMapViewDelegate& delegate) {
            delegate.mapViewDidFailLoadingMapWithError(map, error);
        });
    }
    if (mayPass && !_retryTimer->isRunning()) {
        _retryRest = std::clamp(2 * _retryRest, firstRetryRest, longestRetryRest);
        _retryTimer->start(dispatch_get_main_queue(), _retryRest, [this] {
            _tiles->forgetFailures();
            setNeedsDisplay();
        });
    }
    setNeedsDisplay();
}

// Called with everything drawn that is held.
void MKMapView::reportLoading() {
    if (_tiles->isWaiting()) {
        if (_loading == Loading::Nothing) {
            _loading = Loading::Tiles;
            queueReport([](MKMapView& map, MKMapViewDelegate& delegate) { delegate.mapViewWillStartLoadingMap(map); });
        }
    } else if (!_changing && !_scaleKeepsChanging && _loading != Loading::Nothing) {
        if (_loading == Loading::Tiles) {
            _retryRest = 0;
            queueReport([](MKMapView& map, MKMapViewDelegate& delegate) { delegate.mapViewDidFinishLoadingMap(map); });
        }
        _loading = Loading::Nothing;
    }
}

// A delegate is not called while a frame is being drawn.
void MKMapView::queueReport(std::function<void(MKMapView&, MKMapViewDelegate&)> report) {
    ++_queuedReports;
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this(), report = std::move(report)] {
        const auto self = std::static_pointer_cast<MKMapView>(weak.lock());
        if (!self) {
            return;
        }
        --self->_queuedReports;
        if (const auto delegate = self->delegate()) {
            report(*self, *delegate);
        }
        if (const auto window = self->window()) {
            window->idleStateChanged();
        }
    });
}

} // namespace veyra
