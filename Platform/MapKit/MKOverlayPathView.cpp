#include "Platform/MapKit/MKOverlayPathView.h"

#include "Platform/MapKit/MKPathStyle.h"

namespace veyra {

Class MKOverlayPathView::classObject() {
    static auto* const cls = new ClassObject("MKOverlayPathView", MKOverlayView::classObject(), {});
    return cls;
}

MKPathStyle MKOverlayPathView::style() const {
    MKPathStyle style;
    style.setStroke(_strokeColor, _lineWidth);
    style.fill = MKPathStyle::Color::of(_fillColor);
    style.join = _lineJoin;
    style.cap = _lineCap;
    style.miterLimit = _miterLimit >= 1 ? _miterLimit : 1; // what is no number too
    style.setDashes(_lineDashPattern, _lineDashPhase);
    return style;
}

} // namespace veyra
