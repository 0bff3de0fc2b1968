#include "Platform/Foundation/NumberTable.h"

#include <utility>

namespace veyra {

namespace {

constexpr unsigned fewestBits = 4;

} // namespace

void NumberTable::insert(size_t hash, uint32_t number) {
    if (_slots.empty())
        resize(fewestBits);
    else if ((_count + 1) * 4 > _slots.size() * 3)
        resize(32 - _shift + 1);
    put({mix(hash), number});
    ++_count;
}

void NumberTable::put(const Slot& slot) {
    size_t at = home(slot.hash);
    while (_slots[at].number != none)
        at = after(at);
    _slots[at] = slot;
}

void NumberTable::remove(size_t hash, uint32_t number) {
    size_t hole = placeOf(mix(hash), number);
    // What was put behind for want of room moves up.
    for (size_t at = after(hole); _slots[at].number != none; at = after(at)) {
        const size_t mask = _slots.size() - 1;
        const size_t fromHome = (at - home(_slots[at].hash)) & mask, fromHole = (at - hole) & mask;
        if (fromHome >= fromHole)
            _slots[std::exchange(hole, at)] = _slots[at];
    }
    _slots[hole] = {};
    --_count;
    if (_count * 8 < _slots.size() && _slots.size() > size_t{1} << fewestBits)
        resize(32 - _shift - 1);
}

size_t NumberTable::placeOf(uint32_t mixed, uint32_t number) const {
    size_t at = home(mixed);
    while (_slots[at].number != number)
        at = after(at);
    return at;
}

void NumberTable::resize(unsigned bits) {
    const auto former = std::exchange(_slots, std::vector<Slot>(size_t{1} << bits));
    _shift = 32 - bits;
    for (const Slot& slot : former)
        if (slot.number != none)
            put(slot);
}

} // namespace veyra
