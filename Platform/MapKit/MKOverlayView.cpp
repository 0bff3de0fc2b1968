#include "Platform/MapKit/MKOverlayView.h"

namespace veyra {

Class MKOverlayView::classObject() {
    static auto* const cls = new ClassObject("MKOverlayView", UIView::classObject(), {});
    return cls;
}

std::shared_ptr<MKOverlayView> MKOverlayView::initWithOverlay(const std::shared_ptr<MKOverlay>& overlay) {
    return makeFor<MKOverlayView>(overlay);
}

} // namespace veyra
