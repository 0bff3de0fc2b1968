// How an image of the overlays lies in the view.
#include "Platform/MapKit/MKOverlayLayer.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>

namespace veyra {

PixelRect MKOverlayLayer::placeOf(const PixelRect& part, const MKOverlayImage& image) const {
    const double ratio = _view.scale / image.scene().view.scale;
    const MKPixelPoint offset = offsetOf(image);
    const auto edge = [](double value) { return static_cast<int>(std::clamp(value, -1e8, 1e8)); };
    const int left = edge(std::floor(offset.x + part.x * ratio)), top = edge(std::floor(offset.y + part.y * ratio));
    return {left, top, edge(std::ceil(offset.x + part.maxX() * ratio)) - left,
            edge(std::ceil(offset.y + part.maxY() * ratio)) - top};
}

void MKOverlayLayer::draw(const UIGraphicsContext& context) const {
    if (!_image || !_image->surface()) {
        return;
    }
    const double ratio = _view.scale / _image->scene().view.scale;
    const MKPixelPoint offset = offsetOf(*_image);
    cairo_t* const cairo = context.cairo;
    cairo_save(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
    cairo_identity_matrix(cairo);
    cairo_translate(cairo, std::lround(context.origin.x * context.scale),
                    std::lround(context.origin.y * context.scale));
    cairo_translate(cairo, offset.x, offset.y);
    cairo_scale(cairo, ratio, ratio);
    cairo_set_source_surface(cairo, _image->surface(), _image->content().x, _image->content().y);
    cairo_pattern_set_filter(cairo_get_source(cairo), ratio == 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
    cairo_paint(cairo);
    cairo_restore(cairo);
}

} // namespace veyra
