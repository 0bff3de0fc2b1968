// Scrolls and keys: which views are asked, in which order.
#include "MainQueueFixture.h"
#include "TestView.h"

#include "Platform/UIKit/UIWindow.h"

namespace veyra {

class UIWindowEventTest : public MainQueueFixture {
protected:
    using Calls = std::vector<std::string>;
    UIWindowEventTest() {
        window->setSize({100, 100}, 1);
        window->addSubview(back);
        window->addSubview(front);
        back->addSubview(inner);
        window->drawFrame(0);
        calls.clear();
    }
    Calls calls;
    std::shared_ptr<UIWindow> window = UIWindow::make();
    std::shared_ptr<TestView> back = TestView::make({{0, 0}, {100, 100}}, "back", &calls);
    std::shared_ptr<TestView> inner = TestView::make({{10, 10}, {50, 50}}, "inner", &calls);
    std::shared_ptr<TestView> front = TestView::make({{70, 70}, {30, 30}}, "front", &calls);
};

TEST_F(UIWindowEventTest, AScrollGoesToTheViewUnderThePointerAndUpUntilOneUsesIt) {
    window->sendEvent(UIScrollEvent{{15, 25}, 0, 10, false, 1});
    EXPECT_EQ(calls, (Calls{"inner scroll", "back scroll"}));
    EXPECT_EQ(inner->scrolls, (std::vector<CGPoint>{{5, 15}}));
    EXPECT_EQ(back->scrolls, (std::vector<CGPoint>{{15, 25}}));
    calls.clear();
    inner->usesInput = true;
    window->sendEvent(UIScrollEvent{{15, 25}, 0, 10, false, 2});
    EXPECT_EQ(calls, Calls{"inner scroll"});
    calls.clear();
    window->sendEvent(UIScrollEvent{{75, 75}, 0, 10, false, 3});
    EXPECT_EQ(calls, Calls{"front scroll"});
}

TEST_F(UIWindowEventTest, AScrollOutsideOrNowhereIsIgnored) {
    window->sendEvent(UIScrollEvent{{150, 25}, 0, 10, false, 1});
    window->sendEvent(UIScrollEvent{{std::nan(""), 25}, 0, 10, false, 1});
    window->sendEvent(UIScrollEvent{{HUGE_VAL, 25}, 0, 10, false, 1});
    EXPECT_EQ(calls, Calls{});
}

TEST_F(UIWindowEventTest, AKeyGoesFromTheFrontDownUntilAViewUsesIt) {
    window->sendEvent(UIKeyEvent{.key = "Home"});
    EXPECT_EQ(calls, (Calls{"front key Home", "inner key Home", "back key Home"}));
    calls.clear();
    inner->usesInput = true;
    window->sendEvent(UIKeyEvent{.key = "+"});
    EXPECT_EQ(calls, (Calls{"front key +", "inner key +"}));
}

TEST_F(UIWindowEventTest, HiddenViewsGetNoKeysAndNoScrolls) {
    front->setHidden(true);
    back->setHidden(true);
    window->sendEvent(UIKeyEvent{.key = "Home"});
    window->sendEvent(UIScrollEvent{{75, 75}, 0, 10, false, 1});
    EXPECT_EQ(calls, Calls{});
}

TEST_F(UIWindowEventTest, AWindowMayBeDroppedWhileItDeliversAnEvent) {
    class Dropping : public UIView {
    public:
        bool handleKey(const UIKeyEvent&) override {
            removeFromSuperview();
            dropped->reset();
            return false;
        }
        std::shared_ptr<UIWindow>* dropped = nullptr;
    };
    const auto view = UIView::make<Dropping>({{0, 0}, {10, 10}});
    view->dropped = &window;
    window->addSubview(view);
    window->sendEvent(UIKeyEvent{.key = "a"});
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(calls, (Calls{"front key a", "inner key a", "back key a"}));
}

} // namespace veyra
