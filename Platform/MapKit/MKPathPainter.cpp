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

} // namespace

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
    cairo_new_path(_cairo);
    double share = 1;
    if (style.dashes.empty()) {
        joinEnds(outline);
        addPieces();
    } else {
        const double pattern = std::accumulate(style.dashes.begin(), style.dashes.end(), 0.0);
        if (2 * pattern * deviceScale < finestDashes * static_cast<double>(style.dashes.size())) {
            double drawn = 0;
            for (size_t i = 0; i < style.dashes.size(); i += 2) {
                drawn += style.dashes[i];
            }
            share = drawn / pattern;
            joinEnds(outline);
            addPieces();
        } else {
            addDashes(style, deviceScale);
        }
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

void MKPathPainter::addPieces() {
    for (const Piece& piece : _pieces) {
        cairo_new_sub_path(_cairo);
        const size_t count = piece.count - (_isWholeRing ? 1 : 0);
        for (size_t i = 0; i < count; ++i) {
            const MKPixelPoint& point = _points[piece.first + i];
            cairo_line_to(_cairo, point.x, point.y);
        }
        if (_isWholeRing) {
            cairo_close_path(_cairo);
        }
    }
}

} // namespace veyra
