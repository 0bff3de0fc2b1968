#include "Platform/MapKit/MKPolyline.h"

namespace veyra {

Class MKPolyline::classObject() {
    static auto* const cls = new ClassObject("MKPolyline", MKMultiPoint::classObject(), {});
    return cls;
}

std::shared_ptr<MKPolyline> MKPolyline::polylineWithCoordinates(std::span<const CLLocationCoordinate2D> coordinates) {
    return std::make_shared<MKPolyline>(MKVertexList(coordinates));
}

} // namespace veyra
