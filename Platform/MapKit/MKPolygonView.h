// The view of a polygon on a map. Main queue only.
#pragma once

#include "Platform/MapKit/MKOverlayPathView.h"
#include "Platform/MapKit/MKPolygon.h"

namespace veyra {

class MKPolygonView final : public MKOverlayPathView {
public:
    VEYRA_CLASS()
    static std::shared_ptr<MKPolygonView> initWithPolygon(const std::shared_ptr<MKPolygon>& polygon);

    const std::shared_ptr<MKPolygon>& polygon() const { return _polygon; }
    std::shared_ptr<const MKOverlayFigure> figure() const override;

private:
    friend class UIView;
    MKPolygonView() = default;

    std::shared_ptr<MKPolygon> _polygon;
};

} // namespace veyra
