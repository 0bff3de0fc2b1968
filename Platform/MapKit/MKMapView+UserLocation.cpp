// Where the user is: what the provider tells becomes callbacks and the annotation of the user's location.
#include "Platform/CoreLocation/CLLocationProvider.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKUserLocation.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veyra {

void MKMapView::setShowsUserLocation(bool shows) {
    const auto self = sharedView();
    if (shows) {
        if (!_showsUserLocation || !_isLocating) {
            _showsUserLocation = true;
            startLocating();
        }
        return;
    }
    if (!_showsUserLocation) {
        return;
    }
    _showsUserLocation = false;
    if (_locationProvider) {
        _locationProvider->stopUpdatingLocation();
    }
    removeUserLocation();
    if (!_showsUserLocation && std::exchange(_isLocating, false)) {
        if (const auto delegate = this->delegate()) {
            delegate->mapViewDidStopLocatingUser(*this);
        }
    }
}

void MKMapView::setLocationProvider(std::shared_ptr<CLLocationProvider> provider) {
    if (_locationProvider) {
        _locationProvider->stopUpdatingLocation();
    }
    _locationProvider = std::move(provider);
    if (_showsUserLocation) {
        startLocating();
    }
}

void MKMapView::startLocating() {
    if (!std::exchange(_isLocating, true)) {
        if (const auto delegate = this->delegate()) {
            delegate->mapViewWillStartLocatingUser(*this);
        }
    }
    if (!_showsUserLocation) {
        return; // the delegate has thought otherwise
    }
    if (!_locationProvider) {
        userNotLocated(
            std::make_shared<NSError>(NSString(kCLErrorDomain), kCLErrorLocationUnknown, NSDictionary::Map()));
        return;
    }
    const auto weak = weak_from_this();
    const auto map = [weak] { return std::static_pointer_cast<MKMapView>(weak.lock()); };
    _locationProvider->startUpdatingLocation({.didUpdate =
                                                  [map](const std::shared_ptr<const CLLocation>& location) {
                                                      if (const auto self = map()) {
                                                          self->userLocated(location);
                                                      }
                                                  },
                                              .didFail =
                                                  [map](const std::shared_ptr<NSError>& error) {
                                                      if (const auto self = map()) {
                                                          self->userNotLocated(error);
                                                      }
                                                  }});
}

void MKMapView::userLocated(const std::shared_ptr<const CLLocation>& location) {
    if (!_showsUserLocation) {
        return;
    }
    _isLocating = true;
    _userLocation->setUpdating(true);
    _userLocation->setLocation(location);
    if (std::exchange(_isUserLocationShown, true)) {
        annotationCoordinateDidChange(_userLocation);
    } else {
        addAnnotation(_userLocation);
    }
    if (!_isUserLocationShown) {
        return; // switched off by the delegate, which was asked for a view
    }
    if (const auto delegate = this->delegate()) {
        delegate->mapViewDidUpdateUserLocation(*this, _userLocation);
    }
}

void MKMapView::userNotLocated(const std::shared_ptr<NSError>& error) {
    if (!_showsUserLocation) {
        return;
    }
    _isLocating = false;
    removeUserLocation();
    if (const auto delegate = this->delegate()) {
        delegate->mapViewDidFailToLocateUserWithError(*this, error);
    }
}

void MKMapView::removeUserLocation() {
    _userLocation->setUpdating(false);
    if (std::exchange(_isUserLocationShown, false)) {
        removeAnnotation(_userLocation);
    }
}

bool MKMapView::isUserLocationVisible() const {
    return hasLayout() && isUserLocationIn(visibleMapRect());
}

bool MKMapView::isUserLocationIn(const MKMapRect& rect) const {
    const auto location = _isUserLocationShown ? _userLocation->location() : nullptr;
    if (!location) {
        return false;
    }
    const MKMapPoint center = MKMapPointForCoordinate(location->coordinate());
    const double radius = _userLocation->accuracyInMapPoints();
    // The distance from the circle's centre to the rectangle; the world repeats to both sides.
    const double middle = MKMapRectGetMidX(rect);
    const double x = std::remainder(center.x - middle, MKWorldSide);
    const double dx = std::max(std::abs(x) - rect.size.width / 2, 0.0);
    const double dy = std::max({rect.origin.y - center.y, center.y - MKMapRectGetMaxY(rect), 0.0});
    return std::hypot(dx, dy) <= radius;
}

} // namespace veyra
