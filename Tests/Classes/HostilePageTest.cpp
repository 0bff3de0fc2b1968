// Pages that have changed the script engine's own objects before they use a map.
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Tests/Classes/ViewFixture.h"

namespace veyra {

class HostilePage : public MapFixture {
protected:
    /// What every page may expect, whatever it has done to others' prototypes.
    void expectAWorkingMap() {
        EXPECT_EQ(run("map.mapType = 2; map.mapType"), "2");
        EXPECT_EQ(run("stringify(map.region)"), R"({"latitude":0,"longitude":0,"latitudeDelta":0,"longitudeDelta":0})");
        EXPECT_EQ(run("text(map.centerCoordinate)"), "{'latitude':0.000000,'longitude':0.000000}");
        EXPECT_EQ(run("keysOf(map.userLocation).length"), "5");
        EXPECT_EQ(run("p = map.convertCoordinateToPoint({ latitude: 90, longitude: 90 }); p.x"), "Infinity");
        EXPECT_EQ(run("map.addOverlay({ type: 'circle', id: 'c', latitude: 1, longitude: 2, radius: 3 }); "
                      "list = map.overlays; list.length + list[0]"),
                  "1c");
        run("map.removeOverlay('c'); heard = listener = null; map.listener = { happened(a, b, c) { heard = [a, b, c, "
            "arguments.length] } }");
        collectGarbage();
        _veyra_webThreadCallWebScriptMethod(view().jsListener(), "happened", {id("a"), id(2), id(NSArray{id("in")})});
        EXPECT_EQ(run("heard && heard[0] + heard[1] + heard[2][0] + heard[3]"), "a2in3");
        EXPECT_EQ(run("message = ''; try { map.setRegion(null) } catch (e) { message = e.message } message"),
                  "Null object passed to 'setRegion'");
    }
    void SetUp() override {
        run("stringify = JSON.stringify; keysOf = Object.keys; caught = []; text = object => `${object}`");
    }
};

TEST_F(HostilePage, MayDoNothing) {
    expectAWorkingMap();
}

// What native code keeps, and what it hands over in arrays, must not end up with a setter of the page.
TEST_F(HostilePage, MayPutSettersForIndexesOnPrototypes) {
    evaluate("for (let i = 0; i < 200; ++i) for (const prototype of [Array.prototype, Object.prototype]) "
             "Object.defineProperty(prototype, i, { __proto__: null, get() { return 'inherited' }, set(value) { "
             "caught.push(value) } })");
    expectAWorkingMap();
    run("map.listener = { mark: 1 }; map.droppedPinIdentifier = { mark: 2 }");
    collectGarbage();
    EXPECT_EQ(run("map.listener.mark + map.droppedPinIdentifier.mark"), "3");
    EXPECT_EQ(run("caught.length"), "0");
}

TEST_F(HostilePage, MayPutSettersForNamesOnObjectPrototype) {
    evaluate(
        "for (const name of ['value', 'get', 'set', 'writable', 'configurable', 'enumerable', 'slots', 'happened', "
        "'latitude', 'longitude', 'latitudeDelta', 'longitudeDelta', 'x', 'y', 'width', 'height', 'altitude', 'kind'])"
        "Object.defineProperty(Object.prototype, name, { __proto__: null, set(value) { caught.push(name) } })");
    expectAWorkingMap();
    EXPECT_EQ(run("caught.join()"), "");
}

TEST_F(HostilePage, MayExtendObjectPrototypeAsOldLibrariesDo) {
    evaluate(
        "Object.assign(Object.prototype, { get() {}, set() {}, value: 5, writable: false, latitude: 'inherited' })");
    expectAWorkingMap();
    EXPECT_EQ(run("map.setCenterCoordinate({ longitude: 1 })"), "undefined") << "an inherited key counts";
}

TEST_F(HostilePage, MayLetInheritedKeysThrow) {
    evaluate("Object.defineProperty(Object.prototype, 'latitude', { get() { throw 'inherited' } })");
    expectAWorkingMap();
    for (const char* method : {"setCenterCoordinate", "convertCoordinateToPoint"})
        EXPECT_EQ(run("errors.length = 0; map." + std::string(method) + "({ longitude: 1 })"),
                  "threw: Error: Object passed to '" + std::string(method) +
                      "' does not contain keys (\n    latitude\n)");
    EXPECT_EQ(consoleErrors(), "inherited");
}

TEST_F(HostilePage, MayFreezePrototypes) {
    evaluate("for (const object of [Object, Array, Function, String, Number, Error]) Object.freeze(object.prototype)");
    expectAWorkingMap();
    EXPECT_EQ(run("map.region.latitude = 5; r = map.region; r.latitude = 6; r.toString = () => 'own'; r.latitude"),
              "6");
}

TEST_F(HostilePage, MayReplaceWhatFunctionsAndIteratorsAreMadeOf) {
    evaluate("fail = () => { throw new Error('called') }; "
             "for (const name of ['call', 'apply', 'bind', 'toString']) Function.prototype[name] = fail; "
             "Array.prototype[Symbol.iterator] = Array.prototype.push = Array.prototype.map = fail; "
             "JSON.stringify = JSON.parse = Object.defineProperty = Object.getPrototypeOf = Reflect.construct = fail");
    expectAWorkingMap();
}

TEST_F(HostilePage, FindsNoWayToTheClassesOfValueObjects) {
    EXPECT_EQ(run("prototype = Object.getPrototypeOf(map.region); Object.getPrototypeOf(prototype) === "
                  "Object.prototype && map.region.constructor === Object"),
              "true");
    EXPECT_EQ(run("Object.getOwnPropertyNames(prototype).join()"), "toString");
    EXPECT_EQ(run("map.region instanceof Object && Object.prototype.toString.call(map.region)"),
              "[object VeyraRegionSO]");
}

TEST_F(HostilePage, MayChangeThePrototypeOfAValueObject) {
    EXPECT_EQ(run("r = Object.setPrototypeOf(map.region, null); r.latitude = 10; map.setRegion(r); "
                  "delete r.longitude; map.setRegion(r)"),
              "threw: Error: Object passed to 'setRegion' does not contain keys (\n    longitude\n)");
    EXPECT_EQ(run("c = Object.setPrototypeOf(map.region, null); typeof map.convertCoordinateToPoint(c).x"), "number");
}

TEST_F(HostilePage, MayUseTheMapForTheFirstTimeWithNoStackLeft) {
    for (const char* use :
         {"map.region", "map.convertPointToCoordinate({ x: 1, y: 2 })", "map.addAnnotations([{}])", "map.annotations",
          "map.addOverlay({ type: 'polyline', id: 'l', coordinates: [1, 2, 3, 4] })", "map.listener = {}"}) {
        run("depth = 0; function sink() { ++depth; try { sink() } catch (e) {} try { " + std::string(use) +
            " } catch (e) {} }; sink()");
        EXPECT_GT(std::stoi(run("depth")), 100);
    }
    run("map.removeOverlays(map.overlays)");
    expectAWorkingMap();
}

} // namespace veyra
