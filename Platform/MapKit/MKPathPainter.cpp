// Areas, and the way a line is stroked.
#include "Platform/MapKit/MKPathPainter.h"

#include "Platform/MapKit/MKRingMask.h"

#include <algorithm>
#include <cmath>

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
// Dashes and gaps of one line in one picture, and pixels of its length. With more of them in it, nobody tells dashes
// from a line, or one kind of corner from another.
constexpr double mostDashes = 2e6, thicket = 4e6;
// Stretches that are drawn without asking whether they are still wanted.
constexpr size_t checkEvery = 4096;

/// How much of a line is drawn whose dashes, and the gaps that their ends leave, are too fine to be seen.
double toneOf(const MKPathStyle& style, double width) {
    const double end = style.cap == kCGLineCapButt ? 0 : width; // of two dashes
    double pattern = 0, open = 0;
    for (size_t i = 0; i < style.dashes.size(); ++i) {
        pattern += style.dashes[i];
        open += i % 2 == 0 ? 0 : std::max(0.0, style.dashes[i] - end);
    }
    return 1 - open / pattern;
}

} // namespace

MKPathPainter::MKPathPainter(cairo_t* cairo, const PixelRect& area, int left, int top, const MKDrawingTicket& ticket)
    : _cairo(cairo), _pixels(area), _left(left),
      _top(top), _area{static_cast<double>(area.x), static_cast<double>(area.y), static_cast<double>(area.maxX()),
                       static_cast<double>(area.maxY())},
      _ticket(ticket), _stroker(cairo, area, ticket) {}

double MKPathPainter::reachOf(const MKPathStyle& style, double width) {
    const double corner = style.join == kCGLineJoinMiter && style.miterLimit > 1 ? style.miterLimit : 1;
    const double end = style.cap == kCGLineCapSquare ? std::sqrt(2.0) : 1;
    return std::min(width / 2 * std::max(corner, end), std::max(longestReach, width)) + 1;
}

void MKPathPainter::fill(const MKOutline& ring, const MKPathStyle::Color& color) {
    _ticket.check();
    cutRing(ring);
    if (_ring.size() < 3) {
        return;
    }
    cairo_set_source_rgba(_cairo, color.red, color.green, color.blue, color.alpha);
    if (MKRingMask::isWorthIt(_ring, _pixels)) {
        const auto coverage = MKRingMask(_pixels, _ticket).coverageOf(_ring);
        cairo_mask_surface(_cairo, coverage.get(), _pixels.x, _pixels.y);
        return;
    }
    cairo_new_path(_cairo);
    for (const MKPixelPoint& point : _ring) {
        cairo_line_to(_cairo, point.x, point.y);
    }
    cairo_close_path(_cairo);
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
    _ticket.check();
    cutLine(outline, _area.outset(reachOf(style, width) + 1));
    const bool isThicket = lengthOfPieces() > thicket;
    if (isThicket) { // its corners are round: none reaches far
        cutLine(outline, _area.outset(width / 2 + 1));
    }
    if (_pieces.empty()) {
        return;
    }
    setDashes(style, deviceScale);
    const bool isTone =
        !_dashEnds.empty() && 2 * _dashEnds.back() < finestDashes * static_cast<double>(_dashEnds.size());
    const bool isDashed = !_dashEnds.empty() && !isTone &&
                          lengthOfPieces() / _dashEnds.back() * static_cast<double>(_dashEnds.size()) <= mostDashes;
    if (!isDashed) {
        joinEnds(outline);
    }
    // The ends of a ring that is not dashed are out of sight.
    const bool isRound =
        style.join == kCGLineJoinRound && (style.cap == kCGLineCapRound || (outline.isClosed && !isDashed));
    _usesMask = (isRound && width <= widestMask) || isThicket;
    if (_usesMask) {
        if (!_mask) {
            _mask = std::make_unique<MKStrokeMask>(_pixels);
        }
        _mask->setWidth(width);
    } else {
        _stroker.setLook(style, width);
    }
    for (const Piece& piece : _pieces) {
        if (isDashed) {
            addDashes(piece, style.dashPhase * deviceScale);
        } else if (_isWholeRing) {
            addRing(piece);
        } else {
            addSolid(piece);
        }
    }
    const double share = isTone ? toneOf(style, width / deviceScale) : 1;
    if (_usesMask) {
        _mask->paint(cairo_get_target(_cairo), _left, _top, *style.stroke, share);
    } else {
        _stroker.paint(*style.stroke, share);
    }
}

void MKPathPainter::moveTo(MKPixelPoint point) {
    if (_usesMask) {
        _mask->moveTo(point);
    } else {
        _stroker.moveTo(point);
    }
}

void MKPathPainter::lineTo(MKPixelPoint point) {
    if (!_usesMask) {
        _stroker.lineTo(point);
        return;
    }
    _mask->lineTo(point);
    if (++_unchecked == checkEvery) {
        _unchecked = 0;
        _ticket.check();
    }
}

void MKPathPainter::addSolid(const Piece& piece) {
    moveTo(_points[piece.first]);
    for (size_t i = 1; i < piece.count; ++i) {
        lineTo(_points[piece.first + i]);
    }
}

// Its last point is its first.
void MKPathPainter::addRing(const Piece& piece) {
    if (_usesMask) {
        addSolid(piece);
        return;
    }
    _stroker.beginRing(_points[piece.first]);
    for (size_t i = 1; i + 1 < piece.count; ++i) {
        _stroker.lineTo(_points[piece.first + i]);
    }
}

} // namespace veyra
