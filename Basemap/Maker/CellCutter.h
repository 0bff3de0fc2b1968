#pragma once

// Cuts the shapes of a level into its cells.

#include "Basemap/Maker/Grid.h"
#include "Basemap/Maker/RingClipper.h"

#include "Platform/MapKit/Basemap/BasemapCell.h"

#include <array>
#include <vector>

namespace veyra::basemapMaker {

// What one cell holds. Rings lie within the cell and its margin, lines within the cell.
struct CutCell {
    bool isAllLand = false; // then there are no land rings
    std::vector<GridLine> land;
    std::vector<GridLine> lakes;
    std::array<std::vector<GridLine>, basemapLayerCount> lines; // by layer; empty for layers of areas
};

class CellCutter {
public:
    explicit CellCutter(const Grid& grid);

    void addLand(const std::vector<PositionRing>& rings);
    void addLakes(const std::vector<PositionRing>& rings);
    // Projects lines and leaves out vertices that lie less than `tolerance` grid steps off the line without them. Where
    // a line ends or is cut stays where it is.
    void addLines(BasemapLayer layer, const std::vector<PositionLine>& lines, std::int32_t tolerance);

    // Row by row from the north-west. Hands the cells over: nothing can be added afterwards.
    std::vector<CutCell> finish();

private:
    using Rings = std::vector<GridLine> CutCell::*;

    CutCell& cell(std::int32_t column, std::int32_t row);

    // The cell with its margin. There is none beyond the north and the south side of the square, where nothing is
    // drawn; east and west of it the world goes on.
    GridRectangle fillArea(std::int32_t column, std::int32_t row) const;

    void addRings(const std::vector<PositionRing>& rings, Rings layer);
    void addRing(const GridLine& ring, Rings layer);
    void addLine(BasemapLayer layer, const GridLine& line);

    // Rings that go once round the whole cell say that it is covered, or not; one rectangle, or nothing, says the same.
    static void mergeCoveringRings(std::vector<GridLine>& rings, const GridRectangle& area);

    const Grid _grid;
    std::vector<CutCell> _cells;
};

} // namespace veyra::basemapMaker
