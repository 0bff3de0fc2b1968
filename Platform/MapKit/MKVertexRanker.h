// Finds out, vertex by vertex along a line, how much each matters. Used on one thread.
//
// There is a level for every power of two map points. A vertex matters at a level when it is at least as far, on one of
// the axes, from the last vertex that mattered there; it then matters at all lower levels too. So a line drawn through
// the vertices that matter at a level is off by less than the level's distance, and noise smaller than that costs
// nothing. Levels at which the same vertex mattered last are one entry of a stack, the lowest ones on top; how far down
// to look is known from how long the line has become.
#pragma once

#include "Platform/MapKit/MKGeometry.h"

#include <array>
#include <cstddef>

namespace veyra {

class MKVertexRanker {
public:
    static constexpr int levels = 36;
    /// The distance of level 0, in map points: a quarter of a pixel of the finest display at the innermost scale.
    static constexpr double finest = 1.0 / 64;

    /// How many levels the next vertex of the line matters at, from the lowest up; `levels` for the first one. Not for
    /// places that are not finite.
    int rank(MKMapPoint point);

private:
    /// The levels above those of the next entry, up to `highest`, at which this vertex was the last that mattered.
    struct Entry {
        double x, y;
        double due; ///< how long the line must be before another one can matter at this entry's levels or higher ones
        int highest;
    };
    void push(MKMapPoint point, int highest);
    void beginLengthAnew();

    std::array<Entry, levels + 1> _entries{}; // the highest levels first, after an entry that is never due
    size_t _count = 0;
    double _length = 0; // of the line so far, not shorter than its way along either axis
    MKMapPoint _before;
};

} // namespace veyra
