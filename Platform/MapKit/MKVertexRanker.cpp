#include "Platform/MapKit/MKVertexRanker.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace veyra {

namespace {

// Beyond some thousands of worlds places count as this far off; a line's length is counted from anew before small steps
// would get lost in it. Map points.
constexpr double farthest = 0x1p40, longest = 0x1p44;

double distance(double fromX, double fromY, MKMapPoint to) {
    return std::max(std::abs(to.x - fromX), std::abs(to.y - fromY));
}

/// 2^exponent.
double powerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<uint64_t>(1023 + exponent) << 52);
}

/// The exponent of a normal number that is not negative.
int exponentOf(double value) {
    return static_cast<int>(std::bit_cast<uint64_t>(value) >> 52) - 1023;
}

} // namespace

int MKVertexRanker::rank(MKMapPoint point) {
    point = {std::clamp(point.x, -farthest, farthest), std::clamp(point.y, -farthest, farthest)};
    if (_count == 0) {
        _entries[_count++] = {0, 0, std::numeric_limits<double>::infinity(), levels};
        _before = point;
        push(point, levels - 1);
        return levels;
    }
    _length += distance(_before.x, _before.y, point);
    _before = point;
    if (_length > longest) {
        beginLengthAnew();
    }
    size_t entry = _count;
    while (_entries[entry - 1].due <= _length) {
        --entry;
    }
    for (; entry < _count; ++entry) {
        Entry& last = _entries[entry];
        const int lowest = entry + 1 < _count ? _entries[entry + 1].highest + 1 : 0;
        const double away = distance(last.x, last.y, point), needed = finest * powerOfTwo(lowest);
        if (away >= needed) {
            const int level = std::min(last.highest, exponentOf(away / finest));
            _count = last.highest > level ? entry + 1 : entry;
            push(point, level);
            return level + 1;
        }
        last.due = std::min(_length + (needed - away), _entries[entry - 1].due);
    }
    return 0;
}

/// The vertex mattered last at all levels below those of the entries, up to `highest`.
void MKVertexRanker::push(MKMapPoint point, int highest) {
    _entries[_count] = {point.x, point.y, std::min(_length + finest, _entries[_count - 1].due), highest};
    ++_count;
}

void MKVertexRanker::beginLengthAnew() {
    for (Entry& entry : _entries) {
        entry.due -= _length;
    }
    _length = 0;
}

} // namespace veyra
