// Pages that leave, come back and are collected, and the objects that must not outlive them.
#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

// A page that comes out of the back/forward cache still has its marks.
const char* const addMarkedMap = "window.map = addMap(); map.mapType = 1; window.mark = 'here';"
                                 "addEventListener('pageshow', (event) => { window.persisted = event.persisted; });"
                                 "return map.mapType";

class PageLife : public testing::Test {
protected:
    void SetUp() override {
        browser.setBackForwardCacheEnabled(true);
        ASSERT_NO_FATAL_FAILURE(browser.load("/pages/map.html"));
    }
    void TearDown() override { browser.setBackForwardCacheEnabled(true); }

    // Ends what other tests have left in the back/forward cache.
    void emptyCache() {
        browser.setBackForwardCacheEnabled(false);
        browser.load("/pages/map.html");
        EXPECT_TRUE(counts(0, 1));
    }
    // Whether so many views and contexts are left once the collector has run.
    bool counts(uint64_t views, uint64_t contexts) {
        for (int tries = 0; tries < 50; ++tries) {
            browser.collectGarbage();
            if (browser.statistic("views") == views && browser.statistic("contexts") == contexts)
                return true;
            Browser::wait(0.05);
        }
        return browser.statistic("views") == views && browser.statistic("contexts") == contexts;
    }

    Browser& browser = Browser::shared();
};

} // namespace

TEST_F(PageLife, AMapSurvivesTheBackForwardCacheWithItsValues) {
    ASSERT_EQ(browser.run(addMarkedMap), "1");
    browser.load("/pages/blank.html");
    browser.goBack();
    ASSERT_EQ(browser.run("return window.mark + ' ' + window.persisted"), "here true");
    EXPECT_EQ(browser.run("return map.mapType"), "1");
    EXPECT_EQ(browser.run("map.remove(); return map.mapType"), "undefined");
}

TEST_F(PageLife, AMapThatCameBackDrawsAgain) {
    ASSERT_EQ(browser.run(addMarkedMap), "1");
    browser.waitUntilIdle();
    browser.load("/pages/blank.html");
    browser.goBack();
    ASSERT_EQ(browser.run("return window.persisted"), "true");
    const uint64_t before = browser.statistic("frames-put");
    browser.run("map.style.width = '300px'; await frame(); return ''");
    browser.waitUntilIdle();
    EXPECT_GT(browser.statistic("frames-put"), before);
}

TEST_F(PageLife, AMapInTheCacheDrawsNothing) {
    ASSERT_EQ(browser.run(addMarkedMap), "1");
    browser.waitUntilIdle();
    browser.load("/pages/blank.html");
    const uint64_t drawn = browser.statistic("frames-drawn");
    Browser::wait(0.3);
    EXPECT_EQ(browser.statistic("frames-drawn"), drawn);
}

TEST_F(PageLife, PagesThatLeaveTheCacheAreCollected) {
    emptyCache();
    browser.setBackForwardCacheEnabled(true);
    for (int i = 0; i < 8; ++i) {
        browser.load("/pages/map.html?" + std::to_string(i));
        ASSERT_EQ(browser.run("window.map = addMap(); map.listener = { map }; return typeof map.listener"), "object");
    }
    emptyCache();
}

TEST_F(PageLife, TwoHundredLeftPagesAreAllCollected) {
    emptyCache();
    browser.setBackForwardCacheEnabled(true);
    for (int i = 0; i < 200; ++i) {
        browser.load("/pages/map.html?" + std::to_string(i));
        ASSERT_EQ(browser.run("window.map = addMap(); map.listener = { map }; return typeof map.listener"), "object");
    }
    emptyCache();
}

TEST_F(PageLife, TwoHundredRemovedElementsLeaveNoView) {
    emptyCache();
    ASSERT_EQ(
        browser.run("for (let i = 0; i < 200; ++i) { const map = addMap(); map.listener = { map }; map.remove(); }"
                    "return document.querySelectorAll('object').length"),
        "0");
    EXPECT_TRUE(counts(0, 1));
}

TEST_F(PageLife, ElementsThatNoScriptTouchedAreFreedWithTheirPage) {
    emptyCache();
    ASSERT_EQ(
        browser.run("document.getElementById('stage').innerHTML = `<object type='${mapType}'></object>`.repeat(5);"
                    "await until(() => document.querySelectorAll('object > veyra-surface').length === 5, 'surfaces');"
                    "return ''"),
        "");
    EXPECT_EQ(browser.statistic("views"), 5u);
    browser.load("/pages/map.html?next");
    EXPECT_TRUE(counts(0, 1));
}

TEST_F(PageLife, RemovedFramesLeaveNothing) {
    emptyCache();
    ASSERT_EQ(browser.run("for (let i = 0; i < 20; ++i) {"
                          "  const frame = document.createElement('iframe');"
                          "  document.getElementById('stage').append(frame);"
                          "  addMap(frame.contentDocument).listener = { frame };"
                          "  frame.remove();"
                          "}"
                          "return ''"),
              "");
    EXPECT_TRUE(counts(0, 1));
}

TEST_F(PageLife, ARemovedMapIsFreedWhileItsElementIsKept) {
    emptyCache();
    browser.run("window.map = addMap(); map.mapType = 1; map.remove(); return ''");
    EXPECT_TRUE(counts(0, 1));
    EXPECT_EQ(browser.run("stage.append(map); return map.mapType"), "0");
    EXPECT_EQ(browser.statistic("views"), 1u);
}

} // namespace veyra::test
