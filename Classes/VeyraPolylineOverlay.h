// A polyline that a script put on the map. Threads as VeyraOverlay.
#pragma once

#include "Classes/VeyraOverlay.h"
#include "Platform/MapKit/MKPolyline.h"

namespace veyra {

class VeyraPolylineOverlay final : public MKPolyline, public VeyraOverlay {
public:
    VEYRA_CLASS()
    using MKPolyline::MKPolyline;

    /// From "coordinates", a flat array of latitudes and longitudes in degrees; null when the object is refused, which
    /// has been reported. Throws as `VeyraOverlayFromWebScriptObject`.
    static std::shared_ptr<VeyraPolylineOverlay> polylineOverlayForWebScriptObject(const id& object);
    std::shared_ptr<MKOverlayPathView> overlayView() override;
};

} // namespace veyra
