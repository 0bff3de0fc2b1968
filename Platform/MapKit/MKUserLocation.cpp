#include "Platform/MapKit/MKUserLocation.h"

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

} // namespace veyra
