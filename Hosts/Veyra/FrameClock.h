// The beat of a bare script's frames: 60 a second from its start, the same for the window and for the script's
// callbacks. Any thread.
#pragma once

#include <cmath>
#include <glib.h>

namespace veyra {

inline double monotonicSeconds() {
    return static_cast<double>(g_get_monotonic_time()) / G_USEC_PER_SEC;
}

/// Seconds from `now` to the next beat, about 1/60 on a beat itself (clocks are rounded). All times in seconds.
inline double secondsToNextFrame(double startTime, double now) {
    constexpr double framesASecond = 60;
    constexpr double rounding = 0.01; // of a beat
    const double beats = (now - startTime) * framesASecond;
    return (std::floor(beats + rounding) + 1 - beats) / framesASecond;
}

} // namespace veyra
