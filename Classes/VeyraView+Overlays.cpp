// The script side of overlays: what is refused is refused here, on the script's thread. The map shows no overlays yet,
// so that its registry is empty and every identifier unknown.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/NSLog.h"

namespace veyra {

namespace {

// Each is true when an overlay can be made of the object; what is refused has been reported.

bool validateCircle(const id& overlay) {
    return VeyraValidateWebScriptObject(overlay, nullptr, "Constructing circle",
                                        {kOstrelOverlayLatitude, kOstrelOverlayLongitude, kOstrelOverlayRadius});
}

bool validatePath(const id& overlay, const char* caller) {
    if (!VeyraValidateWebScriptObject(overlay, nullptr, caller, {kOstrelOverlayCoordinates}))
        return false;
    const id length = overlay.object()->valueForKey(kOstrelOverlayCoordinates).valueForKey("length");
    if (!length.isNumber() || length.unsignedIntegerValue() % 2 == 0)
        return true;
    WebScriptObject::throwException(
        NSStringWithFormat("%s, number of values in coordinates array must be even", {caller}));
    return false;
}

bool validateOverlay(const id& overlay) {
    if (!VeyraValidateWebScriptObject(overlay, nullptr, "Creating overlay", {kOstrelOverlayType, kOstrelOverlayId}))
        return false;
    const id type = overlay.object()->valueForKey(kOstrelOverlayType);
    if (type.isEqualToString("circle"))
        return validateCircle(overlay);
    if (type.isEqualToString("polyline"))
        return validatePath(overlay, "Constructing polyline");
    return type.isEqualToString("polygon") && validatePath(overlay, "Constructing polygon");
}

} // namespace

void VeyraView::addOverlay(const id& overlay) {
    validateOverlay(overlay);
}

void VeyraView::addOverlays(const id& overlays) {
    if (!VeyraValidateWebScriptObject(overlays, nullptr, callerName("addOverlays:"), {"length"}))
        return;
    forEachElement(overlays, validateOverlay);
}

void VeyraView::removeOverlay(const id& identifier) {
    logVerbose("Map does not have overlay with Id '%@'; cannot remove", identifier);
}

void VeyraView::removeOverlays(const id& identifiers) {
    if (!VeyraValidateWebScriptObject(identifiers, nullptr, callerName("removeOverlays:"), {"length"}))
        return;
    forEachElement(identifiers, [this](const id& identifier) { removeOverlay(identifier); });
}

void VeyraView::insertOverlayAtIndex(const id& overlay, const id& index) {
    if (validateOverlay(overlay))
        index.unsignedIntegerValue(); // what is no number is refused
}

void VeyraView::exchangeOverlayAtIndexWithOverlayAtIndex(const id& first, const id& second) {
    first.unsignedIntegerValue();
    second.unsignedIntegerValue();
}

void VeyraView::insertOverlayAboveOverlay(const id& overlay, const id&) {
    validateOverlay(overlay);
}

void VeyraView::insertOverlayBelowOverlay(const id& overlay, const id&) {
    validateOverlay(overlay);
}

id VeyraView::overlays() const {
    return id(NSArray());
}

} // namespace veyra
