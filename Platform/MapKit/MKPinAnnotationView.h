// A pin, its tip on the coordinate. Main queue only.
#pragma once

#include "Platform/MapKit/MKAnnotationView.h"

namespace veyra {

/// With the platform's numbers.
enum MKPinAnnotationColor : uint8_t {
    MKPinAnnotationColorRed = 0,
    MKPinAnnotationColorGreen = 1,
    MKPinAnnotationColorPurple = 2,
};

class MKPinAnnotationView final : public MKAnnotationView {
public:
    VEYRA_CLASS()
    using MKAnnotationView::MKAnnotationView;

    static std::shared_ptr<MKPinAnnotationView>
    initWithAnnotationReuseIdentifier(const std::shared_ptr<MKAnnotation>& annotation,
                                      const std::optional<NSString>& reuseIdentifier);

    /// Default red. What is none of the colours is red.
    MKPinAnnotationColor pinColor() const { return _pinColor; }
    void setPinColor(uint64_t color);
    /// Whether the pin falls onto the map when it is put there. Default false.
    bool animatesDrop() const { return _animatesDrop; }
    void setAnimatesDrop(bool animates) { _animatesDrop = animates; }

    CGRect extent() const override;

protected:
    const MKSprite* sprite(MKSpriteCache& cache) override;

private:
    MKPinAnnotationColor _pinColor = MKPinAnnotationColorRed;
    bool _animatesDrop = false;
};

} // namespace veyra
