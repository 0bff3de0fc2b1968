// When frames are asked for, what moves in them, and when a window is idle.
#include "MainQueueFixture.h"
#include "TestView.h"

#include "Platform/UIKit/UIWindow.h"

namespace veyra {

class UIWindowFrameTest : public MainQueueFixture {
protected:
    /// A drawn window of 200 × 100 points with one view; `requests` counts from here.
    void SetUp() override {
        window->setSize({200, 100}, 1);
        window->addSubview(view);
        window->setFrameRequestHandler([this] { ++requests; });
        window->drawFrame(0);
        drainMainQueue();
        requests = 0;
        calls.clear();
    }
    using Calls = std::vector<std::string>;
    using Rects = std::vector<PixelRect>;
    Calls calls;
    int requests = 0;
    std::shared_ptr<UIWindow> window = UIWindow::make();
    std::shared_ptr<TestView> view = TestView::make({{0, 0}, {200, 100}}, "view", &calls);
};

TEST_F(UIWindowFrameTest, ANewWindowIsEmptyVisibleAndIdle) {
    const auto fresh = UIWindow::make();
    EXPECT_EQ(fresh->frame(), CGRect{});
    EXPECT_EQ(fresh->scale(), 1);
    EXPECT_TRUE(fresh->isVisible());
    EXPECT_FALSE(fresh->needsFrame());
    EXPECT_TRUE(fresh->isIdle());
    EXPECT_EQ(fresh->surface(), nullptr);
    EXPECT_EQ(fresh->drawFrame(0), Rects{});
}

TEST_F(UIWindowFrameTest, WhileNothingChangesNothingIsRequestedOrDrawn) {
    EXPECT_FALSE(window->needsFrame());
    EXPECT_EQ(window->drawFrame(1), Rects{});
    view->setFrame(view->frame());
    view->setHidden(false);
    view->setNeedsDisplayInRect({{300, 300}, {10, 10}});
    view->setNeedsDisplayInRect({{10, 10}, {0, 10}});
    window->setSize({200, 100}, 1);
    EXPECT_EQ(window->drawFrame(2), Rects{});
    EXPECT_EQ(requests, 0);
    EXPECT_EQ(calls, Calls{});
}

TEST_F(UIWindowFrameTest, AnotherInterfaceStyleDrawsEverythingAnewAndTheSameOneNothing) {
    EXPECT_EQ(window->userInterfaceStyle(), UIUserInterfaceStyleLight);
    window->setUserInterfaceStyle(UIUserInterfaceStyleLight);
    EXPECT_EQ(requests, 0);
    window->setUserInterfaceStyle(UIUserInterfaceStyleDark);
    EXPECT_EQ(window->userInterfaceStyle(), UIUserInterfaceStyleDark);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(window->drawFrame(1), (Rects{{0, 0, 200, 100}}));
}

TEST_F(UIWindowFrameTest, OneRequestServesUntilTheNextFrame) {
    view->setNeedsDisplay();
    view->setNeedsDisplay();
    view->setNeedsLayout();
    EXPECT_EQ(requests, 1);
    window->drawFrame(1);
    view->setNeedsDisplay();
    EXPECT_EQ(requests, 2);
}

TEST_F(UIWindowFrameTest, AHandlerSetWhileAFrameIsNeededIsCalledAtOnce) {
    view->setNeedsDisplay();
    int later = 0;
    window->setFrameRequestHandler([&later] { ++later; });
    EXPECT_EQ(later, 1);
}

TEST_F(UIWindowFrameTest, LayoutAloneTakesAFrameThatDrawsNothing) {
    view->setNeedsLayout();
    EXPECT_TRUE(window->needsFrame());
    EXPECT_EQ(window->drawFrame(1), Rects{});
    EXPECT_EQ(calls, Calls{"view layout"});
    EXPECT_FALSE(window->needsFrame());
}

TEST_F(UIWindowFrameTest, AnimationsStepOncePerFrameBeforeDrawingWhileTheyWantMore) {
    int remaining = 2;
    view->onStep = [&] {
        view->setNeedsDisplayInRect({{0, 0}, {10, 10}});
        return --remaining > 0;
    };
    view->setNeedsAnimationStep();
    view->setNeedsAnimationStep();
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(window->drawFrame(1.5), (Rects{{0, 0, 10, 10}}));
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(window->drawFrame(1.75), (Rects{{0, 0, 10, 10}}));
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(window->drawFrame(2), Rects{});
    EXPECT_EQ(view->stepTimes, (std::vector<double>{1.5, 1.75}));
    EXPECT_EQ(calls, (Calls{"view step", "view draw", "view step", "view draw"}));
}

TEST_F(UIWindowFrameTest, AViewThatThrowsStopsNeitherTheFrameNorTheOthers) {
    const auto front = TestView::make({{0, 0}, {20, 20}}, "front", &calls);
    window->addSubview(front);
    view->onStep = []() -> bool { throw std::runtime_error("step"); };
    view->onLayout = [] { throw std::runtime_error("layout"); };
    view->onDraw = [](const UIGraphicsContext&) { throw std::runtime_error("draw"); };
    view->setNeedsAnimationStep();
    view->setNeedsLayout();
    window->drawFrame(1);
    EXPECT_EQ(calls.back(), "front draw");
    view->onDraw = nullptr;
    view->onLayout = nullptr;
    window->drawFrame(2);
    EXPECT_FALSE(window->needsFrame());
}

TEST_F(UIWindowFrameTest, AnAnimationWaitsWhileItsViewIsOutsideTheWindow) {
    view->setNeedsAnimationStep();
    view->removeFromSuperview();
    window->drawFrame(1);
    EXPECT_FALSE(window->needsFrame());
    EXPECT_EQ(view->stepTimes, std::vector<double>{});
    const auto between = TestView::make({{0, 0}, {200, 100}});
    between->addSubview(view);
    window->addSubview(between);
    window->drawFrame(2);
    EXPECT_EQ(view->stepTimes, std::vector<double>{2});
    EXPECT_FALSE(window->needsFrame());
}

TEST_F(UIWindowFrameTest, AViewRemovedByAnotherOnesStepIsNotStepped) {
    const auto other = TestView::make({{0, 0}, {20, 20}});
    window->addSubview(other);
    view->onStep = [&other] {
        other->removeFromSuperview();
        return false;
    };
    view->setNeedsAnimationStep();
    other->setNeedsAnimationStep();
    window->drawFrame(1);
    EXPECT_EQ(other->stepTimes, std::vector<double>{});
    window->addSubview(other);
    window->drawFrame(2);
    EXPECT_EQ(other->stepTimes, std::vector<double>{2});
}

TEST_F(UIWindowFrameTest, AHiddenWindowAsksForNothingAndCatchesUpWhenShown) {
    window->setVisible(false);
    view->setNeedsDisplayInRect({{5, 5}, {10, 10}});
    view->setNeedsAnimationStep();
    EXPECT_FALSE(window->needsFrame());
    EXPECT_EQ(requests, 0);
    EXPECT_EQ(window->drawFrame(1), Rects{});
    EXPECT_EQ(calls, Calls{});
    window->setVisible(true);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(window->drawFrame(2), (Rects{{5, 5, 10, 10}}));
    EXPECT_EQ(calls, (Calls{"view step", "view draw"}));
}

TEST_F(UIWindowFrameTest, ARequestDroppedWhileHiddenIsMadeAgain) {
    view->setNeedsDisplay();
    EXPECT_EQ(requests, 1);
    window->setVisible(false);
    window->setVisible(true);
    EXPECT_EQ(requests, 2);
}

TEST_F(UIWindowFrameTest, TheIdleHandlerReportsEachReturnToIdleOnceOnTheMainQueue) {
    int reports = 0;
    window->setIdleHandler([&reports] { ++reports; });
    view->setNeedsDisplay();
    EXPECT_FALSE(window->isIdle());
    window->drawFrame(1);
    EXPECT_TRUE(window->isIdle());
    EXPECT_EQ(reports, 0) << "reported from the queue, not from inside the frame";
    drainMainQueue();
    EXPECT_EQ(reports, 1);
    window->drawFrame(2);
    window->idleStateChanged();
    drainMainQueue();
    EXPECT_EQ(reports, 1);
}

TEST_F(UIWindowFrameTest, AWindowIsIdleOnlyWhenEveryViewIs) {
    int reports = 0;
    window->setIdleHandler([&reports] { ++reports; });
    const auto inner = TestView::make({{0, 0}, {20, 20}});
    view->addSubview(inner);
    inner->idle = false;
    window->drawFrame(1);
    drainMainQueue();
    EXPECT_FALSE(window->isIdle());
    EXPECT_EQ(reports, 0);
    inner->idle = true;
    window->idleStateChanged();
    inner->idle = false;
    window->idleStateChanged();
    drainMainQueue();
    EXPECT_EQ(reports, 0) << "busy again before the report";
    inner->idle = true;
    window->idleStateChanged();
    drainMainQueue();
    EXPECT_EQ(reports, 1);
}

TEST_F(UIWindowFrameTest, SettingTheSizeResizesLaysOutAndDrawsEverything) {
    view->setAutoresizingMask(18);
    window->setSize({300.4, 50.2}, 2);
    EXPECT_EQ(calls, Calls{"view layout"});
    EXPECT_EQ(view->frame(), (CGRect{{0, 0}, {300.4, 50.2}}));
    EXPECT_EQ(window->pixelWidth(), 601);
    EXPECT_EQ(window->pixelHeight(), 100);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(window->drawFrame(1), (Rects{{0, 0, 601, 100}}));
}

TEST_F(UIWindowFrameTest, SizesAndScalesOutOfRangeAreClamped) {
    window->setSize({100, 100}, 100);
    EXPECT_EQ(window->scale(), 8);
    EXPECT_EQ(window->pixelWidth(), 800);
    window->setSize({100, 100}, -3);
    EXPECT_EQ(window->scale(), 0.25);
    EXPECT_EQ(window->pixelWidth(), 25);
    window->setSize({1e9, 2}, 1);
    EXPECT_EQ(window->pixelWidth(), 16384);
    EXPECT_EQ(window->pixelHeight(), 2);
    window->setSize({std::nan(""), 50}, 1);
    EXPECT_EQ(window->bounds().size, (CGSize{0, 50}));
    EXPECT_EQ(window->pixelHeight(), 0);
    EXPECT_EQ(window->surface(), nullptr);
    window->setSize({HUGE_VAL, -5}, std::nan(""));
    EXPECT_EQ(window->bounds().size, CGSize{});
    EXPECT_EQ(window->scale(), 1);
    EXPECT_EQ(window->drawFrame(1), Rects{});
}

TEST_F(UIWindowFrameTest, ThePolicyIsReadAsPublished) {
    EXPECT_EQ(window->inputPolicy(), UIInputPolicy{});
    for (int i = 0; i < 32; ++i) {
        const UIInputPolicy policy{(i & 1) != 0, (i & 2) != 0, (i & 4) != 0, (i & 8) != 0, (i & 16) != 0};
        window->setInputPolicy(policy);
        EXPECT_EQ(window->inputPolicy(), policy);
    }
}

} // namespace veyra
