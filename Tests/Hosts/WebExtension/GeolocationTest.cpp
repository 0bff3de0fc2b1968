// Where the user is, by the page's own geolocation: the application's prompt decides.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

using Permission = Browser::Permission;

class Geolocation : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(browser.load("/pages/map.html"));
        browser.run("window.events = [];"
                    "window.listen = (map) => { map.listener = new Proxy({}, { get: (target, name) => (...values) => {"
                    "    if (/User/.test(name)) events.push([name, ...values.map((v) => JSON.stringify(v))].join(' '));"
                    "} }); return map; };"
                    "window.map = listen(addMap()); return ''");
        requestsBefore = browser.geolocationRequests();
    }
    void TearDown() override {
        browser.answerGeolocationRequests(false);
        browser.setGeolocationPermission(Permission::Deny);
        browser.load("/pages/blank.html");
        EXPECT_TRUE(Browser::waitUntil([&] { return !browser.isAskedWhereTheUserIs(); }));
    }
    void switchOn() { browser.run("map.showsUserLocation = true; return ''"); }
    /// Waits for a number of events and returns them all, one a line.
    std::string events(int count) {
        return browser.run("await until(() => events.length >= " + std::to_string(count) +
                           ", 'events'); await frame(); return events.join('\\n')");
    }
    bool isAsked() {
        return Browser::waitUntil([&] { return browser.isAskedWhereTheUserIs(); });
    }
    bool requestComes() {
        return Browser::waitUntil([&] { return browser.geolocationRequests() == requestsBefore + 1; });
    }

    Browser& browser = Browser::shared();
    unsigned requestsBefore = 0;
};

constexpr const char* denied = "mapUpdateUserLocationFailed -1";

} // namespace

TEST_F(Geolocation, TheApplicationsDenialReachesThePage) {
    switchOn();
    EXPECT_EQ(events(1), denied);
    EXPECT_EQ(browser.geolocationRequests(), requestsBefore + 1);
    EXPECT_EQ(browser.run("return map.showsUserLocation"), "false");
}

TEST_F(Geolocation, TheApplicationsPermissionShowsTheUser) {
    browser.setGeolocationPermission(Permission::Allow);
    switchOn();
    ASSERT_TRUE(isAsked());
    browser.locateWithAltitude(1.5, -2.25, 30, 170, 12);
    EXPECT_EQ(events(2), "mapWillStartUpdatingUserLocation\n"
                         "mapDidUpdateUserLocation {\"latitude\":1.5,\"longitude\":-2.25,\"altitude\":170,"
                         "\"horizontalAccuracy\":30,\"verticalAccuracy\":12}");
    EXPECT_EQ(browser.run("return [map.showsUserLocation, map.userLocationVisible, map.userLocation.latitude].join()"),
              "true,true,1.5");
    browser.locate(3, 4, 10);
    EXPECT_EQ(browser.run("await until(() => events.length >= 3, 'event'); return events[2]"),
              "mapDidUpdateUserLocation {\"latitude\":3,\"longitude\":4,\"altitude\":0,"
              "\"horizontalAccuracy\":10,\"verticalAccuracy\":-1}");
}

TEST_F(Geolocation, SwitchingOffEndsTheSearch) {
    browser.setGeolocationPermission(Permission::Allow);
    switchOn();
    ASSERT_TRUE(isAsked());
    browser.locate(1, 2, 3);
    events(2);
    browser.run("map.showsUserLocation = false; return ''");
    EXPECT_TRUE(Browser::waitUntil([&] { return !browser.isAskedWhereTheUserIs(); }));
    EXPECT_EQ(browser.run("await until(() => events.length >= 3, 'event'); return events[2]"),
              "mapDidStopUpdatingUserLocation");
}

TEST_F(Geolocation, AFailureOfThePositionIsNoDenial) {
    browser.setGeolocationPermission(Permission::Allow);
    switchOn();
    ASSERT_TRUE(isAsked());
    browser.failToLocate();
    EXPECT_EQ(events(2), "mapWillStartUpdatingUserLocation\nmapUpdateUserLocationFailed 0");
    EXPECT_EQ(browser.run("return map.showsUserLocation"), "true");
}

TEST_F(Geolocation, ALateAllowAfterOffShowsNothing) {
    browser.setGeolocationPermission(Permission::Keep);
    switchOn();
    ASSERT_TRUE(requestComes());
    browser.run("map.showsUserLocation = false; return ''");
    browser.answerGeolocationRequests(true);
    if (isAsked())
        browser.locate(1, 2, 3);
    EXPECT_TRUE(Browser::waitUntil([&] { return !browser.isAskedWhereTheUserIs(); }));
    EXPECT_EQ(browser.run("await frame(); await frame(); return events.join()"), "");
    EXPECT_EQ(browser.run("return [map.showsUserLocation, map.userLocationVisible].join()"), "false,false");
}

TEST_F(Geolocation, AnAnswerAfterTheElementHasGoneIsHarmless) {
    browser.setGeolocationPermission(Permission::Keep);
    switchOn();
    ASSERT_TRUE(requestComes());
    browser.run("map.remove(); return ''");
    browser.answerGeolocationRequests(true);
    browser.locate(1, 2, 3);
    EXPECT_EQ(browser.run("await frame(); await frame(); return events.join()"), "");
    EXPECT_EQ(browser.run("stage.append(map); return map.showsUserLocation"), "false");
}

TEST_F(Geolocation, AnAnswerAfterThePageHasGoneIsHarmless) {
    browser.setGeolocationPermission(Permission::Keep);
    switchOn();
    ASSERT_TRUE(requestComes());
    browser.load("/pages/map.html?next");
    browser.answerGeolocationRequests(true);
    browser.locate(1, 2, 3);
    EXPECT_EQ(browser.run("window.map = addMap(); await frame(); return map.showsUserLocation"), "false");
}

TEST_F(Geolocation, TwoMapsOfAPageAskOnceAndBothShowTheUser) {
    browser.setGeolocationPermission(Permission::Keep);
    browser.run("window.second = listen(addMap()); map.showsUserLocation = second.showsUserLocation = true; return ''");
    ASSERT_TRUE(requestComes());
    browser.answerGeolocationRequests(true);
    ASSERT_TRUE(isAsked());
    browser.locate(1, 2, 3);
    events(4);
    EXPECT_EQ(browser.run("return [map.userLocation.latitude, second.userLocation.latitude].join()"), "1,1");
    EXPECT_EQ(browser.geolocationRequests(), requestsBefore + 1);
    browser.run("map.showsUserLocation = false; await until(() => events.length === 5, 'stop'); return ''");
    EXPECT_TRUE(browser.isAskedWhereTheUserIs()); // for the other one
}

TEST_F(Geolocation, AFrameOfAnotherOriginIsDeniedUnlessThePageDelegates) {
    browser.setGeolocationPermission(Permission::Allow);
    EXPECT_EQ(
        browser.run("const frame = document.createElement('iframe'); frame.sandbox = 'allow-scripts';"
                    "const answer = new Promise((resolve) => addEventListener('message', (e) => resolve(e.data)));"
                    "frame.srcdoc = `<object id=map type='${mapType}'></object><script>"
                    "map.listener = { mapUpdateUserLocationFailed(code) { parent.postMessage(code, '*'); } };"
                    "map.showsUserLocation = true;</scr` + `ipt>`; stage.append(frame); return await answer"),
        "-1");
    EXPECT_EQ(browser.geolocationRequests(), requestsBefore);
}

TEST_F(Geolocation, APageInTheBackForwardCacheGoesOnWhenItComesBack) {
    browser.setGeolocationPermission(Permission::Allow);
    switchOn();
    ASSERT_TRUE(isAsked());
    browser.locate(1, 2, 3);
    events(2);
    browser.load("/pages/blank.html");
    browser.goBack();
    ASSERT_EQ(browser.run("return events.length"), "2");
    ASSERT_TRUE(isAsked());
    browser.locate(5, 6, 7);
    EXPECT_EQ(browser.run("await until(() => events.length === 3, 'update'); return map.userLocation.latitude"), "5");
}

} // namespace veyra::test
