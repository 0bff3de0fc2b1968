#include "Basemap/Maker/Simplifier.h"

#include <cmath>
#include <utility>

namespace veyra::basemapMaker {

namespace {

double distanceOff(GridPoint from, GridPoint to, GridPoint point) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const double px = point.x - from.x, py = point.y - from.y;
    const double length = std::hypot(dx, dy);
    return length > 0 ? std::abs(px * dy - py * dx) / length : std::hypot(px, py);
}

} // namespace

GridLine simplified(const GridLine& line, std::int32_t tolerance) {
    if (tolerance <= 0 || line.size() < 3) {
        return line;
    }
    std::vector<bool> kept(line.size());
    kept.front() = kept.back() = true;
    std::vector<std::pair<std::size_t, std::size_t>> open = {{0, line.size() - 1}};
    while (!open.empty()) {
        const auto [first, last] = open.back();
        open.pop_back();
        double farthest = tolerance;
        std::size_t at = first;
        for (std::size_t i = first + 1; i < last; ++i) {
            const double distance = distanceOff(line[first], line[last], line[i]);
            if (distance > farthest) {
                farthest = distance;
                at = i;
            }
        }
        if (at != first) {
            kept[at] = true;
            open.emplace_back(first, at);
            open.emplace_back(at, last);
        }
    }
    GridLine out;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (kept[i]) {
            out.push_back(line[i]);
        }
    }
    return out;
}

} // namespace veyra::basemapMaker
