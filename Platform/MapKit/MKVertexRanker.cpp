#include "Platform/MapKit/MKVertexRanker.h"

#include <algorithm>
#include <bit>
#include <cmath>

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
        _before = point;
        restart(point, levels - 1);
        return levels;
    }
    _length += distance(_before.x, _before.y, point);
    _before = point;
    for (int entry = 0; entry < _count; ++entry) {
        if (_length >= _entries[static_cast<size_t>(entry)].due) {
            const int level = crossedLevel(point, entry);
            if (level >= 0) {
                restart(point, level);
                return level + 1;
            }
        }
    }
    return 0;
}

/// The highest level of the entry at which the vertex matters, or -1.
int MKVertexRanker::crossedLevel(MKMapPoint point, int entry) {
    Entry& last = _entries[static_cast<size_t>(entry)];
    const int lowest = lowestOf(entry);
    const double away = distance(last.x, last.y, point), needed = finest * powerOfTwo(lowest);
    if (away >= needed) {
        return std::min(last.highest, exponentOf(away / finest));
    }
    last.due = _length + (needed - away);
    return -1;
}

/// The vertex matters at that level and all lower ones.
void MKVertexRanker::restart(MKMapPoint point, int upTo) {
    if (_length > longest) {
        for (Entry& entry : _entries) {
            entry.due -= _length;
        }
        _length = 0;
    }
    while (_count > 0 && _entries[static_cast<size_t>(_count) - 1].highest <= upTo) {
        --_count;
    }
    _entries[static_cast<size_t>(_count++)] = {point.x, point.y, _length + finest, upTo};
}

} // namespace veyra
