#include "Platform/MapKit/MKTileCache.h"

namespace veyra {

std::shared_ptr<const MKTile> MKTileCache::find(const MKTileKey& key) {
    const auto found = _entries.find(key);
    if (found == _entries.end()) {
        return nullptr;
    }
    _order.splice(_order.begin(), _order, found->second);
    return *found->second;
}

void MKTileCache::insert(const std::shared_ptr<const MKTile>& tile) {
    if (const auto found = _entries.find(tile->key()); found != _entries.end()) {
        remove(found->second);
    }
    _order.push_front(tile);
    _entries[tile->key()] = _order.begin();
    _byteSize += tile->byteSize();
    while (_byteSize > _byteLimit) {
        remove(std::prev(_order.end()));
    }
}

void MKTileCache::removeAll() {
    _entries.clear();
    _order.clear();
    _byteSize = 0;
}

void MKTileCache::remove(Order::iterator entry) {
    _byteSize -= (*entry)->byteSize();
    _entries.erase((*entry)->key());
    _order.erase(entry);
}

} // namespace veyra
