#include "Platform/MapKit/MKVertexRanker.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// Beyond some thousands of worlds places count as this far off; a line's length is counted from anew before small steps
// would get lost in it. Map points.
constexpr double farthest = 0x1p40, longest = 0x1p44;

double distance(double fromX, double fromY, MKMapPoint to) {
    return std::max(std::abs(to.x - fromX), std::abs(to.y - fromY));
}

} // namespace

MKVertexRanker::MKVertexRanker() : _x{}, _y{}, _due{}, _groupDue{} {
    for (int level = 0; level < levels; ++level) {
        _size[static_cast<size_t>(level)] = std::ldexp(finest, level);
    }
}

int MKVertexRanker::rank(MKMapPoint point) {
    point = {std::clamp(point.x, -farthest, farthest), std::clamp(point.y, -farthest, farthest)};
    if (!_hasBegun) {
        _hasBegun = true;
        _before = point;
        restart(point, levels - 1);
        return levels;
    }
    _length += distance(_before.x, _before.y, point);
    _before = point;
    for (int group = groups - 1; group >= 0; --group) {
        if (_length >= _groupDue[static_cast<size_t>(group)]) {
            const int level = crossedLevel(point, group);
            if (level >= 0) {
                restart(point, level);
                return level + 1;
            }
        }
    }
    return 0;
}

/// The highest level of the group at which the vertex matters, or -1.
int MKVertexRanker::crossedLevel(MKMapPoint point, int group) {
    for (int level = (group + 1) * groupSize - 1; level >= group * groupSize; --level) {
        const auto i = static_cast<size_t>(level);
        if (_length >= _due[i]) {
            const double away = distance(_x[i], _y[i], point);
            if (away >= _size[i]) {
                return level;
            }
            _due[i] = _length + (_size[i] - away);
        }
    }
    updateGroup(group);
    return -1;
}

/// The vertex matters at that level and all lower ones.
void MKVertexRanker::restart(MKMapPoint point, int upTo) {
    if (_length > longest) {
        for (double& due : _due) {
            due -= _length;
        }
        _length = 0;
        for (int group = 0; group < groups; ++group) {
            updateGroup(group);
        }
    }
    for (size_t i = 0; i <= static_cast<size_t>(upTo); ++i) {
        _x[i] = point.x;
        _y[i] = point.y;
        _due[i] = _length + _size[i];
    }
    const int group = upTo / groupSize;
    for (int below = 0; below < group; ++below) {
        _groupDue[static_cast<size_t>(below)] = _due[static_cast<size_t>(below * groupSize)];
    }
    updateGroup(group);
}

void MKVertexRanker::updateGroup(int group) {
    const auto first = _due.begin() + group * groupSize;
    _groupDue[static_cast<size_t>(group)] = *std::min_element(first, first + groupSize);
}

} // namespace veyra
