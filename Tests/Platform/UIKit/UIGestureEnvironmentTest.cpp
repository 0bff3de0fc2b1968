// Which recognisers get which touches, and what happens when the world changes under a gesture.
#include "GestureFixture.h"

#include "Platform/UIKit/UILongPressGestureRecognizer.h"
#include "Platform/UIKit/UIPanGestureRecognizer.h"
#include "Platform/UIKit/UIPinchGestureRecognizer.h"
#include "Platform/UIKit/UITapGestureRecognizer.h"

namespace veyra {

class UIGestureEnvironmentTest : public GestureFixture {
protected:
    /// Puts a finger down and drags it until the pan has begun.
    void beginPan(int64_t identifier = 1) const {
        down(identifier, {100, 100}, 0);
        move(identifier, {150, 100}, 0.01);
    }
    States states;
    std::shared_ptr<UIPanGestureRecognizer> pan = add<UIPanGestureRecognizer>(states);
    const States began{State::Began}, cancelled{State::Began, State::Cancelled};
};

TEST_F(UIGestureEnvironmentTest, TheViewUnderTheBeginningKeepsTheTouchWhereverItGoes) {
    const auto left = TestView::make({{0, 0}, {200, 300}}), right = TestView::make({{200, 0}, {200, 300}});
    view->addSubview(left);
    view->addSubview(right);
    States leftStates, rightStates;
    add<UIPanGestureRecognizer>(leftStates, left);
    add<UIPanGestureRecognizer>(rightStates, right);
    down(1, {150, 100}, 0);
    move(1, {350, 100}, 0.01);
    up(1, {900, 900}, 0.02);
    EXPECT_EQ(leftStates, (States{State::Began, State::Changed, State::Ended}));
    EXPECT_EQ(rightStates, States{});
    EXPECT_EQ(states, States{});
}

TEST_F(UIGestureEnvironmentTest, AncestorsGetTheTouchesOfTheirSubviewsTogether) {
    const auto left = TestView::make({{0, 0}, {200, 300}}), right = TestView::make({{200, 0}, {200, 300}});
    view->addSubview(left);
    view->addSubview(right);
    States pinchStates;
    const auto pinch = add<UIPinchGestureRecognizer>(pinchStates);
    down(1, {150, 100}, 0);
    down(2, {250, 100}, 0);
    move(2, {350, 100}, 0.01);
    EXPECT_EQ(pinchStates, began);
    EXPECT_EQ(states, began);
    EXPECT_EQ(pinch->locationInView(), (CGPoint{250, 100}));
}

TEST_F(UIGestureEnvironmentTest, TheClickOfATouchThatAViewKeepsIsItsOwn) {
    class KeepingView final : public UIView {
    public:
        bool keepsTouches() const override { return true; }
    };
    const auto keeping = UIView::make<KeepingView>({{0, 0}, {200, 300}});
    const auto below = TestView::make({{0, 0}, {100, 300}});
    view->addSubview(keeping);
    keeping->addSubview(below);
    EXPECT_FALSE(window->inputPolicy().usesClick);
    for (const double x : {150, 50}) {
        down(1, {x, 100}, 0);
        EXPECT_TRUE(window->inputPolicy().usesClick);
        window->setInputPolicy({.usesDrags = true});
        up(1, {x, 100}, 0.01);
        EXPECT_TRUE(window->inputPolicy().usesClick) << "the click comes after the touch";
        down(1, {250, 100}, 1);
        EXPECT_FALSE(window->inputPolicy().usesClick);
        up(1, {250, 100}, 1.01);
    }
}

TEST_F(UIGestureEnvironmentTest, TouchesThatAViewKeepsReachOnlyWhatTakesSuch) {
    const auto inner = TestView::make({{0, 0}, {200, 300}}), below = TestView::make({{0, 0}, {100, 300}});
    inner->keeps = true;
    view->addSubview(inner);
    inner->addSubview(below);
    States pinchStates;
    const auto pinch = add<UIPinchGestureRecognizer>(pinchStates);
    pinch->setTakesKeptTouches(true);
    std::vector<UIView*> asked;
    pinch->setTouchFilter([&](UIView& touched, const UITouchEvent&) { return asked.push_back(&touched), true; });
    down(1, {50, 100}, 0);  // in what the view keeps
    down(2, {300, 100}, 0); // beside it
    move(1, {20, 100}, 0.01);
    EXPECT_EQ(pinchStates, began);
    EXPECT_EQ(pan->numberOfTouches(), 1u);
    EXPECT_EQ(asked, (std::vector<UIView*>{below.get(), view.get()}));
    EXPECT_EQ(states, States{});
}

TEST_F(UIGestureEnvironmentTest, UnknownTouchesAreIgnored) {
    move(7, {150, 100}, 0);
    up(7, {150, 100}, 0.01);
    send(7, UITouchPhase::Cancelled, {150, 100}, 0.02);
    down(1, {900, 900}, 1); // outside the window
    move(1, {100, 100}, 1.01);
    move(1, {200, 100}, 1.02);
    up(1, {200, 100}, 1.03);
    EXPECT_EQ(states, States{});
}

TEST_F(UIGestureEnvironmentTest, WhatIsNotFiniteIsIgnored) {
    const double infinity = HUGE_VAL, nan = std::nan("");
    down(2, {nan, 100}, 0);
    down(3, {100, 100}, nan);
    down(1, {100, 100}, 0);
    move(1, {nan, 100}, 0.01);
    move(1, {100, infinity}, 0.01);
    move(1, {200, 100}, infinity);
    EXPECT_EQ(states, States{});
    EXPECT_EQ(pan->numberOfTouches(), 1u);
    move(1, {120, 100}, 0.02);
    EXPECT_EQ(states, began);
    EXPECT_NEAR(pan->translationInView().x, 10, 1e-9);
}

TEST_F(UIGestureEnvironmentTest, ATouchEndsAlsoWhereTheHostDoesNotKnowThePlace) {
    beginPan();
    const CGPoint moved = pan->translationInView();
    up(1, {std::nan(""), 100}, 0.02);
    EXPECT_EQ(states, (States{State::Began, State::Ended}));
    EXPECT_EQ(pan->numberOfTouches(), 0u);
    beginPan();
    EXPECT_EQ(pan->translationInView(), moved);
    send(1, UITouchPhase::Cancelled, {0, 0}, HUGE_VAL);
    EXPECT_EQ(states, (States{State::Began, State::Ended, State::Began, State::Cancelled}));
}

TEST_F(UIGestureEnvironmentTest, ATouchThatBeginsAgainCancelsTheOldOne) {
    beginPan();
    down(1, {200, 200}, 1);
    EXPECT_EQ(states, cancelled);
    EXPECT_EQ(pan->numberOfTouches(), 1u);
    move(1, {200, 250}, 1.01);
    EXPECT_EQ(states, (States{State::Began, State::Cancelled, State::Began}));
    EXPECT_NEAR(pan->translationInView().y, 40, 1e-9);
}

TEST_F(UIGestureEnvironmentTest, IdentifiersMayBeUsedAgain) {
    for (int round = 0; round < 3; ++round) {
        down(1, {100, 100}, round);
        move(1, {150, 100}, round + 0.01);
        up(1, {150, 100}, round + 0.02);
    }
    EXPECT_EQ(states, (States{State::Began, State::Ended, State::Began, State::Ended, State::Began, State::Ended}));
}

TEST_F(UIGestureEnvironmentTest, ACancelledTouchCancelsTheWholeGesture) {
    beginPan();
    down(2, {200, 100}, 0.02);
    send(1, UITouchPhase::Cancelled, {150, 100}, 0.03);
    EXPECT_EQ(states, cancelled);
    move(2, {300, 100}, 0.04);
    up(2, {300, 100}, 0.05);
    EXPECT_EQ(states, cancelled);
    beginPan();
    EXPECT_EQ(states.size(), 3u);
}

TEST_F(UIGestureEnvironmentTest, LosingThePointerCancelsAllTouches) {
    beginPan();
    down(2, {200, 100}, 0.02);
    window->cancelTouches();
    EXPECT_EQ(states, cancelled);
    move(1, {300, 100}, 0.03);
    up(2, {300, 100}, 0.04);
    EXPECT_EQ(states, cancelled);
    window->cancelTouches();
    EXPECT_EQ(states, cancelled);
}

TEST_F(UIGestureEnvironmentTest, DisablingCancelsAndADisabledRecogniserGetsNothing) {
    beginPan();
    pan->setEnabled(false);
    EXPECT_EQ(states, cancelled);
    EXPECT_EQ(pan->numberOfTouches(), 0u);
    beginPan(2);
    EXPECT_EQ(states, cancelled);
    pan->setEnabled(true);
    move(2, {300, 100}, 0.05);
    EXPECT_EQ(states, cancelled) << "the touch began while it was disabled";
    beginPan(3);
    EXPECT_EQ(states.size(), 3u);
}

TEST_F(UIGestureEnvironmentTest, ARecogniserRemovedDuringItsGestureIsCancelledAndHearsNoMore) {
    beginPan();
    view->removeGestureRecognizer(pan);
    EXPECT_EQ(states, cancelled);
    EXPECT_EQ(pan->view(), nullptr);
    view->addGestureRecognizer(pan);
    move(1, {300, 100}, 0.05);
    up(1, {300, 100}, 0.06);
    EXPECT_EQ(states, cancelled);
}

TEST_F(UIGestureEnvironmentTest, ARecogniserBelongsToOneView) {
    const auto other = TestView::make({{0, 0}, {10, 10}});
    other->addGestureRecognizer(pan);
    EXPECT_EQ(pan->view(), other);
    EXPECT_TRUE(view->gestureRecognizers().empty());
    EXPECT_EQ(other->gestureRecognizers().size(), 1u);
    view->removeGestureRecognizer(pan);
    EXPECT_EQ(pan->view(), other);
}

TEST_F(UIGestureEnvironmentTest, ATouchFilterDecidesByTheViewUnderTheTouch) {
    const auto inner = TestView::make({{0, 0}, {50, 50}});
    view->addSubview(inner);
    std::vector<UIView*> asked;
    pan->setTouchFilter([&](UIView& touched, const UITouchEvent&) {
        asked.push_back(&touched);
        return &touched != inner.get();
    });
    down(1, {10, 10}, 0);
    move(1, {100, 10}, 0.01);
    up(1, {100, 10}, 0.02);
    EXPECT_EQ(states, States{});
    beginPan();
    EXPECT_EQ(states, began);
    EXPECT_EQ(asked, (std::vector<UIView*>{inner.get(), view.get()}));
}

TEST_F(UIGestureEnvironmentTest, AViewRemovedDuringATouchLosesItButItsAncestorsKeepIt) {
    const auto inner = TestView::make({{50, 50}, {100, 100}});
    view->addSubview(inner);
    States tapStates, pressStates;
    const auto innerTap = add<UITapGestureRecognizer>(tapStates, inner);
    const auto press = add<UILongPressGestureRecognizer>(pressStates, inner);
    press->setMinimumPressDuration(0.02);
    down(1, {100, 100}, 0);
    inner->removeFromSuperview();
    runMainQueueFor(0.05);
    EXPECT_EQ(pressStates, States{});
    move(1, {150, 100}, 0.1);
    EXPECT_EQ(states, began);
    up(1, {150, 100}, 0.2);
    EXPECT_EQ(states, (States{State::Began, State::Ended}));
    EXPECT_EQ(tapStates, States{});
}

TEST_F(UIGestureEnvironmentTest, AGestureUnderWayInARemovedSubtreeIsCancelled) {
    const auto outer = TestView::make({{0, 0}, {400, 300}});
    window->addSubview(outer);
    outer->addSubview(view);
    beginPan();
    outer->removeFromSuperview();
    EXPECT_EQ(states, cancelled);
}

TEST_F(UIGestureEnvironmentTest, BringingAViewToTheFrontDoesNotCancelItsGesture) {
    window->addSubview(TestView::make({{0, 0}, {1, 1}}));
    beginPan();
    window->addSubview(view);
    move(1, {160, 100}, 0.02);
    EXPECT_EQ(states, (States{State::Began, State::Changed}));
}

TEST_F(UIGestureEnvironmentTest, AGestureUnderWayKeepsOthersFromItsTouches) {
    States tapStates;
    const auto inner = TestView::make({{200, 200}, {50, 50}});
    view->addSubview(inner);
    add<UITapGestureRecognizer>(tapStates, inner);
    beginPan();
    down(2, {210, 210}, 0.1);
    up(2, {210, 210}, 0.15);
    EXPECT_EQ(tapStates, States{});
    up(1, {150, 100}, 0.2);
    tap({210, 210}, 1);
    EXPECT_EQ(tapStates, States{State::Ended});
}

TEST_F(UIGestureEnvironmentTest, AHandlerMayRemoveItsRecogniser) {
    pan->setHandler([this](UIGestureRecognizer& r) {
        states.push_back(r.state());
        view->removeGestureRecognizer(pan);
        pan.reset();
    });
    const std::weak_ptr<UIGestureRecognizer> weak = pan;
    beginPan();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(states, cancelled);
    up(1, {150, 100}, 0.1);
}

TEST_F(UIGestureEnvironmentTest, AHandlerMayRemoveItsViewAndItsWindow) {
    pan->setHandler([this](UIGestureRecognizer& r) {
        states.push_back(r.state());
        if (view)
            view->removeFromSuperview();
        view.reset();
        pan.reset();
        window.reset();
    });
    const std::weak_ptr<UIWindow> weakWindow = window;
    const std::weak_ptr<UIView> weakView = view;
    beginPan();
    EXPECT_TRUE(weakWindow.expired());
    EXPECT_TRUE(weakView.expired());
    EXPECT_EQ(states, cancelled);
}

TEST_F(UIGestureEnvironmentTest, AHandlerMayEndAllTouches) {
    States tapStates;
    add<UITapGestureRecognizer>(tapStates);
    pan->setHandler([this](UIGestureRecognizer& r) {
        states.push_back(r.state());
        window->cancelTouches();
    });
    beginPan();
    EXPECT_EQ(states, cancelled);
    up(1, {150, 100}, 0.02);
    tap({100, 100}, 1);
    EXPECT_EQ(tapStates, States{State::Ended});
}

TEST_F(UIGestureEnvironmentTest, AHandlerMayReplaceItselfAndThrow) {
    int later = 0;
    pan->setHandler([this, &later](UIGestureRecognizer&) {
        pan->setHandler([&later](UIGestureRecognizer&) { ++later; });
        throw std::runtime_error("handler");
    });
    beginPan();
    move(1, {160, 100}, 0.02);
    EXPECT_EQ(later, 1);
}

} // namespace veyra
