#include "Platform/MapKit/MKUserLocation.h"

#include "Platform/MapKit/MKGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veyra {

Class MKUserLocation::classObject() {
    static auto* const cls = new ClassObject("MKUserLocation", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<const CLLocation> MKUserLocation::location() const {
    const std::lock_guard guard(_mutex);
    return _location;
}

void MKUserLocation::setLocation(std::shared_ptr<const CLLocation> location) {
    const std::lock_guard guard(_mutex);
    _location.swap(location);
}

CLLocationCoordinate2D MKUserLocation::coordinate() const {
    constexpr double nowhere = std::numeric_limits<double>::quiet_NaN();
    const auto location = this->location();
    return location ? location->coordinate() : CLLocationCoordinate2D{nowhere, nowhere};
}

double MKUserLocation::accuracyInMapPoints() const {
    const auto location = this->location();
    if (!location || !(location->horizontalAccuracy() > 0) || !std::isfinite(location->horizontalAccuracy())) {
        return 0;
    }
    // At the poles themselves a metre would be as large as the world.
    const double latitude = std::clamp(location->coordinate().latitude, -MKMaximumLatitude, MKMaximumLatitude);
    return std::min(location->horizontalAccuracy() * MKMapPointsPerMeterAtLatitude(latitude), 2 * MKWorldSide);
}

} // namespace veyra
