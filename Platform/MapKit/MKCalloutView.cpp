#include "Platform/MapKit/MKCalloutView.h"

#include "Platform/MapKit/MKLabelWriter.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// Points.
constexpr double bodyHeight = 44, oneLineHeight = 40, corner = 9;
constexpr double padding = 12, accessoryGap = 9, accessoryInset = 8;
constexpr double shadow = 8; // around the body, and below the tip
constexpr double tipHalfWidth = 10;
constexpr double widest = 300, narrowest = 60;
constexpr double titleSize = 14.5, subtitleSize = 12; // of the fonts, in points of the map

struct DestroyLayout {
    void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using Layout = std::unique_ptr<PangoLayout, DestroyLayout>;

Layout layoutOf(PangoContext* context, const std::string& text, double size, bool bold) {
    Layout layout(pango_layout_new(context));
    PangoFontDescription* const font = pango_font_description_new();
    pango_font_description_set_family(font, MKLabelWriter::fontFamily().c_str());
    pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
    pango_font_description_set_weight(font, bold ? PANGO_WEIGHT_SEMIBOLD : PANGO_WEIGHT_NORMAL);
    pango_layout_set_font_description(layout.get(), font);
    pango_font_description_free(font);
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
    return layout;
}

// Text is measured and drawn at whole-point metrics, so that a callout is as wide at every scale.
PangoContext* newContext() {
    PangoContext* const context = pango_font_map_create_context(pango_cairo_font_map_get_default());
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context, FALSE);
    return context;
}

double widthOf(const std::string& text, double size, bool bold) {
    if (text.empty()) {
        return 0;
    }
    PangoContext* const context = newContext();
    int width = 0;
    pango_layout_get_size(layoutOf(context, text, size, bold).get(), &width, nullptr);
    g_object_unref(context);
    return std::ceil(static_cast<double>(width) / PANGO_SCALE);
}

// A line of text that begins at (x, baseline) and has `width` points.
void showLine(cairo_t* cairo, PangoContext* context, const std::string& text, double size, bool bold, CGPoint at,
              double width) {
    const Layout layout = layoutOf(context, text, size, bold);
    pango_layout_set_width(layout.get(), static_cast<int>(std::max(0.0, width) * PANGO_SCALE));
    cairo_move_to(cairo, at.x, at.y - static_cast<double>(pango_layout_get_baseline(layout.get())) / PANGO_SCALE);
    pango_cairo_show_layout(cairo, layout.get());
}

void traceBubble(cairo_t* cairo, const CGRect& body, double tipX, double grow) {
    const double left = body.minX() - grow, right = body.maxX() + grow;
    const double top = body.minY() - grow, bottom = body.maxY() + grow;
    const double r = corner + grow, half = tipHalfWidth;
    cairo_new_path(cairo);
    cairo_arc(cairo, left + r, top + r, r, M_PI, 1.5 * M_PI);
    cairo_arc(cairo, right - r, top + r, r, 1.5 * M_PI, 2 * M_PI);
    cairo_arc(cairo, right - r, bottom - r, r, 0, 0.5 * M_PI);
    cairo_line_to(cairo, tipX + half + grow * 0.4, bottom);
    cairo_line_to(cairo, tipX + 0.8, body.maxY() + MKCalloutView::tipHeight - 0.8 + grow);
    cairo_curve_to(cairo, tipX + 0.3, body.maxY() + MKCalloutView::tipHeight - 0.2 + grow, tipX - 0.3,
                   body.maxY() + MKCalloutView::tipHeight - 0.2 + grow, tipX - 0.8,
                   body.maxY() + MKCalloutView::tipHeight - 0.8 + grow);
    cairo_line_to(cairo, tipX - half - grow * 0.4, bottom);
    cairo_arc(cairo, left + r, bottom - r, r, 0.5 * M_PI, M_PI);
    cairo_close_path(cairo);
}

double accessoryWidth(const std::shared_ptr<UIView>& view) {
    return view ? view->frame().size.width : 0;
}

} // namespace

Class MKCalloutView::classObject() {
    static auto* const cls = new ClassObject("MKCalloutView", UIView::classObject(), {});
    return cls;
}

void MKCalloutView::setContent(const Content& content) {
    if (content == _content) {
        return;
    }
    const auto replace = [this](const std::shared_ptr<UIView>& former, const std::shared_ptr<UIView>& next) {
        // A view that another callout has taken meanwhile stays there.
        if (former && former != next && former->superview().get() == this) {
            former->removeFromSuperview();
        }
    };
    replace(_content.left, content.left);
    replace(_content.right, content.right);
    _content = content;
    for (const auto& view : {content.left, content.right}) {
        if (view) {
            addSubview(view);
        }
    }
    _titleWidth = widthOf(content.title, titleSize, true);
    _subtitleWidth = widthOf(content.subtitle, subtitleSize, false);
    setNeedsLayout();
    setNeedsDisplay();
}

void MKCalloutView::setFocusedButton(const std::shared_ptr<UIView>& button) {
    if (button != _focusedButton) {
        _focusedButton = button;
        setNeedsDisplay();
    }
}

double MKCalloutView::textWidth() const {
    return std::max(_titleWidth, _subtitleWidth);
}

// With the shadow around it.
CGSize MKCalloutView::sizeFor(CGSize mapSize) const {
    double width = textWidth() + 2 * padding;
    for (const auto& view : {_content.left, _content.right}) {
        if (view) {
            width += accessoryWidth(view) + accessoryInset + accessoryGap - padding;
        }
    }
    const double room = std::max(narrowest, std::min(widest, mapSize.width - 2 * mapMargin));
    width = std::clamp(width, narrowest, room);
    double height = _content.subtitle.empty() ? oneLineHeight : bodyHeight;
    for (const auto& view : {_content.left, _content.right}) {
        if (view) {
            height = std::max(height, view->frame().size.height + 2 * 4);
        }
    }
    return {width + 2 * shadow, height + tipHeight + 2 * shadow};
}

void MKCalloutView::pointAt(CGPoint tip, double viewBottom, CGSize mapSize) {
    const CGSize size = sizeFor(mapSize);
    const double width = size.width - 2 * shadow, height = size.height - 2 * shadow;
    const double beyondLeft = std::min(0.0, tip.x), beyondRight = std::max(0.0, tip.x - mapSize.width);
    double left = std::min(tip.x - width / 2, mapSize.width - mapMargin - width + beyondRight);
    left = std::round(std::max(left, mapMargin + beyondLeft));
    const double top = std::round(std::max(tip.y - height, mapMargin + std::min(0.0, viewBottom)));
    const double reach = corner + tipHalfWidth; // of the tip from a side of the body
    const double tipX = std::clamp(std::round(tip.x) - left, reach, width - reach) + shadow;
    if (tipX != _tipX) {
        _tipX = tipX;
        setNeedsDisplay();
    }
    setFrame({{left - shadow, top - shadow}, size});
}

CGPoint MKCalloutView::moveToFit(CGPoint tip, CGSize mapSize) const {
    const CGSize size = sizeFor(mapSize);
    const double width = size.width - 2 * shadow, height = size.height - 2 * shadow;
    const double reach = corner + tipHalfWidth;
    CGPoint move;
    const auto fit = [](double low, double high, double value) {
        return low > high ? 0 : std::clamp(value, low, high) - value;
    };
    move.x =
        mapSize.width < width + 2 * mapMargin ? 0 : fit(mapMargin + reach, mapSize.width - mapMargin - reach, tip.x);
    move.y = fit(mapMargin + height, mapSize.height - mapMargin, tip.y);
    return move;
}

void MKCalloutView::layoutSubviews() {
    const double bodyMiddle = shadow + (bounds().size.height - 2 * shadow - tipHeight) / 2;
    const auto place = [&](const std::shared_ptr<UIView>& view, double x) {
        if (view && view->superview().get() == this) {
            const CGSize size = view->frame().size;
            view->setFrame({{x, std::round(bodyMiddle - size.height / 2)}, size});
        }
    };
    place(_content.left, shadow + accessoryInset);
    place(_content.right, bounds().size.width - shadow - accessoryInset - accessoryWidth(_content.right));
}

void MKCalloutView::drawRect(const UIGraphicsContext& context) {
    cairo_t* const cairo = context.cairo;
    const CGRect body{{shadow, shadow},
                      {bounds().size.width - 2 * shadow, bounds().size.height - 2 * shadow - tipHeight}};
    // A shadow that grows fainter outwards and lies a little lower.
    constexpr int rings = 5;
    for (int ring = rings; ring > 0; --ring) {
        cairo_save(cairo);
        cairo_translate(cairo, 0, 1.5);
        traceBubble(cairo, body, _tipX, ring * 1.2);
        cairo_restore(cairo);
        cairo_set_source_rgba(cairo, 0, 0, 0, 0.035);
        cairo_fill(cairo);
    }
    traceBubble(cairo, body, _tipX, 0);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_fill_preserve(cairo);
    cairo_set_source_rgba(cairo, 0, 0, 0, 0.18);
    cairo_set_line_width(cairo, 1 / context.scale);
    cairo_stroke(cairo);

    double left = body.minX() + padding, right = body.maxX() - padding;
    if (_content.left) {
        left = body.minX() + accessoryInset + accessoryWidth(_content.left) + accessoryGap;
    }
    if (_content.right) {
        right = body.maxX() - accessoryInset - accessoryWidth(_content.right) - accessoryGap;
    }
    if (_focusedButton) {
        const CGRect frame = _focusedButton->frame();
        cairo_arc(cairo, frame.center().x, frame.center().y, frame.size.width / 2 - 0.5, 0, 2 * M_PI);
        cairo_set_source_rgb(cairo, 0.05, 0.42, 0.88);
        cairo_set_line_width(cairo, 1.5);
        cairo_stroke(cairo);
    }
    PangoContext* const text = newContext();
    const double middle = body.center().y;
    cairo_set_source_rgb(cairo, 0.1, 0.1, 0.11);
    showLine(cairo, text, _content.title, titleSize, true, {left, middle + (_content.subtitle.empty() ? 5 : -2.5)},
             right - left);
    if (!_content.subtitle.empty()) {
        cairo_set_source_rgb(cairo, 0.42, 0.42, 0.45);
        showLine(cairo, text, _content.subtitle, subtitleSize, false, {left, middle + 13.5}, right - left);
    }
    g_object_unref(text);
}

} // namespace veyra
