// The pictures that the map itself brings for annotations: pins in three colours and the dot of the user's location.
// Drawn as outlines at the display's scale, so that they are crisp at every one. Main queue only.
#pragma once

#include "Platform/MapKit/MKPinAnnotationView.h"
#include "Platform/MapKit/MKSprite.h"

namespace veyra {

struct MKPinArtwork {
    /// A pin around its tip, and the dot around its middle, in points.
    static constexpr CGRect extent{{-13, -36}, {26, 36}};
    static constexpr CGRect dotExtent{{-10, -10}, {20, 20}};

    static std::shared_ptr<const MKSprite> pin(MKPinAnnotationColor color, double deviceScale);
    static std::shared_ptr<const MKSprite> locationDot(double deviceScale);
};

} // namespace veyra
