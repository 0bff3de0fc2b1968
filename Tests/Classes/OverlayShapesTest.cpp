// Circles, polylines and polygons from script objects.
#include "Classes/VeyraCircleOverlay.h"
#include "Classes/VeyraPolygonOverlay.h"
#include "Classes/VeyraPolylineOverlay.h"
#include "Platform/MapKit/MKCircleView.h"
#include "Platform/MapKit/MKPolygonView.h"
#include "Platform/MapKit/MKPolylineView.h"
#include "Tests/Classes/OverlayFixture.h"

namespace veyra {

namespace {

class OverlayShapes : public OverlayFixture {
protected:
    std::shared_ptr<MKMultiPoint> points(const std::string& coordinates, const char* type = "polyline") {
        return std::dynamic_pointer_cast<MKMultiPoint>(
            added("{ type: '" + std::string(type) + "', id: 'a', coordinates: " + coordinates + " }"));
    }
    std::string add(const std::string& object) { return run("map.addOverlay(" + object + ")"); }
    std::string refusal(const std::string& coordinates) {
        return add("{ type: 'polyline', id: 'a', coordinates: " + coordinates + " }");
    }
};

constexpr const char* noDouble = "threw: Error: -[WebUndefined doubleValue]: unrecognized selector sent to instance";

} // namespace

TEST_F(OverlayShapes, ATypeOfAnotherCaseOrKindMakesNothingWithoutAWord) {
    for (const char* type : {"'Circle'", "'star'", "''", "5", "true"}) {
        EXPECT_EQ(add(std::string("{ type: ") + type + ", id: 'a', latitude: 0, longitude: 0, radius: 1 }"),
                  "undefined");
    }
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(consoleErrors(), "");
}

TEST_F(OverlayShapes, ATypeThatIsNoStringAtAllRaises) {
    EXPECT_EQ(add("{ type: {}, id: 'a' }"),
              "threw: Error: -[WebScriptObject isEqualToString:]: unrecognized selector sent to instance");
}

TEST_F(OverlayShapes, WhatLacksItsKeysIsRefusedByName) {
    EXPECT_EQ(add("{ id: 'a' }"),
              "threw: Error: Object passed to 'Creating overlay' does not contain keys (\n    type\n)");
    EXPECT_EQ(
        add("{ type: 'circle', id: 'a', longitude: 1 }"),
        "threw: Error: Object passed to 'Constructing circle' does not contain keys (\n    latitude,\n    radius\n)");
    EXPECT_EQ(add("{ type: 'polyline', id: 'a' }"),
              "threw: Error: Object passed to 'Constructing polyline' does not contain keys (\n    coordinates\n)");
    EXPECT_EQ(add("{ type: 'polygon', id: 'a' }"),
              "threw: Error: Object passed to 'Constructing polygon' does not contain keys (\n    coordinates\n)");
    EXPECT_EQ(registered(), "");
}

TEST_F(OverlayShapes, ACircleHasItsCentreAndRadius) {
    const auto circle = std::dynamic_pointer_cast<VeyraCircleOverlay>(
        added("{ type: 'circle', id: 'a', latitude: 37.5, longitude: -122.25, radius: 1500.5 }"));
    ASSERT_TRUE(circle);
    EXPECT_EQ(degrees(circle->coordinate()), std::pair(37.5, -122.25));
    EXPECT_EQ(circle->radius(), 1500.5);
    EXPECT_STREQ(circle->isa()->name().c_str(), "VeyraCircleOverlay");
    EXPECT_TRUE(circle->isKindOfClass(NSClassFromString("MKCircle")));
}

TEST_F(OverlayShapes, ACircleOfNegativeRadiusIsMade) {
    const auto circle = std::dynamic_pointer_cast<MKCircle>(
        added("{ type: 'circle', id: 'a', latitude: 0, longitude: 0, radius: -3 }"));
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->radius(), -3);
}

TEST_F(OverlayShapes, NumericStringsAreNumbers) {
    const auto circle = std::dynamic_pointer_cast<MKCircle>(
        added("{ type: 'circle', id: 'a', latitude: '37.5', longitude: ' -1e1 degrees', radius: 'wide' }"));
    ASSERT_TRUE(circle);
    EXPECT_EQ(degrees(circle->coordinate()), std::pair(37.5, -10.0));
    EXPECT_EQ(circle->radius(), 0);
    const auto line = points("['37.5', true, '1', 2]");
    EXPECT_FALSE(line); // the identifier is taken: nothing was added
}

TEST_F(OverlayShapes, NumericStringsAmongCoordinatesAreNumbers) {
    const auto line = points("['37.5', true, 1, '2.5', 'x', null]");
    ASSERT_EQ(line->pointCount(), 3u);
    EXPECT_EQ(line->points()[0], MKMapPointForCoordinate({37.5, 1}));
    EXPECT_EQ(line->points()[1], MKMapPointForCoordinate({1, 2.5}));
    EXPECT_EQ(line->points()[2], MKMapPointForCoordinate({0, 0}));
}

TEST_F(OverlayShapes, CoordinatesArePairsOfLatitudeAndLongitudeInOrder) {
    const auto line = points("[37.0, -122.0, 38.0, -121.0]");
    ASSERT_EQ(line->pointCount(), 2u);
    EXPECT_EQ(line->points()[0], MKMapPointForCoordinate({37, -122}));
    EXPECT_EQ(line->points()[1], MKMapPointForCoordinate({38, -121}));
    EXPECT_TRUE(std::dynamic_pointer_cast<VeyraPolylineOverlay>(line));
}

TEST_F(OverlayShapes, AnOddNumberOfValuesIsRefused) {
    EXPECT_EQ(refusal("[1, 2, 3]"),
              "threw: Error: Constructing polyline, number of values in coordinates array must be even");
    EXPECT_EQ(add("{ type: 'polygon', id: 'a', coordinates: [1] }"),
              "threw: Error: Constructing polygon, number of values in coordinates array must be even");
    for (const char* greatest : {"-1", "1e300", "Infinity"}) { // each the greatest number there is, an odd one
        EXPECT_EQ(refusal(std::string("{ length: ") + greatest + " }"),
                  "threw: Error: Constructing polyline, number of values in coordinates array must be even");
    }
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(order(), "");
}

TEST_F(OverlayShapes, AnEmptyPolygonIsMade) {
    const auto polygon = points("[]", "polygon");
    ASSERT_TRUE(std::dynamic_pointer_cast<VeyraPolygonOverlay>(polygon));
    EXPECT_EQ(polygon->pointCount(), 0u);
}

TEST_F(OverlayShapes, ALengthThatIsNoNumberIsAnEmptyShape) {
    EXPECT_EQ(points("{ length: '2', 0: 1, 1: 2 }")->pointCount(), 0u);
    run("map.removeOverlay('a')");
    EXPECT_EQ(points("{}")->pointCount(), 0u);
    run("map.removeOverlay('a')");
    EXPECT_EQ(points("new Map()")->pointCount(), 0u);
    run("map.removeOverlay('a')");
    EXPECT_EQ(points("{ length: 0.5 }")->pointCount(), 0u);
}

TEST_F(OverlayShapes, ArrayLikesAndTypedArraysAreArrays) {
    EXPECT_EQ(points("{ length: 4, 0: 1, 1: 2, 2: 3, 3: 4 }")->pointCount(), 2u);
    run("map.removeOverlay('a')");
    EXPECT_EQ(points("new Float64Array([1, 2, 3, 4, 5, 6])")->pointCount(), 3u);
}

TEST_F(OverlayShapes, BuffersThatShrinkOrGoAreReadAsTheyAre) {
    EXPECT_EQ(refusal("(() => { const buffer = new ArrayBuffer(32, { maxByteLength: 64 });"
                      "const numbers = new Float64Array(buffer); buffer.resize?.(16); return numbers; })()"),
              "undefined");
    run("map.removeOverlay('a')");
    // It goes while it is read: what has gone is undefined.
    EXPECT_EQ(refusal("(() => { const buffer = new ArrayBuffer(64, { maxByteLength: 64 });"
                      "const numbers = new Float64Array(buffer);"
                      "return new Proxy(numbers, { get(target, key) {"
                      "if (key === '4') buffer.resize?.(16); return key === 'length' ? 8 : target[key]; } }); })()"),
              run("typeof ArrayBuffer.prototype.resize") == "function" ? noDouble : "undefined");
}

TEST_F(OverlayShapes, AnArrayMayChangeWhileItIsRead) {
    EXPECT_EQ(refusal("(() => { const values = [1, 2, 3, 4, 5, 6];"
                      "Object.defineProperty(values, 1, { get() { values.length = 2; return 2; } });"
                      "return values; })()"),
              noDouble);
    EXPECT_EQ(refusal("(() => { const values = [1, 2, 3, 4];"
                      "Object.defineProperty(values, 1, { get() { values.push(5, 6); values[3] = 9; return 2; } });"
                      "return values; })()"),
              "undefined");
    const auto line = std::dynamic_pointer_cast<MKMultiPoint>(onMap().front());
    ASSERT_EQ(line->pointCount(), 2u);
    EXPECT_EQ(line->points()[1], MKMapPointForCoordinate({3, 9}));
}

TEST_F(OverlayShapes, KeysAreReadInTheirOrder) {
    native("globalThis.noted = object => { globalThis.reads = []; return new Proxy(object, "
           "{ get(target, key) { reads.push(key); return target[key]; } }); }; undefined");
    const std::string options = " strokeColor strokeOpacity fillColor fillOpacity lineWidth lineJoin lineCap "
                                "miterLimit lineDashPhase lineDashPattern";
    EXPECT_EQ(run("map.addOverlay(noted({ type: 'circle', id: 'c', latitude: 1, longitude: 2, radius: 3 }));"
                  "reads.join(' ')"),
              "type id type latitude longitude radius latitude longitude radius id" + options);
    EXPECT_EQ(run("map.addOverlay(noted({ type: 'polygon', id: 'p', coordinates: [1, 2] })); reads.join(' ')"),
              "type id type coordinates coordinates id" + options);
    EXPECT_EQ(run("map.addOverlay(noted({ type: 'star', id: 's' })); reads.join(' ')"), "type id type");
}

TEST_F(OverlayShapes, ValuesWithoutADoubleRaise) {
    EXPECT_EQ(refusal("[1, undefined]"), noDouble);
    EXPECT_EQ(refusal("[1, , 3, 4]"), noDouble);
    EXPECT_EQ(refusal("[1, Symbol()]"), noDouble);
    EXPECT_EQ(refusal("[1, 2, [], 4]"),
              "threw: Error: -[WebScriptObject doubleValue]: unrecognized selector sent to instance");
    EXPECT_EQ(add("{ type: 'circle', id: 'a', latitude: {}, longitude: 0, radius: 1 }"),
              "threw: Error: -[WebScriptObject doubleValue]: unrecognized selector sent to instance");
    EXPECT_EQ(registered(), "");
}

TEST_F(OverlayShapes, FalseLengthsEndAtTheFirstMissingValueAndTakeNoMemory) {
    for (const char* length : {"4294967294", "1e15", "-2"}) {
        EXPECT_EQ(refusal(std::string("{ length: ") + length + ", 0: 1, 1: 2 }"), noDouble) << length;
    }
}

TEST_F(OverlayShapes, EachValueIsReadOnceAndInOrder) {
    EXPECT_EQ(run("globalThis.reads = [];"
                  "const values = new Proxy([1, '2', 3, 4, null, 6], "
                  "  { get(target, key, receiver) { reads.push(String(key) + (receiver === values)); return "
                  "target[key]; } });"
                  "map.addOverlay({ type: 'polyline', id: 'a', coordinates: values });"
                  "reads.join(' ')"),
              "lengthtrue 0true 1true 2true 3true 4true 5true");
    EXPECT_EQ(std::dynamic_pointer_cast<MKMultiPoint>(onMap().front())->pointCount(), 3u);
}

TEST_F(OverlayShapes, AGetterThatThrowsIsReportedAndCountsAsUndefined) {
    EXPECT_EQ(run("const values = [1, 2, 3, 4];"
                  "Object.defineProperty(values, 2, { get() { throw new TypeError('no such place'); } });"
                  "map.addOverlay({ type: 'polyline', id: 'a', coordinates: values })"),
              noDouble);
    EXPECT_EQ(consoleErrors(), "TypeError: no such place");
}

TEST_F(OverlayShapes, AGetterMayAddOverlaysOfItsOwn) {
    EXPECT_EQ(run("const values = [1, 2, 3, 4];"
                  "Object.defineProperty(values, 1, { get() {"
                  "  map.addOverlay({ type: 'polyline', id: 'inner', coordinates: [50, 51, 52, 53] }); return 2; } });"
                  "map.addOverlay({ type: 'polyline', id: 'outer', coordinates: values })"),
              "undefined");
    const auto found = onMap();
    ASSERT_EQ(order(), "inner outer");
    const auto outer = std::dynamic_pointer_cast<MKMultiPoint>(found[1]);
    EXPECT_EQ(outer->points()[0], MKMapPointForCoordinate({1, 2}));
    EXPECT_EQ(outer->points()[1], MKMapPointForCoordinate({3, 4}));
}

TEST_F(OverlayShapes, ManyCoordinatesWithAnOddOneAmongThemAreReadExactly) {
    EXPECT_EQ(run("globalThis.many = Array.from({ length: 60000 }, (_, i) => (i % 2 ? i / 1000 : i / 2000));"
                  "for (const place of [0, 8191, 8192, 8193, 20001, 59999]) many[place] = String(many[place]);"
                  "map.addOverlay({ type: 'polyline', id: 'a', coordinates: many })"),
              "undefined");
    const auto line = std::dynamic_pointer_cast<MKMultiPoint>(onMap().front());
    ASSERT_EQ(line->pointCount(), 30000u);
    for (size_t i = 0; i < 30000; ++i)
        ASSERT_EQ(line->points()[i],
                  MKMapPointForCoordinate({static_cast<double>(2 * i) / 2000, static_cast<double>(2 * i + 1) / 1000}))
            << i;
}

TEST_F(OverlayShapes, APageCannotSeeOrBendHowNumbersAreRead) {
    EXPECT_EQ(run("Object.defineProperty(Array.prototype, 0, { set() { throw 1; }, configurable: true });"
                  "Object.defineProperty(Object.prototype, 'count', { get() { throw 1; }, configurable: true });"
                  "Float64Array.prototype.fill = Array.prototype.push = () => { throw 1; };"
                  "map.addOverlay({ type: 'polyline', id: 'a', coordinates: new Proxy([1, '2'], {}) });"
                  "delete Array.prototype[0]; delete Object.prototype.count; 'read'"),
              "read");
    EXPECT_EQ(std::dynamic_pointer_cast<MKMultiPoint>(onMap().front())->pointCount(), 1u);
}

TEST_F(OverlayShapes, AnIdentifierThatIsANumberIsKeptAsGiven) {
    const auto overlay = added("{ type: 'polygon', id: 7, coordinates: [] }");
    EXPECT_EQ(overlay->identifier(), id(7));
    EXPECT_EQ(run("typeof map.overlays[0]"), "number");
    EXPECT_EQ(run("map.removeOverlay('7'); map.overlays.length"), "1");
    EXPECT_EQ(run("map.removeOverlay(7); map.overlays.length"), "0");
}

TEST_F(OverlayShapes, AnIdentifierThatIsAnObjectIsItself) {
    EXPECT_EQ(run("const key = {}; map.addOverlay({ type: 'polygon', id: key, coordinates: [] });"
                  "map.addOverlay({ type: 'polygon', id: {}, coordinates: [] });"
                  "map.overlays.length + ' ' + map.overlays.includes(key)"),
              "2 true");
    EXPECT_EQ(run("map.removeOverlay(key); map.overlays.length + ' ' + map.overlays.includes(key)"), "1 false");
}

TEST_F(OverlayShapes, AnIdentifierThatGoesBetweenTwoReadsIsAnErrorAndRegistersNothing) {
    EXPECT_EQ(run("let reads = 0; map.addOverlay({ type: 'polygon', get id() { return reads++ ? null : 'a'; }, "
                  "coordinates: [] })"),
              "threw: Error: -[NSMutableDictionary setObject:forKey:]: key cannot be nil");
    EXPECT_EQ(registered(), "");
}

TEST_F(OverlayShapes, EachMakesANewViewOfItsKind) {
    run("map.addOverlays([{ type: 'circle', id: 'c', latitude: 0, longitude: 0, radius: 1 },"
        "{ type: 'polyline', id: 'l', coordinates: [] }, { type: 'polygon', id: 'p', coordinates: [] }])");
    const auto found = onMap();
    ASSERT_EQ(found.size(), 3u);
    onMain([&] {
        EXPECT_TRUE(std::dynamic_pointer_cast<MKCircleView>(found[0]->overlayView()));
        EXPECT_TRUE(std::dynamic_pointer_cast<MKPolylineView>(found[1]->overlayView()));
        EXPECT_TRUE(std::dynamic_pointer_cast<MKPolygonView>(found[2]->overlayView()));
        const auto first = found[0]->overlayView(), second = found[0]->overlayView();
        EXPECT_NE(first, second);
        EXPECT_EQ(first->overlay(), std::dynamic_pointer_cast<MKOverlay>(found[0]));
    });
}

} // namespace veyra
