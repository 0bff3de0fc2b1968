// Whose tiles a map shows: a click on it, or the keyboard, leads where the application has said.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

class Attribution : public testing::Test {
protected:
    Attribution() {
        // Nobody listens at the port: the attribution is there whatever becomes of the tiles.
        g_setenv("VEYRA_SOURCES",
                 R"({"standard": {"url": "http://127.0.0.1:9/{z}/{x}/{y}", "attribution": "© Somebody with a long name",
                     "attributionURL": "https://example.org/about"}})",
                 TRUE);
        browser.load("/pages/map.html");
        g_unsetenv("VEYRA_SOURCES");
        browser.run("document.body.style.cssText = 'margin: 0';"
                    "window.map = makeMap(); map.style.cssText = 'display: block; width: 400px; height: 300px';"
                    "stage.append(map); window.clicks = 0; window.keys = [];"
                    "map.addEventListener('click', () => ++clicks);"
                    "return ''");
        browser.waitUntilIdle();
    }
    void click(double x, double y, double movedBy = 0) {
        browser.motion(x, y, false);
        browser.button(GDK_BUTTON_PRESS, x, y);
        if (movedBy > 0)
            browser.motion(x - movedBy, y, true);
        browser.button(GDK_BUTTON_RELEASE, x - movedBy, y);
        Browser::wait(0.3);
    }

    Browser browser;
    const std::vector<std::string> link{"https://example.org/about"};
};

} // namespace

TEST_F(Attribution, AClickOnItOpensWhatItLeadsTo) {
    click(360, 286);
    EXPECT_EQ(browser.openedWindows(), link);
    EXPECT_EQ(browser.run("return clicks"), "1") << "the page hears of one click";
}

TEST_F(Attribution, AClickElsewhereAndADragThatBeginsOnItOpenNothing) {
    click(200, 100);
    click(360, 286, 100);
    EXPECT_TRUE(browser.openedWindows().empty());
}

TEST_F(Attribution, AClickOnAnAnnotationThatCoversItSelectsTheAnnotation) {
    browser.run("map.listener = { mapDidSelectAnnotation(identifier) { window.selected = identifier; } };"
                "const { latitude, longitude } = map.convertPointToCoordinate({ x: 360, y: 298 });"
                "map.addAnnotation({ latitude, longitude, identifier: 'pin', pinAnimatesDrop: false });"
                "return ''");
    browser.waitUntilIdle();
    browser.motion(360, 286, false);
    browser.button(GDK_BUTTON_PRESS, 360, 286);
    browser.waitUntilIdle(); // a hand is slower than the map's thread
    browser.button(GDK_BUTTON_RELEASE, 360, 286);
    Browser::waitUntil([&] { return browser.run("return window.selected ?? ''") == "pin"; });
    EXPECT_EQ(browser.run("return window.selected ?? ''"), "pin");
    EXPECT_EQ(browser.run("return clicks"), "1");
    EXPECT_TRUE(browser.openedWindows().empty());
}

TEST_F(Attribution, TheKeyboardReachesItAfterTheMap) {
    click(200, 100); // the map has the focus
    browser.key(GDK_KEY_Tab);
    browser.key(GDK_KEY_Return);
    Browser::wait(0.3);
    EXPECT_EQ(browser.openedWindows(), link);
}

TEST_F(Attribution, ThePageCannotReachIt) {
    EXPECT_EQ(browser.run("return map.textContent + document.querySelectorAll('a').length"), "0");
}

} // namespace veyra::test
