#include "Platform/MapKit/MKLabelWriter.h"

#include <pango/pangocairo.h>

#include <algorithm>

namespace veyra {

namespace {

std::string& preferredFamily() {
    static auto* const family = new std::string("Noto Sans, Open Sans, DejaVu Sans, sans-serif");
    return *family;
}

void setColor(cairo_t* cairo, MKTileColor color, double opacity) {
    cairo_set_source_rgba(cairo, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0, (color & 255) / 255.0,
                          opacity);
}

} // namespace

void MKLabelWriter::FreeDescription::operator()(PangoFontDescription* description) const {
    pango_font_description_free(description);
}

void MKLabelWriter::Unref::operator()(void* object) const {
    g_object_unref(object);
}

void MKLabelWriter::setFontFamily(const std::string& family) {
    preferredFamily() = family;
}

const std::string& MKLabelWriter::fontFamily() {
    return preferredFamily();
}

MKLabelWriter::MKLabelWriter()
    : _context(pango_font_map_create_context(pango_cairo_font_map_get_default())),
      _layout(pango_layout_new(_context.get())) {
    // Whatever the desktop prefers: a map looks the same everywhere, and moves by whole pixels anyway.
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(_context.get(), options);
    cairo_font_options_destroy(options);
    pango_layout_set_alignment(_layout.get(), PANGO_ALIGN_CENTER);
    pango_layout_set_line_spacing(_layout.get(), 0.92f);
}

MKLabelWriter::~MKLabelWriter() = default;

void MKLabelWriter::setFont(const MKLabelFont& font, double scale) {
    if (!_description || _family != fontFamily()) {
        _family = fontFamily();
        _description.reset(pango_font_description_from_string(_family.c_str()));
    }
    PangoFontDescription* const description = _description.get();
    pango_font_description_set_absolute_size(description, font.size * scale * PANGO_SCALE);
    pango_font_description_set_weight(description, font.isBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(description, font.isItalic ? PANGO_STYLE_OBLIQUE : PANGO_STYLE_NORMAL);
    pango_layout_set_font_description(_layout.get(), description);
    PangoAttrList* const attributes = font.letterSpacing > 0 ? pango_attr_list_new() : nullptr;
    if (attributes != nullptr) {
        pango_attr_list_insert(
            attributes, pango_attr_letter_spacing_new(static_cast<int>(font.letterSpacing * scale * PANGO_SCALE)));
    }
    pango_layout_set_attributes(_layout.get(), attributes);
    pango_attr_list_unref(attributes);
}

void MKLabelWriter::prepare(std::string_view text, const MKLabelFont& font, double scale) {
    setFont(font, scale);
    if (font.isUpperCase) {
        gchar* const upper = g_utf8_strup(text.data(), static_cast<gssize>(text.size()));
        pango_layout_set_text(_layout.get(), upper, -1);
        g_free(upper);
    } else {
        pango_layout_set_text(_layout.get(), text.data(), static_cast<int>(text.size()));
    }
}

CGSize MKLabelWriter::measure(std::string_view text, const MKLabelFont& font) {
    constexpr double measuredSize = 16;
    const MKLabelFont plain{
        .size = measuredSize, .isBold = font.isBold, .isItalic = font.isItalic, .isUpperCase = font.isUpperCase};
    if (_measured.text != text || _measured.font != plain || _family != fontFamily()) {
        prepare(text, plain, 1);
        int width = 0, height = 0;
        pango_layout_get_size(_layout.get(), &width, &height);
        long longest = 0;
        for (size_t start = 0; start <= text.size();) {
            const size_t end = std::min(text.find('\n', start), text.size());
            longest = std::max(longest, g_utf8_strlen(text.data() + start, static_cast<gssize>(end - start)));
            start = end + 1;
        }
        _measured = {.text = std::string(text),
                     .font = plain,
                     .size = {width / measuredSize / PANGO_SCALE, height / measuredSize / PANGO_SCALE},
                     .letters = static_cast<double>(longest)};
    }
    return {_measured.size.width * font.size + _measured.letters * font.letterSpacing,
            _measured.size.height * font.size};
}

void MKLabelWriter::draw(cairo_t* cairo, double x, double y, std::string_view text, const MKLabelFont& font,
                         const MKLabelColors& colors, double scale) {
    prepare(text, font, scale);
    int width = 0, height = 0;
    pango_layout_get_size(_layout.get(), &width, &height);
    cairo_move_to(cairo, x - width / 2.0 / PANGO_SCALE, y - height / 2.0 / PANGO_SCALE);
    pango_cairo_layout_path(cairo, _layout.get());
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cairo, 2 * colors.haloWidth * scale);
    setColor(cairo, colors.halo, colors.haloOpacity);
    // The halo's edge is soft to the eye anyway.
    cairo_set_antialias(cairo, CAIRO_ANTIALIAS_FAST);
    cairo_set_tolerance(cairo, 0.4);
    cairo_stroke_preserve(cairo);
    cairo_set_antialias(cairo, CAIRO_ANTIALIAS_DEFAULT);
    cairo_set_tolerance(cairo, 0.1);
    setColor(cairo, colors.text, 1);
    cairo_fill(cairo);
}

} // namespace veyra
