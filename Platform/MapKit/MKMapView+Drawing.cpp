// Drawing of the map, and what is reported about its data.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKCameraAnimation.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKTileLayer.h"
#include "Platform/UIKit/UIPinchGestureRecognizer.h"
#include "Platform/UIKit/UIWindow.h"

namespace veyra {

namespace {

constexpr const char* errorDomain = "MKErrorDomain";
constexpr int errorUnknown = 1;

} // namespace

void MKMapView::drawRect(const UIGraphicsContext& context) {
    if (!hasLayout()) {
        return;
    }
    const auto* animation = dynamic_cast<const MKCameraAnimation*>(_motion.get());
    const bool pinching = _changing && _changedByFingers && !_motion && _pinchRecognizer->numberOfTouches() > 1;
    _tiles->setScene({.camera = _camera,
                      .viewSize = _viewSize,
                      .deviceScale = context.scale,
                      .mapType = _mapType,
                      .scaleIsChanging = pinching || (_motion && _motion->changesScale()),
                      .destination = animation ? std::optional(animation->target()) : std::nullopt});
    _tiles->draw(context);
    reportLoading();
}

void MKMapView::tilesArrivedIn(const CGRect& area) {
    setNeedsDisplayInRect(area);
}

} // namespace veyra
