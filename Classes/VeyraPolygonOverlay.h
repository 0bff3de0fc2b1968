// A polygon that a script put on the map. Threads as VeyraOverlay.
#pragma once

#include "Classes/VeyraOverlay.h"
#include "Platform/MapKit/MKPolygon.h"

namespace veyra {

class VeyraPolygonOverlay final : public MKPolygon, public VeyraOverlay {
public:
    VEYRA_CLASS()
    using MKPolygon::MKPolygon;

    /// From "coordinates", a flat array of latitudes and longitudes in degrees; null when the object is refused, which
    /// has been reported. Throws as `VeyraOverlayFromWebScriptObject`.
    static std::shared_ptr<VeyraPolygonOverlay> polygonOverlayForWebScriptObject(const id& object);
    std::shared_ptr<MKOverlayPathView> overlayView() override;
};

} // namespace veyra
