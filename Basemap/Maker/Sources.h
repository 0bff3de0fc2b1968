#pragma once

// Shapes as the sources give them: longitude and latitude in degrees, WGS 84.

#include <vector>

namespace veyra::basemapMaker {

struct Position {
    double longitude = 0;
    double latitude = 0;
};

using PositionLine = std::vector<Position>;

// A ring is closed; whether its first position is repeated at its end does not matter.
struct PositionRing {
    PositionLine positions;
    bool isHole = false;
};

} // namespace veyra::basemapMaker
