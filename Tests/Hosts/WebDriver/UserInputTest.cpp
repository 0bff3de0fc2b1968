#include "Tests/Hosts/WebDriver/DrivenBrowser.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

// The map is 600 × 400 CSS pixels and shows 12 × 8 degrees about the origin, widened a little.
class UserInput : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(browser.waitUntil("return shown !== null;"));
        browser.run("window.seen = changes;");
        before = region();
    }
    struct Region {
        double latitude, longitude, latitudeDelta, longitudeDelta;
    };
    Region region() {
        const nlohmann::json read = browser.run("return { ...map.region };");
        return {read.value("latitude", 0.), read.value("longitude", 0.), read.value("latitudeDelta", 0.),
                read.value("longitudeDelta", 0.)};
    }
    /// What the map shows once it has reported a change that began after the last call.
    Region changed() {
        EXPECT_TRUE(browser.waitUntil("return changes > (window.seen ?? 1);"))
            << browser.run("return wheels;") << " turns of the wheel have reached the element";
        browser.run("window.seen = changes;");
        return region();
    }
    DrivenBrowser browser{"file://" VEYRA_PAGE};
    Region before{};
};

} // namespace

TEST_F(UserInput, DraggingWithTheMousePansTheMapWithThePointer) {
    browser.drag(300, 200, 420, 290); // 150 pixels, of which the first 3 only tell the drag from a click
    const Region after = changed();
    const double degreesAPixel = before.longitudeDelta / 600;
    EXPECT_NEAR(after.longitude, -120 * degreesAPixel * 147 / 150, 0.5 * degreesAPixel);
    EXPECT_NEAR(after.latitude, 90 * degreesAPixel * 147 / 150, 0.5 * degreesAPixel);
    EXPECT_NEAR(after.longitudeDelta, before.longitudeDelta, 1e-9);
}

TEST_F(UserInput, TheWheelZoomsAboutThePointer) {
    browser.wheel(450, 200, -240);
    const Region after = changed();
    EXPECT_LT(after.longitudeDelta, 0.9 * before.longitudeDelta);
    // The place under the pointer, a quarter of the width east of the centre, has stayed.
    EXPECT_NEAR(after.longitude + after.longitudeDelta / 4, before.longitudeDelta / 4, 1e-6);
    EXPECT_NEAR(after.latitude, 0, 1e-6);
}

TEST_F(UserInput, KeysPanAndZoomTheMapThatHasTheFocus) {
    browser.click(300, 200);
    browser.key("+");
    const Region closer = changed();
    EXPECT_NEAR(closer.longitudeDelta, before.longitudeDelta / 2, 1e-6);
    EXPECT_NEAR(closer.longitude, 0, 1e-6);
    browser.key("\uE014"); // right arrow
    const Region east = changed();
    EXPECT_GT(east.longitude, 0.1 * closer.longitudeDelta);
    EXPECT_NEAR(east.latitude, 0, 1e-6);
    EXPECT_NEAR(east.longitudeDelta, closer.longitudeDelta, 1e-9);
    browser.key("-");
    EXPECT_NEAR(changed().longitudeDelta, before.longitudeDelta, 1e-6);
    browser.key("\uE011"); // Home
    EXPECT_NEAR(changed().longitudeDelta, 360, 1e-6);
}

TEST_F(UserInput, SwitchedOffZoomingAndScrollingLeaveTheMapWhereItIs) {
    browser.run("map.zoomEnabled = false; map.scrollEnabled = false;");
    browser.drag(300, 200, 420, 260);
    browser.wheel(450, 200, -240);
    browser.click(300, 200);
    browser.key("+");
    browser.key("\uE014");
    EXPECT_EQ(browser.run("return changes;"), 1);
    EXPECT_EQ(region().longitude, before.longitude);
    EXPECT_EQ(region().longitudeDelta, before.longitudeDelta);
}

} // namespace veyra::test
