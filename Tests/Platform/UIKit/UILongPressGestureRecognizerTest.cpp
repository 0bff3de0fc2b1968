#include "GestureFixture.h"

#include "Platform/UIKit/UILongPressGestureRecognizer.h"
#include "Platform/UIKit/UIPanGestureRecognizer.h"
#include "Platform/UIKit/UITapGestureRecognizer.h"

namespace veyra {

class UILongPressGestureRecognizerTest : public GestureFixture {
protected:
    UILongPressGestureRecognizerTest() { press->setMinimumPressDuration(0.03); }
    bool waitForStates(size_t count) {
        return runMainQueueUntil([this, count] { return states.size() == count; });
    }
    States states;
    std::shared_ptr<UILongPressGestureRecognizer> press = add<UILongPressGestureRecognizer>(states);
};

TEST_F(UILongPressGestureRecognizerTest, Defaults) {
    const UILongPressGestureRecognizer fresh;
    EXPECT_EQ(fresh.minimumPressDuration(), 0.5);
    EXPECT_EQ(fresh.numberOfTouchesRequired(), 1u);
    EXPECT_EQ(fresh.allowableMovement(), 10);
}

TEST_F(UILongPressGestureRecognizerTest, BeginsAfterTheDurationFollowsAndEnds) {
    press->setMinimumPressDuration(0.1);
    const auto start = std::chrono::steady_clock::now();
    down(1, {100, 100}, 0);
    move(1, {106, 108}, 0.01);
    EXPECT_TRUE(waitForStates(1));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(press->locationInView(), (CGPoint{106, 108}));
    move(1, {200, 100}, 0.2);
    up(1, {200, 100}, 0.3);
    EXPECT_EQ(states, (States{State::Began, State::Changed, State::Ended}));
    EXPECT_EQ(press->state(), State::Possible);
}

TEST_F(UILongPressGestureRecognizerTest, AnEarlyLiftOrAMoveTooFarIsNoPress) {
    down(1, {100, 100}, 0);
    up(1, {100, 100}, 0.01);
    runMainQueueFor(0.06);
    EXPECT_EQ(states, States{});
    down(1, {100, 100}, 1);
    move(1, {111, 100}, 1.01);
    runMainQueueFor(0.06);
    EXPECT_EQ(states, States{});
    up(1, {111, 100}, 1.1);
    down(1, {100, 100}, 2);
    EXPECT_TRUE(waitForStates(1)) << "the next touch is a new try";
}

TEST_F(UILongPressGestureRecognizerTest, TheAllowedMovementCanBeSet) {
    press->setAllowableMovement(50);
    down(1, {100, 100}, 0);
    move(1, {150, 100}, 0.01);
    EXPECT_TRUE(waitForStates(1));
}

TEST_F(UILongPressGestureRecognizerTest, ASecondFingerMakesItFailOrCancelsIt) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0.01);
    runMainQueueFor(0.06);
    EXPECT_EQ(states, States{});
    up(1, {100, 100}, 0.1);
    up(2, {200, 100}, 0.1);

    down(1, {100, 100}, 1);
    EXPECT_TRUE(waitForStates(1));
    down(2, {200, 100}, 1.1);
    EXPECT_EQ(states, (States{State::Began, State::Cancelled}));
    move(1, {120, 100}, 1.2);
    up(1, {120, 100}, 1.3);
    up(2, {200, 100}, 1.3);
    EXPECT_EQ(states, (States{State::Began, State::Cancelled}));
    EXPECT_EQ(press->state(), State::Possible);
}

TEST_F(UILongPressGestureRecognizerTest, TwoFingersCanBeRequired) {
    press->setNumberOfTouchesRequired(2);
    down(1, {100, 100}, 0);
    runMainQueueFor(0.06);
    EXPECT_EQ(states, States{});
    down(2, {200, 100}, 0.1);
    EXPECT_TRUE(waitForStates(1));
    EXPECT_EQ(press->locationInView(), (CGPoint{150, 100}));
    up(2, {200, 100}, 0.2);
    EXPECT_EQ(states, (States{State::Began, State::Ended}));
    up(1, {100, 100}, 0.3);
    EXPECT_EQ(states, (States{State::Began, State::Ended}));
}

TEST_F(UILongPressGestureRecognizerTest, ACancelledTouchCancelsIt) {
    down(1, {100, 100}, 0);
    EXPECT_TRUE(waitForStates(1));
    send(1, UITouchPhase::Cancelled, {100, 100}, 0.2);
    EXPECT_EQ(states, (States{State::Began, State::Cancelled}));
    down(1, {100, 100}, 1);
    send(1, UITouchPhase::Cancelled, {100, 100}, 1.01);
    runMainQueueFor(0.06);
    EXPECT_EQ(states, (States{State::Began, State::Cancelled}));
}

TEST_F(UILongPressGestureRecognizerTest, APressTakesTheTouchFromTapAndPan) {
    States tapStates, panStates;
    const auto tapRecognizer = add<UITapGestureRecognizer>(tapStates);
    const auto pan = add<UIPanGestureRecognizer>(panStates);
    down(1, {100, 100}, 0);
    EXPECT_TRUE(waitForStates(1));
    move(1, {150, 100}, 0.1);
    up(1, {150, 100}, 0.2);
    EXPECT_EQ(states, (States{State::Began, State::Changed, State::Ended}));
    EXPECT_EQ(tapStates, States{});
    EXPECT_EQ(panStates, States{});
    tap({100, 100}, 1);
    EXPECT_EQ(tapStates, States{State::Ended}) << "they are possible again";
}

TEST_F(UILongPressGestureRecognizerTest, APanTakesTheTouchFromThePress) {
    press->setAllowableMovement(1000);
    States panStates;
    const auto pan = add<UIPanGestureRecognizer>(panStates);
    down(1, {100, 100}, 0);
    move(1, {150, 100}, 0.01);
    runMainQueueFor(0.06);
    EXPECT_EQ(panStates, States{State::Began});
    EXPECT_EQ(states, States{});
}

TEST_F(UILongPressGestureRecognizerTest, ItMayBeDroppedFromItsTimersHandler) {
    int calls = 0;
    press->setHandler([this, &calls](UIGestureRecognizer& r) {
        ++calls;
        if (r.state() != State::Began)
            return;
        view->removeGestureRecognizer(press);
        press.reset();
    });
    const std::weak_ptr<UIGestureRecognizer> weak = press;
    down(1, {100, 100}, 0);
    EXPECT_TRUE(runMainQueueUntil([&] { return weak.expired(); }));
    EXPECT_EQ(calls, 2) << "began, and cancelled by the removal";
    up(1, {100, 100}, 1);
}

TEST_F(UILongPressGestureRecognizerTest, AFreedViewCallsNoHandler) {
    down(1, {100, 100}, 0);
    EXPECT_TRUE(waitForStates(1));
    const std::weak_ptr<UIView> weak = view;
    view.reset();
    window.reset();
    EXPECT_TRUE(weak.expired());
    runMainQueueFor(0.06);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(press->state(), State::Possible);
}

} // namespace veyra
