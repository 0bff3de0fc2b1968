#include "MainQueueFixture.h"
#include "TestView.h"

#include "Platform/UIKit/UIWindow.h"

namespace veyra {

class UIViewLayoutTest : public MainQueueFixture {
protected:
    /// The frame of a view of that mask after its superview went from 100 × 100 to 200 × 150 points.
    static CGRect resized(unsigned mask, CGRect frame = {{10, 20}, {30, 40}}) {
        const auto root = TestView::make({{0, 0}, {100, 100}});
        const auto view = TestView::make(frame);
        view->setAutoresizingMask(mask);
        root->addSubview(view);
        root->setFrame({{0, 0}, {200, 150}});
        return view->frame();
    }
    using Calls = std::vector<std::string>;
    Calls calls;
};

TEST_F(UIViewLayoutTest, WithoutAMaskAViewStays) {
    EXPECT_EQ(resized(UIViewAutoresizingNone), (CGRect{{10, 20}, {30, 40}}));
}

TEST_F(UIViewLayoutTest, FlexibleWidthAndHeightTakeTheWholeChange) {
    EXPECT_EQ(resized(18), (CGRect{{10, 20}, {130, 90}}));
}

TEST_F(UIViewLayoutTest, AViewOfOnePointGrowsWithItsSuperview) {
    const auto root = TestView::make({{0, 0}, {1, 1}});
    const auto view = TestView::make(root->bounds());
    view->setAutoresizingMask(18);
    root->addSubview(view);
    root->setFrame({{0, 0}, {640, 480}});
    EXPECT_EQ(view->frame(), (CGRect{{0, 0}, {640, 480}}));
    root->setFrame({{0, 0}, {0, 0}});
    EXPECT_EQ(view->frame(), (CGRect{{0, 0}, {0, 0}}));
    root->setFrame({{0, 0}, {64, 48}});
    EXPECT_EQ(view->frame(), (CGRect{{0, 0}, {64, 48}}));
}

TEST_F(UIViewLayoutTest, FlexibleLeftAndTopMarginsKeepTheDistanceToTheOtherSide) {
    EXPECT_EQ(resized(UIViewAutoresizingFlexibleLeftMargin | UIViewAutoresizingFlexibleTopMargin),
              (CGRect{{110, 70}, {30, 40}}));
}

TEST_F(UIViewLayoutTest, FlexibleRightAndBottomMarginsKeepThePlace) {
    EXPECT_EQ(resized(UIViewAutoresizingFlexibleRightMargin | UIViewAutoresizingFlexibleBottomMargin),
              (CGRect{{10, 20}, {30, 40}}));
}

TEST_F(UIViewLayoutTest, SeveralFlexiblePartsShareTheChangeBySize) {
    // Left 10 and right 60 share 100 points, top 20 and height 40 share 50.
    const CGRect frame = resized(UIViewAutoresizingFlexibleLeftMargin | UIViewAutoresizingFlexibleRightMargin |
                                 UIViewAutoresizingFlexibleTopMargin | UIViewAutoresizingFlexibleHeight);
    EXPECT_DOUBLE_EQ(frame.origin.x, 10 + 100 * 10.0 / 70);
    EXPECT_DOUBLE_EQ(frame.size.width, 30);
    EXPECT_DOUBLE_EQ(frame.origin.y, 20 + 50 * 20.0 / 60);
    EXPECT_DOUBLE_EQ(frame.size.height, 40 + 50 * 40.0 / 60);
}

TEST_F(UIViewLayoutTest, FlexiblePartsOfNoSizeShareEqually) {
    const CGRect frame =
        resized(UIViewAutoresizingFlexibleLeftMargin | UIViewAutoresizingFlexibleRightMargin, {{0, 0}, {100, 100}});
    EXPECT_EQ(frame, (CGRect{{50, 0}, {100, 100}}));
}

TEST_F(UIViewLayoutTest, ASizeIsNeverNegative) {
    const auto root = TestView::make({{0, 0}, {100, 100}});
    const auto view = TestView::make({{0, 0}, {20, 20}});
    view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth);
    root->addSubview(view);
    root->setFrame({{0, 0}, {50, 100}});
    EXPECT_EQ(view->frame(), (CGRect{{0, 0}, {0, 20}}));
}

TEST_F(UIViewLayoutTest, LayoutGoesFromTheTopDownOnceAndOnlyWhereNeeded) {
    const auto root = TestView::make({{0, 0}, {100, 100}}, "root", &calls);
    const auto a = TestView::make({{0, 0}, {10, 10}}, "a", &calls), b = TestView::make({{0, 0}, {10, 10}}, "b", &calls);
    const auto inner = TestView::make({{0, 0}, {5, 5}}, "inner", &calls);
    root->addSubview(a);
    root->addSubview(b);
    a->addSubview(inner);
    root->layoutIfNeeded();
    EXPECT_EQ(calls, (Calls{"root layout", "a layout", "inner layout", "b layout"}));
    calls.clear();
    root->layoutIfNeeded();
    EXPECT_EQ(calls, Calls{});
    inner->setNeedsLayout();
    root->layoutIfNeeded();
    EXPECT_EQ(calls, Calls{"inner layout"});
    calls.clear();
    a->setFrame({{3, 3}, {10, 10}});
    root->layoutIfNeeded();
    EXPECT_EQ(calls, Calls{}) << "a move is no layout";
    a->setFrame({{3, 3}, {11, 10}});
    root->layoutIfNeeded();
    EXPECT_EQ(calls, Calls{"a layout"});
}

TEST_F(UIViewLayoutTest, SubviewsResizedByALayoutAreLaidOutInTheSamePass) {
    const auto window = UIWindow::make();
    const auto outer = TestView::make({{0, 0}, {10, 10}}, "outer", &calls);
    const auto inner = TestView::make({{0, 0}, {10, 10}}, "inner", &calls);
    outer->addSubview(inner);
    outer->setAutoresizingMask(18);
    outer->onLayout = [&] { inner->setFrame(outer->bounds()); };
    window->addSubview(outer);
    window->setSize({50, 50}, 1);
    EXPECT_EQ(inner->frame(), (CGRect{{0, 0}, {60, 60}}));
    EXPECT_EQ(calls, (Calls{"outer layout", "inner layout"}));
    window->drawFrame(0);
    EXPECT_FALSE(window->needsFrame());
}

TEST_F(UIViewLayoutTest, ALayoutThatAsksForItselfAgainWaitsForTheNextFrame) {
    const auto window = UIWindow::make();
    window->setSize({50, 50}, 1);
    const auto view = TestView::make({{0, 0}, {10, 10}}, "view", &calls);
    int remaining = 2;
    view->onLayout = [&] {
        if (--remaining > 0)
            view->setNeedsLayout();
    };
    window->addSubview(view);
    window->drawFrame(0);
    EXPECT_EQ(calls, (Calls{"view layout", "view draw"}));
    EXPECT_TRUE(window->needsFrame());
    window->drawFrame(1);
    EXPECT_EQ(calls, (Calls{"view layout", "view draw", "view layout"}));
    EXPECT_FALSE(window->needsFrame());
}

} // namespace veyra
