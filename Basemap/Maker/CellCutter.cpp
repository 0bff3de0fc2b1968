#include "Basemap/Maker/CellCutter.h"

#include "Basemap/Maker/Simplifier.h"

#include <algorithm>
#include <utility>

namespace veyra::basemapMaker {

namespace {

GridRectangle boundsOf(const GridLine& line) {
    GridRectangle bounds{line[0].x, line[0].y, line[0].x, line[0].y};
    for (const GridPoint point : line) {
        bounds.minX = std::min(bounds.minX, point.x);
        bounds.minY = std::min(bounds.minY, point.y);
        bounds.maxX = std::max(bounds.maxX, point.x);
        bounds.maxY = std::max(bounds.maxY, point.y);
    }
    return bounds;
}

GridLine shifted(const GridLine& line, std::int32_t byX) {
    GridLine moved = line;
    for (GridPoint& point : moved) {
        point.x += byX;
    }
    return moved;
}

} // namespace

CellCutter::CellCutter(const Grid& grid)
    : _grid(grid), _cells(static_cast<std::size_t>(grid.columns()) * static_cast<std::size_t>(grid.columns())) {}

CutCell& CellCutter::cell(std::int32_t column, std::int32_t row) {
    return _cells[static_cast<std::size_t>(row * _grid.columns() + column)];
}

GridRectangle CellCutter::fillArea(std::int32_t column, std::int32_t row) const {
    const std::int32_t side = _grid.cellSide();
    return {column * side - _grid.margin(), std::max(0, row * side - _grid.margin()),
            (column + 1) * side + _grid.margin(), std::min(_grid.side(), (row + 1) * side + _grid.margin())};
}

void CellCutter::addLand(const std::vector<PositionRing>& rings) {
    addRings(rings, &CutCell::land);
}

void CellCutter::addLakes(const std::vector<PositionRing>& rings) {
    addRings(rings, &CutCell::lakes);
}

void CellCutter::addLines(BasemapLayer layer, const std::vector<PositionLine>& lines, std::int32_t tolerance) {
    for (const PositionLine& line : lines) {
        addLine(layer, _grid.splitAtCells(simplified(_grid.project(line), tolerance), false));
    }
}

void CellCutter::addRings(const std::vector<PositionRing>& rings, Rings layer) {
    for (const PositionRing& ring : rings) {
        const GridLine line = _grid.splitAtCells(_grid.projectRing(ring), true);
        if (line.empty()) {
            continue;
        }
        // The copies give the first and the last column the margin that lies on the other side of the antimeridian.
        addRing(line, layer);
        addRing(shifted(line, _grid.side()), layer);
        addRing(shifted(line, -_grid.side()), layer);
    }
}

void CellCutter::addRing(const GridLine& ring, Rings layer) {
    const GridRectangle bounds = boundsOf(ring);
    for (std::int32_t column = 0; column < _grid.columns(); ++column) {
        const GridRectangle strip = fillArea(column, 0);
        if (bounds.maxX < strip.minX || bounds.minX > strip.maxX) {
            continue;
        }
        const GridLine inColumn = clipToColumns(ring, strip.minX, strip.maxX);
        for (std::int32_t row = 0; row < _grid.columns() && !inColumn.empty(); ++row) {
            const GridRectangle area = fillArea(column, row);
            if (bounds.maxY < area.minY || bounds.minY > area.maxY) {
                continue;
            }
            GridLine clipped = clipToRows(inColumn, area.minY, area.maxY);
            if (!clipped.empty()) {
                (cell(column, row).*layer).push_back(std::move(clipped));
            }
        }
    }
}

void CellCutter::addLine(BasemapLayer layer, const GridLine& line) {
    GridLine piece;
    std::pair<std::int32_t, std::int32_t> place;
    const auto finishPiece = [&] {
        if (piece.size() > 1) {
            cell(place.first, place.second).lines[static_cast<std::size_t>(layer)].push_back(piece);
        }
        piece.clear();
    };
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        // No edge crosses from one cell to another any more, so its middle tells which one it is in. One along the
        // border of two belongs to the eastern or southern one.
        const std::int32_t last = _grid.columns() - 1;
        const std::pair here(std::min((line[i].x + line[i + 1].x) / 2 / _grid.cellSide(), last),
                             std::min((line[i].y + line[i + 1].y) / 2 / _grid.cellSide(), last));
        if (piece.empty() || here != place) {
            finishPiece();
            place = here;
            piece.push_back(line[i]);
        }
        piece.push_back(line[i + 1]);
    }
    finishPiece();
}

void CellCutter::mergeCoveringRings(std::vector<GridLine>& rings, const GridRectangle& area) {
    const GridLine whole = {
        {area.minX, area.minY}, {area.maxX, area.minY}, {area.maxX, area.maxY}, {area.minX, area.maxY}};
    std::int64_t covered = 0;
    const auto isCovering = [&](const GridLine& ring) {
        if (!std::all_of(ring.begin(), ring.end(), [&](GridPoint point) { return area.isCorner(point); })) {
            return false;
        }
        covered += signedArea(ring);
        return true;
    };
    std::erase_if(rings, isCovering);
    for (std::int64_t winding = covered / signedArea(whole); winding > 0; --winding) {
        rings.insert(rings.begin(), whole);
    }
}

std::vector<CutCell> CellCutter::finish() {
    for (std::int32_t row = 0; row < _grid.columns(); ++row) {
        for (std::int32_t column = 0; column < _grid.columns(); ++column) {
            CutCell& here = cell(column, row);
            mergeCoveringRings(here.land, fillArea(column, row));
            mergeCoveringRings(here.lakes, fillArea(column, row));
            if (here.land.size() == 1 && here.land[0].size() == 4 &&
                std::all_of(here.land[0].begin(), here.land[0].end(),
                            [area = fillArea(column, row)](GridPoint point) { return area.isCorner(point); })) {
                here.land.clear();
                here.isAllLand = true;
            }
        }
    }
    return std::move(_cells);
}

} // namespace veyra::basemapMaker
