// How an overlay is drawn, as its script object says. Shared by reference; written before it is shared, never after:
// then any thread may read it.
#pragma once

#include "Platform/MapKit/MKOverlayPathView.h"
#include "Platform/WebKit/WebScriptObject.h"

namespace veyra {

/// A fresh record has no colours, zeros and no dash pattern; `PathOptionsFromWebScriptObject` sets the defaults that
/// scripts get.
class VeyraOverlayPathOptions final : public NSObject {
public:
    VEYRA_CLASS()

    /// Of the outline, alpha included.
    const std::shared_ptr<UIColor>& strokeColor() const { return _strokeColor; }
    void setStrokeColor(const std::shared_ptr<UIColor>& color) { _strokeColor = color; }
    /// Of the interior, alpha included; null for no fill.
    const std::shared_ptr<UIColor>& fillColor() const { return _fillColor; }
    void setFillColor(const std::shared_ptr<UIColor>& color) { _fillColor = color; }
    /// Points.
    double lineWidth() const { return _lineWidth; }
    void setLineWidth(double width) { _lineWidth = width; }
    CGLineJoin lineJoin() const { return _lineJoin; }
    void setLineJoin(CGLineJoin join) { _lineJoin = join; }
    CGLineCap lineCap() const { return _lineCap; }
    void setLineCap(CGLineCap cap) { _lineCap = cap; }
    double miterLimit() const { return _miterLimit; }
    void setMiterLimit(double limit) { _miterLimit = limit; }
    /// Points into the dash pattern.
    double lineDashPhase() const { return _lineDashPhase; }
    void setLineDashPhase(double phase) { _lineDashPhase = phase; }
    /// The script's values as they are; none for a solid line.
    const std::optional<NSArray>& lineDashPattern() const { return _lineDashPattern; }
    void setLineDashPattern(std::optional<NSArray> pattern) { _lineDashPattern = std::move(pattern); }

private:
    std::shared_ptr<UIColor> _strokeColor, _fillColor;
    double _lineWidth = 0;
    CGLineJoin _lineJoin = kCGLineJoinMiter;
    CGLineCap _lineCap = kCGLineCapButt;
    double _miterLimit = 0;
    double _lineDashPhase = 0;
    std::optional<NSArray> _lineDashPattern;
};

/// Reads the drawing keys of an overlay's script object, in a fixed order; an absent key takes its default: a black
/// line of width 0 with round corners and ends, a miter limit of 10, no dashes and no fill. Numbers are taken in single
/// precision and not checked. Throws NSException for a value without the conversion that is needed and a colour of
/// fewer than six characters, std::bad_alloc for a dash pattern that is too long to keep. Web thread; **reading the
/// keys can run arbitrary script**.
std::shared_ptr<VeyraOverlayPathOptions> PathOptionsFromWebScriptObject(WebScriptObject& object);

/// Copies all eight options to the view. Main queue.
void VeyraUpdateOverlayViewWithPathOptions(MKOverlayPathView& view, const VeyraOverlayPathOptions& options);

} // namespace veyra
