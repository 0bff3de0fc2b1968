#include "Platform/MapKit/MKVertexList.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace veyra {

namespace {

// The smallest cells: 64 to a map point, a quarter of a pixel of the finest display at the innermost scale.
constexpr double cellsPerMapPoint = 64;
// Cells are told apart up to here; 2^44 cells are a thousand worlds.
constexpr double farthestCell = 0x1p44;

constexpr uint8_t always = 255;

int64_t cellOf(double coordinate) {
    return static_cast<int64_t>(std::floor(std::clamp(coordinate * cellsPerMapPoint, -farthestCell, farthestCell)));
}

float roundedDown(double value) {
    const auto rounded = static_cast<float>(value);
    return rounded <= value ? rounded : std::nextafter(rounded, -std::numeric_limits<float>::infinity());
}

float roundedUp(double value) {
    const auto rounded = static_cast<float>(value);
    return rounded >= value ? rounded : std::nextafter(rounded, std::numeric_limits<float>::infinity());
}

} // namespace

MKVertexList::MKVertexList(std::span<const CLLocationCoordinate2D> coordinates) {
    for (const CLLocationCoordinate2D& coordinate : coordinates) {
        append(coordinate);
    }
    complete();
}

void MKVertexList::append(CLLocationCoordinate2D coordinate) {
    if (size() >= maximumSize) {
        throw std::bad_alloc();
    }
    const MKMapPoint point = MKMapPointForCoordinate(coordinate);
    if (size() % blockSize == 0) {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        _blocks.append({infinity, infinity, -infinity, -infinity});
    }
    const bool hasPlace = std::isfinite(point.x) && std::isfinite(point.y);
    _importances.append(hasPlace ? importanceOf(point) : 0);
    _points.append(point);
    if (hasPlace) {
        extendBounds(point);
        _last = size() - 1;
    }
}

void MKVertexList::complete() {
    if (_hasPlace) {
        _importances[_last] = always;
    }
    _points.complete();
    _importances.complete();
    _blocks.complete();
}

uint8_t MKVertexList::importanceOf(MKMapPoint point) {
    const int64_t x = cellOf(point.x), y = cellOf(point.y);
    const auto difference = static_cast<uint64_t>((x ^ _lastX) | (y ^ _lastY));
    _lastX = x;
    _lastY = y;
    return _hasPlace ? static_cast<uint8_t>(1 + std::bit_width(difference)) : always;
}

void MKVertexList::extendBounds(MKMapPoint point) {
    if (!_hasPlace) {
        _hasPlace = true;
        _minX = _maxX = point.x;
        _minY = _maxY = point.y;
    }
    _minX = std::min(_minX, point.x);
    _maxX = std::max(_maxX, point.x);
    _minY = std::min(_minY, point.y);
    _maxY = std::max(_maxY, point.y);
    BlockBounds& block = _blocks.back();
    block.minX = std::min(block.minX, roundedDown(point.x));
    block.minY = std::min(block.minY, roundedDown(point.y));
    block.maxX = std::max(block.maxX, roundedUp(point.x));
    block.maxY = std::max(block.maxY, roundedUp(point.y));
}

MKMapRect MKVertexList::bounds() const {
    return _hasPlace ? MKMapRectMake(_minX, _minY, _maxX - _minX, _maxY - _minY) : MKMapRectNull;
}

uint8_t MKVertexList::leastImportance(double tolerance) {
    // The side of the largest cells whose diagonal is within the tolerance is 2^level of the smallest.
    const double side = tolerance * cellsPerMapPoint / std::sqrt(2.0);
    if (!(side >= 1)) {
        return 1;
    }
    const int level = std::min(std::ilogb(side), 60);
    return static_cast<uint8_t>(level + 2);
}

} // namespace veyra
