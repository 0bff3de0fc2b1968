#pragma once

#include "Basemap/Maker/Sources.h"

#include <vector>

namespace veyra::basemapMaker {

// Land without anything cut out, and the inland water upon it.
struct LandAndLakes {
    std::vector<PositionRing> land;  // outer rings only
    std::vector<PositionRing> lakes; // outer rings, and as holes the islands in lakes
};

// Takes apart land that has its lakes as holes. A land ring inside a hole is an island in that lake and leaves the
// land, which goes on beneath the lake.
LandAndLakes separateLakes(const std::vector<PositionRing>& land);

// Adds the coarser map's lakes, islands included, that the finer one has forgotten: those that it shows as nothing but
// land.
void addForgottenLakes(LandAndLakes& finer, const LandAndLakes& coarser);

} // namespace veyra::basemapMaker
