#include "Basemap/Maker/RingClipper.h"

#include <algorithm>

namespace veyra::basemapMaker {

namespace {

// Keeps the half plane on one side of the line x = at or y = at: coordinates >= at, or <= at when `below`.
GridLine clipToHalfPlane(const GridLine& ring, std::int32_t at, bool vertical, bool below) {
    const auto isInside = [&](GridPoint point) {
        const std::int32_t value = vertical ? point.x : point.y;
        return below ? value <= at : value >= at;
    };
    GridLine kept;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const GridPoint from = ring[i];
        const GridPoint to = ring[(i + 1) % ring.size()];
        if (isInside(from)) {
            kept.push_back(from);
        }
        if (isInside(from) != isInside(to)) {
            const std::int32_t other = crossing(from, to, at, vertical);
            kept.push_back(vertical ? GridPoint{at, other} : GridPoint{other, at});
        }
    }
    return kept;
}

// Drops the vertices that clipping at low and high has left between two others on the same side, and repeated ones.
GridLine withoutBorderRuns(const GridLine& ring, std::int32_t low, std::int32_t high, bool vertical) {
    const auto isOnSameSide = [&](GridPoint a, GridPoint b) {
        const std::int32_t first = vertical ? a.x : a.y;
        const std::int32_t second = vertical ? b.x : b.y;
        return first == second && (first == low || first == high);
    };
    const auto isNeedless = [&](GridPoint before, GridPoint point, GridPoint after) {
        return before == point || (isOnSameSide(before, point) && isOnSameSide(point, after));
    };
    GridLine kept;
    for (const GridPoint point : ring) {
        while (kept.size() > 1 && isNeedless(kept[kept.size() - 2], kept.back(), point)) {
            kept.pop_back();
        }
        if (kept.empty() || kept.back() != point) {
            kept.push_back(point);
        }
    }
    // The ends of the list are neighbours too.
    std::size_t first = 0;
    bool changed = true;
    while (changed && kept.size() - first > 2) {
        changed = false;
        if (isNeedless(kept[kept.size() - 2], kept.back(), kept[first]) || kept.back() == kept[first]) {
            kept.pop_back();
            changed = true;
        } else if (isNeedless(kept.back(), kept[first], kept[first + 1])) {
            ++first;
            changed = true;
        }
    }
    kept.erase(kept.begin(), kept.begin() + static_cast<std::ptrdiff_t>(first));
    return kept.size() > 2 ? kept : GridLine();
}

GridLine clipToStrip(const GridLine& ring, std::int32_t low, std::int32_t high, bool vertical) {
    return withoutBorderRuns(clipToHalfPlane(clipToHalfPlane(ring, low, vertical, false), high, vertical, true), low,
                             high, vertical);
}

} // namespace

GridLine clipToColumns(const GridLine& ring, std::int32_t minX, std::int32_t maxX) {
    return clipToStrip(ring, minX, maxX, true);
}

GridLine clipToRows(const GridLine& ring, std::int32_t minY, std::int32_t maxY) {
    return clipToStrip(ring, minY, maxY, false);
}

} // namespace veyra::basemapMaker
