#include "GestureFixture.h"

#include "Platform/UIKit/UIPanGestureRecognizer.h"
#include "Platform/UIKit/UITapGestureRecognizer.h"

namespace veyra {

class UITapGestureRecognizerTest : public GestureFixture {
protected:
    UITapGestureRecognizerTest() {
        single->setHandler([this](UIGestureRecognizer& r) {
            states.push_back(r.state());
            places.push_back(r.locationInView());
        });
    }
    /// A double tap on the view; the single tap waits for it.
    std::shared_ptr<UITapGestureRecognizer> addAwaitedDouble() {
        const auto twice = add<UITapGestureRecognizer>(doubleStates);
        twice->setNumberOfTapsRequired(2);
        single->requireToFail(twice);
        return twice;
    }
    States states, doubleStates;
    std::vector<CGPoint> places;
    std::shared_ptr<UITapGestureRecognizer> single = add<UITapGestureRecognizer>(states);
    const States once{State::Ended};
};

TEST_F(UITapGestureRecognizerTest, AShortTouchInOnePlaceIsATap) {
    down(1, {100, 100}, 0);
    move(1, {106, 108}, 0.1);
    EXPECT_EQ(states, States{});
    up(1, {106, 108}, 0.75);
    EXPECT_EQ(states, once);
    EXPECT_EQ(places, (std::vector<CGPoint>{{100, 100}}));
    EXPECT_EQ(single->state(), State::Possible);
    tap({50, 60}, 1);
    EXPECT_EQ(states, (States{State::Ended, State::Ended}));
}

TEST_F(UITapGestureRecognizerTest, ALongOrMovingTouchIsNoTap) {
    down(1, {100, 100}, 0);
    up(1, {100, 100}, 0.76);
    down(1, {100, 100}, 1);
    move(1, {111, 100}, 1.1);
    move(1, {100, 100}, 1.15);
    up(1, {100, 100}, 1.2);
    down(1, {100, 100}, 2);
    up(1, {111, 100}, 2.1);
    EXPECT_EQ(states, States{});
    tap({100, 100}, 3);
    EXPECT_EQ(states, once);
}

TEST_F(UITapGestureRecognizerTest, TwoFingersAreNoTapOfOne) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0.01);
    up(1, {100, 100}, 0.05);
    up(2, {200, 100}, 0.06);
    EXPECT_EQ(states, States{});
    EXPECT_EQ(single->state(), State::Possible);
}

TEST_F(UITapGestureRecognizerTest, ATwoFingerTapLiesInTheMiddle) {
    single->setNumberOfTouchesRequired(2);
    down(1, {100, 100}, 0);
    down(2, {200, 140}, 0.05);
    up(1, {100, 100}, 0.1);
    EXPECT_EQ(states, States{});
    move(2, {202, 140}, 0.11);
    up(2, {202, 140}, 0.12);
    EXPECT_EQ(states, once);
    EXPECT_EQ(places, (std::vector<CGPoint>{{150, 120}}));
    tap({100, 100}, 1);
    EXPECT_EQ(states, once) << "one finger is not enough";
    for (const int64_t finger : {1, 2, 3})
        down(finger, {finger * 50.0, 100}, 2);
    for (const int64_t finger : {1, 2, 3})
        up(finger, {finger * 50.0, 100}, 2.1);
    EXPECT_EQ(states, once) << "three are too many";
}

TEST_F(UITapGestureRecognizerTest, ADoubleTapNeedsTheSecondSoonAndNear) {
    single->setNumberOfTapsRequired(2);
    tap({100, 100}, 0); // lifted at 0.05
    tap({130, 100}, 0.35);
    EXPECT_EQ(states, once);
    EXPECT_EQ(places, (std::vector<CGPoint>{{130, 100}}));
    tap({100, 100}, 1);
    tap({100, 100}, 1.36);
    EXPECT_EQ(states, once) << "too late";
    tap({100, 100}, 1.6);
    EXPECT_EQ(states.size(), 2u) << "but the late one was the first of the next two";
    tap({100, 100}, 3);
    tap({131, 100}, 3.1);
    EXPECT_EQ(states.size(), 2u) << "too far";
    tap({131, 100}, 3.2);
    EXPECT_EQ(states.size(), 3u) << "but near the next";
}

TEST_F(UITapGestureRecognizerTest, ThreeTapsAreADoubleTapAndAStart) {
    single->setNumberOfTapsRequired(2);
    for (const double time : {0.0, 0.1, 0.2})
        tap({100, 100}, time);
    EXPECT_EQ(states.size(), 1u);
    tap({100, 100}, 0.3);
    EXPECT_EQ(states.size(), 2u);
}

TEST_F(UITapGestureRecognizerTest, UnaskedASingleTapDoesNotWaitForADoubleTap) {
    const auto twice = add<UITapGestureRecognizer>(doubleStates);
    twice->setNumberOfTapsRequired(2);
    tap({100, 100}, 0);
    EXPECT_EQ(states, once);
    tap({100, 100}, 0.2);
    EXPECT_EQ(states.size(), 2u);
    EXPECT_EQ(doubleStates, once);
}

TEST_F(UITapGestureRecognizerTest, AskedASingleTapFailsWhenTheDoubleTapIsRecognised) {
    addAwaitedDouble();
    for (int round = 0; round < 2; ++round) {
        tap({100, 100}, round);
        tap({100, 100}, round + 0.2);
    }
    runMainQueueFor(0.45);
    EXPECT_EQ(states, States{});
    EXPECT_EQ(doubleStates, (States{State::Ended, State::Ended}));
}

TEST_F(UITapGestureRecognizerTest, AskedASingleTapComesWhenNoSecondFollows) {
    addAwaitedDouble();
    tap({100, 100}, 0);
    EXPECT_EQ(states, States{});
    runMainQueueFor(0.1);
    EXPECT_EQ(states, States{});
    EXPECT_TRUE(runMainQueueUntil([this] { return !states.empty(); }));
    EXPECT_EQ(states, once);
    EXPECT_EQ(places, (std::vector<CGPoint>{{100, 100}}));
    EXPECT_EQ(doubleStates, States{});
}

TEST_F(UITapGestureRecognizerTest, TheOrderInWhichTheTwoWereAddedDoesNotMatter) {
    view->removeGestureRecognizer(single);
    addAwaitedDouble();
    view->addGestureRecognizer(single);
    tap({100, 100}, 0);
    tap({100, 100}, 0.2);
    EXPECT_EQ(states, States{});
    EXPECT_EQ(doubleStates, once);
    tap({100, 100}, 5);
    tap({100, 100}, 6);
    EXPECT_EQ(states, once) << "the second one came too late for a double tap";
}

TEST_F(UITapGestureRecognizerTest, TwoQuickTapsInTwoPlacesAreTwoSingleTaps) {
    addAwaitedDouble();
    tap({100, 100}, 0);
    down(1, {200, 200}, 0.1);
    EXPECT_EQ(places, (std::vector<CGPoint>{{100, 100}}));
    up(1, {200, 200}, 0.15);
    EXPECT_EQ(states, once);
    EXPECT_TRUE(runMainQueueUntil([this] { return states.size() == 2; }));
    EXPECT_EQ(places, (std::vector<CGPoint>{{100, 100}, {200, 200}}));
    EXPECT_EQ(doubleStates, States{});
}

TEST_F(UITapGestureRecognizerTest, ATapAndThenADragAreASingleTapAndAPan) {
    addAwaitedDouble();
    States panStates;
    const auto pan = add<UIPanGestureRecognizer>(panStates);
    tap({100, 100}, 0);
    down(1, {100, 100}, 0.1);
    move(1, {150, 100}, 0.2);
    EXPECT_EQ(places, (std::vector<CGPoint>{{100, 100}}));
    EXPECT_EQ(panStates, States{State::Began});
    up(1, {150, 100}, 0.3);
    EXPECT_EQ(states, once);
    EXPECT_EQ(panStates, (States{State::Began, State::Ended}));
    tap({100, 100}, 1);
    tap({100, 100}, 1.2);
    EXPECT_EQ(doubleStates, once) << "all start anew afterwards";
    EXPECT_EQ(states, once);
}

TEST_F(UITapGestureRecognizerTest, ATapWaitsForAPanToFail) {
    States panStates;
    const auto pan = add<UIPanGestureRecognizer>(panStates);
    single->requireToFail(pan);
    tap({100, 100}, 0);
    EXPECT_EQ(states, once);
    EXPECT_EQ(panStates, States{});
}

TEST_F(UITapGestureRecognizerTest, AHeldSecondTouchEndsTheWait) {
    const auto twice = addAwaitedDouble();
    tap({100, 100}, 0);
    down(1, {100, 100}, 0.1);
    EXPECT_EQ(states, States{});
    EXPECT_TRUE(runMainQueueUntil([this] { return !states.empty(); }));
    up(1, {100, 100}, 2);
    EXPECT_EQ(states, once);
    EXPECT_EQ(doubleStates, States{});
    EXPECT_EQ(single->state(), State::Possible);
    EXPECT_EQ(twice->state(), State::Possible);
}

TEST_F(UITapGestureRecognizerTest, DisablingOrRemovingTheAwaitedTapEndsTheWait) {
    const auto twice = addAwaitedDouble();
    tap({100, 100}, 0);
    twice->setEnabled(false);
    EXPECT_EQ(states, once);
    tap({100, 100}, 1);
    EXPECT_EQ(states.size(), 2u) << "a disabled gesture is not waited for";
    twice->setEnabled(true);
    tap({100, 100}, 2);
    EXPECT_EQ(states.size(), 2u);
    view->removeGestureRecognizer(twice);
    EXPECT_EQ(states.size(), 3u);
}

TEST_F(UITapGestureRecognizerTest, AWaitingTapMayBeRemovedInItsHandlerAndByItsView) {
    addAwaitedDouble();
    single->setHandler([this](UIGestureRecognizer&) {
        states.push_back(State::Ended);
        view->removeGestureRecognizer(single);
        single.reset();
    });
    tap({100, 100}, 0);
    down(1, {300, 100}, 0.1);
    EXPECT_EQ(states, once);
    up(1, {300, 100}, 0.15);
    EXPECT_EQ(single, nullptr);
    view->removeFromSuperview();
    runMainQueueFor(0.4);
    EXPECT_EQ(states, once);
}

TEST_F(UITapGestureRecognizerTest, TheDeepestViewTakesTheTap) {
    const auto inner = TestView::make({{100, 100}, {50, 50}});
    view->addSubview(inner);
    States innerStates;
    const auto innerTap = add<UITapGestureRecognizer>(innerStates, inner);
    tap({120, 120}, 0);
    EXPECT_EQ(innerStates, once);
    EXPECT_EQ(states, States{});
    tap({20, 20}, 1);
    EXPECT_EQ(innerStates, once);
    EXPECT_EQ(states, once);
}

} // namespace veyra
