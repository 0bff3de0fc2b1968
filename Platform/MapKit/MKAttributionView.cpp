#include "Platform/MapKit/MKAttributionView.h"

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
    _text = attribution.text.empty() ? MKQuietText()
                                     : MKQuietText(attribution.text, maximumWidth, !attribution.url.empty());
    setHidden(attribution.text.empty());
    setFrame({frame().origin, _text.size()});
    setNeedsDisplay();
}

void MKAttributionView::drawRect(const UIGraphicsContext& context) {
    _text.draw(context, {0, 0}, _ink);
}

} // namespace veyra
