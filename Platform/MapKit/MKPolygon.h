// An area within a ring of vertices, which closes by itself. A ring that crosses itself is filled even-odd. Immutable;
// any thread.
#pragma once

#include "Platform/MapKit/MKMultiPoint.h"

namespace veyra {

class MKPolygon : public MKMultiPoint {
public:
    VEYRA_CLASS()
    explicit MKPolygon(MKVertexList vertices) : MKMultiPoint(std::move(vertices)) {}
    /// The coordinates are copied.
    static std::shared_ptr<MKPolygon> polygonWithCoordinates(std::span<const CLLocationCoordinate2D> coordinates);
};

} // namespace veyra
