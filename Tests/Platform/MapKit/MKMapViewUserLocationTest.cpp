// What the map makes of a provider that says whatever it likes, and of a delegate that thinks otherwise meanwhile.
#include "Platform/CoreLocation/CLLocationProvider.h"
#include "Platform/MapKit/MKUserLocation.h"
#include "Tests/Platform/MapKit/MapFixture.h"

#include <limits>

namespace veyra {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Keeps its handlers, also after it was stopped.
class LooseProvider final : public CLLocationProvider {
public:
    void startUpdatingLocation(Handlers given) override {
        ++starts;
        handlers = std::move(given);
    }
    void stopUpdatingLocation() override { ++stops; }
    void locate(double latitude, double longitude, double accuracy = 0) const {
        handlers.didUpdate(
            std::make_shared<CLLocation>(CLLocationCoordinate2DMake(latitude, longitude), 0, accuracy, -1));
    }
    void fail() const {
        handlers.didFail(
            std::make_shared<NSError>(NSString(kCLErrorDomain), kCLErrorLocationUnknown, NSDictionary::Map()));
    }
    Handlers handlers;
    int starts = 0, stops = 0;
};

class LocationDelegate final : public MKMapViewDelegate {
public:
    void mapViewWillStartLocatingUser(MKMapView& map) override { note(map, "start"); }
    void mapViewDidUpdateUserLocation(MKMapView& map, const std::shared_ptr<MKUserLocation>&) override {
        note(map, "update");
    }
    void mapViewDidStopLocatingUser(MKMapView& map) override { note(map, "stop"); }
    void mapViewDidFailToLocateUserWithError(MKMapView& map, const std::shared_ptr<NSError>&) override {
        note(map, "fail");
    }
    std::shared_ptr<MKAnnotationView> mapViewViewForAnnotation(MKMapView& map,
                                                               const std::shared_ptr<MKAnnotation>&) override {
        note(map, "view");
        return nullptr;
    }
    void mapViewDidDeselectAnnotationView(MKMapView& map, const std::shared_ptr<MKAnnotationView>&) override {
        note(map, "deselect");
    }
    void note(MKMapView& map, const std::string& call) {
        calls.push_back(call);
        if (call == awaited) {
            awaited.clear();
            then(map);
        }
    }
    void once(const std::string& call, std::function<void(MKMapView&)> run) {
        awaited = call;
        then = std::move(run);
    }
    Calls calls;
    std::string awaited;
    std::function<void(MKMapView&)> then;
};

class MKMapViewUserLocation : public MapTest {
protected:
    void SetUp() override {
        show();
        map->setRegion({{0, 0}, {20, 20}});
        settle();
        map->setDelegate(told);
        map->setLocationProvider(provider);
    }
    const std::shared_ptr<LocationDelegate> told = std::make_shared<LocationDelegate>();
    const std::shared_ptr<LooseProvider> provider = std::make_shared<LooseProvider>();
};

void switchOff(MKMapView& map) {
    map.setShowsUserLocation(false);
}

void switchOn(MKMapView& map) {
    map.setShowsUserLocation(true);
}

} // namespace

TEST_F(MKMapViewUserLocation, NothingIsReportedAfterTheStop) {
    switchOn(*map);
    provider->locate(0, 0);
    switchOff(*map);
    EXPECT_EQ(told->calls, (Calls{"start", "view", "update", "stop"}));
    provider->locate(1, 1);
    provider->fail();
    EXPECT_EQ(told->calls, (Calls{"start", "view", "update", "stop"}));
    EXPECT_FALSE(map->isUserLocationVisible());
    EXPECT_EQ(map->annotations().size(), 0u);
}

TEST_F(MKMapViewUserLocation, ADelegateMaySwitchOffInEveryReport) {
    for (const auto& [report, calls] : {std::pair("start", Calls{"start", "stop"}),
                                        {"view", Calls{"start", "view", "stop"}},
                                        {"update", Calls{"start", "view", "update", "stop"}}}) {
        told->calls.clear();
        told->once(report, switchOff);
        switchOn(*map);
        if (map->showsUserLocation()) {
            provider->locate(0, 0);
        }
        EXPECT_EQ(told->calls, calls) << report;
        EXPECT_FALSE(map->showsUserLocation());
        EXPECT_EQ(map->annotations().size(), 0u);
    }
    told->calls.clear();
    told->once("fail", switchOff);
    switchOn(*map);
    provider->fail();
    EXPECT_EQ(told->calls, (Calls{"start", "fail"}));
    EXPECT_FALSE(map->showsUserLocation());
}

TEST_F(MKMapViewUserLocation, ADelegateMaySwitchOnAgainWhileItIsSwitchedOff) {
    switchOn(*map);
    provider->locate(0, 0);
    map->selectAnnotationAnimated(map->userLocation(), false);
    told->once("deselect", switchOn);
    switchOff(*map);
    EXPECT_EQ(told->calls, (Calls{"start", "view", "update", "deselect"}));
    EXPECT_TRUE(map->showsUserLocation());
    EXPECT_EQ(provider->starts, 2);
    provider->locate(0, 0);
    EXPECT_EQ(told->calls.back(), "update");
    told->once("stop", switchOn);
    switchOff(*map);
    EXPECT_EQ(told->calls, (Calls{"start", "view", "update", "deselect", "view", "update", "stop", "start"}));
    EXPECT_EQ(provider->starts, 3);
}

TEST_F(MKMapViewUserLocation, ADelegateMayDropTheMapInEveryReport) {
    for (const char* report : {"start", "view", "update", "fail", "stop"}) {
        std::weak_ptr<MKMapView> dropped = map;
        told->once(report, [&](MKMapView& reporting) {
            map = nullptr;
            reporting.removeFromSuperview();
        });
        if (const auto shown = dropped.lock()) {
            switchOn(*shown);
        }
        provider->locate(0, 0);
        provider->fail();
        if (const auto shown = dropped.lock()) {
            switchOff(*shown);
            switchOn(*shown);
            switchOff(*shown);
        }
        provider->locate(0, 0);
        EXPECT_TRUE(dropped.expired()) << report;
        map = UIView::make<MKMapView>(host->bounds());
        map->setTileSource(source);
        host->addSubview(map);
        settle();
        map->setDelegate(told);
        map->setLocationProvider(provider);
    }
}

TEST_F(MKMapViewUserLocation, APlaceThatIsNoneIsShownNowhere) {
    switchOn(*map);
    for (const auto& [latitude, longitude] :
         {std::pair(notANumber, 0.0), {0.0, notANumber}, {infinity, 0.0}, {0.0, -infinity}}) {
        provider->locate(latitude, longitude, 10);
        EXPECT_EQ(told->calls.back(), "update");
        EXPECT_FALSE(map->isUserLocationVisible()) << latitude << ' ' << longitude;
        settle();
    }
    provider->locate(0, 0, 10);
    EXPECT_TRUE(map->isUserLocationVisible());
    settle();
}

TEST_F(MKMapViewUserLocation, AnAccuracyThatIsNoNumberIsNone) {
    switchOn(*map);
    for (const double accuracy : {notANumber, -1.0, -infinity, infinity, 0.0}) {
        provider->locate(0, 0, accuracy);
        EXPECT_TRUE(map->isUserLocationVisible()) << accuracy;
        settle();
        provider->locate(0, 30, accuracy);
        EXPECT_FALSE(map->isUserLocationVisible()) << accuracy;
        settle();
    }
}

TEST_F(MKMapViewUserLocation, ACircleIsDrawnWhereItMeetsTheViewHoweverLargeAndFarItIs) {
    constexpr uint32_t plain = 0x00ff00, tinted = 0x03ec23;
    map->setRegion({{0, 0}, {0.01, 0.01}});
    switchOn(*map);
    for (const double accuracy : {10000.0, 300000.0, 5e6}) {
        const double radius = accuracy * MKMapPointsPerMeterAtLatitude(0);
        provider->locate(0, -radius / MKWorldSide * 360, accuracy); // its easternmost point is the view's middle
        settle();
        EXPECT_TRUE(map->isUserLocationVisible());
        for (const int y : {140, 150, 160}) {
            EXPECT_EQ(pixelAt(190, y), tinted) << accuracy;
            EXPECT_EQ(pixelAt(210, y), plain) << accuracy;
        }
    }
    for (const double accuracy : {1e6, 2e7, 1e300}) { // around all of the view
        provider->locate(1, 2, accuracy);
        settle();
        for (const auto& [x, y] : {std::pair(0, 0), {399, 0}, {200, 150}, {0, 299}, {399, 299}}) {
            EXPECT_EQ(pixelAt(x, y), tinted) << accuracy;
        }
    }
    provider->locate(1, 2, 1000);
    settle();
    EXPECT_EQ(pixelAt(200, 150), plain);
    EXPECT_FALSE(map->isUserLocationVisible());
}

TEST_F(MKMapViewUserLocation, ACircleComesIntoViewWithTheMap) {
    switchOn(*map);
    map->setRegion({{0, 0}, {0.01, 0.01}});
    provider->locate(0, 90, 20000);
    settle();
    EXPECT_EQ(pixelAt(200, 150), 0x00ff00u);
    map->setCenterCoordinate({0, 90.1});
    settle();
    EXPECT_EQ(pixelAt(200, 150), 0x03ec23u);
    map->setCenterCoordinate({0, 0});
    settle();
    EXPECT_EQ(pixelAt(200, 150), 0x00ff00u);
}

TEST_F(MKMapViewUserLocation, PlacesAtThePolesAndTheAntimeridian) {
    switchOn(*map);
    map->setRegion({{85, 180}, {5, 5}});
    for (const auto& [latitude, longitude, expected] :
         {std::tuple(90.0, 179.0, true), {89.0, -179.0, true}, {85.0, 540.0, true}, {-90.0, 180.0, false}}) {
        provider->locate(latitude, longitude, 10);
        EXPECT_EQ(map->isUserLocationVisible(), expected) << latitude << ' ' << longitude;
        settle();
    }
}

TEST_F(MKMapViewUserLocation, ANewProviderTakesOverWhatIsUnderWay) {
    switchOn(*map);
    provider->locate(0, 0);
    const auto other = std::make_shared<LooseProvider>();
    map->setLocationProvider(other);
    EXPECT_EQ(provider->stops, 1);
    EXPECT_EQ(other->starts, 1);
    EXPECT_EQ(told->calls, (Calls{"start", "view", "update"}));
    other->fail();
    EXPECT_EQ(told->calls.back(), "fail");
    map->setLocationProvider(nullptr);
    EXPECT_EQ(told->calls, (Calls{"start", "view", "update", "fail", "start", "fail"}));
}

} // namespace veyra
