// The view of a circle on a map. Main queue only.
#pragma once

#include "Platform/MapKit/MKCircle.h"
#include "Platform/MapKit/MKOverlayPathView.h"

namespace veyra {

class MKCircleView final : public MKOverlayPathView {
public:
    VEYRA_CLASS()
    static std::shared_ptr<MKCircleView> initWithCircle(const std::shared_ptr<MKCircle>& circle);

    const std::shared_ptr<MKCircle>& circle() const { return _circle; }
    std::shared_ptr<const MKOverlayFigure> figure() const override;

private:
    friend class UIView;
    MKCircleView() = default;

    std::shared_ptr<MKCircle> _circle;
};

} // namespace veyra
