// Which names scripts may use.
#include "Tests/Classes/ViewFixture.h"

#include <algorithm>

namespace veyra {

using Surface = MapFixture;

namespace {

const std::vector<std::string> propertyNames = {
    "listener",
    "mapType",
    "region",
    "centerCoordinate",
    "showsUserLocation",
    "userLocationVisible",
    "userLocation",
    "zoomEnabled",
    "scrollEnabled",
    "longPressDropsPin",
    "droppedPinTitle",
    "droppedPinIdentifier",
    "annotations",
    "selectedAnnotations",
    "overlays",
};

const std::vector<std::pair<std::string, std::string>> methodNames = {
    {"log:", "log"},
    {"setRegion:animated:", "setRegion"},
    {"regionThatFits:", "regionThatFits"},
    {"setCenterCoordinate:animated:", "setCenterCoordinate"},
    {"convertCoordinateToPoint:", "convertCoordinateToPoint"},
    {"convertPointToCoordinate:", "convertPointToCoordinate"},
    {"convertRegionToRect:", "convertRegionToRect"},
    {"convertRectToRegion:", "convertRectToRegion"},
    {"addAnnotation:", "addAnnotation"},
    {"addAnnotations:", "addAnnotations"},
    {"removeAnnotation:", "removeAnnotation"},
    {"removeAnnotations:", "removeAnnotations"},
    {"selectAnnotation:animated:", "selectAnnotation"},
    {"deselectAnnotation:animated:", "deselectAnnotation"},
    {"addOverlay:", "addOverlay"},
    {"addOverlays:", "addOverlays"},
    {"removeOverlay:", "removeOverlay"},
    {"removeOverlays:", "removeOverlays"},
    {"insertOverlay:atIndex:", "insertOverlayAtIndex"},
    {"exchangeOverlayAtIndex:withOverlayAtIndex:", "exchangeOverlays"},
    {"insertOverlay:aboveOverlay:", "insertOverlayAboveOverlay"},
    {"insertOverlay:belowOverlay:", "insertOverlayBelowOverlay"},
};

std::vector<std::string> texts(const std::vector<NSString>& strings) {
    std::vector<std::string> result;
    for (const NSString& string : strings)
        result.push_back(string.utf8());
    return result;
}

} // namespace

TEST_F(Surface, FifteenPropertiesInTheirOrder) {
    EXPECT_EQ(texts(VeyraView::scriptingKeys()), propertyNames);
    EXPECT_EQ(texts(view().attributeKeys()), propertyNames);
    EXPECT_EQ(&VeyraView::scriptingKeys(), &VeyraView::scriptingKeys());
}

TEST_F(Surface, TwentyTwoSelectorsInTheirOrderWithTheirScriptNames) {
    std::vector<std::pair<std::string, std::string>> found;
    for (const auto& [selector, name] : VeyraView::scriptSelectors())
        found.emplace_back(selector.name(), name.utf8());
    EXPECT_EQ(found, methodNames);
    EXPECT_EQ(&VeyraView::scriptSelectors(), &VeyraView::scriptSelectors());
}

TEST_F(Surface, EveryPropertyKeepsItsNameAndIsNotExcluded) {
    for (const std::string& name : propertyNames) {
        const auto scriptName = VeyraView::webScriptNameForKey(name.c_str());
        ASSERT_TRUE(scriptName) << name;
        EXPECT_EQ(scriptName->utf8(), name);
        EXPECT_FALSE(VeyraView::isKeyExcludedFromWebScript(name.c_str())) << name;
    }
}

TEST_F(Surface, OtherKeysHaveNoNameAndAreExcluded) {
    for (const char* name : {"lock", "mapView", "delegate", "jsListener", "_mapType", "MapType", "", "setRegion",
                             "overlaysById", "pluginArguments", "verboseDebugLoggingEnabled"}) {
        EXPECT_FALSE(VeyraView::webScriptNameForKey(name)) << name;
        EXPECT_TRUE(VeyraView::isKeyExcludedFromWebScript(name)) << name;
        EXPECT_EQ(run("typeof map['" + std::string(name) + "']"),
                  std::string(name) == "setRegion" ? "function" : "undefined");
    }
}

TEST_F(Surface, EverySelectorIsServedByAMethodAndIsNotExcluded) {
    for (const auto& [selector, name] : methodNames) {
        const SEL sel(selector.c_str());
        const auto scriptName = VeyraView::webScriptNameForSelector(sel);
        ASSERT_TRUE(scriptName) << selector;
        EXPECT_EQ(scriptName->utf8(), name);
        EXPECT_FALSE(VeyraView::isSelectorExcludedFromWebScript(sel)) << selector;
        EXPECT_TRUE(VeyraView::classObject()->method(sel)) << selector;
        EXPECT_EQ(run("typeof map." + name), "function");
    }
}

TEST_F(Surface, OtherSelectorsHaveNoNameAndAreExcluded) {
    for (const char* selector :
         {"allow", "deny", "denyOnlyThisRequest", "shouldClearCache", "setMapType:", "mapType", "setRegion:",
          "setCenterCoordinate:", "setListener:", "valueForUndefinedKey:", "mapView:regionDidChangeAnimated:"}) {
        EXPECT_FALSE(VeyraView::webScriptNameForSelector(selector)) << selector;
        EXPECT_TRUE(VeyraView::isSelectorExcludedFromWebScript(selector)) << selector;
    }
}

TEST_F(Surface, AScriptSeesTheListedNamesAndNoOthers) {
    std::vector<std::string> expected = propertyNames;
    for (const auto& entry : methodNames)
        expected.push_back(entry.second);
    std::sort(expected.begin(), expected.end());
    std::string joined;
    for (const std::string& name : expected)
        joined += (joined.empty() ? "" : ",") + name;
    EXPECT_EQ(run("Object.getOwnPropertyNames(map).sort().join()"), joined);
    EXPECT_EQ(run("Object.keys(map).length"), "0");
}

TEST_F(Surface, PermissionAnswersAndAccessorsCannotBeCalled) {
    for (const char* name : {"allow", "deny", "denyOnlyThisRequest", "shouldClearCache", "setMapType", "setListener",
                             "setZoomEnabled", "attributeKeys", "superview", "layoutSubviews"}) {
        const std::string call = "map." + std::string(name) + "()";
        EXPECT_EQ(run("try { " + call + " } catch (e) { e instanceof TypeError }"), "true") << name;
    }
}

TEST_F(Surface, TheListenerIsNullAtFirstAndReadsBackAsTheObjectAssigned) {
    EXPECT_EQ(run("map.listener === null"), "true");
    EXPECT_EQ(run("a = {}; b = () => 1; map.listener = a; map.listener === a"), "true");
    EXPECT_EQ(run("map.listener = b; map.listener === b"), "true");
    collectGarbage();
    EXPECT_EQ(run("map.listener === b"), "true");
    EXPECT_EQ(run("map.listener = null; map.listener === null"), "true");
}

TEST_F(Surface, TheListenerLivesAsLongAsTheMapHoldsIt) {
    run("map.listener = { mark: 'kept' }");
    collectGarbage();
    EXPECT_EQ(run("map.listener.mark"), "kept");
}

TEST_F(Surface, AssigningToTheFivePropertiesForReadingChangesNothingAndRaisesNothing) {
    const std::string state =
        "JSON.stringify([map.annotations, map.selectedAnnotations, map.overlays, map.userLocation, "
        "map.userLocationVisible])";
    const std::string before = run(state);
    EXPECT_EQ(before, R"([[],[],[],{"latitude":0,"longitude":0,"altitude":0,"horizontalAccuracy":0,)"
                      R"("verticalAccuracy":0},false])");
    for (const char* value : {"['a']", "null", "undefined", "true", "{ latitude: 1 }", "'text'", "5"})
        for (const char* name :
             {"annotations", "selectedAnnotations", "overlays", "userLocation", "userLocationVisible"})
            EXPECT_EQ(run("'use strict'; map." + std::string(name) + " = (" + value + "); 'accepted'"), "accepted");
    EXPECT_EQ(run(state), before);
}

TEST_F(Surface, ArraysAndValueObjectsAreNewWithEachRead) {
    for (const char* name :
         {"annotations", "selectedAnnotations", "overlays", "userLocation", "region", "centerCoordinate"})
        EXPECT_EQ(run("map." + std::string(name) + " === map." + name), "false") << name;
    EXPECT_EQ(run("map.annotations.push('x'); map.annotations.length"), "0");
    EXPECT_EQ(run("map.region.latitude = 5; map.region.latitude"), "0");
}

TEST_F(Surface, MethodsActOnTheMapThatTheyAreCalledOn) {
    makeMap("second");
    run("map.setRegion.call(second, { latitude: 10, longitude: 20, latitudeDelta: 5, longitudeDelta: 5 })");
    runMain();
    EXPECT_EQ(degrees(mapView().region().center), degrees({0, 0}));
    EXPECT_EQ(run("Object.getOwnPropertyDescriptor(map, 'mapType').set.call(second, 2); [map.mapType, second.mapType]"),
              "0,2");
}

TEST_F(Surface, MethodsCalledOnWhatIsNoMapThrowATypeError) {
    for (const auto& [selector, name] : methodNames)
        for (const char* target : {"{}", "null", "5", "Object.create(map)", "[]"})
            EXPECT_EQ(run("try { map." + name + ".call(" + target + ") } catch (e) { e instanceof TypeError }"), "true")
                << name << " on " << target;
}

} // namespace veyra
