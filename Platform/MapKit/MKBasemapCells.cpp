#include "Platform/MapKit/MKBasemapCells.h"

#include "Platform/MapKit/MKGeometry.h"

#include <cmath>

namespace veyra {

namespace {

uint64_t keyOf(BasemapCellId id) {
    return uint64_t{id.level} << 32 | uint64_t{id.row} << 16 | id.column;
}

} // namespace

std::shared_ptr<const BasemapCell> MKBasemapCells::cell(const BasemapFile& file, BasemapCellId id) {
    const uint64_t key = keyOf(id);
    if (auto found = find(key)) {
        return found;
    }
    auto unpacked = std::make_shared<const BasemapCell>(file.cell(id));
    insert(key, unpacked);
    return unpacked;
}

std::vector<MKPlacedCell> MKBasemapCells::cellsIn(const BasemapFile& file, int level, double minX, double minY,
                                                  double side) {
    std::vector<MKPlacedCell> cells;
    const int firstCopy = static_cast<int>(std::floor(minX / MKWorldSide));
    const int lastCopy = static_cast<int>(std::floor((minX + side) / MKWorldSide));
    for (int copy = firstCopy; copy <= lastCopy; ++copy) {
        const double shift = copy * MKWorldSide;
        for (const BasemapCellId id : file.cellsMeeting(level, minX - shift, minY, minX + side - shift, minY + side)) {
            cells.push_back({cell(file, id), shift});
        }
    }
    return cells;
}

void MKBasemapCells::removeAll() {
    Order cells; // go when the lock is free again
    const NSLockGuard guard(_lock);
    cells.swap(_order);
    _entries.clear();
    _byteSize = 0;
}

std::shared_ptr<const BasemapCell> MKBasemapCells::find(uint64_t key) {
    const NSLockGuard guard(_lock);
    const auto found = _entries.find(key);
    if (found == _entries.end()) {
        return nullptr;
    }
    _order.splice(_order.begin(), _order, found->second);
    return *found->second;
}

void MKBasemapCells::insert(uint64_t key, const std::shared_ptr<const BasemapCell>& cell) {
    const NSLockGuard guard(_lock);
    if (_entries.contains(key)) {
        return;
    }
    _order.push_front(cell);
    _entries[key] = _order.begin();
    _byteSize += cell->byteSize();
    while (_byteSize > _byteLimit && _order.size() > 1) {
        _byteSize -= _order.back()->byteSize();
        _entries.erase(keyOf(_order.back()->id));
        _order.pop_back();
    }
}

} // namespace veyra
