// An open line through vertices. Immutable; any thread.
#pragma once

#include "Platform/MapKit/MKMultiPoint.h"

namespace veyra {

class MKPolyline : public MKMultiPoint {
public:
    VEYRA_CLASS()
    explicit MKPolyline(MKVertexList vertices) : MKMultiPoint(std::move(vertices)) {}
    /// The coordinates are copied. With fewer than two there is nothing to see.
    static std::shared_ptr<MKPolyline> polylineWithCoordinates(std::span<const CLLocationCoordinate2D> coordinates);
};

} // namespace veyra
