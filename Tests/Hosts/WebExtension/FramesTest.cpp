// What reaches the screen, and that nothing happens while nothing changes.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

constexpr Pixel pageColour{255, 0, 255};

class Frames : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(browser.load("/pages/map.html"));
        browser.run("document.body.style.cssText = 'margin: 0; background: rgb(255, 0, 255)'; return ''");
    }
    // A map of 400 × 300 points in the corner, drawn and at rest.
    void showMap(const std::string& style = "") {
        browser.run("window.map = makeMap(); map.style.cssText = 'display: block; width: 400px; height: 300px;" +
                    style + "'; stage.append(map); return ''");
        browser.waitUntilIdle();
    }

    // The processor time of the page's process so far.
    double webProcessSeconds() { return static_cast<double>(browser.statistic("processor-microseconds")) / 1e6; }

    Browser& browser = Browser::shared();
};

} // namespace

TEST_F(Frames, AnIdlePageWithAMapHasItsPicture) {
    showMap();
    EXPECT_NE(browser.pixelAt(200, 150), pageColour);
    EXPECT_NE(browser.pixelAt(0, 0), pageColour);
    EXPECT_NE(browser.pixelAt(399, 299), pageColour);
    EXPECT_EQ(browser.pixelAt(400, 150), pageColour);
    EXPECT_EQ(browser.pixelAt(200, 300), pageColour);
}

TEST_F(Frames, AMapIsDarkWhereThePagePrefersADarkScheme) {
    const auto setDark = [](gboolean dark) {
        g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", dark, nullptr);
    };
    const auto isDark = [&] {
        const Pixel pixel = browser.pixelAt(150, 110);
        return pixel.red + pixel.green + pixel.blue < 250;
    };
    showMap();
    EXPECT_FALSE(isDark());
    setDark(TRUE);
    EXPECT_TRUE(Browser::waitUntil(isDark));
    EXPECT_EQ(browser.run("return matchMedia('(prefers-color-scheme: dark)').matches"), "true");
    setDark(FALSE);
    EXPECT_TRUE(Browser::waitUntil([&] { return !isDark(); }));
}

TEST_F(Frames, AResizedMapFillsItsNewSize) {
    showMap();
    browser.run("map.style.width = '600px'; map.style.height = '200px'; await frame(); return ''");
    browser.waitUntilIdle();
    EXPECT_NE(browser.pixelAt(599, 199), pageColour);
    EXPECT_EQ(browser.pixelAt(200, 201), pageColour);
}

TEST_F(Frames, AScaledElementIsFilled) {
    showMap("transform: scale(1.5); transform-origin: 0 0");
    EXPECT_NE(browser.pixelAt(598, 448), pageColour);
    EXPECT_EQ(browser.pixelAt(602, 200), pageColour);
}

TEST_F(Frames, AZoomedElementIsFilled) {
    showMap("zoom: 1.5");
    EXPECT_NE(browser.pixelAt(598, 448), pageColour);
    EXPECT_EQ(browser.pixelAt(602, 200), pageColour);
}

TEST_F(Frames, NothingIsRequestedOrDrawnWhileNothingChanges) {
    showMap();
    Browser::wait(0.2);
    const uint64_t requested = browser.statistic("animation-frames-requested");
    const uint64_t drawn = browser.statistic("frames-drawn");
    Browser::wait(1);
    EXPECT_EQ(browser.statistic("animation-frames-requested"), requested);
    EXPECT_EQ(browser.statistic("frames-drawn"), drawn);
}

TEST_F(Frames, AnIdleMapCostsLessThanOneHundredthOfAProcessor) {
    showMap();
    Browser::wait(1);
    const double before = webProcessSeconds();
    Browser::wait(4);
    EXPECT_LT(webProcessSeconds() - before, 0.04);
}

TEST_F(Frames, AMapInMotionShowsItsFrames) {
    showMap();
    browser.run("map.region = { latitude: 48, longitude: 16, latitudeDelta: 4, longitudeDelta: 4 }; return ''");
    browser.waitUntilIdle();
    const uint64_t before = browser.statistic("frames-put");
    browser.run("map.setRegion({ latitude: 48, longitude: 17, latitudeDelta: 4, longitudeDelta: 4 }, true); return ''");
    Browser::wait(0.2);
    browser.waitUntilIdle();
    EXPECT_GT(browser.statistic("frames-put"), before + 5);
}

TEST_F(Frames, APageFromAFileHasItsPicture) {
    browser.load("file://" VEYRA_SOURCE_FOLDER "/Tests/Pages/map.html");
    browser.run("document.body.style.cssText = 'margin: 0; background: rgb(255, 0, 255)'; return ''");
    showMap();
    EXPECT_NE(browser.pixelAt(200, 150), pageColour);
}

TEST_F(Frames, TheDeviceScaleIsThatOfTheDisplay) {
    const char* const scale = g_getenv("GDK_SCALE");
    EXPECT_EQ(browser.run("return devicePixelRatio"), scale ? scale : "1");
    showMap();
    EXPECT_EQ(browser.run("return map.offsetWidth"), "400");
    EXPECT_NE(browser.pixelAt(399, 299), pageColour);
    EXPECT_EQ(browser.pixelAt(401, 299), pageColour);
}

TEST_F(Frames, AHiddenMapDrawsNothingUntilItIsShown) {
    showMap("visibility: visible");
    for (const char* hide : {"map.style.display = 'none'", "map.style.cssText += '; margin-top: 5000px'"}) {
        browser.run(std::string(hide) + "; await frame(); await frame(); return ''");
        const uint64_t drawn = browser.statistic("frames-drawn");
        browser.run("for (let i = 0; i < 5; ++i) { map.mapType = i % 3; await frame(); } return ''");
        Browser::wait(0.2);
        EXPECT_EQ(browser.statistic("frames-drawn"), drawn) << hide;
        browser.run("map.style.display = 'block'; map.style.marginTop = 0; await frame(); return ''");
        browser.waitUntilIdle();
        EXPECT_NE(browser.pixelAt(200, 150), pageColour) << hide;
    }
}

TEST_F(Frames, AnElementWithoutASizeIsIdle) {
    browser.run("window.map = makeMap(); map.style.width = map.style.height = 0; stage.append(map); return ''");
    browser.waitUntilIdle();
    EXPECT_EQ(browser.run("return map.mapType"), "0");
}

TEST_F(Frames, APageWithoutMapsIsIdleAtOnce) {
    browser.waitUntilIdle();
}

TEST_F(Frames, MapsInFramesAreWaitedForToo) {
    browser.run("const frame = document.createElement('iframe'); frame.style.cssText = 'border: 0; display: block';"
                "stage.append(frame);"
                "frame.contentDocument.body.style.margin = 0;"
                "addMap(frame.contentDocument); return ''");
    browser.waitUntilIdle();
    EXPECT_NE(browser.pixelAt(100, 50), (Pixel{255, 255, 255}));
    EXPECT_NE(browser.pixelAt(100, 50), pageColour);
}

TEST_F(Frames, TwoMapsOnAPageAreBothDrawn) {
    browser.run("stage.style.cssText = 'display: flex'; addMap(); addMap(); return ''");
    browser.waitUntilIdle();
    EXPECT_NE(browser.pixelAt(100, 50), pageColour);
    EXPECT_NE(browser.pixelAt(300, 50), pageColour);
}

} // namespace veyra::test
