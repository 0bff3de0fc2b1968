// Input as the devices of a display send it: it moves the map, and what the map does not use stays with the page.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

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

TEST_F(Input, TheWheelScrollsThePageWhenTheMapDoesNotZoom) {
    browser.run("map.zoomEnabled = false; map.scrollEnabled = false; return ''");
    const double before = centre("latitudeDelta");
    browser.scroll(200, 150, 3);
    EXPECT_TRUE(Browser::waitUntil([&] { return scrolled() > 0; }));
    EXPECT_EQ(seen(), "wheel");
    EXPECT_NEAR(centre("latitudeDelta"), before, 1e-9);
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
