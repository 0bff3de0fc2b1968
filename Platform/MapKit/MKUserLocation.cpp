#include "Platform/MapKit/MKUserLocation.h"

#include <limits>

namespace veyra {

Class MKUserLocation::classObject() {
    static auto* const cls = new ClassObject("MKUserLocation", NSObject::classObject(), {});
    return cls;
}

CLLocationCoordinate2D MKUserLocation::coordinate() const {
    constexpr double nowhere = std::numeric_limits<double>::quiet_NaN();
    return _location ? _location->coordinate() : CLLocationCoordinate2D{nowhere, nowhere};
}

} // namespace veyra
