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
    /// Device pixels a point; 0 before any was set.
    double deviceScale() const { return _deviceScale; }
    /// Forgets the sprites of another scale.
    void setDeviceScale(double deviceScale);

    /// The picture at its own pixels where the scales are the same, else resampled to its size in points. Null for a
    /// picture of more than 4096 device pixels a side. Kept as long as somebody has it.
    std::shared_ptr<const MKSprite> spriteForImage(const std::shared_ptr<UIImage>& image);
    /// The cache keeps it.
    const MKSprite* spriteForPin(MKPinAnnotationColor color);
    /// The blue dot of the user's location. The cache keeps it.
    const MKSprite* spriteForLocationDot();

private:
    double _deviceScale = 0;
    std::unordered_map<const UIImage*, std::weak_ptr<const MKSprite>> _images; // a sprite keeps its image
    size_t _imagesAfterSweep = 0;
    std::array<std::shared_ptr<const MKSprite>, 3> _pins;
    std::shared_ptr<const MKSprite> _dot;
};

} // namespace veyra
