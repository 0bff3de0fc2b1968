// A view of an overlay that is a path: filled first, then stroked; a colour that is none skips its step. A new view has
// no colours, a line of width 0, mitred corners up to a limit of 10, butt ends and no dashes. What is set after the map
// has taken the view is not seen. Main queue only.
#pragma once

#include "Platform/Foundation/id.h"
#include "Platform/MapKit/MKOverlayView.h"
#include "Platform/UIKit/CGLineStyle.h"
#include "Platform/UIKit/UIColor.h"

#include <optional>

namespace veyra {

struct MKPathStyle;

class MKOverlayPathView : public MKOverlayView {
public:
    VEYRA_CLASS()

    /// Null for no line.
    const std::shared_ptr<UIColor>& strokeColor() const { return _strokeColor; }
    void setStrokeColor(const std::shared_ptr<UIColor>& color) { _strokeColor = color; }
    /// Null for no area.
    const std::shared_ptr<UIColor>& fillColor() const { return _fillColor; }
    void setFillColor(const std::shared_ptr<UIColor>& color) { _fillColor = color; }
    /// Points; 0 is the width of a road at the map's scale: 10 metres on the ground, but 2 to 24 points. A width that
    /// is negative or no number draws no line.
    double lineWidth() const { return _lineWidth; }
    void setLineWidth(double width) { _lineWidth = width; }
    CGLineJoin lineJoin() const { return _lineJoin; }
    void setLineJoin(CGLineJoin join) { _lineJoin = join; }
    CGLineCap lineCap() const { return _lineCap; }
    void setLineCap(CGLineCap cap) { _lineCap = cap; }
    /// The longest spike of a mitred corner, as a multiple of the line's width; a longer one is cut off.
    double miterLimit() const { return _miterLimit; }
    void setMiterLimit(double limit) { _miterLimit = limit; }
    /// Points into the dash pattern at which the line begins.
    double lineDashPhase() const { return _lineDashPhase; }
    void setLineDashPhase(double phase) { _lineDashPhase = phase; }
    /// Lengths in points, drawn and left out in turn; none for a solid line. A pattern that is empty, has an entry that
    /// is no number or is negative, or adds up to 0, is a solid line too.
    const std::optional<NSArray>& lineDashPattern() const { return _lineDashPattern; }
    void setLineDashPattern(const std::optional<NSArray>& pattern) { _lineDashPattern = pattern; }

protected:
    friend class UIView;
    MKOverlayPathView() = default;
    MKPathStyle style() const;

private:
    std::shared_ptr<UIColor> _strokeColor, _fillColor;
    double _lineWidth = 0;
    CGLineJoin _lineJoin = kCGLineJoinMiter;
    CGLineCap _lineCap = kCGLineCapButt;
    double _miterLimit = 10;
    double _lineDashPhase = 0;
    std::optional<NSArray> _lineDashPattern;
};

} // namespace veyra
