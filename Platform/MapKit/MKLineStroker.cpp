#include "Platform/MapKit/MKLineStroker.h"

#include <cmath>
#include <new>

namespace veyra {

namespace {

// Places that are drawn at a time.
constexpr size_t mostPoints = 2048;

} // namespace

MKLineStroker::MKLineStroker(cairo_t* cairo, const PixelRect& area, const MKDrawingTicket& ticket)
    : _cairo(cairo), _area(area), _ticket(ticket) {}

void MKLineStroker::setLook(const MKPathStyle& style, double width) {
    static constexpr cairo_line_join_t joins[] = {CAIRO_LINE_JOIN_MITER, CAIRO_LINE_JOIN_ROUND, CAIRO_LINE_JOIN_BEVEL};
    static constexpr cairo_line_cap_t caps[] = {CAIRO_LINE_CAP_BUTT, CAIRO_LINE_CAP_ROUND, CAIRO_LINE_CAP_SQUARE};
    _width = width;
    _join = joins[style.join];
    _cap = caps[style.cap];
    _miterLimit = style.miterLimit;
}

void MKLineStroker::moveTo(MKPixelPoint point) {
    begin(point, false);
}

void MKLineStroker::beginRing(MKPixelPoint point) {
    begin(point, true);
}

void MKLineStroker::begin(MKPixelPoint point, bool isRing) {
    endRing();
    if (_points.size() >= mostPoints) {
        drawTo(mask(), false);
        _points.clear();
        _lines.clear();
    }
    _lines.push_back({_points.size(), isRing, false});
    _points.push_back(point);
}

void MKLineStroker::lineTo(MKPixelPoint point) {
    if (point.x == _points.back().x && point.y == _points.back().y) {
        return;
    }
    _points.push_back(point);
    if (_points.size() >= mostPoints) {
        drawSome();
    }
}

// A ring of which parts have been drawn needs its first corner yet.
void MKLineStroker::endRing() {
    if (!_lines.empty() && _lines.back().isRing && _lines.back().isRest) {
        _points.insert(_points.end(), std::begin(_ringStart), std::end(_ringStart));
    }
}

// All that is complete and, of a long line, all but its last stretch, at whose end the next corner is.
void MKLineStroker::drawSome() {
    Line last = _lines.back();
    const size_t count = _points.size() - last.first;
    if (count < mostPoints / 2) {
        _lines.pop_back();
        const std::vector<MKPixelPoint> kept(_points.end() - static_cast<ptrdiff_t>(count), _points.end());
        _points.resize(last.first);
        drawTo(mask(), false);
        _points = kept;
    } else {
        if (last.isRing && !last.isRest) {
            _ringStart[0] = _points[last.first];
            _ringStart[1] = _points[last.first + 1];
        }
        drawTo(mask(), true);
        _points.erase(_points.begin(), _points.end() - 2);
        last.isRest = true;
    }
    last.first = 0;
    _lines = {last};
}

void MKLineStroker::drawTo(cairo_t* cairo, bool lastGoesOn) {
    _ticket.check();
    cairo_set_line_width(cairo, _width);
    cairo_set_line_join(cairo, _join);
    cairo_set_line_cap(cairo, _cap);
    cairo_set_miter_limit(cairo, _miterLimit);
    const auto goesOn = [&](size_t line) { return lastGoesOn && line + 1 == _lines.size(); };
    cairo_new_path(cairo);
    for (size_t line = 0; line < _lines.size(); ++line) {
        if (!_lines[line].isRest && !goesOn(line)) {
            addLine(cairo, line);
            if (_lines[line].isRing) {
                cairo_close_path(cairo);
            }
        }
    }
    cairo_stroke(cairo);
    for (size_t line = 0; line < _lines.size(); ++line) {
        if (_lines[line].isRest || goesOn(line)) {
            drawPart(cairo, line, goesOn(line));
        }
    }
}

void MKLineStroker::addLine(cairo_t* cairo, size_t line) const {
    cairo_new_sub_path(cairo);
    for (size_t i = _lines[line].first; i < endOf(line); ++i) {
        cairo_line_to(cairo, _points[i].x, _points[i].y);
    }
    if (endOf(line) == _lines[line].first + 1) { // a dot
        cairo_line_to(cairo, _points[_lines[line].first].x, _points[_lines[line].first].y);
    }
}

// The other parts join it at right angles to its stretches; only the ends of the line have the shape of ends.
void MKLineStroker::drawPart(cairo_t* cairo, size_t line, bool goesOn) const {
    addLine(cairo, line);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cairo);
    if (_lines[line].isRing) {
        return;
    }
    const size_t first = _lines[line].first, last = endOf(line) - 1;
    if (!_lines[line].isRest) {
        drawEnd(cairo, _points[first], _points[first + 1]);
    }
    if (!goesOn) {
        drawEnd(cairo, _points[last], _points[last - 1]);
    }
}

void MKLineStroker::drawEnd(cairo_t* cairo, MKPixelPoint end, MKPixelPoint before) const {
    const double dx = end.x - before.x, dy = end.y - before.y, length = std::hypot(dx, dy);
    if (_cap == CAIRO_LINE_CAP_BUTT || length == 0) {
        return;
    }
    const double reach = _cap == CAIRO_LINE_CAP_SQUARE ? _width / 2 / length : 0;
    cairo_set_line_cap(cairo, _cap == CAIRO_LINE_CAP_ROUND ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_move_to(cairo, end.x, end.y);
    cairo_line_to(cairo, end.x + dx * reach, end.y + dy * reach);
    cairo_stroke(cairo);
}

cairo_t* MKLineStroker::mask() {
    if (!_mask) {
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_A8, _area.width, _area.height);
        _mask.reset(cairo_create(surface));
        cairo_surface_destroy(surface);
        cairo_translate(_mask.get(), -_area.x, -_area.y);
    }
    _hasMask = true;
    return _mask.get();
}

void MKLineStroker::paint(const MKPathStyle::Color& color, double share) {
    endRing();
    cairo_set_source_rgba(_cairo, color.red, color.green, color.blue, color.alpha * share);
    if (_hasMask) {
        drawTo(_mask.get(), false);
        if (cairo_status(_mask.get()) != CAIRO_STATUS_SUCCESS) {
            throw std::bad_alloc();
        }
        cairo_mask_surface(_cairo, cairo_get_target(_mask.get()), _area.x, _area.y);
        cairo_save(_mask.get());
        cairo_set_operator(_mask.get(), CAIRO_OPERATOR_CLEAR);
        cairo_paint(_mask.get());
        cairo_restore(_mask.get());
        _hasMask = false;
    } else {
        drawTo(_cairo, false);
    }
    _points.clear();
    _lines.clear();
}

} // namespace veyra
