// Draws thin antialiased lines into a tile: many short segments, far faster than a general stroker, which matters
// because coasts and borders are most of the work of a tile. Segments are collected as coverage, joined by the greater
// value, so that a line drawn in pieces looks like one; then the colour goes through the whole mask once. Used on one
// thread.
#pragma once

#include "Platform/MapKit/MKTile.h"

#include <cairo.h>

#include <vector>

namespace veyra {

class MKLineMask {
public:
    /// For a square picture of `side` pixels.
    explicit MKLineMask(int side);

    /// The width of the segments to come, in pixels.
    void setWidth(double width) { _width = width; }
    /// A segment with round ends; coordinates in pixels, from -1e6 to 1e6.
    void addSegment(double fromX, double fromY, double toX, double toY);
    /// Lays the colour over an RGB24 surface of that side where lines are, and empties the mask.
    void paint(cairo_surface_t* surface, MKTileColor color, double opacity = 1);

private:
    struct Segment;
    void addSpan(const Segment& segment, bool rows, int line, double low, double high);

    const int _side;
    double _width = 1;
    std::vector<uint8_t> _coverage; // row by row
    int _firstRow, _lastRow;        // that hold anything
};

} // namespace veyra
