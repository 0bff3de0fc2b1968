// How a path is drawn, with everything resolved that does not depend on the scale: plain values that a drawing thread
// can hold. Values that cannot be drawn as they are have been replaced here: colours are clamped, a dash pattern that
// the platform would not draw is none.
#pragma once

#include "Platform/Foundation/id.h"
#include "Platform/UIKit/CGLineStyle.h"

#include <optional>
#include <vector>

namespace veyra {

class UIColor;

struct MKPathStyle {
    /// Components from 0 to 1.
    struct Color {
        double red = 0, green = 0, blue = 0, alpha = 1;
        static std::optional<Color> of(const std::shared_ptr<UIColor>& color);
    };

    /// The widest line, in points.
    static constexpr double maximumWidth = 4096;

    std::optional<Color> stroke; ///< none: no line
    std::optional<Color> fill;   ///< none: no area
    double width = 0;            ///< points; 0 for the width of a road
    CGLineJoin join = kCGLineJoinMiter;
    CGLineCap cap = kCGLineCapButt;
    double miterLimit = 10;
    std::vector<double> dashes; ///< points, an even number of them, the first drawn; empty for a solid line
    double dashPhase = 0;       ///< points, from 0 to the length of the pattern

    /// A width that is negative or no number draws no line; a wider one than the widest counts as that.
    void setStroke(const std::shared_ptr<UIColor>& color, double lineWidth);
    /// A pattern that is empty, has an entry that is no number or is negative, or adds up to 0, leaves the line solid.
    void setDashes(const std::optional<NSArray>& pattern, double phase);

    /// The width in points of a line that is shown at `scale` (points a map point) and whose shape has its middle at
    /// the latitude: that of a road, 10 metres on the ground but 2 to 24 points, when the style gives none.
    double widthAt(double scale, double latitude) const;
};

} // namespace veyra
