#pragma once

// The grid of one level: the world's square in 2^gridBits steps a side, and the cells that it is cut into. Points on it
// are whole numbers of steps from the north-west corner.

#include "Basemap/Maker/Sources.h"

#include <cstdint>
#include <vector>

namespace veyra::basemapMaker {

struct GridPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;

    friend bool operator==(const GridPoint&, const GridPoint&) = default;
};

using GridLine = std::vector<GridPoint>;

class Grid {
public:
    Grid(int gridBits, int columnBits) : _gridBits(gridBits), _columnBits(columnBits) {}

    int gridBits() const { return _gridBits; }
    int columnBits() const { return _columnBits; }

    std::int32_t side() const { return std::int32_t{1} << _gridBits; }
    std::int32_t columns() const { return std::int32_t{1} << _columnBits; }
    std::int32_t cellSide() const { return side() >> _columnBits; }

    // How far areas reach past their cell. 1/64 of a cell is at least two pixels at the least zoom that a level is for.
    std::int32_t margin() const { return cellSide() / 64; }

    // Projects and rounds to the grid. Latitudes beyond 89 degrees count as 89, so that what lies south of the square
    // is still recognisable as such (y > side()). No two neighbours in the result are equal.
    GridLine project(const PositionLine& positions) const;

    // The same with the first point not repeated at the end, turned clockwise on screen for an outer ring and the other
    // way for a hole. Empty when rounding leaves no area.
    GridLine projectRing(const PositionRing& ring) const;

    // Puts a vertex wherever an edge crosses the border between two cells, on the grid, and independent of the edge's
    // direction. A closed line is split at its closing edge too.
    GridLine splitAtCells(const GridLine& line, bool isClosed) const;

private:
    GridPoint project(Position position) const;
    void appendCrossings(GridPoint from, GridPoint to, GridLine& out) const;

    int _gridBits;
    int _columnBits;
};

// Twice the area, positive when the ring runs clockwise on screen (y down).
std::int64_t signedArea(const GridLine& ring);

// The coordinate `other` where the edge reaches `at`, rounded: at x = at its y when `vertical`, else at y = at its x.
// Gives the same for both directions of the edge, which must not be parallel to the line cut.
std::int32_t crossing(GridPoint from, GridPoint to, std::int32_t at, bool vertical);

} // namespace veyra::basemapMaker
