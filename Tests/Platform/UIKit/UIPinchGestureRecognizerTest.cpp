#include "GestureFixture.h"

#include "Platform/UIKit/UIPanGestureRecognizer.h"
#include "Platform/UIKit/UIPinchGestureRecognizer.h"

namespace veyra {

class UIPinchGestureRecognizerTest : public GestureFixture {
protected:
    States states;
    std::shared_ptr<UIPinchGestureRecognizer> pinch = add<UIPinchGestureRecognizer>(states);
};

TEST_F(UIPinchGestureRecognizerTest, BeginsBeyondEightPointsAndScalesFromThere) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    move(2, {208, 100}, 0.01);
    EXPECT_EQ(states, States{});
    move(2, {216, 100}, 0.02);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_NEAR(pinch->scale(), 116.0 / 108, 1e-12);
    EXPECT_EQ(pinch->locationInView(), (CGPoint{158, 100}));
    move(1, {92, 100}, 0.03);
    EXPECT_NEAR(pinch->scale(), 124.0 / 108, 1e-12);
    EXPECT_EQ(pinch->locationInView(), (CGPoint{154, 100}));
    pinch->setScale(1);
    move(2, {340, 100}, 0.04);
    EXPECT_NEAR(pinch->scale(), 2, 1e-12);
    EXPECT_EQ(states, (States{State::Began, State::Changed, State::Changed}));
}

TEST_F(UIPinchGestureRecognizerTest, PinchingTogetherScalesDown) {
    down(1, {100, 100}, 0);
    down(2, {300, 100}, 0);
    move(2, {204, 100}, 0.01);
    EXPECT_NEAR(pinch->scale(), 104.0 / 192, 1e-12);
}

TEST_F(UIPinchGestureRecognizerTest, EndsWhenBothFingersAreLiftedAndSurvivesALiftInBetween) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    move(2, {308, 100}, 0.01);
    pinch->setScale(1);
    up(2, {308, 100}, 0.02);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(pinch->numberOfTouches(), 1u);
    move(1, {120, 100}, 0.03);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(pinch->scale(), 1);
    down(3, {170, 100}, 0.04);
    EXPECT_EQ(pinch->scale(), 1);
    move(3, {220, 100}, 0.05);
    EXPECT_NEAR(pinch->scale(), 2, 1e-12);
    up(3, {220, 100}, 0.06);
    up(1, {120, 100}, 0.07);
    EXPECT_EQ(states, (States{State::Began, State::Changed, State::Ended}));
    EXPECT_EQ(pinch->state(), State::Possible);
}

TEST_F(UIPinchGestureRecognizerTest, AThirdFingerTakesOverWithoutAJump) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    move(2, {250, 100}, 0.01);
    pinch->setScale(1);
    down(3, {100, 200}, 0.02);
    move(3, {100, 220}, 0.03);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(pinch->locationInView(), (CGPoint{175, 100}));
    up(2, {250, 100}, 0.04);
    EXPECT_EQ(pinch->scale(), 1);
    EXPECT_EQ(pinch->locationInView(), (CGPoint{100, 160}));
    move(3, {100, 340}, 0.05);
    EXPECT_NEAR(pinch->scale(), 2, 1e-12);
}

TEST_F(UIPinchGestureRecognizerTest, TheTranslationIsThatOfTheMiddleOfTheSameTwoFingers) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    move(2, {220, 100}, 0.01);
    EXPECT_EQ(pinch->translationInView(), CGPoint());
    move(2, {230, 104}, 0.02);
    EXPECT_EQ(pinch->translationInView(), (CGPoint{5, 2}));
    down(3, {20, 280}, 0.03);
    up(1, {100, 100}, 0.04);
    EXPECT_EQ(pinch->translationInView(), (CGPoint{5, 2}));
    pinch->setTranslation({});
    move(3, {20, 290}, 0.05);
    EXPECT_EQ(pinch->translationInView(), (CGPoint{0, 5}));
}

TEST_F(UIPinchGestureRecognizerTest, TwoFingersThatOnlyTouchFailSilently) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    up(1, {100, 100}, 0.05);
    up(2, {200, 100}, 0.05);
    EXPECT_EQ(states, States{});
    EXPECT_EQ(pinch->state(), State::Possible);
}

TEST_F(UIPinchGestureRecognizerTest, FingersInOnePlaceKeepTheScaleFinite) {
    down(1, {100, 100}, 0);
    down(2, {100, 100}, 0);
    move(2, {140, 100}, 0.01);
    EXPECT_NEAR(pinch->scale(), 40.0 / 18, 1e-12);
    move(2, {100, 100}, 0.02);
    EXPECT_NEAR(pinch->scale(), 10.0 / 18, 1e-12);
}

TEST_F(UIPinchGestureRecognizerTest, TheVelocityIsTheChangeOfTheScaleOverTheLastFiftyMilliseconds) {
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    move(2, {220, 100}, 0.1);
    pinch->setScale(1);
    for (int i = 1; i <= 5; ++i)
        move(2, {100 + 120 * std::exp(0.02 * i), 100}, 0.1 + 0.01 * i);
    EXPECT_NEAR(pinch->velocity(), std::exp(0.1) * 2, 1e-9);
    move(2, {100 + 120 * std::exp(0.1), 100}, 0.3);
    EXPECT_NEAR(pinch->velocity(), 0, 1e-9);
}

TEST_F(UIPinchGestureRecognizerTest, APanOfTheSameViewGoesAlong) {
    States panStates;
    const auto pan = add<UIPanGestureRecognizer>(panStates);
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0);
    move(2, {250, 100}, 0.01);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(panStates, States{State::Began});
    EXPECT_NEAR(pan->translationInView().x, 15, 1e-9);
    move(1, {110, 100}, 0.02);
    EXPECT_EQ(states, (States{State::Began, State::Changed}));
    EXPECT_EQ(panStates, (States{State::Began, State::Changed}));
}

TEST_F(UIPinchGestureRecognizerTest, APinchThatComesLaterJoinsAPanUnderWay) {
    States panStates;
    const auto pan = add<UIPanGestureRecognizer>(panStates);
    down(1, {100, 100}, 0);
    move(1, {150, 100}, 0.01);
    down(2, {250, 100}, 0.02);
    move(2, {300, 100}, 0.03);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(panStates, (States{State::Began, State::Changed}));
}

} // namespace veyra
