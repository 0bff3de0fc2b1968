// Finds numbers by the hashes of what they stand for: a hash table of numbers alone, whose owner has the keys. There
// may be a million, at some 16 bytes each. Not safe to share between threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace veyra {

class NumberTable {
public:
    static constexpr uint32_t none = UINT32_MAX;

    /// The number under the hash of which `isIt(number)` is true, or `none`.
    template <class IsIt>
    uint32_t find(size_t hash, const IsIt& isIt) const {
        if (_slots.empty())
            return none;
        const uint32_t mixed = mix(hash);
        for (size_t at = home(mixed); _slots[at].number != none; at = after(at))
            if (_slots[at].hash == mixed && isIt(_slots[at].number))
                return _slots[at].number;
        return none;
    }
    /// Adds a number that is not there.
    void insert(size_t hash, uint32_t number);
    /// Takes out a number that is there under that hash.
    void remove(size_t hash, uint32_t number);
    /// Puts another number in the place of one that is there under that hash.
    void replace(size_t hash, uint32_t number, uint32_t other) { _slots[placeOf(mix(hash), number)].number = other; }
    size_t size() const { return _count; }

private:
    struct Slot {
        uint32_t hash = 0;
        uint32_t number = none; // none: empty
    };

    /// Addresses and the like differ in few bits: spreads them over the upper ones.
    static uint32_t mix(size_t hash) { return static_cast<uint32_t>((hash * 0x9e3779b97f4a7c15ULL) >> 32); }
    size_t home(uint32_t mixed) const { return mixed >> _shift; }
    size_t after(size_t place) const { return place + 1 < _slots.size() ? place + 1 : 0; }
    size_t placeOf(uint32_t mixed, uint32_t number) const;
    void put(const Slot& slot);
    void resize(unsigned bits);

    std::vector<Slot> _slots; // a power of two, never full
    unsigned _shift = 32;     // 32 less the power
    size_t _count = 0;
};

} // namespace veyra
