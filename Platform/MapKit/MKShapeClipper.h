// Turns the vertices of a base map's shapes into a tile's pixels: cut off at a rectangle around the tile, so that no
// coordinate leaves what a drawing library can hold, and thinned to what the eye can tell apart. Used on one thread.
#pragma once

#include "Platform/MapKit/Basemap/BasemapCell.h"

#include <cairo.h>

#include <vector>

namespace veyra {

class MKLineMask;

class MKShapeClipper {
public:
    /// A place (x, y) in map points goes to ((x - originX) * scale, (y - originY) * scale); what is drawn lies between
    /// -bleed and side + bleed on both axes.
    MKShapeClipper(double originX, double originY, double scale, double side, double bleed);

    /// Appends closed rings, which were cut off at `cut`, to the context's path.
    void addAreas(const BasemapShapes& shapes, const BasemapBounds& cut, cairo_t* cairo);
    void addLines(const BasemapShapes& shapes, MKLineMask& mask);
    /// The same with dashes, in pixels. They are counted from each line's beginning, so that neighbouring tiles agree.
    void addDashedLines(const BasemapShapes& shapes, double dash, double gap, MKLineMask& mask);

private:
    struct Point {
        double x, y;
    };
    enum class Overlap { None, Part, Whole };
    Overlap overlap(const BasemapBounds& bounds) const;
    Point transformed(BasemapPoint point) const;
    void thin(std::span<const BasemapPoint> part, const BasemapBounds& cut);
    void clipRing();
    void clipRingAtEdge(bool vertical, double edge, double sign);
    void appendRing(cairo_t* cairo) const;
    void appendLine(MKLineMask& mask) const;
    void appendClippedLine(MKLineMask& mask) const;
    void appendClippedSegment(Point from, Point to, MKLineMask& mask) const;
    void appendDashes(double dash, double gap, MKLineMask& mask) const;

    const double _originX, _originY, _scale, _low, _high;
    std::vector<Point> _points, _spare;
};

} // namespace veyra
