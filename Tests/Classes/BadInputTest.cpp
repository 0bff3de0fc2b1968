// Hostile arguments: pages may send anything, and whatever runs while their keys are read.
#include "Tests/Classes/ViewFixture.h"

#include <chrono>

namespace veyra {

class BadInput : public ShownMapFixture {
protected:
    BadInput() {
        defineFunction("stopMap", [this] { instance().stop(); });
        defineFunction("endPage", [this] { context->invalidate(); });
    }
};

namespace {

// Every method that reads keys, with a key that each of them reads.
const std::pair<const char*, const char*> readers[] = {
    {"setRegion", "latitude"},
    {"setCenterCoordinate", "latitude"},
    {"regionThatFits", "latitude"},
    {"convertCoordinateToPoint", "latitude"},
    {"convertPointToCoordinate", "x"},
    {"convertRegionToRect", "latitude"},
    {"convertRectToRegion", "x"},
    {"addAnnotation", "latitude"},
    {"addAnnotations", "length"},
    {"removeAnnotations", "length"},
    {"addOverlay", "type"},
    {"addOverlays", "length"},
    {"removeOverlays", "length"},
    {"insertOverlayAtIndex", "type"},
    {"insertOverlayAboveOverlay", "type"},
    {"insertOverlayBelowOverlay", "type"},
};

constexpr const char* allKeys = "latitude: 1, longitude: 2, latitudeDelta: 3, longitudeDelta: 4, x: 5, y: 6, width: 7, "
                                "height: 8, identifier: 'i', length: 1, 0: null, type: 'circle', id: 'c', radius: 9";

} // namespace

TEST_F(BadInput, AGetterThatThrowsIsReportedToTheConsoleAndItsKeyIsMissing) {
    EXPECT_EQ(run("map.setRegion({ get latitude() { throw new Error('no latitude') }, longitude: 1, latitudeDelta: 1, "
                  "longitudeDelta: 1 })"),
              "threw: Error: Object passed to 'setRegion' does not contain keys (\n    latitude\n)");
    EXPECT_EQ(consoleErrors(), "Error: no latitude");
}

TEST_F(BadInput, AGetterThatThrowsOnlyAfterTheCheckCountsAsZero) {
    EXPECT_EQ(
        run("let n = 0; p = map.convertRectToRegion({ get x() { if (n++) throw new Error('once'); return 1 }, y: 0, "
            "width: 320, height: 480 }); q = map.convertRectToRegion({ x: 0, y: 0, width: 320, height: 480 }); "
            "JSON.stringify(p) === JSON.stringify(q)"),
        "true");
    EXPECT_EQ(consoleErrors(), "Error: once");
}

TEST_F(BadInput, AProxyWhoseTrapsThrowHasNoKeys) {
    EXPECT_EQ(run("map.setCenterCoordinate(new Proxy({}, { get(t, key) { throw key } }))"),
              "threw: Error: Object passed to 'setCenterCoordinate' does not contain keys (\n    latitude,\n    "
              "longitude\n)");
    EXPECT_EQ(consoleErrors(), "latitude\nlongitude");
}

TEST_F(BadInput, ARevokedProxyHasNoKeys) {
    EXPECT_EQ(run("r = Proxy.revocable({}, {}); r.revoke(); map.addAnnotations(r.proxy)"),
              "threw: Error: Object passed to 'addAnnotations' does not contain keys (\n    length\n)");
}

TEST_F(BadInput, AProxyThatAnswersIsAnObjectLikeAnyOther) {
    run("map.setRegion(new Proxy({}, { get: (t, key) => key.endsWith('Delta') ? 5 : 20 }))");
    runMain();
    EXPECT_NEAR(mapView().region().center.latitude, 20, 1e-9);
    EXPECT_NEAR(mapView().region().center.longitude, 20, 1e-9);
}

TEST_F(BadInput, AGetterMayCallTheMapAndBothCallsCount) {
    run("map.setRegion({ get latitude() { map.mapType = 2; map.setCenterCoordinate({ latitude: 5, longitude: 6 }); "
        "return 10 }, longitude: 20, latitudeDelta: 5, longitudeDelta: 5 })");
    runMain();
    EXPECT_EQ(mapView().mapType(), MKMapTypeHybrid);
    EXPECT_NEAR(mapView().region().center.latitude, 10, 1e-9) << "the outer call ends last";
}

TEST_F(BadInput, AFaultInACallWithinAGetterIsThatCallsAlone) {
    EXPECT_EQ(run("let inner; map.setCenterCoordinate({ get latitude() { try { map.setRegion(null) } catch (e) { "
                  "inner = e.message } return 3 }, longitude: 4 }); inner"),
              "Null object passed to 'setRegion'");
    runMain();
    EXPECT_NEAR(mapView().region().center.latitude, 3, 1e-9);
}

TEST_F(BadInput, AGetterThatCallsItsOwnMethodForEverEndsAtTheEnginesLimit) {
    EXPECT_EQ(run("depth = 0; o = { get latitude() { ++depth; map.setCenterCoordinate(o); return 1 }, longitude: 2 }; "
                  "map.setCenterCoordinate(o)"),
              "threw: Error: Object passed to 'setCenterCoordinate' does not contain keys (\n    latitude\n)");
    EXPECT_GT(std::stoi(run("depth")), 100);
    EXPECT_EQ(run("map.setCenterCoordinate({ latitude: 1, longitude: 2 })"), "undefined");
    runMain();
    EXPECT_NEAR(mapView().region().center.latitude, 1, 1e-9);
}

TEST_F(BadInput, TheMapMayStopWhileAKeyIsRead) {
    for (const auto& [method, key] : readers) {
        const auto made = makeMap("victim");
        defineFunction("stopVictim", [made] { made->stop(); });
        const std::string argument = "{ " + std::string(allKeys) + ", get " + key + "() { stopVictim(); return 1 } }";
        run("try { victim." + std::string(method) + "(" + argument + ", 0) } catch (e) {}");
        EXPECT_EQ(run("typeof victim.mapType"), "undefined") << method;
        EXPECT_EQ(made->view(), nullptr) << method;
        settle();
        EXPECT_EQ(VeyraView::liveViews(), 1u) << method;
    }
}

TEST_F(BadInput, ThePageMayEndWhileAKeyIsRead) {
    run("victims = 0");
    for (const auto& [method, key] : readers) {
        const std::string argument =
            "{ " + std::string(allKeys) + ", get " + key + "() { ++victims; endPage(); return 1 } }";
        run("try { map." + std::string(method) + "(" + argument + ", 0) } catch (e) {}");
        EXPECT_EQ(run("map.mapType"), "threw: ReferenceError: The page of this map has gone") << method;
        context = ScriptContext::of(global);
        EXPECT_EQ(run("map.mapType"), "0") << method;
    }
    EXPECT_EQ(run("victims"), std::to_string(std::size(readers)));
}

TEST_F(BadInput, TheMapMayStopInsideAnAssignment) {
    run("try { map.region = { latitude: 1, longitude: 1, latitudeDelta: 1, get longitudeDelta() { stopMap(); return 1 "
        "} } "
        "} catch (e) {}");
    settle();
    EXPECT_EQ(VeyraView::liveViews(), 0u);
}

TEST_F(BadInput, ALengthThatIsNoNumberCountsAsZero) {
    for (const char* method : {"addAnnotations", "removeAnnotations", "addOverlays", "removeOverlays"})
        for (const char* length : {"'3'", "{}", "[]", "NaN", "0", "false", "-0", "0.9"})
            EXPECT_EQ(run("n = 0; map." + std::string(method) +
                          "(new Proxy({}, { get(t, key) { if (key === '0') ++n; "
                          "return key === 'length' ? " +
                          length + " : undefined } })); n"),
                      "0")
                << method << " " << length;
}

TEST_F(BadInput, AFractionalLengthTruncatesAndTrueIsOne) {
    for (const char* length : {"1.9", "true"})
        EXPECT_EQ(run("n = 0; try { map.addAnnotations({ length: " + std::string(length) +
                      ", get 0() { ++n }, get 1() { ++n } }) } catch (e) {} n"),
                  "1");
}

TEST_F(BadInput, AFalseLengthCostsWhatALoopWouldCost) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(run("map.addAnnotations({ length: 1e6 })"), "threw: Error: Invalid object passed to 'addAnnotations'");
    EXPECT_EQ(run("map.addOverlays({ length: 1e6 })"), "threw: Error: Invalid object passed to 'Creating overlay'");
    EXPECT_EQ(run("map.removeAnnotations({ length: 1e6 })"), "undefined");
    EXPECT_EQ(run("map.removeOverlays({ length: 1e6 })"), "undefined");
    runMain();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(1));
}

TEST_F(BadInput, ANegativeLengthWrapsAndTheWalkEndsWithThePage) {
    for (const char* method : {"addAnnotations", "removeAnnotations", "addOverlays", "removeOverlays"}) {
        EXPECT_EQ(run("n = 0; try { map." + std::string(method) +
                      "(new Proxy({}, { get(t, key) { "
                      "if (key === 'length') return -1; if (++n === 100) endPage(); } })) } catch (e) {} n"),
                  "100")
            << method;
        context = ScriptContext::of(global);
    }
}

TEST_F(BadInput, ALengthReadTwiceMayDiffer) {
    EXPECT_EQ(run("let reads = 0, n = 0; map.addAnnotations(new Proxy({}, { get(t, key) { if (key === 'length') "
                  "return reads++ ? 0 : 5; ++n } })); reads + ' ' + n"),
              "2 0");
}

TEST_F(BadInput, AnArrayThatShrinksWhileItIsWalkedHasUndefinedElements) {
    EXPECT_EQ(run("const a = [{ get latitude() { a.length = 1; return 1 }, longitude: 1, identifier: 'a' }, "
                  "{ latitude: 1, longitude: 1, identifier: 'b' }]; map.addAnnotations(a)"),
              "threw: Error: Invalid object passed to 'addAnnotations'");
}

TEST_F(BadInput, AnElementsGetterThatThrowsIsReportedAndTheWalkGoesOn) {
    EXPECT_EQ(run("let last; try { map.addAnnotations({ length: 2, get 0() { throw new Error('first element') }, "
                  "get 1() { last = true; return { latitude: 1, longitude: 1, identifier: 'b' } } }) } catch (e) { "
                  "e.message + ' ' + last }"),
              "Invalid object passed to 'addAnnotations' true");
    EXPECT_EQ(consoleErrors(), "Error: first element");
}

TEST_F(BadInput, AConsoleThatThrowsOrIsGoneDoesNotMatter) {
    run("console.error = () => { throw new Error('console') }; delete globalThis.console");
    EXPECT_EQ(run("map.setCenterCoordinate({ get latitude() { throw 1 }, longitude: 1 })"),
              "threw: Error: Object passed to 'setCenterCoordinate' does not contain keys (\n    latitude\n)");
}

TEST_F(BadInput, ReplacedBuiltInsDoNotMatter) {
    run("Error = undefined; TypeError = undefined; Object = undefined; Array = undefined; globalThis.Number = "
        "undefined; "
        "globalThis.String = undefined");
    EXPECT_EQ(run("try { map.setRegion(null) } catch (e) { e.message }"), "Null object passed to 'setRegion'");
    EXPECT_EQ(run("try { map.setRegion.call({}) } catch (e) { e.message }"),
              "The method was called on an object that is no map");
    EXPECT_EQ(run("map.annotations.length"), "0");
    EXPECT_EQ(run("JSON.stringify(map.centerCoordinate)"), R"({"latitude":0,"longitude":0})");
}

TEST_F(BadInput, SymbolsAndBigIntegersAreNoObjects) {
    EXPECT_EQ(run("map.setRegion(Symbol.iterator)"), "threw: Error: Invalid object passed to 'setRegion'");
    EXPECT_EQ(
        run("map.setRegion({ latitude: Symbol(), longitude: 1, latitudeDelta: 1, longitudeDelta: 1n })"),
        "threw: Error: Object passed to 'setRegion' does not contain keys (\n    latitude,\n    longitudeDelta\n)");
}

TEST_F(BadInput, OtherObjectsOfTheEngineAreScriptObjects) {
    for (const char* object : {"new Date()", "/x/", "new Map()", "new Float64Array(4)", "Promise.resolve()",
                               "globalThis", "function f() {}", "new String('text')", "map"})
        EXPECT_EQ(run("map.convertPointToCoordinate(" + std::string(object) + ")"),
                  "threw: Error: Object passed to 'convertPointToCoordinate' does not contain keys (\n    x,\n    y\n)")
            << object;
}

TEST_F(BadInput, TheMapAsItsOwnArgumentOrListenerIsAnObjectLikeAnyOther) {
    EXPECT_EQ(run("map.listener = map; map.listener === map"), "true");
    onMain([&] { view().mapViewRegionWillChangeAnimated(mapView(), false); });
    runWeb();
    EXPECT_EQ(consoleErrors(), "");
    run("map.listener = null");
}

} // namespace veyra
