// Says whose data a map shows, underlined when it leads somewhere. Main queue only; owned by its map view.
#pragma once

#include "Platform/MapKit/MKQuietText.h"
#include "Platform/MapKit/MKTileAttribution.h"
#include "Platform/UIKit/UIView.h"

namespace veyra {

class MKAttributionView final : public UIView {
public:
    VEYRA_CLASS()

    const MKTileAttribution& attribution() const { return _attribution; }
    /// Changes the view's size to what the text needs, at most `maximumWidth` points; its origin stays.
    void setAttribution(const MKTileAttribution& attribution, double maximumWidth);

    /// The map says what the ground is like before this is drawn with it.
    void setInk(MKQuietInk ink) { _ink = ink; }

    void drawRect(const UIGraphicsContext& context) override;

private:
    MKTileAttribution _attribution;
    double _maximumWidth = 0;
    MKQuietText _text;
    MKQuietInk _ink = MKQuietInk::Dark;
};

} // namespace veyra
