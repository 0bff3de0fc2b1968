#include "Platform/MapKit/MKUserLocationView.h"

#include "Platform/MapKit/MKPinArtwork.h"
#include "Platform/MapKit/MKSpriteCache.h"

namespace veyra {

Class MKUserLocationView::classObject() {
    static auto* const cls = new ClassObject("MKUserLocationView", MKAnnotationView::classObject(), {});
    return cls;
}

std::shared_ptr<MKUserLocationView>
MKUserLocationView::viewForLocation(const std::shared_ptr<MKUserLocation>& location) {
    auto view = std::make_shared<MKUserLocationView>(Maker(), location, std::nullopt);
    view->setCanShowCallout(true);
    return view;
}

double MKUserLocationView::accuracyInMapPoints() const {
    const auto annotation = std::dynamic_pointer_cast<MKUserLocation>(this->annotation());
    return annotation ? annotation->accuracyInMapPoints() : 0;
}

CGRect MKUserLocationView::extent() const {
    return MKPinArtwork::dotExtent.offsetBy(centerOffset().x, centerOffset().y);
}

const MKSprite* MKUserLocationView::sprite(MKSpriteCache& cache) {
    return cache.spriteForLocationDot();
}

} // namespace veyra
