// A shape as it lies in a picture: places in pixels, one after the other, without those that cannot be told apart or
// that are so far outside that they make no difference. Used on one thread.
#pragma once

#include "Platform/MapKit/MKVertexList.h"

#include <vector>

namespace veyra {

/// A place in a picture, in pixels from its top-left corner.
struct MKPixelPoint {
    double x = 0, y = 0;
};

/// A rectangle in a picture, in pixels.
struct MKPixelBox {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;

    bool contains(MKPixelPoint point) const {
        return point.x >= minX && point.x <= maxX && point.y >= minY && point.y <= maxY;
    }
    MKPixelBox outset(double distance) const {
        return {minX - distance, minY - distance, maxX + distance, maxY + distance};
    }
};

/// Where a copy of the world lies in a picture.
struct MKOutlinePlace {
    double scale = 1;         ///< pixels a map point
    double left = 0, top = 0; ///< of the world, in pixels
    MKPixelBox area;          ///< what is drawn: what lies outside of it may be left out
    bool wantsLengths = false;

    MKPixelPoint pixelFor(MKMapPoint point) const;
};

struct MKOutline {
    std::vector<MKPixelPoint> points;
    std::vector<double> lengths; ///< when wanted: along the shape from its beginning to each point, in pixels
    bool isClosed = false;

    void clear();
    void add(MKPixelPoint point);
    void add(MKPixelPoint point, double length);

    /// The line through the vertices, to a fraction of a pixel.
    void traceVertices(const MKVertexList& vertices, const MKOutlinePlace& place);
    /// A circle around a map point; the radius is in map points, not negative.
    void traceCircle(MKMapPoint center, double radius, const MKOutlinePlace& place);

private:
    void traceArc(MKPixelPoint center, double radius, double from, double to, const MKOutlinePlace& place);
};

} // namespace veyra
