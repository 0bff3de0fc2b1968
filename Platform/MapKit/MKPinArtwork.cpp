#include "Platform/MapKit/MKPinArtwork.h"

#include <cairo.h>

#include <cmath>

namespace veyra {

namespace {

// How far shadows reach beyond an extent, in points.
constexpr double margin = 3;

struct PinColors {
    double light[3], full[3], dark[3];
};

constexpr PinColors pinColors[] = {
    {{0.98, 0.42, 0.36}, {0.87, 0.17, 0.15}, {0.62, 0.08, 0.09}},
    {{0.42, 0.83, 0.40}, {0.16, 0.64, 0.24}, {0.06, 0.43, 0.15}},
    {{0.74, 0.52, 0.93}, {0.52, 0.27, 0.77}, {0.34, 0.14, 0.56}},
};

void setColor(cairo_t* cairo, const double (&color)[3]) {
    cairo_set_source_rgb(cairo, color[0], color[1], color[2]);
}

void fillWith(cairo_t* cairo, cairo_pattern_t* pattern) {
    cairo_set_source(cairo, pattern);
    cairo_fill_preserve(cairo);
    cairo_pattern_destroy(pattern);
}

// The outline of a pin with its tip at the origin: a round head that narrows to the tip.
void tracePin(cairo_t* cairo, double inset) {
    constexpr double middle = -23.5, radius = 12;
    const double r = radius - inset;
    constexpr double shoulder = 0.42; // radians below the horizontal, where the head passes into the flanks
    const double x = r * std::cos(shoulder), y = middle + r * std::sin(shoulder);
    const double tip = -inset * 1.9;
    cairo_new_path(cairo);
    cairo_move_to(cairo, 0, tip);
    cairo_curve_to(cairo, -1.6, tip - 5.2, -x + 2.6, y + 5.6, -x, y);
    cairo_arc(cairo, 0, middle, r, M_PI - shoulder, 2 * M_PI + shoulder);
    cairo_curve_to(cairo, x - 2.6, y + 5.6, 1.6, tip - 5.2, 0, tip);
    cairo_close_path(cairo);
}

// A soft spot on the ground where the tip stands.
void drawPinShadow(cairo_t* cairo) {
    cairo_save(cairo);
    cairo_scale(cairo, 1, 0.4);
    cairo_pattern_t* const spot = cairo_pattern_create_radial(0, 0, 0, 0, 0, 7);
    cairo_pattern_add_color_stop_rgba(spot, 0, 0, 0, 0, 0.45);
    cairo_pattern_add_color_stop_rgba(spot, 1, 0, 0, 0, 0);
    cairo_arc(cairo, 0, 0, 7, 0, 2 * M_PI);
    fillWith(cairo, spot);
    cairo_new_path(cairo);
    cairo_restore(cairo);
}

void drawPin(cairo_t* cairo, const PinColors& colors) {
    drawPinShadow(cairo);
    tracePin(cairo, 0);
    setColor(cairo, colors.dark);
    cairo_fill(cairo);

    tracePin(cairo, 1);
    cairo_pattern_t* const body = cairo_pattern_create_linear(0, -35, 0, -2);
    cairo_pattern_add_color_stop_rgb(body, 0, colors.light[0], colors.light[1], colors.light[2]);
    cairo_pattern_add_color_stop_rgb(body, 0.45, colors.full[0], colors.full[1], colors.full[2]);
    cairo_pattern_add_color_stop_rgb(body, 1, colors.dark[0], colors.dark[1], colors.dark[2]);
    fillWith(cairo, body);
    cairo_new_path(cairo);

    cairo_arc(cairo, 0, -23.5, 4.75, 0, 2 * M_PI);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_fill(cairo);
}

void drawLocationDot(cairo_t* cairo) {
    cairo_pattern_t* const shadow = cairo_pattern_create_radial(0, 1, 7, 0, 1, 12);
    cairo_pattern_add_color_stop_rgba(shadow, 0, 0, 0, 0, 0.35);
    cairo_pattern_add_color_stop_rgba(shadow, 1, 0, 0, 0, 0);
    cairo_arc(cairo, 0, 1, 12, 0, 2 * M_PI);
    fillWith(cairo, shadow);
    cairo_new_path(cairo);
    cairo_arc(cairo, 0, 0, 10, 0, 2 * M_PI);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_fill(cairo);
    cairo_arc(cairo, 0, 0, 7.25, 0, 2 * M_PI);
    cairo_pattern_t* const blue = cairo_pattern_create_linear(0, -7, 0, 7);
    cairo_pattern_add_color_stop_rgb(blue, 0, 0.25, 0.6, 1);
    cairo_pattern_add_color_stop_rgb(blue, 1, 0.03, 0.4, 0.9);
    fillWith(cairo, blue);
    cairo_new_path(cairo);
}

template <class Draw>
std::shared_ptr<const MKSprite> draw(const CGRect& extent, double scale, const Draw& drawIt) {
    const CGRect whole = extent.insetBy(-margin, -margin);
    const int left = static_cast<int>(std::floor(whole.minX() * scale));
    const int top = static_cast<int>(std::floor(whole.minY() * scale));
    const int width = static_cast<int>(std::ceil(whole.maxX() * scale)) - left;
    const int height = static_cast<int>(std::ceil(whole.maxY() * scale)) - top;
    const auto pixels = std::make_shared<MKSprite::Pixels>(static_cast<size_t>(width) * static_cast<size_t>(height));
    cairo_surface_t* const surface = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels->data()), CAIRO_FORMAT_ARGB32, width, height, width * 4);
    cairo_t* const cairo = cairo_create(surface);
    cairo_translate(cairo, -left, -top);
    cairo_scale(cairo, scale, scale);
    drawIt(cairo);
    cairo_destroy(cairo);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
    const auto edge = [scale](double points) { return static_cast<int>(std::lround(points * scale)); };
    return std::make_shared<MKSprite>(width, height, pixels->data(), pixels, left - edge(extent.minX()),
                                      top - edge(extent.minY()));
}

} // namespace

std::shared_ptr<const MKSprite> MKPinArtwork::pin(MKPinAnnotationColor color, double deviceScale) {
    return draw(extent, deviceScale, [color](cairo_t* cairo) { drawPin(cairo, pinColors[color]); });
}

std::shared_ptr<const MKSprite> MKPinArtwork::locationDot(double deviceScale) {
    return draw(dotExtent, deviceScale, drawLocationDot);
}

} // namespace veyra
