#include "Platform/UIKit/UIButton.h"

#include "Platform/UIKit/UITapGestureRecognizer.h"

#include <cairo.h>

namespace veyra {

namespace {

constexpr double side = 28, radius = 11; // points

void setBlue(cairo_t* cairo) {
    cairo_set_source_rgb(cairo, 0.05, 0.42, 0.88);
}

/// The symbols are drawn in device pixels around a whole one, so that their edges are the same on all sides.
void drawDisclosure(cairo_t* cairo, double scale, double discRadius) {
    setBlue(cairo);
    cairo_arc(cairo, 0, 0, discRadius, 0, 2 * M_PI);
    cairo_fill(cairo);

    const double reach = 2.5 * scale;
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_set_line_width(cairo, std::max(1.0, std::round(2 * scale)));
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_move_to(cairo, -reach + scale, -2 * reach);
    cairo_line_to(cairo, reach + scale, 0);
    cairo_line_to(cairo, -reach + scale, 2 * reach);
    cairo_stroke(cairo);
}

void drawInfo(cairo_t* cairo, double scale, double discRadius) {
    const double ring = std::max(1.0, std::round(1.5 * scale));
    cairo_arc(cairo, 0, 0, discRadius, 0, 2 * M_PI);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_fill(cairo);
    setBlue(cairo);
    cairo_arc(cairo, 0, 0, discRadius - ring / 2, 0, 2 * M_PI);
    cairo_set_line_width(cairo, ring);
    cairo_stroke(cairo);

    // The letter leans by a fifth: foot, stem and head with serifs, and the dot.
    const cairo_matrix_t slant{1, 0, -0.2, 1, 0, 0};
    cairo_transform(cairo, &slant);
    cairo_scale(cairo, scale, scale);
    cairo_rectangle(cairo, -1, -1.5, 2, 7);
    cairo_rectangle(cairo, -2.5, -1.5, 2.5, 1.25);
    cairo_rectangle(cairo, -2.5, 4.75, 5, 1.25);
    cairo_fill(cairo);
    cairo_arc(cairo, 0, -4.75, 1.5, 0, 2 * M_PI);
    cairo_fill(cairo);
}

} // namespace

Class UIButton::classObject() {
    static ClassObject* const cls = new ClassObject("UIButton", UIView::classObject(), {});
    return cls;
}

std::shared_ptr<UIButton> UIButton::buttonWithType(UIButtonType type) {
    auto button = make<UIButton>({{0, 0}, {side, side}});
    button->_type = type;
    return button;
}

void UIButton::initWithFrame(const CGRect& frame) {
    UIView::initWithFrame(frame);
    const auto tap = std::make_shared<UITapGestureRecognizer>();
    tap->setHandler([](UIGestureRecognizer& recognizer) {
        const auto button = std::dynamic_pointer_cast<UIButton>(recognizer.view());
        if (!button || recognizer.state() != UIGestureRecognizerState::Ended)
            return;
        if (const auto handler = button->_tapHandler)
            handler(*button);
    });
    addGestureRecognizer(tap);
}

void UIButton::drawRect(const UIGraphicsContext& context) {
    const CGPoint center = bounds().center();
    cairo_identity_matrix(context.cairo);
    cairo_translate(context.cairo, std::round((context.origin.x + center.x) * context.scale),
                    std::round((context.origin.y + center.y) * context.scale));
    const double discRadius = std::round(radius * context.scale);
    if (_type == UIButtonTypeDetailDisclosure)
        drawDisclosure(context.cairo, context.scale, discRadius);
    else
        drawInfo(context.cairo, context.scale, discRadius);
}

} // namespace veyra
