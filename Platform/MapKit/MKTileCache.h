// Drawn tiles, the most recently used ones, bounded in bytes. Main queue only; owned by the tile loader. A tile that a
// map holds lives on after it has left the cache.
#pragma once

#include "Platform/MapKit/MKTile.h"

#include <list>
#include <unordered_map>

namespace veyra {

class MKTileCache {
public:
    explicit MKTileCache(size_t byteLimit) : _byteLimit(byteLimit) {}

    /// The tile, now the most recently used one, or null.
    std::shared_ptr<const MKTile> find(const MKTileKey& key);
    /// Adds or replaces a tile; the least recently used ones beyond the limit go, the new one may be among them.
    void insert(const std::shared_ptr<const MKTile>& tile);
    void removeAll();
    size_t byteSize() const { return _byteSize; }

private:
    using Order = std::list<std::shared_ptr<const MKTile>>; // most recently used first
    void remove(Order::iterator entry);

    const size_t _byteLimit;
    size_t _byteSize = 0;
    Order _order;
    std::unordered_map<MKTileKey, Order::iterator> _entries;
};

} // namespace veyra
