#include "Platform/MapKit/MKOutline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veyra {

namespace {

// How far off a line may be, in pixels. Vertices of a line that is longer than this are drawn at least twice as often.
constexpr double vertexTolerance = 0.5;
constexpr double arcTolerance = 0.05;

// Places further off than this are moved here: no picture is so large, and differences of such numbers stay exact
// enough to cut lines with.
constexpr double farthest = 1e10;

/// Walks a vertex list for one picture.
class VertexTracer {
public:
    VertexTracer(const MKVertexList& vertices, const MKOutlinePlace& place, MKOutline& outline)
        : _points(vertices.points()), _importances(vertices.importances()), _blocks(vertices.blocks()), _place(place),
          _outline(outline), _least(MKVertexList::leastImportance(vertexTolerance / place.scale)) {}

    void trace() {
        for (size_t block = 0; block < _blocks.size(); ++block) {
            const size_t begin = block * MKVertexList::blockSize;
            const size_t end = std::min(begin + MKVertexList::blockSize, _points.size());
            if (isAside(_blocks[block])) {
                skip(begin, end);
            } else {
                for (size_t index = begin; index < end; ++index) {
                    if (_importances[index] >= _least) {
                        add(index);
                    }
                }
            }
        }
    }

private:
    /// True when the whole block lies beyond one edge of the area.
    bool isAside(const MKVertexList::BlockBounds& block) const {
        const double scale = _place.scale;
        return !(block.minX <= block.maxX) || block.maxX * scale + _place.left < _place.area.minX ||
               block.minX * scale + _place.left > _place.area.maxX ||
               block.maxY * scale + _place.top < _place.area.minY || block.minY * scale + _place.top > _place.area.maxY;
    }

    /// Only how the line comes to the block and leaves it matters, and its length.
    void skip(size_t begin, size_t end) {
        if (_place.wantsLengths) {
            for (size_t index = begin; index < end; ++index) {
                if (_importances[index] >= _least) {
                    _length += stepTo(_place.pixelFor(_points[index]));
                    addSkipped(index);
                }
            }
            flushSkipped();
            return;
        }
        size_t first = begin;
        while (first < end && _importances[first] < _least) {
            ++first;
        }
        if (first == end) {
            return;
        }
        size_t last = end - 1;
        while (_importances[last] < _least) {
            --last;
        }
        add(first);
        if (last != first) {
            add(last);
        }
    }

    void addSkipped(size_t index) {
        const MKPixelPoint point = _place.pixelFor(_points[index]);
        if (!_hasSkipped) {
            _outline.add(point, _length);
        }
        _hasSkipped = true;
        _skipped = point;
    }

    void flushSkipped() {
        if (_hasSkipped) {
            _outline.add(_skipped, _length);
            _hasSkipped = false;
        }
    }

    void add(size_t index) {
        const MKPixelPoint point = _place.pixelFor(_points[index]);
        if (_place.wantsLengths) {
            _length += stepTo(point);
            _outline.add(point, _length);
        } else {
            _outline.add(point);
        }
    }

    double stepTo(MKPixelPoint point) {
        const double step = _hasBegun ? std::hypot(point.x - _at.x, point.y - _at.y) : 0;
        _hasBegun = true;
        _at = point;
        return step;
    }

    const std::span<const MKMapPoint> _points;
    const std::span<const uint8_t> _importances;
    const std::span<const MKVertexList::BlockBounds> _blocks;
    const MKOutlinePlace& _place;
    MKOutline& _outline;
    const uint8_t _least;
    double _length = 0;
    MKPixelPoint _at;
    bool _hasBegun = false;
    MKPixelPoint _skipped;
    bool _hasSkipped = false;
};

} // namespace

MKPixelPoint MKOutlinePlace::pixelFor(MKMapPoint point) const {
    return {std::clamp(point.x * scale + left, -farthest, farthest),
            std::clamp(point.y * scale + top, -farthest, farthest)};
}

void MKOutline::clear() {
    points.clear();
    lengths.clear();
}

void MKOutline::add(MKPixelPoint point) {
    points.push_back(point);
}

void MKOutline::add(MKPixelPoint point, double length) {
    points.push_back(point);
    lengths.push_back(length);
}

void MKOutline::traceVertices(const MKVertexList& vertices, const MKOutlinePlace& place) {
    VertexTracer(vertices, place, *this).trace();
    if (isClosed && !points.empty()) { // the ring goes back to where it began
        const MKPixelPoint first = points.front(), last = points.back();
        if (place.wantsLengths) {
            add(first, lengths.back() + std::hypot(first.x - last.x, first.y - last.y));
        } else {
            add(first);
        }
    }
}

void MKOutline::traceCircle(MKMapPoint center, double radius, const MKOutlinePlace& place) {
    const MKPixelPoint middle = {center.x * place.scale + place.left, center.y * place.scale + place.top};
    const double pixels = radius * place.scale;
    constexpr int quarters = 4;
    for (int quarter = 0; quarter < quarters; ++quarter) {
        traceArc(middle, pixels, quarter * std::numbers::pi / 2, (quarter + 1) * std::numbers::pi / 2, place);
    }
    if (place.wantsLengths) {
        add(points.front(), 2 * std::numbers::pi * pixels);
    } else {
        add(points.front());
    }
}

// Adds the beginning of the arc and what is needed between; its end is the beginning of the next. An arc outside the
// area may be replaced by its chord: both lie on one side of it.
void MKOutline::traceArc(MKPixelPoint center, double radius, double from, double to, const MKOutlinePlace& place) {
    const auto at = [&](double angle) {
        return MKPixelPoint{std::clamp(center.x + radius * std::sin(angle), -farthest, farthest),
                            std::clamp(center.y - radius * std::cos(angle), -farthest, farthest)};
    };
    const MKPixelPoint a = at(from), b = at(to);
    const double half = (to - from) / 2;
    const double sagitta = 2 * radius * std::sin(half / 2) * std::sin(half / 2);
    // An arc of a quarter at most lies within the box around its ends, but for rounding.
    const bool isAside = std::max(a.x, b.x) < place.area.minX || std::min(a.x, b.x) > place.area.maxX ||
                         std::max(a.y, b.y) < place.area.minY || std::min(a.y, b.y) > place.area.maxY;
    constexpr double finest = 1e-9; // radians: no rounding error sends this on for ever
    if (isAside || sagitta <= arcTolerance || half < finest) {
        if (place.wantsLengths) {
            add(a, from * radius);
        } else {
            add(a);
        }
        return;
    }
    traceArc(center, radius, from, from + half, place);
    traceArc(center, radius, from + half, to, place);
}

} // namespace veyra
