#include "Platform/MapKit/MKVertexList.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// Importance: none for a vertex without a place, then one more than the levels that it matters at; first and last
// always matter.
constexpr uint8_t nowhere = 0, lowest = 1, always = 255;

float roundedDown(double value) {
    const auto rounded = static_cast<float>(value);
    return rounded <= value ? rounded : std::nextafter(rounded, -std::numeric_limits<float>::infinity());
}

float roundedUp(double value) {
    const auto rounded = static_cast<float>(value);
    return rounded >= value ? rounded : std::nextafter(rounded, std::numeric_limits<float>::infinity());
}

} // namespace

void MKVertexList::Extent::add(MKMapPoint point) {
    minX = std::min(minX, point.x);
    minY = std::min(minY, point.y);
    maxX = std::max(maxX, point.x);
    maxY = std::max(maxY, point.y);
}

void MKVertexList::Extent::add(const Extent& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
}

MKVertexList::MKVertexList(std::span<const CLLocationCoordinate2D> coordinates) {
    append(coordinates);
    complete();
}

void MKVertexList::append(std::span<const CLLocationCoordinate2D> coordinates) {
    while (!coordinates.empty()) {
        const size_t count = std::min(coordinates.size(), blockSize - size() % blockSize);
        if (size() + count > maximumSize) {
            throw std::bad_alloc();
        }
        appendToBlock(coordinates.first(count));
        coordinates = coordinates.subspan(count);
        if (size() % blockSize == 0) {
            completeBlock();
        }
    }
}

// One step for all of them after the other: half the time of all steps for one after the other.
void MKVertexList::appendToBlock(std::span<const CLLocationCoordinate2D> coordinates) {
    const std::span<uint8_t> importances = _importances.extend(coordinates.size());
    const std::span<MKMapPoint> points = _points.extend(coordinates.size());
    std::transform(coordinates.begin(), coordinates.end(), points.begin(), MKMapPointForCoordinate);
    for (size_t i = 0; i < points.size(); ++i) {
        const MKMapPoint point = points[i];
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
            importances[i] = nowhere;
            continue;
        }
        const int levels = _ranker.rank(point);
        importances[i] = _last ? static_cast<uint8_t>(lowest + levels) : always;
        _last = size() - points.size() + i;
        _blockExtent.add(point);
    }
}

void MKVertexList::completeBlock() {
    _blocks.append({roundedDown(_blockExtent.minX), roundedDown(_blockExtent.minY), roundedUp(_blockExtent.maxX),
                    roundedUp(_blockExtent.maxY)});
    _extent.add(_blockExtent);
    _blockExtent = {};
}

void MKVertexList::complete() {
    if (size() % blockSize != 0) {
        completeBlock();
    }
    if (_last) {
        _importances[*_last] = always;
    }
    _points.complete();
    _importances.complete();
    _blocks.complete();
}

MKMapRect MKVertexList::bounds() const {
    if (!_last) {
        return MKMapRectNull;
    }
    return MKMapRectMake(_extent.minX, _extent.minY, _extent.maxX - _extent.minX, _extent.maxY - _extent.minY);
}

uint8_t MKVertexList::leastImportance(double tolerance) {
    const double levels = std::floor(std::log2(tolerance / MKVertexRanker::finest)) + 1; // that are within it
    return levels > 0 ? static_cast<uint8_t>(lowest + std::min<double>(levels, MKVertexRanker::levels)) : lowest;
}

} // namespace veyra
