// What the host counts for tests and benchmarks. Any thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace veyra {

struct FrameStatistics {
    std::atomic<uint64_t> drawn{0};                    ///< frames with changes, drawn on the main queue
    std::atomic<uint64_t> put{0};                      ///< frames put on a canvas
    std::atomic<uint64_t> animationFramesRequested{0}; ///< of pages
};
FrameStatistics& frameStatistics();

/// Counts views from now on; called once, before the first is made.
void countViews();
/// Views that have not been freed.
size_t liveViews();

} // namespace veyra
