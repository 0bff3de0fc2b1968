// Small text on a map that can be read on light, dark and coloured ground: dark letters with a light rim. Main queue
// only.
#pragma once

#include "Platform/UIKit/CGGeometry.h"

#include <cairo.h>

#include <string>

namespace veyra {

class MKQuietText {
public:
    static constexpr double fontSize = 10; ///< points
    static constexpr double rim = 1.5;     ///< points

    /// One line, ellipsised at its end when it is wider than `maximumWidth` points.
    MKQuietText(std::string text, double maximumWidth, bool isUnderlined = false);

    /// In points, the rim included.
    CGSize size() const { return _size; }
    /// Draws the text with its corner at `origin`, in user space of points.
    void draw(cairo_t* cairo, CGPoint origin) const;

private:
    const std::string _text;
    const double _maximumWidth;
    const bool _isUnderlined;
    CGSize _size;
};

/// The colours of what is drawn so.
void setQuietRimColor(cairo_t* cairo);
void setQuietInkColor(cairo_t* cairo);

} // namespace veyra
