// What the host counts for tests and benchmarks. Any thread.
#pragma once

#include "Platform/Foundation/NSLock.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace veyra {

/// What frames take: drawing them, and putting them on the canvas; the page's pause in between does not count.
class FrameTimes {
public:
    void add(uint64_t microseconds) VEYRA_EXCLUDES(_mutex);
    /// The 95th percentile of the last frames, at most a thousand, since this was asked last; 0 when there were none.
    uint64_t takePercentile95() VEYRA_EXCLUDES(_mutex);

private:
    NSLock _mutex;
    std::vector<uint64_t> _times VEYRA_GUARDED_BY(_mutex); // a ring once it is full
    size_t _count VEYRA_GUARDED_BY(_mutex) = 0;
};

struct FrameStatistics {
    std::atomic<uint64_t> drawn{0};                    ///< frames with changes, drawn on the main queue
    std::atomic<uint64_t> put{0};                      ///< frames put on a canvas
    std::atomic<uint64_t> animationFramesRequested{0}; ///< of pages
    FrameTimes times;                                  ///< of those put
};
FrameStatistics& frameStatistics();

/// Counts views from now on; called once, before the first is made.
void countViews();
/// Views that have not been freed.
size_t liveViews();

} // namespace veyra
