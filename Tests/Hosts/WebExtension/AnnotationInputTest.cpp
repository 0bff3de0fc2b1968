// Annotations under real devices: clicks and keys reach them, and the keys that they do not use are the page's.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

class AnnotationInput : public testing::Test {
protected:
    // A map of 400 × 300 points with two pins, the northern one in the middle, between two fields of the page.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(browser.load("/pages/map.html"));
        browser.run(
            "document.body.style.margin = 0;"
            "window.map = makeMap(); map.style.cssText = 'display: block; width: 400px; height: 300px';"
            "stage.append(map); stage.insertAdjacentHTML('beforeend', '<input id=after>');"
            "map.region = { latitude: 0, longitude: 0, latitudeDelta: 1, longitudeDelta: 40 };"
            "window.heard = [];"
            "map.listener = new Proxy({}, { get: (_, name) => name.startsWith('mapDidSelect') ||"
            "  name.startsWith('mapDidDeselect') || name.startsWith('mapAnnotation') ?"
            "  (identifier) => { heard.push(name + ' ' + identifier); } : undefined });"
            "window.seen = [];"
            "map.addEventListener('keydown', (event) => seen.push(event.key + (event.defaultPrevented ? ' used' : "
            "'')));"
            "for (const [identifier, latitude] of [['south', -8], ['north', 0]])"
            "  map.addAnnotation({ latitude, longitude: 0, identifier, title: identifier, pinAnimatesDrop: false,"
            "                      hasRightCalloutButton: true });"
            "return ''");
        browser.waitUntilIdle();
    }
    void click(double x, double y) {
        browser.motion(x, y, false);
        browser.button(GDK_BUTTON_PRESS, x, y);
        browser.button(GDK_BUTTON_RELEASE, x, y);
    }
    void key(unsigned value) {
        browser.key(value);
        browser.waitUntilIdle();
    }
    std::string heard() {
        browser.waitUntilIdle();
        return browser.run("return heard.splice(0).join()");
    }
    std::string seen() { return browser.run("return seen.splice(0).join()"); }
    std::string focused() {
        return browser.run("return document.activeElement.id || document.activeElement.localName");
    }

    Browser& browser = Browser::shared();
};

} // namespace

TEST_F(AnnotationInput, AClickSelectsAndAClickElsewhereDeselects) {
    click(200, 130);
    EXPECT_EQ(heard(), "mapDidSelectAnnotation north");
    EXPECT_EQ(browser.run("return map.selectedAnnotations.join()"), "north");
    click(40, 40);
    EXPECT_EQ(heard(), "mapDidDeselectAnnotation north");
}

TEST_F(AnnotationInput, AFingersTapSelects) {
    browser.touch(GDK_TOUCH_BEGIN, 1, 200, 130);
    browser.touch(GDK_TOUCH_END, 1, 200, 130);
    EXPECT_TRUE(Browser::waitUntil([&] { return heard() == "mapDidSelectAnnotation north"; }));
}

TEST_F(AnnotationInput, APressThatIsHeldLiftsAPinAndADragSetsItDownElsewhere) {
    browser.run("map.removeAnnotation('north');"
                "map.addAnnotation({ latitude: 0, longitude: 0, identifier: 'north', title: 'north', draggable: true, "
                "pinAnimatesDrop: false }); "
                "map.listener = { mapAnnotationDidFinishDrag(identifier, at) { "
                "  heard.push([identifier, ...[at.latitude, at.longitude].map(x => Math.round(x * 100) / 100 + "
                "0)].join(' ')) } "
                "}; return ''");
    browser.waitUntilIdle();
    browser.motion(200, 130, false);
    const Pixel tip = browser.pixelAt(200, 146);
    browser.button(GDK_BUTTON_PRESS, 200, 130);
    EXPECT_TRUE(Browser::waitUntil([&] { return !(browser.pixelAt(200, 146) == tip); })) << "lifted";
    for (int x = 210; x <= 260; x += 10)
        browser.motion(x, 130, true);
    browser.button(GDK_BUTTON_RELEASE, 260, 130);
    // 40 degrees are 400 points.
    EXPECT_TRUE(Browser::waitUntil([&] { return heard() == "north 0 6"; }));
    EXPECT_NEAR(std::stod(browser.run("return map.region.longitude")), 0, 1e-6) << "the map stays";
}

TEST_F(AnnotationInput, AMouseDragThatBeginsOnAPinMovesTheMap) {
    browser.motion(200, 130, false);
    browser.button(GDK_BUTTON_PRESS, 200, 130);
    for (int x = 190; x >= 100; x -= 10)
        browser.motion(x, 130, true);
    browser.button(GDK_BUTTON_RELEASE, 100, 130);
    browser.waitUntilIdle();
    EXPECT_GT(std::stod(browser.run("return map.region.longitude")), 5);
    EXPECT_EQ(heard(), "");
}

TEST_F(AnnotationInput, ALongPressOfAFingerDropsAPinThere) {
    browser.run("map.longPressDropsPin = true; map.droppedPinIdentifier = 'mine';"
                "map.listener = { mapDidAddViewsForAnnotations(added) { heard.push('added ' + added) },"
                "  mapAnnotationDidFinishDrag(identifier, at) { "
                "    heard.push(identifier + ' ' + at.longitude.toFixed(2)) } }; return ''");
    browser.waitUntilIdle();
    heard();
    browser.touch(GDK_TOUCH_BEGIN, 1, 100, 60);
    EXPECT_TRUE(Browser::waitUntil([&] { return browser.run("return heard.length") == "2"; })) << "before it is lifted";
    browser.touch(GDK_TOUCH_END, 1, 100, 60);
    EXPECT_EQ(heard(), "added mine,mine -10.00");
    EXPECT_EQ(browser.run("return map.annotations.sort().join()"), "mine,north,south");
}

TEST_F(AnnotationInput, APinchWithOneFingerOnAPinZooms) {
    const double before = std::stod(browser.run("return map.region.longitudeDelta"));
    browser.touch(GDK_TOUCH_BEGIN, 1, 200, 130);
    browser.touch(GDK_TOUCH_BEGIN, 2, 120, 130);
    for (int step = 1; step <= 8; ++step) {
        browser.touch(GDK_TOUCH_UPDATE, 1, 200 + 5 * step, 130);
        browser.touch(GDK_TOUCH_UPDATE, 2, 120 - 5 * step, 130);
    }
    browser.touch(GDK_TOUCH_END, 1, 240, 130);
    browser.touch(GDK_TOUCH_END, 2, 80, 130);
    browser.waitUntilIdle();
    EXPECT_LT(std::stod(browser.run("return map.region.longitudeDelta")), before * 0.75);
    EXPECT_EQ(heard(), "");
}

TEST_F(AnnotationInput, TabGoesThroughTheAnnotationsAndThenOnInThePage) {
    click(40, 280);
    key(GDK_KEY_Tab);
    key(GDK_KEY_Return);
    EXPECT_EQ(heard(), "mapDidSelectAnnotation north");
    key(GDK_KEY_Tab);
    key(GDK_KEY_Return);
    EXPECT_EQ(heard(), "mapAnnotationRightCalloutTapped north");
    key(GDK_KEY_Tab);
    key(GDK_KEY_Return);
    EXPECT_EQ(heard(), "mapDidDeselectAnnotation north,mapDidSelectAnnotation south");
    key(GDK_KEY_Escape);
    EXPECT_EQ(heard(), "mapDidDeselectAnnotation south");
    EXPECT_EQ(seen(), "Tab used,Enter used,Tab used,Enter used,Tab used,Enter used,Escape used");
    key(GDK_KEY_Tab);
    EXPECT_EQ(seen(), "Tab");
    EXPECT_EQ(focused(), "after");
}

TEST_F(AnnotationInput, EscapeGivesTheNextTabToThePage) {
    click(40, 280);
    key(GDK_KEY_Tab);
    key(GDK_KEY_Escape);
    key(GDK_KEY_Tab);
    EXPECT_EQ(seen(), "Tab used,Escape used,Tab");
    EXPECT_EQ(focused(), "after");
}

TEST_F(AnnotationInput, KeysOfNoUseToTheMapAreThePages) {
    click(40, 280);
    key(GDK_KEY_Return);
    key(GDK_KEY_Escape);
    EXPECT_EQ(seen(), "Enter,Escape");
}

} // namespace veyra::test
