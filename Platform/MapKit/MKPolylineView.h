// The view of a polyline on a map. It draws the line alone, whatever the fill colour. Main queue only.
#pragma once

#include "Platform/MapKit/MKOverlayPathView.h"
#include "Platform/MapKit/MKPolyline.h"

namespace veyra {

class MKPolylineView final : public MKOverlayPathView {
public:
    VEYRA_CLASS()
    static std::shared_ptr<MKPolylineView> initWithPolyline(const std::shared_ptr<MKPolyline>& polyline);

    const std::shared_ptr<MKPolyline>& polyline() const { return _polyline; }
    std::shared_ptr<const MKOverlayFigure> figure() const override;

private:
    friend class UIView;
    MKPolylineView() = default;

    std::shared_ptr<MKPolyline> _polyline;
};

} // namespace veyra
