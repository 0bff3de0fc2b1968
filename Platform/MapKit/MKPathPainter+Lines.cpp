// How a line is cut into the pieces that can be seen, and those into dashes.
#include "Platform/MapKit/MKPathPainter.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

/// The part of a stretch from a to b that lies in a box, as shares of its length; false when there is none.
bool cutStretch(MKPixelPoint a, MKPixelPoint b, const MKPixelBox& box, double& from, double& to) {
    from = 0;
    to = 1;
    const double delta[] = {b.x - a.x, b.y - a.y};
    const double low[] = {box.minX - a.x, box.minY - a.y};
    const double high[] = {box.maxX - a.x, box.maxY - a.y};
    for (int axis = 0; axis < 2; ++axis) {
        if (delta[axis] == 0) {
            if (low[axis] > 0 || high[axis] < 0) {
                return false;
            }
            continue;
        }
        const double first = low[axis] / delta[axis], second = high[axis] / delta[axis];
        from = std::max(from, std::min(first, second));
        to = std::min(to, std::max(first, second));
    }
    return from <= to;
}

MKPixelPoint between(MKPixelPoint a, MKPixelPoint b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

} // namespace

void MKPathPainter::cutLine(const MKOutline& outline, const MKPixelBox& box) {
    _points.clear();
    _pieces.clear();
    const bool hasLengths = !outline.lengths.empty();
    bool goesOn = false; // the last piece ends at point i
    for (size_t i = 0; i + 1 < outline.points.size(); ++i) {
        const MKPixelPoint a = outline.points[i], b = outline.points[i + 1];
        double from = 0, to = 1;
        if (!(goesOn && box.contains(b)) && !cutStretch(a, b, box, from, to)) {
            goesOn = false;
            continue;
        }
        if (!goesOn || from > 0) {
            const double length =
                hasLengths ? outline.lengths[i] + (outline.lengths[i + 1] - outline.lengths[i]) * from : 0;
            _pieces.push_back({_points.size(), 1, length});
            _points.push_back(between(a, b, from));
        }
        _points.push_back(to < 1 ? between(a, b, to) : b);
        ++_pieces.back().count;
        goesOn = to >= 1;
    }
    _isWholeRing = false;
}

// A ring whose beginning can be seen has a corner there: its last piece goes on in its first.
void MKPathPainter::joinEnds(const MKOutline& outline) {
    if (!outline.isClosed || _pieces.empty()) {
        return;
    }
    const auto isAt = [](MKPixelPoint a, MKPixelPoint b) { return a.x == b.x && a.y == b.y; };
    const MKPixelPoint start = outline.points.front();
    const Piece first = _pieces.front(), last = _pieces.back();
    if (!isAt(_points[first.first], start) || !isAt(_points[last.first + last.count - 1], start)) {
        return;
    }
    if (_pieces.size() == 1) {
        _isWholeRing = true;
        return;
    }
    for (size_t i = 1; i < first.count; ++i) {
        _points.push_back(_points[first.first + i]);
    }
    _pieces.back().count += first.count - 1;
    _pieces.erase(_pieces.begin());
}

void MKPathPainter::setDashes(const MKPathStyle& style, double deviceScale) {
    _dashEnds.clear();
    double end = 0;
    for (const double dash : style.dashes) {
        end += dash * deviceScale;
        _dashEnds.push_back(end);
    }
}

double MKPathPainter::lengthOfPieces() const {
    double length = 0;
    for (const Piece& piece : _pieces) {
        for (size_t i = 1; i < piece.count; ++i) {
            const MKPixelPoint a = _points[piece.first + i - 1], b = _points[piece.first + i];
            length += std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
        }
    }
    return length;
}

void MKPathPainter::addDashes(const Piece& piece, double phase) {
    const double pattern = _dashEnds.back();
    double place = std::fmod(piece.length + phase, pattern);
    place = std::isfinite(place) ? place : 0;
    // At the end of one entry the next begins; a dot is where it begins.
    auto found = place > 0 ? std::upper_bound(_dashEnds.begin(), _dashEnds.end() - 1, place) : _dashEnds.begin();
    auto dash = static_cast<size_t>(found - _dashEnds.begin());
    double left = std::max(0.0, *found - place); // of the dash, or of the gap
    const auto isDrawn = [&] { return dash % 2 == 0; };
    const auto next = [&] {
        dash = dash + 1 < _dashEnds.size() ? dash + 1 : 0;
        left = _dashEnds[dash] - (dash > 0 ? _dashEnds[dash - 1] : 0);
    };

    MKPixelPoint at = _points[piece.first];
    if (isDrawn()) {
        moveTo(at);
    }
    for (size_t i = 1; i < piece.count; ++i) {
        const MKPixelPoint end = _points[piece.first + i];
        double rest = std::hypot(end.x - at.x, end.y - at.y);
        while (rest > left) {
            at = between(at, end, left / rest);
            rest -= left;
            if (isDrawn()) {
                lineTo(at);
            }
            next();
            if (isDrawn()) {
                moveTo(at);
            }
        }
        left -= rest;
        at = end;
        if (isDrawn()) {
            lineTo(at);
        }
    }
}

} // namespace veyra
