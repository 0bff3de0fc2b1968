#include "Platform/MapKit/MKScaleBar.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

constexpr double tick = 5, line = 1.5; // points
constexpr double minimumWidth = 44;    // points; of the text's place

void addBracket(cairo_t* cairo, double left, double bottom, double width) {
    cairo_move_to(cairo, left, bottom - tick);
    cairo_line_to(cairo, left, bottom);
    cairo_line_to(cairo, left + width, bottom);
    cairo_line_to(cairo, left + width, bottom - tick);
}

} // namespace

MKScale MKScale::fitting(double metersPerPoint, double maximumWidth) {
    const double most = metersPerPoint * maximumWidth;
    const double power = std::pow(10, std::floor(std::log10(most) + 1e-9));
    double meters = power;
    for (const double factor : {2.0, 5.0}) {
        if (factor * power <= most * (1 + 1e-9)) {
            meters = factor * power;
        }
    }
    return {meters, meters / metersPerPoint};
}

std::string MKScale::text() const {
    const auto number = [](double value) { return std::to_string(static_cast<int64_t>(std::llround(value))); };
    if (meters >= 999.5) {
        return number(meters / 1000) + " km";
    }
    return meters >= 0.995 ? number(meters) + " m" : number(std::max(meters * 100, 1.0)) + " cm";
}

Class MKScaleBar::classObject() {
    static auto* const cls = new ClassObject("MKScaleBar", UIView::classObject(), {});
    return cls;
}

void MKScaleBar::setScale(const MKScale& scale) {
    if (scale.meters == _scale.meters && scale.width == _scale.width) {
        return;
    }
    if (scale.meters != _scale.meters) {
        constexpr double anyWidth = 1e4;
        _text = MKQuietText(scale.text(), anyWidth);
    }
    _scale = scale;
    const double width = std::max(scale.width, minimumWidth) + 2 * (line + MKQuietText::rim);
    setFrame({frame().origin, {std::ceil(std::max(width, _text.size().width)), height}});
    setNeedsDisplay();
}

void MKScaleBar::drawRect(const UIGraphicsContext& context) {
    cairo_t* const cairo = context.cairo;
    const double inset = line + MKQuietText::rim;
    // The line lies on whole pixels.
    const double bottom = std::round((height - inset) * context.scale) / context.scale - line / 2;
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_MITER);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
    addBracket(cairo, inset, bottom, _scale.width);
    cairo_set_line_width(cairo, line + 2 * MKQuietText::rim);
    setQuietRimColor(cairo, _ink);
    cairo_stroke_preserve(cairo);
    cairo_set_line_width(cairo, line);
    setQuietInkColor(cairo, _ink);
    cairo_stroke(cairo);
    _text.draw(context, {std::max(inset + (_scale.width - _text.size().width) / 2, 0.0), 0}, _ink);
}

} // namespace veyra
