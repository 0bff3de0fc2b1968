// What hosts set on a view when they hear of its creation.
#include "Hosts/Common/HostConfiguration.h"

#include "Classes/VeyraView.h"
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSURL.h"
#include "Platform/WebKit/WebPlugInContainer.h"
#include "Platform/WebKit/WebThread.h"

#include <glib.h>
#include <gtest/gtest.h>

namespace veyra {

namespace {

class HostConfigurationTest : public testing::Test {
protected:
    HostConfigurationTest() {
        static auto* queue = new DispatchQueue(g_main_context_default(), "main");
        setMainQueue(queue);
        setWebThread(queue);
        g_main_context_acquire(g_main_context_default());
        [[maybe_unused]] static const bool isConfigured = [] {
            configureCreatedViews({.verboseDebugLogging = true});
            return true;
        }();
    }
    ~HostConfigurationTest() override {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
        g_main_context_release(g_main_context_default());
    }

    static std::shared_ptr<VeyraView> viewOfPage(const char* baseURL) {
        return VeyraView::plugInViewWithArguments(std::make_shared<NSDictionary>(
            NSDictionary::Map{{WebPlugInBaseURLKey, id(baseURL)}, {VeyraScreenScaleKey, id(2.5)}}));
    }

    // The address that the view's delegate makes, or "nil".
    static std::string address(const std::shared_ptr<VeyraView>& view, const id& string) {
        const id arguments[] = {id(view), string, id(true), id()};
        const id made =
            view->delegate()->performSelector("scriptObject:requestsURLForString:allowOtherDomains:error:", arguments);
        return made.isNil() ? "nil" : made.string()->utf8();
    }
};

} // namespace

TEST_F(HostConfigurationTest, SetsScaleLoggingAndDelegate) {
    const auto view = viewOfPage("https://example.org/maps/");
    EXPECT_EQ(view->screenScale(), 2.5);
    EXPECT_TRUE(view->verboseDebugLoggingEnabled());
    EXPECT_NE(view->delegate(), nullptr);
}

TEST_F(HostConfigurationTest, AllowsFilesToPagesThatAreFiles) {
    EXPECT_TRUE(viewOfPage("file:///home/page.html")->clientAllowsFileURLLoading());
    EXPECT_TRUE(viewOfPage("FILE:///home/page.html")->clientAllowsFileURLLoading());
    EXPECT_FALSE(viewOfPage("https://example.org/")->clientAllowsFileURLLoading());
    EXPECT_FALSE(viewOfPage("about:blank")->clientAllowsFileURLLoading());
    EXPECT_FALSE(viewOfPage("")->clientAllowsFileURLLoading());
}

TEST_F(HostConfigurationTest, TheDelegateResolvesAddressesAgainstThePage) {
    const auto view = viewOfPage("https://example.org/maps/page.html");
    EXPECT_EQ(address(view, "pin.png"), "https://example.org/maps/pin.png");
    EXPECT_EQ(address(view, "/a/../pin.png?x=1"), "https://example.org/pin.png?x=1");
    EXPECT_EQ(address(view, "http://other.example/p"), "http://other.example/p");
    EXPECT_EQ(address(view, "data:image/png;base64,AA=="), "data:image/png;base64,AA==");
}

TEST_F(HostConfigurationTest, TheDelegateReadsAddressesAsBrowsersDo) {
    const auto view = viewOfPage("https://example.org/maps/page.html");
    EXPECT_EQ(address(view, " \n red pin.png\t"), "https://example.org/maps/red%20pin.png");
    EXPECT_EQ(address(view, "p\nin.png"), "https://example.org/maps/pin.png");
    EXPECT_EQ(address(view, "\u00e9t\u00e9.png?q=\u20ac#\U0001f4cd"),
              "https://example.org/maps/%C3%A9t%C3%A9.png?q=%E2%82%AC#%F0%9F%93%8D");
    EXPECT_EQ(address(view, "//m\u00fcnchen.example/p"), "https://xn--mnchen-3ya.example/p");
    EXPECT_EQ(address(view, "a\\b.png?c\\d"), "https://example.org/maps/a/b.png?c%5Cd");
    EXPECT_EQ(address(view, "50%.png"), "https://example.org/maps/50%25.png");
    EXPECT_EQ(address(view, "a%20b%zz.png"), "https://example.org/maps/a%20b%25zz.png");
    EXPECT_EQ(address(view, "{a|b}^`\"<>.png"), "https://example.org/maps/%7Ba%7Cb%7D%5E%60%22%3C%3E.png");
    EXPECT_EQ(address(view, "p#a#b"), "https://example.org/maps/p#a%23b");
    EXPECT_EQ(address(view, "data:image/svg+xml,<svg a=\"1\">\\"), "data:image/svg+xml,%3Csvg%20a=%221%22%3E%5C");
    EXPECT_EQ(address(view, ""), "https://example.org/maps/page.html");
    EXPECT_EQ(address(view, id(NSString(std::u16string_view(u"a\0\xd800.png", 7)))),
              "https://example.org/maps/a%00%EF%BF%BD.png");
}

TEST_F(HostConfigurationTest, EveryAddressOfTheDelegateIsLegal) {
    const auto view = viewOfPage("https://example.org/maps/page.html");
    for (char16_t unit = 0; unit < 0x300; ++unit) {
        const std::u16string text = std::u16string(u"a") + unit + u"b";
        const std::string made = address(view, id(NSString(std::u16string_view(text))));
        EXPECT_NE(NSURL::URLWithString(id(NSString(std::string_view(made)))), nullptr)
            << made << ' ' << static_cast<int>(unit);
    }
}

TEST_F(HostConfigurationTest, TheDelegateGivesNoAddressForWhatIsNone) {
    const auto view = viewOfPage("https://example.org/");
    EXPECT_EQ(address(view, "http://[broken"), "nil");
    EXPECT_EQ(address(view, id(5)), "nil");
    EXPECT_EQ(address(view, id()), "nil");
}

TEST_F(HostConfigurationTest, TheDelegateGivesFilesToPagesThatAreFilesOnly) {
    EXPECT_EQ(address(viewOfPage("file:///home/page.html"), "pin.png"), "file:///home/pin.png");
    EXPECT_EQ(address(viewOfPage("https://example.org/"), "file:///etc/passwd"), "nil");
}

} // namespace veyra
