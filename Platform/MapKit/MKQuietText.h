// Small text on a map that can be read on any ground: dark letters with a light rim where the ground is mostly light,
// and light ones with a dark rim elsewhere. Main queue only.
#pragma once

#include "Platform/UIKit/UIView.h"

#include <cairo.h>

#include <memory>
#include <string>

namespace veyra {

enum class MKQuietInk : uint8_t { Dark, Light };

class MKQuietText {
public:
    static constexpr double fontSize = 10; ///< points
    static constexpr double rim = 1.5;     ///< points

    MKQuietText() = default;
    /// One line, ellipsised at its end when it is wider than `maximumWidth` points.
    MKQuietText(std::string text, double maximumWidth, bool isUnderlined = false);

    /// In points, the rim included.
    CGSize size() const { return _size; }
    /// Draws the text with its corner at the pixel nearest to `origin` (points of the view). Its picture is kept for
    /// the next time.
    void draw(const UIGraphicsContext& context, CGPoint origin, MKQuietInk ink) const;

private:
    struct Destroy {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    };
    using Surface = std::unique_ptr<cairo_surface_t, Destroy>;
    Surface makePicture(double scale, MKQuietInk ink) const;

    std::string _text;
    double _maximumWidth = 0;
    bool _isUnderlined = false;
    CGSize _size;
    mutable Surface _picture;
    mutable double _pictureScale = 0; // device pixels a point
    mutable MKQuietInk _pictureInk = MKQuietInk::Dark;
};

/// The colours of what is drawn so.
void setQuietRimColor(cairo_t* cairo, MKQuietInk ink);
void setQuietInkColor(cairo_t* cairo, MKQuietInk ink);

} // namespace veyra
