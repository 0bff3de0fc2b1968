// Life cycle and properties of the map view.
#include "Platform/MapKit/MKMapView.h"

#include "Platform/CoreLocation/CLLocationProvider.h"
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKInertia.h"
#include "Platform/MapKit/MKLabelLayer.h"
#include "Platform/MapKit/MKOverlayLayer.h"
#include "Platform/MapKit/MKOverlayList.h"
#include "Platform/MapKit/MKTileLayer.h"
#include "Platform/MapKit/MKUserLocation.h"
#include "Platform/MapKit/MKWheelZoom.h"
#include "Platform/UIKit/UIPanGestureRecognizer.h"
#include "Platform/UIKit/UIPinchGestureRecognizer.h"

namespace veyra {

Class MKMapView::classObject() {
    static auto* const cls = new ClassObject("MKMapView", UIView::classObject(), {});
    return cls;
}

MKMapView::MKMapView()
    : _regionBeforeLayout(MKCoordinateRegionForMapRect(MKMapRectWorld)),
      _motionTimer(std::make_unique<DispatchTimer>()), _scaleTimer(std::make_unique<DispatchTimer>()),
      _userLocation(std::make_shared<MKUserLocation>()), _retryTimer(std::make_unique<DispatchTimer>()) {}

MKMapView::~MKMapView() {
    if (_locationProvider) {
        _locationProvider->stopUpdatingLocation();
    }
}

void MKMapView::initWithFrame(const CGRect& frame) {
    UIView::initWithFrame(frame);
    _labels = std::make_unique<MKLabelLayer>();
    _tiles = std::make_unique<MKTileLayer>(
        MKBasemapSource::shared(), [this](const CGRect& area) { tilesArrivedIn(area); },
        [this](const std::string& reason, bool mayPass) { tileFailed(reason, mayPass); });
    _overlays = std::make_unique<MKOverlayList>();
    _overlayLayer = std::make_unique<MKOverlayLayer>([this](const CGRect& area) { setNeedsDisplayInRect(area); },
                                                     [this] { overlayWorkChanged(); });
    addRecognizers();
    addFurniture();
    _annotationContainer = MKAnnotationContainerView::makeForMap(std::static_pointer_cast<MKMapView>(sharedView()));
    addSubview(_annotationContainer); // above everything else
}

void MKMapView::setMapType(MKMapType mapType) {
    if (_mapType != mapType) {
        _mapType = mapType;
        layOutFurniture();
        setNeedsDisplay();
    }
}

void MKMapView::setZoomEnabled(bool enabled) {
    _zoomEnabled = enabled;
    _pinchRecognizer->setEnabled(enabled);
    for (const auto& recognizer : _zoomTapRecognizers) {
        recognizer->setEnabled(enabled);
    }
    publishInputPolicy();
    if (!enabled && dynamic_cast<const MKWheelZoom*>(_motion.get())) {
        endChange();
    }
}

void MKMapView::setScrollEnabled(bool enabled) {
    _scrollEnabled = enabled;
    _panRecognizer->setEnabled(enabled);
    publishInputPolicy();
    if (!enabled && dynamic_cast<const MKInertia*>(_motion.get())) {
        endChange();
    }
}

void MKMapView::setTileSource(const std::shared_ptr<const MKTileSource>& source) {
    _tiles->setSource(source);
    _labelsFailed = false;
    layOutFurniture();
    setNeedsDisplay();
}

} // namespace veyra
