#include "Platform/MapKit/MKQuietText.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace veyra {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Layout = std::unique_ptr<PangoLayout, Unref>;

Layout makeLayout(const std::string& text, double maximumWidth, bool isUnderlined) {
    PangoContext* const context = pango_font_map_create_context(pango_cairo_font_map_get_default());
    Layout layout(pango_layout_new(context));
    g_object_unref(context);
    PangoFontDescription* const font = pango_font_description_from_string("sans");
    pango_font_description_set_absolute_size(font, MKQuietText::fontSize * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), font);
    pango_font_description_free(font);
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
    pango_layout_set_width(layout.get(), static_cast<int>(std::clamp(maximumWidth, 0.0, 1e5) * PANGO_SCALE));
    pango_layout_set_text(layout.get(), text.c_str(), static_cast<int>(text.size()));
    if (isUnderlined) {
        PangoAttrList* const attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        pango_layout_set_attributes(layout.get(), attributes);
        pango_attr_list_unref(attributes);
    }
    return layout;
}

} // namespace

void setQuietRimColor(cairo_t* cairo, MKQuietInk ink) {
    if (ink == MKQuietInk::Dark) {
        cairo_set_source_rgba(cairo, 1, 1, 1, 0.75);
    } else {
        cairo_set_source_rgba(cairo, 0.05, 0.07, 0.1, 0.6);
    }
}

void setQuietInkColor(cairo_t* cairo, MKQuietInk ink) {
    if (ink == MKQuietInk::Dark) {
        cairo_set_source_rgb(cairo, 0.22, 0.24, 0.27);
    } else {
        cairo_set_source_rgb(cairo, 0.9, 0.92, 0.94);
    }
}

MKQuietText::MKQuietText(std::string text, double maximumWidth, bool isUnderlined)
    : _text(std::move(text)), _maximumWidth(std::max(maximumWidth - 2 * rim, 0.0)), _isUnderlined(isUnderlined) {
    PangoRectangle extents;
    pango_layout_get_extents(makeLayout(_text, _maximumWidth, _isUnderlined).get(), nullptr, &extents);
    // A little more: at other scales the letters are a little wider.
    _size = {std::ceil(1.02 * extents.width / PANGO_SCALE) + 1 + 2 * rim,
             std::ceil(static_cast<double>(extents.height) / PANGO_SCALE) + 2 * rim};
}

MKQuietText::Surface MKQuietText::makePicture(double scale, MKQuietInk ink) const {
    Surface picture(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(std::ceil(_size.width * scale)),
                                               static_cast<int>(std::ceil(_size.height * scale))));
    cairo_t* const cairo = cairo_create(picture.get());
    cairo_scale(cairo, scale, scale);
    cairo_translate(cairo, rim, rim);
    const Layout layout = makeLayout(_text, _maximumWidth, _isUnderlined);
    pango_cairo_update_layout(cairo, layout.get());
    pango_cairo_layout_path(cairo, layout.get());
    cairo_set_line_width(cairo, 2 * rim);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    setQuietRimColor(cairo, ink);
    cairo_stroke_preserve(cairo);
    setQuietInkColor(cairo, ink);
    cairo_fill(cairo);
    cairo_destroy(cairo);
    return picture;
}

void MKQuietText::draw(const UIGraphicsContext& context, CGPoint origin, MKQuietInk ink) const {
    if (!_picture || _pictureScale != context.scale || _pictureInk != ink) {
        _picture = makePicture(context.scale, ink);
        _pictureScale = context.scale;
        _pictureInk = ink;
    }
    cairo_t* const cairo = context.cairo;
    cairo_user_to_device(cairo, &origin.x, &origin.y);
    cairo_save(cairo);
    cairo_identity_matrix(cairo);
    cairo_set_source_surface(cairo, _picture.get(), std::round(origin.x), std::round(origin.y));
    cairo_paint(cairo);
    cairo_restore(cairo);
}

} // namespace veyra
