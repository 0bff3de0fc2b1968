// The system's own look of the user's location: a blue dot, above the circle in which the position lies. Main queue
// only.
#pragma once

#include "Platform/MapKit/MKAnnotationView.h"
#include "Platform/MapKit/MKUserLocation.h"

namespace veyra {

class MKUserLocationView final : public MKAnnotationView {
public:
    VEYRA_CLASS()
    using MKAnnotationView::MKAnnotationView;
    /// Shows a callout when it is selected.
    static std::shared_ptr<MKUserLocationView> viewForLocation(const std::shared_ptr<MKUserLocation>& location);

    /// Whether the location's accuracy is known and not perfect.
    bool showsAccuracy() const { return accuracyInMapPoints() > 0; }
    /// The radius of the circle, 0 for none.
    double accuracyInMapPoints() const;
    CGRect extent() const override;

protected:
    const MKSprite* sprite(MKSpriteCache& cache) override;
};

} // namespace veyra
