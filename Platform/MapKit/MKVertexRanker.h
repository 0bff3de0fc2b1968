// Finds out, vertex by vertex along a line, how much each matters. Used on one thread.
//
// There is a level for every power of two map points. A vertex matters at a level when it is at least as far, on one of
// the axes, from the last vertex that mattered there; it then matters at all lower levels too. So a line drawn through
// the vertices that matter at a level is off by less than the level's distance, and noise smaller than that costs
// nothing. Far levels are looked at only when the line has become long enough since.
#pragma once

#include "Platform/MapKit/MKGeometry.h"

#include <array>
#include <cstdint>

namespace veyra {

class MKVertexRanker {
public:
    static constexpr int levels = 36;
    /// The distance of level 0, in map points: a quarter of a pixel of the finest display at the innermost scale.
    static constexpr double finest = 1.0 / 64;

    MKVertexRanker();
    /// How many levels the next vertex of the line matters at, from the lowest up; `levels` for the first one. Not for
    /// places that are not finite.
    int rank(MKMapPoint point);

private:
    static constexpr int groupSize = 6, groups = levels / groupSize;
    int crossedLevel(MKMapPoint point, int group);
    void restart(MKMapPoint point, int upTo);
    void updateGroup(int group);

    std::array<double, levels> _size;     // distance of each level
    std::array<double, levels> _x, _y;    // the last vertex that mattered
    std::array<double, levels> _due;      // how long the line must be before another one can matter
    std::array<double, groups> _groupDue; // the least of each group of levels
    double _length = 0;                   // of the line so far, not shorter than its way along either axis
    MKMapPoint _before;
    bool _hasBegun = false;
};

} // namespace veyra
