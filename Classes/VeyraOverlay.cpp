#include "Classes/VeyraOverlay.h"

#include "Classes/VeyraCircleOverlay.h"
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraPolygonOverlay.h"
#include "Classes/VeyraPolylineOverlay.h"
#include "Classes/WebScriptObject+VeyraExtras.h"

namespace veyra {

std::shared_ptr<VeyraOverlay> VeyraOverlayFromWebScriptObject(const id& object) {
    if (!VeyraValidateWebScriptObject(object, nullptr, "Creating overlay", {kOstrelOverlayType, kOstrelOverlayId}))
        return nullptr;
    const id type = object.valueForKey(kOstrelOverlayType);
    if (type.isEqualToString("circle"))
        return VeyraCircleOverlay::circleOverlayForWebScriptObject(object);
    if (type.isEqualToString("polyline"))
        return VeyraPolylineOverlay::polylineOverlayForWebScriptObject(object);
    if (type.isEqualToString("polygon"))
        return VeyraPolygonOverlay::polygonOverlayForWebScriptObject(object);
    return nullptr;
}

} // namespace veyra
