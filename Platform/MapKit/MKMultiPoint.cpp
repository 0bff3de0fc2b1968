#include "Platform/MapKit/MKMultiPoint.h"

namespace veyra {

Class MKMultiPoint::classObject() {
    static auto* const cls = new ClassObject("MKMultiPoint", MKShape::classObject(), {});
    return cls;
}

CLLocationCoordinate2D MKMultiPoint::coordinate() const {
    const MKMapRect bounds = boundingMapRect();
    if (MKMapRectIsNull(bounds)) {
        return {};
    }
    return MKCoordinateForMapPoint({MKMapRectGetMidX(bounds), MKMapRectGetMidY(bounds)});
}

} // namespace veyra
