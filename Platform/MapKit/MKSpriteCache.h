// The sprites that the views of a map share: one for each picture, pin colour and look of the system, made for one
// scale of the display. Owned by the map's annotations; main queue only.
#pragma once

#include "Platform/MapKit/MKPinAnnotationView.h"
#include "Platform/MapKit/MKSprite.h"

#include <array>
#include <unordered_map>

namespace veyra {

class MKSpriteCache {
public:
    /// The picture at its own pixels where the scales are the same, else resampled to its size in points. Null for a
    /// picture of more than 4096 device pixels a side. Kept as long as somebody has it.
    std::shared_ptr<const MKSprite> spriteForImage(const std::shared_ptr<UIImage>& image, double deviceScale);
    std::shared_ptr<const MKSprite> spriteForPin(MKPinAnnotationColor color, double deviceScale);
    /// The blue dot of the user's location.
    std::shared_ptr<const MKSprite> spriteForLocationDot(double deviceScale);

private:
    void useScale(double deviceScale);

    double _deviceScale = 0;
    std::unordered_map<const UIImage*, std::weak_ptr<const MKSprite>> _images; // a sprite keeps its image
    size_t _imagesAfterSweep = 0;
    std::array<std::shared_ptr<const MKSprite>, 3> _pins;
    std::shared_ptr<const MKSprite> _dot;
};

} // namespace veyra
