#include "Platform/MapKit/MKHeap.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>

namespace veyra {

// malloc_trim does not touch the free end of a thread's part of the heap, and that is what drawing leaves. So it is
// taken in blocks, all but the last of which lie inside once they are freed again; only their headers are touched.
void giveHeapOfThreadBack() {
    constexpr size_t blockSize = size_t{64} << 10; // the heap hands out larger ones from elsewhere
    std::array<void*, 64> blocks;
    for (void*& block : blocks) {
        block = std::malloc(blockSize);
    }
    std::for_each(blocks.begin(), blocks.end() - 1, &std::free);
    malloc_trim(0);
    std::free(blocks.back());
}

} // namespace veyra
