#include "Platform/MapKit/MKPinAnnotationView.h"

#include "Platform/MapKit/MKPinArtwork.h"
#include "Platform/MapKit/MKSpriteCache.h"

namespace veyra {

Class MKPinAnnotationView::classObject() {
    static auto* const cls = new ClassObject("MKPinAnnotationView", MKAnnotationView::classObject(), {});
    return cls;
}

std::shared_ptr<MKPinAnnotationView>
MKPinAnnotationView::initWithAnnotationReuseIdentifier(const std::shared_ptr<MKAnnotation>& annotation,
                                                       const std::optional<NSString>& reuseIdentifier) {
    return std::make_shared<MKPinAnnotationView>(Maker(), annotation, reuseIdentifier);
}

void MKPinAnnotationView::setPinColor(uint64_t color) {
    const auto known =
        color <= MKPinAnnotationColorPurple ? static_cast<MKPinAnnotationColor>(color) : MKPinAnnotationColorRed;
    if (known != _pinColor) {
        willChangeLook();
        _pinColor = known;
        didChangeLook();
    }
}

CGRect MKPinAnnotationView::extent() const {
    return MKPinArtwork::extent.offsetBy(centerOffset().x, centerOffset().y);
}

const MKSprite* MKPinAnnotationView::sprite(MKSpriteCache& cache) {
    return cache.spriteForPin(_pinColor);
}

} // namespace veyra
