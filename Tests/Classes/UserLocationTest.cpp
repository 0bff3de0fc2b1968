// The user's location: the permission question, the map's callbacks and what scripts read.
#include "Platform/MapKit/MKUserLocation.h"
#include "Platform/WebKit/UIWebViewWebViewDelegate.h"
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <thread>

namespace veyra {

namespace {

/// Keeps the questions; the test answers them.
class AskedDelegate : public UIWebViewWebViewDelegate {
public:
    VEYRA_CLASS()
    void webViewDecidePolicyForGeolocationRequestFromOriginFrameListener(const id& webView, const id& origin,
                                                                         const id& frame, const id& listener) override {
        questions.push_back({webView, origin, frame, listener});
        if (answersAtOnce)
            answer(answersAtOnce);
    }
    void answer(const char* how) { questions.back()[3].object()->performSelector(how); }

    std::vector<std::array<id, 4>> questions;
    const char* answersAtOnce = nullptr;
};

Class AskedDelegate::classObject() {
    static Class cls = new ClassObject("AskedDelegate", UIWebViewWebViewDelegate::classObject(), {});
    return cls;
}

class OtherDelegate : public NSObject {
public:
    VEYRA_CLASS()
};

Class OtherDelegate::classObject() {
    static Class cls = new ClassObject("OtherDelegate", NSObject::classObject(), {});
    return cls;
}

/// Positions come when the test says so.
class StubProvider : public CLLocationProvider {
public:
    void startUpdatingLocation(Handlers given) override {
        ++starts;
        handlers = std::move(given);
    }
    void stopUpdatingLocation() override {
        stops += handlers.didUpdate ? 1 : 0;
        handlers = {};
    }
    void locate(double latitude, double longitude, double altitude = 0, double horizontal = 0, double vertical = 0) {
        handlers.didUpdate(std::make_shared<CLLocation>(CLLocationCoordinate2DMake(latitude, longitude), altitude,
                                                        horizontal, vertical));
    }
    void fail() {
        handlers.didFail(
            std::make_shared<NSError>(NSString(kCLErrorDomain), kCLErrorLocationUnknown, NSDictionary::Map()));
    }
    Handlers handlers;
    int starts = 0, stops = 0;
};

class UserLocation : public ViewFixture {
protected:
    UserLocation() {
        frame = std::make_shared<WebFrame>(context, std::make_shared<WebView>(delegate));
        makeMap();
        layOut();
        onMain([&] {
            mapView().setRegion({{0, 0}, {20, 20}});
            mapView().setLocationProvider(provider);
        });
        settle();
        record();
    }
    void TearDown() override {
        delegate->questions.clear(); // which hold the view
        ViewFixture::TearDown();
    }
    /// Switches on, allows, and runs the queues.
    void showUser() {
        run("map.showsUserLocation = true");
        delegate->answer("allow");
        settle();
    }
    void locate(double latitude, double longitude, double accuracy = 0) {
        onMain([&] { provider->locate(latitude, longitude, 0, accuracy); });
        settle();
    }
    std::string shows() { return run("String(map.showsUserLocation)"); }
    std::string visible() { return run("String(map.userLocationVisible)"); }

    const std::shared_ptr<AskedDelegate> delegate = std::make_shared<AskedDelegate>();
    const std::shared_ptr<StubProvider> provider = std::make_shared<StubProvider>();
};

} // namespace

TEST_F(UserLocation, IsAllZerosBeforeAnyReport) {
    EXPECT_EQ(run("JSON.stringify(map.userLocation)"), R"({"latitude":0,"longitude":0,"altitude":0,)"
                                                       R"("horizontalAccuracy":0,"verticalAccuracy":0})");
    EXPECT_EQ(visible(), "false");
}

TEST_F(UserLocation, AssignmentsToWhatIsReadChangeNothing) {
    const std::string before = run("JSON.stringify([map.userLocation, map.userLocationVisible])");
    run("map.userLocation = { latitude: 1, longitude: 2 }; map.userLocationVisible = true");
    EXPECT_EQ(run("JSON.stringify([map.userLocation, map.userLocationVisible])"), before);
}

TEST_F(UserLocation, SwitchingOnAsksTheHostsDelegateOnTheCallingThread) {
    run("map.showsUserLocation = true");
    ASSERT_EQ(delegate->questions.size(), 1u);
    const auto& [webView, origin, asking, listener] = delegate->questions[0];
    EXPECT_EQ(webView.object(), frame->webView());
    EXPECT_TRUE(origin.isNil());
    EXPECT_EQ(asking.object(), frame);
    EXPECT_EQ(listener.object().get(), &view());
    EXPECT_EQ(shows(), "true"); // while the answer is awaited
    settle();
    EXPECT_EQ(provider->starts, 0);
    EXPECT_EQ(recorded(), "");
}

TEST_F(UserLocation, AllowTurnsTheMapsDisplayOn) {
    showUser();
    EXPECT_TRUE(mapView().showsUserLocation());
    EXPECT_EQ(provider->starts, 1);
    EXPECT_EQ(recorded(), "mapWillStartUpdatingUserLocation");
    EXPECT_EQ(shows(), "true");
}

TEST_F(UserLocation, DenyLeavesItOffAndSendsOneFailure) {
    run("map.showsUserLocation = true");
    delegate->answer("deny");
    settle();
    EXPECT_EQ(shows(), "false");
    EXPECT_EQ(recorded(), "mapUpdateUserLocationFailed -1");
    EXPECT_FALSE(mapView().showsUserLocation());
    EXPECT_EQ(provider->starts, 0);
}

TEST_F(UserLocation, DenyOnlyThisRequestDoesTheSame) {
    run("map.showsUserLocation = true");
    delegate->answer("denyOnlyThisRequest");
    settle();
    EXPECT_EQ(shows(), "false");
    EXPECT_EQ(recorded(), "mapUpdateUserLocationFailed -1");
}

TEST_F(UserLocation, ADelegateMayAnswerWithinTheQuestion) {
    delegate->answersAtOnce = "allow";
    run("map.showsUserLocation = true");
    settle();
    EXPECT_EQ(recorded(), "mapWillStartUpdatingUserLocation");
    run("map.showsUserLocation = false");
    settle();
    recorded();
    delegate->answersAtOnce = "deny";
    EXPECT_EQ(run("map.showsUserLocation = true; map.showsUserLocation"), "false");
    settle();
    EXPECT_EQ(recorded(), "mapUpdateUserLocationFailed -1");
}

TEST_F(UserLocation, ALateAllowAfterOffTellsTheMapNoTwiceAndNeverYes) {
    run("map.showsUserLocation = true; map.showsUserLocation = false");
    settle();
    EXPECT_FALSE(mapView().showsUserLocation());
    delegate->answer("allow");
    settle();
    EXPECT_FALSE(mapView().showsUserLocation());
    EXPECT_EQ(provider->starts, 0);
    EXPECT_EQ(recorded(), "");
    EXPECT_EQ(shows(), "false");
}

TEST_F(UserLocation, ARepeatedYesAsksAgainAndARepeatedAllowChangesNothing) {
    showUser();
    recorded();
    run("map.showsUserLocation = true");
    EXPECT_EQ(delegate->questions.size(), 2u);
    delegate->answer("allow");
    delegate->answer("allow");
    settle();
    EXPECT_EQ(provider->starts, 1);
    EXPECT_EQ(recorded(), "");
}

TEST_F(UserLocation, AContradictingDenyLeavesTheMapAsItIs) {
    showUser();
    recorded();
    delegate->answer("deny");
    settle();
    EXPECT_EQ(shows(), "false");
    EXPECT_TRUE(mapView().showsUserLocation()); // a refusal never calls the map
    EXPECT_EQ(recorded(), "mapUpdateUserLocationFailed -1");
    run("map.showsUserLocation = false");
    settle();
    EXPECT_EQ(recorded(), "mapDidStopUpdatingUserLocation");
}

TEST_F(UserLocation, AnAnswerMayComeOnAnyThread) {
    const auto answerElsewhere = [&](const char* how) {
        run("map.showsUserLocation = true");
        std::thread([&] { delegate->answer(how); }).join();
        settle();
    };
    answerElsewhere("deny");
    EXPECT_EQ(recorded(), "mapUpdateUserLocationFailed -1");
    EXPECT_EQ(shows(), "false");
    answerElsewhere("allow");
    EXPECT_EQ(recorded(), "mapWillStartUpdatingUserLocation");
    EXPECT_TRUE(mapView().showsUserLocation());
}

TEST_F(UserLocation, NothingOfItIsLogged) {
    onMain([&] { view().setVerboseDebugLoggingEnabled(true); });
    const CapturedLog log;
    for (const char* answer : {"deny", "denyOnlyThisRequest", "allow"}) {
        run("map.showsUserLocation = true");
        delegate->answer(answer);
        settle();
    }
    locate(1, 2);
    onMain([&] { provider->fail(); });
    run("map.showsUserLocation = false; map.userLocation = 5; map.userLocationVisible = 5");
    delegate->answer("allow");
    settle();
    EXPECT_EQ(log.lines(), std::vector<std::string>{});
}

TEST_F(UserLocation, ShouldClearCacheIsAlwaysYes) {
    EXPECT_TRUE(view().performSelector("shouldClearCache").boolValue());
    showUser();
    EXPECT_TRUE(view().performSelector("shouldClearCache").boolValue());
}

TEST_F(UserLocation, APositionIsReportedAndRead) {
    showUser();
    recorded();
    onMain([&] { provider->locate(4, -5, 170, 25, 3); });
    const std::string expected =
        R"({"latitude":4,"longitude":-5,"altitude":170,"horizontalAccuracy":25,"verticalAccuracy":3})";
    EXPECT_EQ(run("JSON.stringify(map.userLocation)"), expected);
    EXPECT_EQ(visible(), "true");
    settle();
    EXPECT_EQ(recorded(), "mapDidUpdateUserLocation " + expected +
                              "\nmapDidAddViewsForAnnotations [\"mapUserLocationAnnotationIdentifier\"]");
}

TEST_F(UserLocation, EachPositionIsOneEventWithItsOwnObject) {
    run("map.listener = { seen: [], mapDidUpdateUserLocation(where) { this.seen.push(where); } }");
    showUser();
    onMain([&] {
        provider->locate(1, 2);
        provider->locate(3, 4);
    });
    settle();
    EXPECT_EQ(run("map.listener.seen.map((l) => [l.latitude, l.longitude]).join(';')"), "1,2;3,4");
    EXPECT_EQ(run("map.listener.seen[0] === map.listener.seen[1]"), "false");
}

TEST_F(UserLocation, IsVisibleWhenItsCircleMeetsTheMap) {
    showUser();
    for (const auto& [latitude, longitude, accuracy, expected] :
         {std::tuple(0.0, 0.0, 0.0, "true"), std::tuple(60.0, 0.0, 1000.0, "false"), std::tuple(60.0, 0.0, 9e6, "true"),
          std::tuple(0.0, 180.0, 1000.0, "false"), std::tuple(0.0, 360.0, 0.0, "true"),
          std::tuple(0.0, 0.0, -1.0, "true")}) {
        locate(latitude, longitude, accuracy);
        EXPECT_EQ(visible(), expected) << latitude << ' ' << longitude << ' ' << accuracy;
    }
}

TEST_F(UserLocation, VisibilityFollowsTheRegion) {
    showUser();
    locate(0, 0);
    EXPECT_EQ(visible(), "true");
    run("map.setCenterCoordinate({ latitude: 0, longitude: 90 })");
    settle();
    EXPECT_EQ(visible(), "false");
    run("map.setCenterCoordinate({ latitude: 0, longitude: 5 })");
    settle();
    EXPECT_EQ(visible(), "true");
}

TEST_F(UserLocation, AFailureIsReportedWith0AndHidesIt) {
    showUser();
    locate(0, 0);
    recorded();
    onMain([&] { provider->fail(); });
    settle();
    EXPECT_EQ(recorded(), "mapUpdateUserLocationFailed 0");
    EXPECT_EQ(visible(), "false");
    EXPECT_EQ(shows(), "true");
    run("map.setCenterCoordinate({ latitude: 0, longitude: 1 })");
    settle();
    EXPECT_EQ(visible(), "false");
    recorded();
    run("map.showsUserLocation = false");
    settle();
    EXPECT_EQ(recorded(), ""); // what has failed does not stop
}

TEST_F(UserLocation, APositionAfterAFailureIsAnUpdate) {
    showUser();
    onMain([&] { provider->fail(); });
    settle();
    recorded();
    locate(0, 0);
    EXPECT_EQ(run("events.map(event => event.split(' ')[0]).join()"),
              "mapDidUpdateUserLocation,mapDidAddViewsForAnnotations");
    EXPECT_EQ(visible(), "true");
    recorded();
    run("map.showsUserLocation = false");
    settle();
    EXPECT_EQ(recorded(), "mapDidStopUpdatingUserLocation");
}

TEST_F(UserLocation, AllowedAgainAfterAFailureTriesAgain) {
    showUser();
    onMain([&] { provider->fail(); });
    settle();
    recorded();
    showUser();
    EXPECT_EQ(provider->starts, 2);
    EXPECT_EQ(recorded(), "mapWillStartUpdatingUserLocation");
}

TEST_F(UserLocation, SwitchingOffStopsAndKeepsTheLastPosition) {
    showUser();
    locate(4, 5);
    recorded();
    run("map.showsUserLocation = false");
    EXPECT_EQ(shows(), "false");
    settle();
    EXPECT_EQ(provider->stops, 1);
    EXPECT_EQ(recorded(), "mapDidStopUpdatingUserLocation");
    EXPECT_EQ(visible(), "false");
    EXPECT_EQ(run("[map.userLocation.latitude, map.userLocation.longitude].join()"), "4,5");
}

TEST_F(UserLocation, SwitchingOffWhatIsOffSendsNothing) {
    run("map.showsUserLocation = false; map.showsUserLocation = false");
    settle();
    EXPECT_EQ(recorded(), "");
    EXPECT_EQ(delegate->questions.size(), 0u);
}

TEST_F(UserLocation, AMapWithoutAProviderFailsAtOnce) {
    onMain([&] { mapView().setLocationProvider(nullptr); });
    showUser();
    EXPECT_EQ(recorded(), "mapWillStartUpdatingUserLocation\nmapUpdateUserLocationFailed 0");
}

TEST_F(UserLocation, AnAnswerAfterTheViewWasStoppedIsHarmless) {
    run("map.showsUserLocation = true");
    settle();
    const auto listener = delegate->questions.back()[3];
    delegate->questions.clear();
    view().webPlugInDestroy();
    for (const char* answer : {"allow", "deny", "denyOnlyThisRequest"})
        listener.object()->performSelector(answer);
    settle();
    run("map.showsUserLocation = true"); // there is no container any more to find a delegate by
    settle();
    EXPECT_EQ(delegate->questions.size(), 0u);
    EXPECT_EQ(shows(), "false");
}

TEST_F(UserLocation, TheProviderStopsWithTheMap) {
    showUser();
    EXPECT_EQ(provider->stops, 0);
    delegate->questions.clear();
    instance().stop();
    settle();
    EXPECT_EQ(provider->stops, 1);
}

class UserLocationWithoutDelegate : public ViewFixture {
protected:
    std::string askWith(std::shared_ptr<NSObject> delegate) {
        frame = std::make_shared<WebFrame>(context, std::make_shared<WebView>(std::move(delegate)));
        makeMap();
        record();
        run("map.showsUserLocation = true");
        const std::string shows = run("String(map.showsUserLocation)");
        settle();
        return shows + ' ' + recorded();
    }
};

TEST_F(UserLocationWithoutDelegate, IsDeniedAtOnce) {
    EXPECT_EQ(askWith(nullptr), "false mapUpdateUserLocationFailed -1");
}

TEST_F(UserLocationWithoutDelegate, IsDeniedByADelegateOfAnotherClass) {
    EXPECT_EQ(askWith(std::make_shared<OtherDelegate>()), "false mapUpdateUserLocationFailed -1");
}

} // namespace veyra
