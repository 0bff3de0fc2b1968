// Decoded pictures of a pyramid, the most recently used ones, bounded in bytes. Any thread; two threads that ask for
// the same one at once may both decode it.
#pragma once

#include "Platform/Foundation/NSLock.h"
#include "Platform/MapKit/Basemap/BasemapImagery.h"

#include <list>
#include <memory>

namespace veyra {

/// A square picture: rows of R, G, B bytes.
using MKPicture = std::vector<uint8_t>;

class MKPictureTiles {
public:
    explicit MKPictureTiles(size_t byteLimit) : _byteLimit(byteLimit) {}

    /// `imagery` is the same one each time. Throws BasemapError when the picture is damaged.
    std::shared_ptr<const MKPicture> tile(const BasemapImagery& imagery, int level, int column, int row)
        VEYRA_EXCLUDES(_lock);

private:
    struct Entry {
        int level, column, row;
        std::shared_ptr<const MKPicture> picture;
    };

    const size_t _byteLimit;
    NSLock _lock;
    size_t _byteSize VEYRA_GUARDED_BY(_lock) = 0;
    std::list<Entry> _entries VEYRA_GUARDED_BY(_lock); // most recently used first; a handful
};

} // namespace veyra
