#include "Platform/MapKit/MKAttributionView.h"

#include "Platform/MapKit/MKQuietText.h"

namespace veyra {

Class MKAttributionView::classObject() {
    static auto* const cls = new ClassObject("MKAttributionView", UIView::classObject(), {});
    return cls;
}

void MKAttributionView::setAttribution(const MKTileAttribution& attribution, double maximumWidth) {
    if (attribution == _attribution && maximumWidth == _maximumWidth) {
        return;
    }
    _attribution = attribution;
    _maximumWidth = maximumWidth;
    const CGSize size = attribution.text.empty() ? CGSize() : MKQuietText(attribution.text, maximumWidth).size();
    setHidden(attribution.text.empty());
    setFrame({frame().origin, size});
    setNeedsDisplay();
}

void MKAttributionView::drawRect(const UIGraphicsContext& context) {
    MKQuietText(_attribution.text, _maximumWidth, !_attribution.url.empty()).draw(context.cairo, {0, 0});
}

} // namespace veyra
