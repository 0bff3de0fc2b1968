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

    void drawRect(const UIGraphicsContext& context) override;

private:
    MKTileAttribution _attribution;
    double _maximumWidth = 0;
    MKQuietText _text;
};

} // namespace veyra
