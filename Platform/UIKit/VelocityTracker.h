// The velocity of something that moves with touches: the change over the last 50 milliseconds. A plain value.
#pragma once

#include "Platform/UIKit/CGGeometry.h"

#include <deque>

namespace veyra {

class VelocityTracker {
public:
    static constexpr double window = 0.05; ///< seconds

    void clear() { _samples.clear(); }
    /// The position at a time (seconds). A time before the last one counts as the last one.
    void add(double timestamp, CGPoint position);
    /// Units of position a second at the last sample: over the last 50 milliseconds, with the position at their start
    /// interpolated between the samples around it, or over all samples when they span less. 0 without any time passed.
    CGPoint velocity() const;

private:
    struct Sample {
        double timestamp;
        CGPoint position;
    };
    std::deque<Sample> _samples;
};

} // namespace veyra
