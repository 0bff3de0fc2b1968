// A shape that is a list of vertices. Immutable; any thread.
#pragma once

#include "Platform/MapKit/MKShape.h"
#include "Platform/MapKit/MKVertexList.h"

namespace veyra {

class MKMultiPoint : public MKShape {
public:
    VEYRA_CLASS()

    /// Not null.
    const std::shared_ptr<const MKVertexList>& vertices() const { return _vertices; }
    size_t pointCount() const { return _vertices->size(); }
    /// The projected vertices.
    std::span<const MKMapPoint> points() const { return _vertices->points(); }
    /// Vertex `index`, below `pointCount`, in degrees; what lies beyond the projection comes back as its edge.
    CLLocationCoordinate2D coordinateAt(size_t index) const { return MKCoordinateForMapPoint(points()[index]); }

    /// The middle of the bounding rectangle; 0, 0 for a shape without places.
    CLLocationCoordinate2D coordinate() const override;
    MKMapRect boundingMapRect() const override { return _vertices->bounds(); }

protected:
    explicit MKMultiPoint(MKVertexList vertices)
        : _vertices(std::make_shared<const MKVertexList>(std::move(vertices))) {}

private:
    const std::shared_ptr<const MKVertexList> _vertices;
};

} // namespace veyra
