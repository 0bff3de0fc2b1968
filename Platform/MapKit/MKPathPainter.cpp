// Areas, and the way a line is stroked.
#include "Platform/MapKit/MKPathPainter.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace veyra {

namespace {

// Pixels around the picture at which areas are cut: their edges there stay out of sight.
constexpr double fillBleed = 2;
// However long the spike of a sharp corner may be, no more of it is drawn than this many pixels.
constexpr double longestReach = 8192;
// A pattern whose dashes and gaps follow each other more closely than this, in pixels, cannot be seen: it is drawn as
// an even tone.
constexpr double finestDashes = 0.5;
// The widest lines, in pixels, that go through the mask.
constexpr double widestMask = 64;

} // namespace

MKPathPainter::MKPathPainter(cairo_t* cairo, const PixelRect& area, int left, int top)
    : _cairo(cairo), _pixels(area), _left(left),
      _top(top), _area{static_cast<double>(area.x), static_cast<double>(area.y), static_cast<double>(area.maxX()),
                       static_cast<double>(area.maxY())} {}

double MKPathPainter::reachOf(const MKPathStyle& style, double width) {
    const double corner = style.join == kCGLineJoinMiter && style.miterLimit > 1 ? style.miterLimit : 1;
    const double end = style.cap == kCGLineCapSquare ? std::sqrt(2.0) : 1;
    return std::min(width / 2 * std::max(corner, end), std::max(longestReach, width)) + 1;
}

void MKPathPainter::setColor(const MKPathStyle::Color& color, double share) {
    cairo_set_source_rgba(_cairo, color.red, color.green, color.blue, color.alpha * share);
}

void MKPathPainter::fill(const MKOutline& ring, const MKPathStyle::Color& color) {
    cutRing(ring);
    if (_ring.size() < 3) {
        return;
    }
    cairo_new_path(_cairo);
    for (const MKPixelPoint& point : _ring) {
        cairo_line_to(_cairo, point.x, point.y);
    }
    cairo_close_path(_cairo);
    setColor(color, 1);
    cairo_set_fill_rule(_cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(_cairo);
}

void MKPathPainter::cutRing(const MKOutline& ring) {
    const MKPixelBox box = _area.outset(fillBleed);
    _ring = ring.points;
    if (std::all_of(_ring.begin(), _ring.end(), [&](MKPixelPoint point) { return box.contains(point); })) {
        return;
    }
    cutRingAtEdge(&MKPixelPoint::x, box.minX, 1);
    cutRingAtEdge(&MKPixelPoint::x, box.maxX, -1);
    cutRingAtEdge(&MKPixelPoint::y, box.minY, 1);
    cutRingAtEdge(&MKPixelPoint::y, box.maxY, -1);
}

// Keeps what lies on the side of the edge where sign × coordinate is greater; the ring follows the edge instead of what
// is cut off.
void MKPathPainter::cutRingAtEdge(double MKPixelPoint::*axis, double edge, double sign) {
    _spare.clear();
    if (_ring.empty()) {
        return;
    }
    double MKPixelPoint::*const other = axis == &MKPixelPoint::x ? &MKPixelPoint::y : &MKPixelPoint::x;
    MKPixelPoint before = _ring.back();
    double depthBefore = (before.*axis - edge) * sign;
    for (const MKPixelPoint& point : _ring) {
        const double depth = (point.*axis - edge) * sign;
        if ((depth < 0) != (depthBefore < 0)) {
            const double share = depthBefore / (depthBefore - depth);
            MKPixelPoint crossing;
            crossing.*axis = edge;
            crossing.*other = before.*other + (point.*other - before.*other) * share;
            _spare.push_back(crossing);
        }
        if (depth >= 0) {
            _spare.push_back(point);
        }
        before = point;
        depthBefore = depth;
    }
    _ring.swap(_spare);
}

void MKPathPainter::stroke(const MKOutline& outline, const MKPathStyle& style, double width, double deviceScale) {
    if (!style.stroke || outline.points.size() < 2) {
        return;
    }
    cutLine(outline, _area.outset(reachOf(style, width) + 1));
    if (_pieces.empty()) {
        return;
    }
    const double pattern = std::accumulate(style.dashes.begin(), style.dashes.end(), 0.0);
    const bool isTone = 2 * pattern * deviceScale < finestDashes * static_cast<double>(style.dashes.size());
    const bool isDashed = !style.dashes.empty() && !isTone;
    if (!isDashed) {
        joinEnds(outline);
    }
    _usesMask = canUseMask(style, width);
    if (_usesMask) {
        if (!_mask) {
            _mask = std::make_unique<MKStrokeMask>(_pixels);
        }
        _mask->setWidth(width);
    } else {
        cairo_new_path(_cairo);
    }
    if (isDashed) {
        addDashes(style, deviceScale);
    } else {
        addPieces();
    }
    double drawn = 0;
    for (size_t i = 0; isTone && i < style.dashes.size(); i += 2) {
        drawn += style.dashes[i];
    }
    strokePath(style, width, isTone ? drawn / pattern : 1);
}

bool MKPathPainter::canUseMask(const MKPathStyle& style, double width) const {
    const bool hasRoundEnds = style.cap == kCGLineCapRound || (_isWholeRing && style.dashes.empty());
    return style.join == kCGLineJoinRound && hasRoundEnds && width > 0 && width <= widestMask;
}

void MKPathPainter::strokePath(const MKPathStyle& style, double width, double share) {
    if (_usesMask) {
        _mask->paint(cairo_get_target(_cairo), _left, _top, *style.stroke, share);
        return;
    }
    static constexpr cairo_line_join_t joins[] = {CAIRO_LINE_JOIN_MITER, CAIRO_LINE_JOIN_ROUND, CAIRO_LINE_JOIN_BEVEL};
    static constexpr cairo_line_cap_t caps[] = {CAIRO_LINE_CAP_BUTT, CAIRO_LINE_CAP_ROUND, CAIRO_LINE_CAP_SQUARE};
    cairo_set_line_width(_cairo, width);
    cairo_set_line_join(_cairo, joins[style.join]);
    cairo_set_line_cap(_cairo, caps[style.cap]);
    cairo_set_miter_limit(_cairo, style.miterLimit);
    setColor(*style.stroke, share);
    cairo_stroke(_cairo);
}

void MKPathPainter::moveTo(MKPixelPoint point) {
    if (_usesMask) {
        _mask->moveTo(point);
    } else {
        cairo_move_to(_cairo, point.x, point.y);
    }
}

void MKPathPainter::lineTo(MKPixelPoint point) {
    if (_usesMask) {
        _mask->lineTo(point);
    } else {
        cairo_line_to(_cairo, point.x, point.y);
    }
}

void MKPathPainter::addPieces() {
    for (const Piece& piece : _pieces) {
        moveTo(_points[piece.first]);
        const size_t count = piece.count - (_isWholeRing ? 1 : 0);
        for (size_t i = 1; i < count; ++i) {
            lineTo(_points[piece.first + i]);
        }
        if (_isWholeRing) {
            lineTo(_points[piece.first]);
            cairo_close_path(_cairo);
        }
    }
}

} // namespace veyra
