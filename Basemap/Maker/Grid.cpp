#include "Basemap/Maker/Grid.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veyra::basemapMaker {

namespace {

std::int32_t floorDivide(std::int32_t value, std::int32_t divisor) {
    const std::int32_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

// Calls `action` for each multiple of `interval` strictly between two values, in the direction from `from` to `to`.
void forEachMultipleBetween(std::int32_t from, std::int32_t to, std::int32_t interval, const auto& action) {
    if (from < to) {
        for (std::int32_t at = (floorDivide(from, interval) + 1) * interval; at < to; at += interval) {
            action(at);
        }
    } else {
        for (std::int32_t at = -(floorDivide(-from, interval) + 1) * interval; at > to; at -= interval) {
            action(at);
        }
    }
}

void appendUnlessRepeated(GridLine& line, GridPoint point) {
    if (line.empty() || line.back() != point) {
        line.push_back(point);
    }
}

} // namespace

std::int64_t signedArea(const GridLine& ring) {
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const GridPoint a = ring[i];
        const GridPoint b = ring[(i + 1) % ring.size()];
        sum += std::int64_t{a.x} * b.y - std::int64_t{b.x} * a.y;
    }
    return sum;
}

std::int32_t crossing(GridPoint from, GridPoint to, std::int32_t at, bool vertical) {
    std::int64_t a = vertical ? from.x : from.y;
    std::int64_t b = vertical ? to.x : to.y;
    std::int64_t otherA = vertical ? from.y : from.x;
    std::int64_t otherB = vertical ? to.y : to.x;
    if (a > b) {
        std::swap(a, b);
        std::swap(otherA, otherB);
    }
    const std::int64_t numerator = 2 * (otherB - otherA) * (at - a) + (b - a);
    const std::int64_t denominator = 2 * (b - a);
    std::int64_t quotient = numerator / denominator;
    if (numerator % denominator < 0) {
        --quotient;
    }
    return static_cast<std::int32_t>(otherA + quotient);
}

GridPoint Grid::project(Position position) const {
    const double world = side();
    const double phi = std::clamp(position.latitude, -89.0, 89.0) * std::numbers::pi / 180;
    const double sine = std::sin(phi);
    const double x = (position.longitude + 180) / 360 * world;
    const double y = world * (0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi));
    return {static_cast<std::int32_t>(std::lround(x)), static_cast<std::int32_t>(std::lround(y))};
}

GridLine Grid::project(const PositionLine& positions) const {
    GridLine line;
    for (const Position& position : positions) {
        appendUnlessRepeated(line, project(position));
    }
    return line;
}

GridLine Grid::projectRing(const PositionRing& ring) const {
    GridLine line = project(ring.positions);
    while (line.size() > 1 && line.front() == line.back()) {
        line.pop_back();
    }
    const std::int64_t area = signedArea(line);
    if (line.size() < 3 || area == 0) {
        return {};
    }
    if ((area < 0) != ring.isHole) {
        std::reverse(line.begin(), line.end());
    }
    return line;
}

void Grid::appendCrossings(GridPoint from, GridPoint to, GridLine& out) const {
    GridLine atColumns = {from};
    forEachMultipleBetween(from.x, to.x, cellSide(), [&](std::int32_t x) {
        appendUnlessRepeated(atColumns, {x, crossing(from, to, x, true)});
    });
    appendUnlessRepeated(atColumns, to);
    for (std::size_t i = 0; i + 1 < atColumns.size(); ++i) {
        const GridPoint a = atColumns[i];
        const GridPoint b = atColumns[i + 1];
        appendUnlessRepeated(out, a);
        forEachMultipleBetween(a.y, b.y, cellSide(), [&](std::int32_t y) {
            appendUnlessRepeated(out, {crossing(a, b, y, false), y});
        });
    }
    appendUnlessRepeated(out, to);
}

GridLine Grid::splitAtCells(const GridLine& line, bool isClosed) const {
    GridLine split;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        appendCrossings(line[i], line[i + 1], split);
    }
    if (isClosed && line.size() > 1) {
        appendCrossings(line.back(), line.front(), split);
        split.pop_back();
    }
    return split;
}

} // namespace veyra::basemapMaker
