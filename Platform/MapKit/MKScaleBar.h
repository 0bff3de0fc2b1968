// Shows how long a round distance is on the map: 1, 2 or 5 times a power of ten metres. Main queue only; owned by its
// map view.
#pragma once

#include "Platform/MapKit/MKQuietText.h"

#include <string>

namespace veyra {

/// A round distance and its length on the map.
struct MKScale {
    double meters = 0;
    double width = 0; ///< points

    /// The longest one that is at most `maximumWidth` points long where a point is `metersPerPoint` metres. Both are
    /// above 0 and finite.
    static MKScale fitting(double metersPerPoint, double maximumWidth);
    /// "500 m", "20 km", "1 cm".
    std::string text() const;
};

class MKScaleBar final : public UIView {
public:
    VEYRA_CLASS()
    static constexpr double height = 24; ///< points

    const MKScale& scale() const { return _scale; }
    /// Changes the view's size with the scale; its origin stays.
    void setScale(const MKScale& scale);

    /// The map says what the ground is like before this is drawn with it.
    void setInk(MKQuietInk ink) { _ink = ink; }

    void drawRect(const UIGraphicsContext& context) override;

private:
    MKScale _scale;
    MKQuietText _text;
    MKQuietInk _ink = MKQuietInk::Dark;
};

} // namespace veyra
