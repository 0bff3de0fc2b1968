#include "Platform/MapKit/MKVertexList.h"

#include "Platform/Foundation/WorkQueue.h"
#include "Platform/MapKit/MKVertexRanker.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

void MKVertexList::Run::add(MKMapPoint point) {
    minX = std::min(minX, point.x);
    minY = std::min(minY, point.y);
    maxX = std::max(maxX, point.x);
    maxY = std::max(maxY, point.y);
}

void MKVertexList::Run::add(const Run& next) {
    minX = std::min(minX, next.minX);
    minY = std::min(minY, next.minY);
    maxX = std::max(maxX, next.maxX);
    maxY = std::max(maxY, next.maxY);
    first = first ? first : next.first;
    last = next.last ? next.last : last;
}

MKVertexList::MKVertexList(std::span<const CLLocationCoordinate2D> coordinates) {
    append(coordinates);
    complete();
}

void MKVertexList::append(std::span<const CLLocationCoordinate2D> coordinates) {
    if (coordinates.size() > maximumSize - size()) {
        throw std::bad_alloc();
    }
    std::ranges::transform(coordinates, _points.extend(coordinates.size()).begin(), [](CLLocationCoordinate2D place) {
        return MKMapPoint{place.longitude, place.latitude};
    });
}

void MKVertexList::complete() {
    _points.complete();
    _importances.extend(size());
    _blocks.extend((size() + blockSize - 1) / blockSize);
    _importances.complete();
    _blocks.complete();
    std::vector<Run> runs((size() + runSize - 1) / runSize);
    const auto completeOne = [&](size_t run) {
        runs[run] = completeRun(run * runSize, std::min((run + 1) * runSize, size()));
    };
    if (runs.size() == 1) {
        completeOne(0);
    } else {
        dispatch_apply(runs.size(), dispatch_get_global_queue(), completeOne);
    }
    for (const Run& run : runs) {
        _whole.add(run);
    }
    for (const std::optional<size_t> end : {_whole.first, _whole.last}) {
        if (end) {
            _importances[*end] = always;
        }
    }
}

MKVertexList::Run MKVertexList::completeRun(size_t begin, size_t end) {
    MKVertexRanker ranker;
    Run run;
    for (; begin < end; begin += blockSize) {
        run.add(completeBlock(begin, std::min(begin + blockSize, end), ranker));
    }
    return run;
}

// One step for all of them after the other: half the time of all steps for one after the other.
MKVertexList::Run MKVertexList::completeBlock(size_t begin, size_t end, MKVertexRanker& ranker) {
    for (size_t i = begin; i < end; ++i) {
        _points[i] = MKMapPointForCoordinate(CLLocationCoordinate2DMake(_points[i].y, _points[i].x));
    }
    Run block;
    for (size_t i = begin; i < end; ++i) {
        const MKMapPoint point = _points[i];
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
            _importances[i] = nowhere;
            continue;
        }
        _importances[i] = static_cast<uint8_t>(lowest + ranker.rank(point));
        block.first = block.first ? block.first : i;
        block.last = i;
        block.add(point);
    }
    _blocks[begin / blockSize] = {roundedDown(block.minX), roundedDown(block.minY), roundedUp(block.maxX),
                                  roundedUp(block.maxY)};
    return block;
}

MKMapRect MKVertexList::bounds() const {
    if (!_whole.last) {
        return MKMapRectNull;
    }
    return MKMapRectMake(_whole.minX, _whole.minY, _whole.maxX - _whole.minX, _whole.maxY - _whole.minY);
}

uint8_t MKVertexList::leastImportance(double tolerance) {
    const double levels = std::floor(std::log2(tolerance / MKVertexRanker::finest)) + 1; // that are within it
    return levels > 0 ? static_cast<uint8_t>(lowest + std::min<double>(levels, MKVertexRanker::levels)) : lowest;
}

} // namespace veyra
