// Conversions between the map and the screen, from the geometry that the map reported last.
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraPointSO.h"
#include "Classes/VeyraRectSO.h"
#include "Classes/VeyraRegionSO.h"
#include "Tests/Classes/ViewFixture.h"

#include <cmath>

namespace veyra {

// A map of 320 × 480 points that shows 3200 × 4800 map points from (1000, 2000) on.
class Conversions : public MapFixture {
protected:
    Conversions() {
        layOut(320, 480);
        onMain([&] { mapView().setRegion(MKCoordinateRegionForMapRect({{1000, 2000}, {3200, 4800}})); });
        visible = view().visibleMapRect();
    }
    template <class T>
    std::shared_ptr<T> convert(const std::string& script) {
        auto result = native(script).as<T>();
        EXPECT_NE(result, nullptr) << script;
        return result;
    }
    static std::string place(CLLocationCoordinate2D coordinate) {
        return "{ latitude: " + exact(coordinate.latitude) + ", longitude: " + exact(coordinate.longitude) + " }";
    }
    static std::string exact(double number) {
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", number);
        return text;
    }

    MKMapRect visible;
};

TEST_F(Conversions, TheFixtureShowsItsRectangle) {
    EXPECT_NEAR(visible.origin.x, 1000, 1e-3);
    EXPECT_NEAR(visible.origin.y, 2000, 1e-3);
    EXPECT_NEAR(visible.size.width, 3200, 1e-3);
    EXPECT_NEAR(visible.size.height, 4800, 1e-3);
}

TEST_F(Conversions, ACoordinateBecomesItsPointAndBack) {
    const CLLocationCoordinate2D middle = MKCoordinateForMapPoint({2600, 4400});
    const auto point = convert<VeyraPointSO>("map.convertCoordinateToPoint(" + place(middle) + ")");
    EXPECT_NEAR(point->x(), 160, 1e-3);
    EXPECT_NEAR(point->y(), 240, 1e-3);
    const auto back = convert<VeyraLocationCoordinateSO>("map.convertPointToCoordinate({ x: 160, y: 240 })");
    EXPECT_NEAR(back->latitude(), middle.latitude, 1e-9);
    EXPECT_NEAR(back->longitude(), middle.longitude, 1e-9);
}

TEST_F(Conversions, AnswerFromTheGeometryThatIsStored) {
    view().setBoundsSize({320, 480});
    view().setVisibleMapRect({{1000, 2000}, {3200, 4800}});
    const CLLocationCoordinate2D middle = MKCoordinateForMapPoint({2600, 4400});
    const auto point = convert<VeyraPointSO>("map.convertCoordinateToPoint(" + place(middle) + ")");
    EXPECT_NEAR(point->x(), 160, 1e-6);
    EXPECT_NEAR(point->y(), 240, 1e-6);
    const auto back = convert<VeyraLocationCoordinateSO>("map.convertPointToCoordinate({ x: 160, y: 240 })");
    EXPECT_EQ(degrees({back->latitude(), back->longitude()}), degrees(middle));
    const auto whole = convert<VeyraRegionSO>("map.convertRectToRegion({ x: 0, y: 0, width: 320, height: 480 })");
    const auto expected = MKCoordinateRegionForMapRect({{1000, 2000}, {3200, 4800}});
    EXPECT_EQ(degrees({whole->latitude(), whole->longitude()}), degrees(expected.center));
    EXPECT_EQ(whole->latitudeDelta(), expected.span.latitudeDelta);
    EXPECT_EQ(whole->longitudeDelta(), expected.span.longitudeDelta);
    view().setCoordinateRegion({{1, 2}, {3, 4}});
    EXPECT_EQ(run("JSON.stringify(map.region)"),
              R"({"latitude":1,"longitude":2,"latitudeDelta":3,"longitudeDelta":4})");
}

TEST_F(Conversions, ACoordinatesPointFollowsTheFormulaExactly) {
    const MKMapPoint p = MKMapPointForCoordinate({12.25, -33.5});
    const auto point = convert<VeyraPointSO>("map.convertCoordinateToPoint({ latitude: 12.25, longitude: -33.5 })");
    EXPECT_EQ(point->x(), 320 * (p.x - visible.origin.x) / visible.size.width);
    EXPECT_EQ(point->y(), 480 * (p.y - visible.origin.y) / visible.size.height);
}

TEST_F(Conversions, InputsAreNotClamped) {
    const MKMapPoint p = MKMapPointForCoordinate({0, 540});
    EXPECT_EQ(convert<VeyraPointSO>("map.convertCoordinateToPoint({ latitude: 0, longitude: 540 })")->x(),
              320 * (p.x - visible.origin.x) / visible.size.width);
}

TEST_F(Conversions, PointsAreTakenInSinglePrecision) {
    const double x = 0.10000000149011612, y = static_cast<double>(33.3f);
    const auto c = MKCoordinateForMapPoint(
        {visible.origin.x + x / 320 * visible.size.width, visible.origin.y + y / 480 * visible.size.height});
    const auto found = convert<VeyraLocationCoordinateSO>("map.convertPointToCoordinate({ x: 0.1, y: 33.3 })");
    EXPECT_EQ(found->latitude(), c.latitude);
    EXPECT_EQ(found->longitude(), c.longitude);
    const auto text = convert<VeyraLocationCoordinateSO>("map.convertPointToCoordinate({ x: '0.1px', y: '33.3' })");
    EXPECT_EQ(text->latitude(), c.latitude);
    EXPECT_EQ(text->longitude(), c.longitude);
}

TEST_F(Conversions, ARegionsRectangleHasTheHeightZeroAndTheWidthOfItsEdges) {
    const MKMapPoint p1 = MKMapPointForCoordinate({11, 19}), p2 = MKMapPointForCoordinate({9, 21});
    const auto rect = convert<VeyraRectSO>(
        "map.convertRegionToRect({ latitude: 10, longitude: 20, latitudeDelta: 2, longitudeDelta: 2 })");
    const double x1 = 320 * (p1.x - visible.origin.x) / visible.size.width;
    const double x2 = 320 * (p2.x - visible.origin.x) / visible.size.width;
    EXPECT_EQ(rect->x(), x1);
    EXPECT_EQ(rect->y(), 480 * (p1.y - visible.origin.y) / visible.size.height);
    EXPECT_EQ(rect->width(), x2 - x1);
    EXPECT_EQ(rect->height(), 0);
}

TEST_F(Conversions, ARegionsRectangleWithoutASouthernEdgeHasNoHeight) {
    const auto rect = convert<VeyraRectSO>(
        "map.convertRegionToRect({ latitude: NaN, longitude: 20, latitudeDelta: 2, longitudeDelta: 2 })");
    EXPECT_TRUE(std::isnan(rect->height()));
    EXPECT_TRUE(std::isfinite(rect->width()));
}

TEST_F(Conversions, ARectanglesRegionFollowsTheFormulaExactly) {
    const double x1 = visible.origin.x + 10.0 / 320 * visible.size.width;
    const double y1 = visible.origin.y + 20.0 / 480 * visible.size.height;
    const double x2 = visible.origin.x + visible.size.width * ((10.0 + 30) / 320);
    const double y2 = visible.origin.y + visible.size.height * ((20.0 + 40) / 480);
    const auto expected = MKCoordinateRegionForMapRect({{x1, y1}, {x2 - x1, y2 - y1}});
    const auto region = convert<VeyraRegionSO>("map.convertRectToRegion({ x: 10, y: 20, width: 30, height: 40 })");
    EXPECT_EQ(region->latitude(), expected.center.latitude);
    EXPECT_EQ(region->longitude(), expected.center.longitude);
    EXPECT_EQ(region->latitudeDelta(), expected.span.latitudeDelta);
    EXPECT_EQ(region->longitudeDelta(), expected.span.longitudeDelta);
}

TEST_F(Conversions, TheWholeViewIsTheWholeVisibleRectangle) {
    const auto expected = MKCoordinateRegionForMapRect(visible);
    const auto region = convert<VeyraRegionSO>("map.convertRectToRegion({ x: 0, y: 0, width: 320, height: 480 })");
    EXPECT_NEAR(region->latitude(), expected.center.latitude, 1e-12);
    EXPECT_NEAR(region->longitude(), expected.center.longitude, 1e-12);
    EXPECT_NEAR(region->latitudeDelta(), expected.span.latitudeDelta, 1e-12);
    EXPECT_NEAR(region->longitudeDelta(), expected.span.longitudeDelta, 1e-12);
}

TEST_F(Conversions, TheRegionThatFitsIsTheOneThatTheMapWouldShow) {
    const std::string wanted = "{ latitude: 10, longitude: 20, latitudeDelta: 5, longitudeDelta: 5 }";
    const auto fitting = convert<VeyraRegionSO>("map.regionThatFits(" + wanted + ")");
    const auto expected =
        MKMapView::regionThatFitsMapTypeViewSizeRegion(MKMapTypeStandard, {320, 480}, {{10, 20}, {5, 5}});
    EXPECT_EQ(fitting->latitude(), expected.center.latitude);
    EXPECT_EQ(fitting->longitude(), expected.center.longitude);
    EXPECT_EQ(fitting->latitudeDelta(), expected.span.latitudeDelta);
    EXPECT_EQ(fitting->longitudeDelta(), expected.span.longitudeDelta);
    EXPECT_NEAR(fitting->longitudeDelta(), 5, 1e-9);
    EXPECT_GT(fitting->latitudeDelta(), 5);
    run("map.setRegion(" + wanted + ")");
    settle();
    EXPECT_NEAR(view().coordinateRegion().span.latitudeDelta, fitting->latitudeDelta(), 1e-9);
    EXPECT_NEAR(view().coordinateRegion().center.latitude, fitting->latitude(), 1e-9);
}

TEST_F(Conversions, ARegionThatIsNotFiniteComesBackAsItIs) {
    EXPECT_EQ(
        run("r = map.regionThatFits({ latitude: NaN, longitude: 2, latitudeDelta: 3, longitudeDelta: Infinity }); "
            "[r.latitude, r.longitude, r.latitudeDelta, r.longitudeDelta].join()"),
        "NaN,2,3,Infinity");
}

TEST_F(Conversions, KeysAreReadForTheCheckAndThenInTheOrderOfEachConversion) {
    evaluate("reads = []; proxy = new Proxy({}, { get(target, key) { reads.push(key); return 1 } })");
    const auto readsOf = [this](const char* method) {
        return run("map." + std::string(method) + "(proxy); reads.splice(0).join()");
    };
    EXPECT_EQ(readsOf("regionThatFits"), "latitude,longitude,latitudeDelta,longitudeDelta,"
                                         "latitudeDelta,longitudeDelta,latitude,longitude");
    EXPECT_EQ(readsOf("convertCoordinateToPoint"), "latitude,longitude,latitude,longitude");
    EXPECT_EQ(readsOf("convertPointToCoordinate"), "x,y,x,y");
    EXPECT_EQ(readsOf("convertRegionToRect"), "latitude,longitude,latitudeDelta,longitudeDelta,"
                                              "latitude,longitude,latitudeDelta,longitudeDelta");
    EXPECT_EQ(readsOf("convertRectToRegion"), "x,y,width,height,x,y,width,height");
}

TEST_F(Conversions, AConversionRightAfterASetUsesTheGeometryReportedLast) {
    const std::string conversion = "JSON.stringify(map.convertCoordinateToPoint({ latitude: 80, longitude: -170 }))";
    const std::string before = run(conversion);
    run("map.setRegion({ latitude: 0, longitude: 0, latitudeDelta: 10, longitudeDelta: 10 })");
    EXPECT_EQ(run(conversion), before);
    runMain();
    EXPECT_NE(run(conversion), before);
}

TEST_F(Conversions, EachResultIsANewObject) {
    EXPECT_EQ(run("p = { x: 1, y: 2 }; map.convertPointToCoordinate(p) === map.convertPointToCoordinate(p)"), "false");
}

TEST_F(Conversions, ResultsAreTakenAsArguments) {
    EXPECT_EQ(run("c = map.convertPointToCoordinate({ x: 100, y: 50 }); p = map.convertCoordinateToPoint(c); "
                  "q = map.convertCoordinateToPoint(map.convertPointToCoordinate(p)); "
                  "Math.abs(p.x - 100) < 1e-3 && Math.abs(q.y - 50) < 1e-3"),
              "true");
    EXPECT_EQ(run("map.convertRegionToRect(map.convertRectToRegion(map.convertRegionToRect(map.region))).height"), "0");
}

TEST_F(Conversions, ARefusedArgumentGivesNothing) {
    EXPECT_EQ(run("let result = 'kept'; try { result = map.convertPointToCoordinate({ x: 1 }) } catch (e) { "
                  "result + ': ' + e.message }"),
              "kept: Object passed to 'convertPointToCoordinate' does not contain keys (\n    y\n)");
    EXPECT_TRUE(view().convertPointToCoordinate(native("({ x: 1 })")).isNil());
    EXPECT_TRUE(view().convertCoordinateToPoint(id()).isNil());
    EXPECT_TRUE(view().convertRegionToRect(id(5)).isNil());
    EXPECT_TRUE(view().convertRectToRegion(id("text")).isNil());
    EXPECT_TRUE(view().regionThatFits(id(WebUndefined{})).isNil());
}

using ConversionsBeforeLayout = MapFixture;

TEST_F(ConversionsBeforeLayout, GiveNumbersThatAreNotFiniteRatherThanFail) {
    EXPECT_EQ(run("p = map.convertCoordinateToPoint({ latitude: 10, longitude: 20 }); [p.x, p.y].join()"),
              "Infinity,Infinity");
    EXPECT_EQ(run("r = map.convertRegionToRect({ latitude: 10, longitude: 20, latitudeDelta: 1, longitudeDelta: 1 }); "
                  "[r.x, r.y, r.width, r.height].join()"),
              "Infinity,Infinity,NaN,NaN");
}

TEST_F(ConversionsBeforeLayout, ZeroOverZeroIsNotANumber) {
    EXPECT_EQ(run("p = map.convertCoordinateToPoint({ latitude: 90, longitude: -180 }); [p.x].join()"), "NaN");
}

} // namespace veyra
