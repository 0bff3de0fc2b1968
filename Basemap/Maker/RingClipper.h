#pragma once

#include "Basemap/Maker/Grid.h"

namespace veyra::basemapMaker {

// A closed rectangle of grid points.
struct GridRectangle {
    std::int32_t minX = 0;
    std::int32_t minY = 0;
    std::int32_t maxX = 0;
    std::int32_t maxY = 0;

    bool isCorner(GridPoint point) const {
        return (point.x == minX || point.x == maxX) && (point.y == minY || point.y == maxY);
    }
};

// What of a ring lies in a strip (or, after both, in a rectangle), as one ring whose winding number about every point
// inside is the original's, so that rings clipped one by one still make up the same area under the non-zero rule.
// Pieces that fall apart stay joined by edges along the strip's border, which lie upon each other in opposite
// directions and enclose nothing. Of consecutive vertices on one side of the border only the outer two are kept. Empty
// when nothing of it lies inside.
GridLine clipToColumns(const GridLine& ring, std::int32_t minX, std::int32_t maxX);
GridLine clipToRows(const GridLine& ring, std::int32_t minY, std::int32_t maxY);

} // namespace veyra::basemapMaker
