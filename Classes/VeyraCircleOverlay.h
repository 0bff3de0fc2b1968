// A circle that a script put on the map. Threads as VeyraOverlay.
#pragma once

#include "Classes/VeyraOverlay.h"
#include "Platform/MapKit/MKCircle.h"

namespace veyra {

class VeyraCircleOverlay final : public MKCircle, public VeyraOverlay {
public:
    VEYRA_CLASS()
    using MKCircle::MKCircle;

    /// From "latitude" and "longitude" (degrees) and "radius" (metres); null when the object is refused, which has been
    /// reported. Throws as `VeyraOverlayFromWebScriptObject`.
    static std::shared_ptr<VeyraCircleOverlay> circleOverlayForWebScriptObject(const id& object);
    std::shared_ptr<MKOverlayPathView> overlayView() override;
};

} // namespace veyra
