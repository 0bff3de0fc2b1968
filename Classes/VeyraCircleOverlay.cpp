#include "Classes/VeyraCircleOverlay.h"

#include "Classes/VeyraConstants.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/MapKit/MKCircleView.h"

namespace veyra {

Class VeyraCircleOverlay::classObject() {
    static Class cls = new ClassObject("VeyraCircleOverlay", MKCircle::classObject(), {});
    return cls;
}

std::shared_ptr<VeyraCircleOverlay> VeyraCircleOverlay::circleOverlayForWebScriptObject(const id& object) {
    if (!VeyraValidateWebScriptObject(object, nullptr, "Constructing circle",
                                      {kOstrelOverlayLatitude, kOstrelOverlayLongitude, kOstrelOverlayRadius}))
        return nullptr;
    const auto script = object.as<WebScriptObject>();
    const double latitude = script->valueForKey(kOstrelOverlayLatitude).doubleValue();
    const double longitude = script->valueForKey(kOstrelOverlayLongitude).doubleValue();
    const double radius = script->valueForKey(kOstrelOverlayRadius).doubleValue();
    auto circle = std::make_shared<VeyraCircleOverlay>(CLLocationCoordinate2DMake(latitude, longitude), radius);
    circle->setIdentifier(script->valueForKey(kOstrelOverlayId));
    circle->setPathOptions(PathOptionsFromWebScriptObject(*script));
    return circle;
}

std::shared_ptr<MKOverlayPathView> VeyraCircleOverlay::overlayView() {
    auto view = MKCircleView::initWithCircle(std::static_pointer_cast<VeyraCircleOverlay>(shared_from_this()));
    VeyraUpdateOverlayViewWithPathOptions(*view, *pathOptions());
    return view;
}

} // namespace veyra
