#include "MainQueueFixture.h"
#include "TestView.h"

#include "Platform/UIKit/CALayer.h"
#include "Platform/UIKit/UIWindow.h"

#include <thread>

namespace veyra {

class UIViewTest : public MainQueueFixture {};

using Views = std::vector<std::shared_ptr<UIView>>;

TEST_F(UIViewTest, AddingASubviewMovesViewAndLayerTogether) {
    const auto first = TestView::make({{0, 0}, {10, 10}}), second = TestView::make({{0, 0}, {10, 10}});
    const auto view = TestView::make({{0, 0}, {5, 5}});
    first->addSubview(view);
    EXPECT_EQ(view->superview(), first);
    EXPECT_EQ(view->layer()->superlayer(), first->layer());
    second->addSubview(first->subviews()[0]);
    EXPECT_TRUE(first->subviews().empty());
    EXPECT_TRUE(first->layer()->sublayers().empty());
    EXPECT_EQ(view->superview(), second);
    EXPECT_EQ(view->layer()->superlayer(), second->layer());
    view->removeFromSuperview();
    EXPECT_EQ(view->superview(), nullptr);
    EXPECT_EQ(view->layer()->superlayer(), nullptr);
    EXPECT_TRUE(second->subviews().empty());
}

TEST_F(UIViewTest, AViewIsTheDelegateOfItsLayer) {
    const auto view = TestView::make({{0, 0}, {5, 5}});
    EXPECT_EQ(view->layer()->delegate(), view);
}

TEST_F(UIViewTest, AViewIsNotAddedUnderItself) {
    const auto top = TestView::make({}), bottom = TestView::make({});
    top->addSubview(bottom);
    bottom->addSubview(top);
    top->addSubview(top);
    top->addSubview(nullptr);
    EXPECT_EQ(top->superview(), nullptr);
    EXPECT_EQ(top->subviews(), Views{bottom});
}

TEST_F(UIViewTest, InsertingOrdersSubviewsAndTheirLayersAroundForeignLayers) {
    const auto root = TestView::make({});
    const auto a = TestView::make({}), b = TestView::make({}), c = TestView::make({});
    const auto foreign = std::make_shared<CALayer>();
    root->layer()->addSublayer(foreign);
    root->addSubview(a);
    root->addSubview(b);
    root->insertSubviewAtIndex(c, 1);
    EXPECT_EQ(root->subviews(), (Views{a, c, b}));
    EXPECT_EQ(root->layer()->sublayers(),
              (std::vector<std::shared_ptr<CALayer>>{foreign, a->layer(), c->layer(), b->layer()}));
    root->addSubview(a);
    EXPECT_EQ(root->subviews(), (Views{c, b, a}));
    root->insertSubviewAtIndex(b, 0);
    EXPECT_EQ(root->subviews(), (Views{b, c, a}));
    EXPECT_EQ(root->layer()->sublayers(),
              (std::vector<std::shared_ptr<CALayer>>{foreign, b->layer(), c->layer(), a->layer()}));
}

TEST_F(UIViewTest, TheWindowIsFoundThroughTheTreeOfViewsWhateverSuperviewAnswers) {
    class Orphan : public UIView {
    public:
        std::shared_ptr<UIView> superview() const override { return nullptr; }
    };
    const auto window = UIWindow::make();
    const auto orphan = UIView::make<Orphan>({{10, 20}, {50, 50}});
    const auto inner = TestView::make({{1, 2}, {5, 5}});
    orphan->addSubview(inner);
    EXPECT_EQ(inner->window(), nullptr);
    window->addSubview(orphan);
    EXPECT_EQ(inner->window(), window);
    EXPECT_EQ(inner->convertPointToWindow({3, 4}), (CGPoint{14, 26}));
    EXPECT_EQ(inner->convertPointFromWindow({14, 26}), (CGPoint{3, 4}));
    orphan->removeFromSuperview();
    EXPECT_EQ(inner->window(), nullptr);
}

TEST_F(UIViewTest, HitTestFindsTheDeepestVisibleViewInFront) {
    const auto root = TestView::make({{0, 0}, {100, 100}});
    const auto back = TestView::make({{10, 10}, {50, 50}}), front = TestView::make({{30, 30}, {50, 50}});
    const auto inner = TestView::make({{0, 0}, {10, 10}});
    root->addSubview(back);
    root->addSubview(front);
    front->addSubview(inner);
    EXPECT_EQ(root->hitTest({35, 35}), inner);
    EXPECT_EQ(root->hitTest({45, 45}), front);
    EXPECT_EQ(root->hitTest({15, 15}), back);
    EXPECT_EQ(root->hitTest({90, 90}), root);
    EXPECT_EQ(root->hitTest({100, 50}), nullptr);
    front->setHidden(true);
    EXPECT_EQ(root->hitTest({35, 35}), back);
}

TEST_F(UIViewTest, TheLastReferenceDroppedOnAnotherThreadTearsDownOnTheMainQueue) {
    std::vector<std::thread::id> threads;
    const auto note = [&threads] { threads.push_back(std::this_thread::get_id()); };
    auto view = TestView::make({});
    view->onDestroy = note;
    view->addSubview(TestView::make({}));
    static_cast<TestView&>(*view->subviews()[0]).onDestroy = note;
    const std::weak_ptr<UIView> weak = view;
    std::thread([last = std::move(view)]() mutable { last.reset(); }).join();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(threads.empty());
    drainMainQueue();
    EXPECT_EQ(threads, (std::vector{std::this_thread::get_id(), std::this_thread::get_id()}));
}

TEST_F(UIViewTest, TheLastReferenceDroppedOnTheMainQueueTearsDownAtOnce) {
    bool destroyed = false;
    auto view = TestView::make({});
    view->onDestroy = [&destroyed] { destroyed = true; };
    view.reset();
    EXPECT_TRUE(destroyed);
}

TEST_F(UIViewTest, AFreedViewLeavesTheLayerTreeAndFreesItsSubviewsFromIt) {
    const auto host = std::make_shared<CALayer>();
    const auto inner = TestView::make({});
    auto view = TestView::make({});
    view->addSubview(inner);
    host->addSublayer(view->layer());
    const auto layer = view->layer();
    view.reset();
    EXPECT_TRUE(host->sublayers().empty());
    EXPECT_EQ(layer->delegate(), nullptr);
    EXPECT_EQ(inner->superview(), nullptr);
    EXPECT_EQ(inner->layer()->superlayer(), nullptr);
}

TEST_F(UIViewTest, RemovingAViewInsideItsOwnLayoutIsSafe) {
    const auto root = TestView::make({{0, 0}, {10, 10}});
    root->addSubview(TestView::make({{0, 0}, {5, 5}}));
    auto& doomed = static_cast<TestView&>(*root->subviews()[0]);
    doomed.onLayout = [&doomed] { doomed.removeFromSuperview(); };
    const std::weak_ptr<UIView> weak = root->subviews()[0];
    root->layoutIfNeeded();
    EXPECT_TRUE(weak.expired());
}

} // namespace veyra
