// What hosts set on a view when they hear of its creation.
#include "Hosts/Common/HostConfiguration.h"

#include "Classes/VeyraView.h"
#include "Platform/Foundation/DispatchQueue.h"
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
