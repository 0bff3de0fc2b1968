// Input as the devices of a display send it: it moves the map, and what the map does not use stays with the page.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

#include <cmath>

namespace veyra::test {

namespace {

class Input : public testing::Test {
protected:
    // A map of 400 × 300 points in the corner of a page that scrolls, near Vienna, and a record of the events of the
    // page.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(browser.load("/pages/map.html"));
        browser.run(
            "document.body.style.cssText = 'margin: 0; height: 3000px';"
            "window.map = makeMap(); map.style.cssText = 'display: block; width: 400px; height: 300px';"
            "stage.append(map);"
            "map.region = { latitude: 48, longitude: 16, latitudeDelta: 4, longitudeDelta: 4 };"
            "window.seen = [];"
            "for (const type of ['touchstart', 'touchmove', 'wheel', 'keydown', 'pointerdown'])"
            "  map.addEventListener(type, (event) => seen.push(type + (event.defaultPrevented ? ' used' : '')));"
            "return ''");
        browser.waitUntilIdle();
    }
    double centre(const char* coordinate) {
        browser.waitUntilIdle();
        return std::stod(browser.run(std::string("return map.region.") + coordinate));
    }
    double scrolled() { return std::stod(browser.run("return scrollY")); }
    std::string seen() { return browser.run("return [...new Set(seen.splice(0))].join()"); }

    void dragByTouch(double fromX, double fromY, double toX, double toY) {
        browser.touch(GDK_TOUCH_BEGIN, 1, fromX, fromY);
        for (int step = 1; step <= 8; ++step)
            browser.touch(GDK_TOUCH_UPDATE, 1, fromX + (toX - fromX) * step / 8, fromY + (toY - fromY) * step / 8);
        Browser::wait(0.15); // no inertia
        browser.touch(GDK_TOUCH_END, 1, toX, toY);
    }

    Browser& browser = Browser::shared();
};

} // namespace

TEST_F(Input, ATouchDragMovesTheMapAndNotThePage) {
    const double before = centre("longitude");
    dragByTouch(300, 150, 100, 150);
    EXPECT_GT(centre("longitude"), before + 0.5);
    EXPECT_EQ(scrolled(), 0);
    EXPECT_EQ(seen(), "touchstart used,touchmove used");
}

// The engine sends mouse events of its own after those of a finger, prevented or not.
TEST_F(Input, ATouchDragMovesTheMapOnce) {
    const double before = centre("longitude");
    const double degreesPerPoint = std::stod(browser.run("return map.region.longitudeDelta")) / 400;
    dragByTouch(300, 150, 100, 150);
    const double moved = (centre("longitude") - before) / degreesPerPoint;
    EXPECT_LE(moved, 200 + 1e-6);
    EXPECT_GE(moved, 200 - 26); // the first of eight steps may only have told the drag from a tap
}

TEST_F(Input, ATouchTapIsNoDoubleTap) {
    const double before = centre("latitudeDelta");
    browser.touch(GDK_TOUCH_BEGIN, 1, 200, 150);
    browser.touch(GDK_TOUCH_END, 1, 200, 150);
    Browser::wait(0.8);
    EXPECT_NEAR(centre("latitudeDelta"), before, 1e-9);
}

TEST_F(Input, TwoTouchTapsZoomInByTwoAboutTheirPlace) {
    const double before = centre("longitudeDelta");
    browser.run("window.place = map.convertPointToCoordinate({ x: 300, y: 100 }); return ''");
    for (int tap = 0; tap < 2; ++tap) {
        browser.touch(GDK_TOUCH_BEGIN, 1, 300, 100);
        browser.touch(GDK_TOUCH_END, 1, 300, 100);
    }
    Browser::wait(0.8);
    EXPECT_NEAR(centre("longitudeDelta"), before / 2, 1e-6);
    EXPECT_EQ(browser.run("const p = map.convertCoordinateToPoint(place); "
                          "return Math.hypot(p.x - 300, p.y - 100) < 0.01"),
              "true");
}

TEST_F(Input, APinchIsAboutTheFingersMiddleByTheFactorOfTheirDistance) {
    const double before = centre("longitudeDelta");
    browser.run("window.place = map.convertPointToCoordinate({ x: 250, y: 120 }); return ''");
    const auto fingers = [&](GdkEventType type, double apart) {
        browser.touch(type, 1, 250 - apart / 2, 120);
        browser.touch(type, 2, 250 + apart / 2, 120);
    };
    fingers(GDK_TOUCH_BEGIN, 60);
    for (const double apart : {80., 100., 120., 140., 160., 180.})
        fingers(GDK_TOUCH_UPDATE, apart);
    Browser::wait(0.15);
    fingers(GDK_TOUCH_END, 180);
    const double factor = before / centre("longitudeDelta");
    EXPECT_LE(factor, 3 + 1e-3);
    EXPECT_GE(factor, 180. / 80 - 1e-3); // the first step may only have told the pinch from a tap
    // One finger moves before the other, so that the middle is five points off when the pinch is recognised; those grow
    // with the map.
    const double off = std::stod(browser.run("const p = map.convertCoordinateToPoint(place); "
                                             "return Math.hypot(p.x - 250, p.y - 120)"));
    EXPECT_LE(off, 5 * factor + 0.01);
}

TEST_F(Input, TouchDragsStayWithThePageWhenTheMapDoesNotScroll) {
    browser.run("map.scrollEnabled = false; return ''");
    browser.waitUntilIdle();
    const double before = centre("latitude");
    dragByTouch(200, 250, 200, 50);
    EXPECT_NEAR(centre("latitude"), before, 1e-9);
    EXPECT_GT(scrolled(), 0);
    EXPECT_EQ(seen(), "touchstart,touchmove,wheel"); // the engine scrolls by wheel events of its own
}

TEST_F(Input, TwoFingersZoom) {
    const double before = centre("latitudeDelta");
    browser.touch(GDK_TOUCH_BEGIN, 1, 180, 150);
    browser.touch(GDK_TOUCH_BEGIN, 2, 220, 150);
    for (int step = 1; step <= 8; ++step) {
        browser.touch(GDK_TOUCH_UPDATE, 1, 180 - step * 12, 150);
        browser.touch(GDK_TOUCH_UPDATE, 2, 220 + step * 12, 150);
    }
    Browser::wait(0.15);
    browser.touch(GDK_TOUCH_END, 1, 84, 150);
    browser.touch(GDK_TOUCH_END, 2, 316, 150);
    EXPECT_LT(centre("latitudeDelta"), before / 2);
}

TEST_F(Input, AMouseDragMovesTheMap) {
    const double before = centre("longitude");
    browser.motion(300, 150, false);
    browser.button(GDK_BUTTON_PRESS, 300, 150);
    for (int step = 1; step <= 10; ++step)
        browser.motion(300 - step * 20, 150, true);
    Browser::wait(0.15);
    browser.button(GDK_BUTTON_RELEASE, 100, 150);
    EXPECT_GT(centre("longitude"), before + 0.5);
    EXPECT_EQ(browser.run("return document.activeElement === map.firstElementChild"), "true");
}

TEST_F(Input, AMouseDragGoesOnOutsideTheElement) {
    const double before = centre("longitude");
    browser.motion(30, 150, false);
    browser.button(GDK_BUTTON_PRESS, 30, 150);
    for (int step = 1; step <= 10; ++step)
        browser.motion(30 + step * 60, 150, true);
    Browser::wait(0.15);
    browser.button(GDK_BUTTON_RELEASE, 630, 150);
    EXPECT_LT(centre("longitude"), before - 3);
}

TEST_F(Input, TheMouseOfAScaledElementIsMeasuredInItsOwnPoints) {
    browser.run(
        "map.style.transformOrigin = '0 0'; map.style.transform = 'scale(0.5) rotate(90deg) translate(0, -300px)';"
        "await frame(); return ''");
    // Rotated a quarter to the right and half as large: the element's x runs down the page.
    const double before = centre("longitude");
    browser.motion(75, 150, false);
    browser.button(GDK_BUTTON_PRESS, 75, 150);
    for (int step = 1; step <= 10; ++step)
        browser.motion(75, 150 - step * 10, true);
    Browser::wait(0.15);
    browser.button(GDK_BUTTON_RELEASE, 75, 50);
    const double degreesPerPoint = std::stod(browser.run("return map.region.longitudeDelta")) / 400;
    EXPECT_NEAR(centre("longitude"), before + 200 * degreesPerPoint, 15 * degreesPerPoint);
}

TEST_F(Input, TheWheelZoomsAndDoesNotScrollThePage) {
    const double before = centre("latitudeDelta");
    browser.scroll(200, 150, -1);
    browser.scroll(200, 150, -1);
    EXPECT_LT(centre("latitudeDelta"), before);
    EXPECT_EQ(seen(), "wheel used");
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(Input, TheWheelZoomsInProportionToItsTurn) {
    const auto factorOf = [&](double notches) {
        const double before = centre("longitudeDelta");
        browser.scroll(200, 150, -notches);
        Browser::wait(0.5);
        return before / centre("longitudeDelta");
    };
    const double one = factorOf(1);
    EXPECT_GT(one, 1.01);
    EXPECT_NEAR(factorOf(2), one * one, 1e-6);
    EXPECT_NEAR(factorOf(0.5), std::sqrt(one), 1e-6);
}

TEST_F(Input, TheWheelScrollsThePageWhenTheMapDoesNotZoom) {
    browser.run("map.zoomEnabled = false; map.scrollEnabled = false; return ''");
    const double before = centre("latitudeDelta");
    browser.scroll(200, 150, 3);
    EXPECT_TRUE(Browser::waitUntil([&] { return scrolled() > 0; }));
    EXPECT_EQ(seen(), "wheel");
    EXPECT_NEAR(centre("latitudeDelta"), before, 1e-9);
}

TEST_F(Input, AWheelThatTurnsSidewaysScrollsThePage) {
    browser.run("document.body.style.width = '3000px'; return ''");
    const double before = centre("latitudeDelta");
    browser.scroll(200, 150, 0, {}, 3);
    EXPECT_TRUE(Browser::waitUntil([&] { return browser.run("return scrollX > 0") == "true"; }));
    EXPECT_EQ(seen(), "wheel");
    EXPECT_NEAR(centre("latitudeDelta"), before, 1e-9);
    browser.run("document.body.style.width = ''; return ''");
}

TEST_F(Input, HomeIsTheMapsOnlyWhereItMovesAndZooms) {
    browser.button(GDK_BUTTON_PRESS, 200, 150);
    browser.button(GDK_BUTTON_RELEASE, 200, 150);
    seen();
    for (const auto& [settings, expected] : {std::pair("zoomEnabled = false", "keydown"),
                                             {"scrollEnabled = false", "keydown"},
                                             {"zoomEnabled = map.scrollEnabled = true", "keydown used"}}) {
        browser.run("map.zoomEnabled = map.scrollEnabled = true; map." + std::string(settings) + "; return ''");
        browser.waitUntilIdle();
        browser.key(GDK_KEY_Home);
        EXPECT_EQ(seen(), expected) << settings;
    }
    EXPECT_GT(centre("longitudeDelta"), 300);
}

TEST_F(Input, ArrowKeysMoveTheFocusedMapAndOthersStayWithThePage) {
    const double before = centre("longitude");
    browser.button(GDK_BUTTON_PRESS, 200, 150);
    browser.button(GDK_BUTTON_RELEASE, 200, 150);
    browser.key(GDK_KEY_Right);
    EXPECT_GT(centre("longitude"), before);
    EXPECT_EQ(seen(), "pointerdown,keydown used");
    browser.key(GDK_KEY_x);
    EXPECT_EQ(seen(), "keydown");
}

TEST_F(Input, EventsReachThePage) {
    browser.run("window.clicks = 0; map.addEventListener('click', () => { ++clicks; }); return ''");
    browser.button(GDK_BUTTON_PRESS, 200, 150);
    browser.button(GDK_BUTTON_RELEASE, 200, 150);
    EXPECT_EQ(browser.run("return clicks"), "1");
}

} // namespace veyra::test
