// What scripts may use of the view, and under which names.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraView.h"
#include "Platform/Foundation/MethodBinding.h"

#include <algorithm>

namespace veyra {

Class VeyraView::classObject() {
    static Class cls =
        new ClassObject("VeyraView", UIView::classObject(),
                        {
                            bindMethod<&VeyraView::listener>("listener"),
                            bindMethod<&VeyraView::setListener>("setListener:"),
                            bindMethod<&VeyraView::mapType>("mapType"),
                            bindMethod<&VeyraView::setMapType>("setMapType:"),
                            bindMethod<&VeyraView::region>("region"),
                            bindMethod<&VeyraView::setRegion>("setRegion:"),
                            bindMethod<&VeyraView::centerCoordinate>("centerCoordinate"),
                            bindMethod<&VeyraView::setCenterCoordinate>("setCenterCoordinate:"),
                            bindMethod<&VeyraView::showsUserLocation>("showsUserLocation"),
                            bindMethod<&VeyraView::setShowsUserLocation>("setShowsUserLocation:"),
                            bindMethod<&VeyraView::userLocationVisible>("userLocationVisible"),
                            bindMethod<&VeyraView::ignoreAssignment>("setUserLocationVisible:"),
                            bindMethod<&VeyraView::userLocation>("userLocation"),
                            bindMethod<&VeyraView::ignoreAssignment>("setUserLocation:"),
                            bindMethod<&VeyraView::zoomEnabled>("zoomEnabled"),
                            bindMethod<&VeyraView::setZoomEnabled>("setZoomEnabled:"),
                            bindMethod<&VeyraView::scrollEnabled>("scrollEnabled"),
                            bindMethod<&VeyraView::setScrollEnabled>("setScrollEnabled:"),
                            bindMethod<&VeyraView::longPressDropsPin>("longPressDropsPin"),
                            bindMethod<&VeyraView::setLongPressDropsPin>("setLongPressDropsPin:"),
                            bindMethod<&VeyraView::droppedPinTitle>("droppedPinTitle"),
                            bindMethod<&VeyraView::setDroppedPinTitle>("setDroppedPinTitle:"),
                            bindMethod<&VeyraView::droppedPinIdentifier>("droppedPinIdentifier"),
                            bindMethod<&VeyraView::setDroppedPinIdentifier>("setDroppedPinIdentifier:"),
                            bindMethod<&VeyraView::annotations>("annotations"),
                            bindMethod<&VeyraView::ignoreAssignment>("setAnnotations:"),
                            bindMethod<&VeyraView::selectedAnnotations>("selectedAnnotations"),
                            bindMethod<&VeyraView::ignoreAssignment>("setSelectedAnnotations:"),
                            bindMethod<&VeyraView::overlays>("overlays"),
                            bindMethod<&VeyraView::ignoreAssignment>("setOverlays:"),

                            bindMethod<&VeyraView::log>("log:"),
                            bindMethod<&VeyraView::setRegionAnimated>("setRegion:animated:"),
                            bindMethod<&VeyraView::regionThatFits>("regionThatFits:"),
                            bindMethod<&VeyraView::setCenterCoordinateAnimated>("setCenterCoordinate:animated:"),
                            bindMethod<&VeyraView::convertCoordinateToPoint>("convertCoordinateToPoint:"),
                            bindMethod<&VeyraView::convertPointToCoordinate>("convertPointToCoordinate:"),
                            bindMethod<&VeyraView::convertRegionToRect>("convertRegionToRect:"),
                            bindMethod<&VeyraView::convertRectToRegion>("convertRectToRegion:"),
                            bindMethod<&VeyraView::addAnnotation>("addAnnotation:"),
                            bindMethod<&VeyraView::addAnnotations>("addAnnotations:"),
                            bindMethod<&VeyraView::removeAnnotation>("removeAnnotation:"),
                            bindMethod<&VeyraView::removeAnnotations>("removeAnnotations:"),
                            bindMethod<&VeyraView::selectAnnotationAnimated>("selectAnnotation:animated:"),
                            bindMethod<&VeyraView::deselectAnnotationAnimated>("deselectAnnotation:animated:"),
                            bindMethod<&VeyraView::addOverlay>("addOverlay:"),
                            bindMethod<&VeyraView::addOverlays>("addOverlays:"),
                            bindMethod<&VeyraView::removeOverlay>("removeOverlay:"),
                            bindMethod<&VeyraView::removeOverlays>("removeOverlays:"),
                            bindMethod<&VeyraView::insertOverlayAtIndex>("insertOverlay:atIndex:"),
                            bindMethod<&VeyraView::exchangeOverlayAtIndexWithOverlayAtIndex>(
                                "exchangeOverlayAtIndex:withOverlayAtIndex:"),
                            bindMethod<&VeyraView::insertOverlayAboveOverlay>("insertOverlay:aboveOverlay:"),
                            bindMethod<&VeyraView::insertOverlayBelowOverlay>("insertOverlay:belowOverlay:"),

                            bindMethod<&VeyraView::allow>("allow"),
                            bindMethod<&VeyraView::deny>("deny"),
                            bindMethod<&VeyraView::denyOnlyThisRequest>("denyOnlyThisRequest"),
                            bindMethod<&VeyraView::shouldClearCache>("shouldClearCache"),
                        },
                        WebScripting{.webScriptNameForKey = webScriptNameForKey,
                                     .isKeyExcludedFromWebScript = isKeyExcludedFromWebScript,
                                     .webScriptNameForSelector = webScriptNameForSelector,
                                     .isSelectorExcludedFromWebScript = isSelectorExcludedFromWebScript,
                                     .numericMethods = numericMethods});
    return cls;
}

const std::vector<NSString>& VeyraView::scriptingKeys() {
    static const auto* keys = new std::vector<NSString>{
        kVeyraEventsListener,
        kVeyraType,
        kVeyraRegion,
        kVeyraCenterCoordinate,
        kVeyraShowsUserLocation,
        kVeyraUserLocationVisible,
        kVeyraUserLocation,
        kVeyraZoomEnabled,
        kVeyraScrollEnabled,
        kVeyraLongPressDropsPin,
        kVeyraDroppedPinTitle,
        kVeyraDroppedPinIdentifier,
        kVeyraAnnotations,
        kVeyraSelectedAnnotations,
        kVeyraOverlays,
    };
    return *keys;
}

const std::vector<std::pair<SEL, NSString>>& VeyraView::scriptSelectors() {
    static const auto* selectors = new std::vector<std::pair<SEL, NSString>>{
        {"log:", "log"},
        {"setRegion:animated:", kVeyraSetRegion},
        {"regionThatFits:", kVeyraRegionThatFits},
        {"setCenterCoordinate:animated:", kVeyraSetCenterCoordinate},
        {"convertCoordinateToPoint:", kVeyraConvertCoordinateToPoint},
        {"convertPointToCoordinate:", kVeyraConvertPointToCoordinate},
        {"convertRegionToRect:", kVeyraConvertRegionToRect},
        {"convertRectToRegion:", kVeyraConvertRectToRegion},
        {"addAnnotation:", kVeyraAddAnnotation},
        {"addAnnotations:", kVeyraAddAnnotations},
        {"removeAnnotation:", kVeyraRemoveAnnotation},
        {"removeAnnotations:", kVeyraRemoveAnnotations},
        {"selectAnnotation:animated:", kVeyraSelectAnnotation},
        {"deselectAnnotation:animated:", kVeyraDeselectAnnotation},
        {"addOverlay:", kVeyraAddOverlay},
        {"addOverlays:", kVeyraAddOverlays},
        {"removeOverlay:", kVeyraRemoveOverlay},
        {"removeOverlays:", kVeyraRemoveOverlays},
        {"insertOverlay:atIndex:", kVeyraInsertOverlayAtIndex},
        {"exchangeOverlayAtIndex:withOverlayAtIndex:", kVeyraExchangeOverlays},
        {"insertOverlay:aboveOverlay:", kVeyraInsertOverlayAboveOverlay},
        {"insertOverlay:belowOverlay:", kVeyraInsertOverlayBelowOverlay},
    };
    return *selectors;
}

std::optional<NSString> VeyraView::webScriptNameForKey(const char* key) {
    const NSString name(key);
    const auto& keys = scriptingKeys();
    return std::find(keys.begin(), keys.end(), name) == keys.end() ? std::nullopt : std::optional(name);
}

bool VeyraView::isKeyExcludedFromWebScript(const char* key) {
    return !webScriptNameForKey(key);
}

std::optional<NSString> VeyraView::webScriptNameForSelector(SEL selector) {
    for (const auto& [known, name] : scriptSelectors())
        if (known == selector)
            return name;
    return std::nullopt;
}

bool VeyraView::isSelectorExcludedFromWebScript(SEL selector) {
    return !webScriptNameForSelector(selector);
}

id VeyraView::callerName(SEL selector) {
    const auto name = webScriptNameForSelector(selector);
    return name ? id(*name) : id();
}

} // namespace veyra
