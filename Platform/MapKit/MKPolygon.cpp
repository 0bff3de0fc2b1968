#include "Platform/MapKit/MKPolygon.h"

namespace veyra {

Class MKPolygon::classObject() {
    static auto* const cls = new ClassObject("MKPolygon", MKMultiPoint::classObject(), {});
    return cls;
}

std::shared_ptr<MKPolygon> MKPolygon::polygonWithCoordinates(std::span<const CLLocationCoordinate2D> coordinates) {
    return std::make_shared<MKPolygon>(MKVertexList(coordinates));
}

} // namespace veyra
