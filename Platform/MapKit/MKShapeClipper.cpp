#include "Platform/MapKit/MKShapeClipper.h"

#include "Platform/MapKit/MKLineMask.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// Vertices closer to the last one than this, in pixels on both axes, are left out.
constexpr double tolerance = 0.4;

} // namespace

MKShapeClipper::MKShapeClipper(double originX, double originY, double scale, double side, double bleed)
    : _originX(originX), _originY(originY), _scale(scale), _low(-bleed), _high(side + bleed) {}

MKShapeClipper::Point MKShapeClipper::transformed(BasemapPoint point) const {
    return {(point.x - _originX) * _scale, (point.y - _originY) * _scale};
}

MKShapeClipper::Overlap MKShapeClipper::overlap(const BasemapBounds& bounds) const {
    const Point low = transformed({bounds.minX, bounds.minY});
    const Point high = transformed({bounds.maxX, bounds.maxY});
    if (bounds.isEmpty() || high.x < _low || high.y < _low || low.x > _high || low.y > _high) {
        return Overlap::None;
    }
    return low.x >= _low && low.y >= _low && high.x <= _high && high.y <= _high ? Overlap::Whole : Overlap::Part;
}

// Where a ring was cut off it runs along the edge forth and back; every vertex there is kept, for the two ways cancel
// only as long as they lie exactly on each other.
void MKShapeClipper::thin(std::span<const BasemapPoint> part, const BasemapBounds& cut) {
    _points.clear();
    for (const BasemapPoint& vertex : part) {
        const Point point = transformed(vertex);
        const bool isLast = &vertex == &part.back();
        const bool isOnEdge =
            vertex.x == cut.minX || vertex.x == cut.maxX || vertex.y == cut.minY || vertex.y == cut.maxY;
        if (isLast || isOnEdge || _points.empty() || std::abs(point.x - _points.back().x) >= tolerance ||
            std::abs(point.y - _points.back().y) >= tolerance) {
            _points.push_back(point);
        }
    }
}

void MKShapeClipper::addAreas(const BasemapShapes& shapes, const BasemapBounds& cut, cairo_t* cairo) {
    if (overlap(shapes.bounds) == Overlap::None) {
        return;
    }
    for (size_t i = 0; i < shapes.partCount(); ++i) {
        const Overlap met = overlap(shapes.partBounds[i]);
        if (met == Overlap::None) {
            continue;
        }
        thin(shapes.part(i), cut);
        if (met == Overlap::Part) {
            clipRing();
        }
        appendRing(cairo);
    }
}

void MKShapeClipper::addLines(const BasemapShapes& shapes, MKLineMask& mask) {
    if (overlap(shapes.bounds) == Overlap::None) {
        return;
    }
    for (size_t i = 0; i < shapes.partCount(); ++i) {
        const Overlap met = overlap(shapes.partBounds[i]);
        if (met == Overlap::None) {
            continue;
        }
        thin(shapes.part(i), {});
        if (met == Overlap::Whole) {
            appendLine(mask);
        } else {
            appendClippedLine(mask);
        }
    }
}

// Sutherland and Hodgman: one edge of the rectangle after the other. Parts that leave and come back are joined along
// the edge, where filling shows nothing of it.
void MKShapeClipper::clipRing() {
    clipRingAtEdge(true, _low, 1);
    clipRingAtEdge(true, _high, -1);
    clipRingAtEdge(false, _low, 1);
    clipRingAtEdge(false, _high, -1);
}

void MKShapeClipper::clipRingAtEdge(bool vertical, double edge, double sign) {
    _spare.clear();
    const auto inside = [&](const Point& p) { return ((vertical ? p.x : p.y) - edge) * sign; };
    for (size_t i = 0; i < _points.size(); ++i) {
        const Point& from = _points[i == 0 ? _points.size() - 1 : i - 1];
        const Point& to = _points[i];
        const double a = inside(from), b = inside(to);
        if ((a < 0) != (b < 0)) {
            const double t = a / (a - b);
            _spare.push_back({from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t});
        }
        if (b >= 0) {
            _spare.push_back(to);
        }
    }
    _points.swap(_spare);
}

void MKShapeClipper::appendRing(cairo_t* cairo) const {
    if (_points.size() < 3) {
        return;
    }
    cairo_move_to(cairo, _points.front().x, _points.front().y);
    for (size_t i = 1; i < _points.size(); ++i) {
        cairo_line_to(cairo, _points[i].x, _points[i].y);
    }
    cairo_close_path(cairo);
}

void MKShapeClipper::appendLine(MKLineMask& mask) const {
    for (size_t i = 1; i < _points.size(); ++i) {
        mask.addSegment(_points[i - 1].x, _points[i - 1].y, _points[i].x, _points[i].y);
    }
}

void MKShapeClipper::appendClippedLine(MKLineMask& mask) const {
    for (size_t i = 1; i < _points.size(); ++i) {
        appendClippedSegment(_points[i - 1], _points[i], mask);
    }
}

// Liang and Barsky.
void MKShapeClipper::appendClippedSegment(Point from, Point to, MKLineMask& mask) const {
    const double dx = to.x - from.x, dy = to.y - from.y;
    double start = 0, end = 1;
    const auto cut = [&](double step, double room) {
        if (step == 0) {
            end = room < 0 ? -1 : end;
        } else if (step < 0) {
            start = std::max(start, room / step);
        } else {
            end = std::min(end, room / step);
        }
    };
    cut(-dx, from.x - _low);
    cut(dx, _high - from.x);
    cut(-dy, from.y - _low);
    cut(dy, _high - from.y);
    if (start <= end) {
        mask.addSegment(from.x + dx * start, from.y + dy * start, from.x + dx * end, from.y + dy * end);
    }
}

void MKShapeClipper::addDashedLines(const BasemapShapes& shapes, double dash, double gap, MKLineMask& mask) {
    if (overlap(shapes.bounds) == Overlap::None) {
        return;
    }
    for (size_t i = 0; i < shapes.partCount(); ++i) {
        if (overlap(shapes.partBounds[i]) != Overlap::None) {
            thin(shapes.part(i), {});
            appendDashes(dash, gap, mask);
        }
    }
}

void MKShapeClipper::appendDashes(double dash, double gap, MKLineMask& mask) const {
    const double period = dash + gap;
    double walked = 0; // pixels from the beginning of the line, less whole periods
    for (size_t i = 1; i < _points.size(); ++i) {
        const Point from = _points[i - 1], to = _points[i];
        const double dx = to.x - from.x, dy = to.y - from.y;
        const double length = std::sqrt(dx * dx + dy * dy);
        const bool isNear = std::max(from.x, to.x) >= _low && std::min(from.x, to.x) <= _high &&
                            std::max(from.y, to.y) >= _low && std::min(from.y, to.y) <= _high;
        for (double at = -walked; isNear && at < length; at += period) {
            const double start = std::max(at, 0.0) / length, end = std::min(at + dash, length) / length;
            if (start < end) {
                appendClippedSegment({from.x + dx * start, from.y + dy * start}, {from.x + dx * end, from.y + dy * end},
                                     mask);
            }
        }
        walked = std::fmod(walked + length, period);
    }
}

} // namespace veyra
