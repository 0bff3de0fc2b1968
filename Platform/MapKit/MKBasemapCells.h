// Unpacked cells of a base map, the most recently used ones, bounded in bytes. Any thread; two threads that ask for the
// same cell at once may both unpack it.
#pragma once

#include "Platform/Foundation/NSLock.h"
#include "Platform/MapKit/Basemap/BasemapFile.h"

#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

namespace veyra {

/// A cell, and by how far its copy of the world lies east of the middle one, in map points.
struct MKPlacedCell {
    std::shared_ptr<const BasemapCell> cell;
    double shift;
};

class MKBasemapCells {
public:
    explicit MKBasemapCells(size_t byteLimit) : _byteLimit(byteLimit) {}

    /// `file` is the same one each time. Throws BasemapError when the cell is damaged.
    std::shared_ptr<const BasemapCell> cell(const BasemapFile& file, BasemapCellId id) VEYRA_EXCLUDES(_lock);
    /// The cells of a level that meet a square of map points, in every copy of the world that it reaches.
    std::vector<MKPlacedCell> cellsIn(const BasemapFile& file, int level, double minX, double minY, double side)
        VEYRA_EXCLUDES(_lock);
    void removeAll() VEYRA_EXCLUDES(_lock);

private:
    using Order = std::list<std::shared_ptr<const BasemapCell>>; // most recently used first
    std::shared_ptr<const BasemapCell> find(uint64_t key) VEYRA_EXCLUDES(_lock);
    void insert(uint64_t key, const std::shared_ptr<const BasemapCell>& cell) VEYRA_EXCLUDES(_lock);

    const size_t _byteLimit;
    NSLock _lock;
    size_t _byteSize VEYRA_GUARDED_BY(_lock) = 0;
    Order _order VEYRA_GUARDED_BY(_lock);
    std::unordered_map<uint64_t, Order::iterator> _entries VEYRA_GUARDED_BY(_lock);
};

} // namespace veyra
