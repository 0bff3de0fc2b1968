#include "GestureFixture.h"

#include "Platform/UIKit/UIPanGestureRecognizer.h"

namespace veyra {

class UIPanGestureRecognizerTest : public GestureFixture {
protected:
    States states;
    std::shared_ptr<UIPanGestureRecognizer> pan = add<UIPanGestureRecognizer>(states);
    static constexpr auto mouse = UITouchType::IndirectPointer;
};

TEST_F(UIPanGestureRecognizerTest, AFingerBeginsBeyondTenPointsWithoutAJump) {
    down(1, {100, 100}, 0);
    move(1, {110, 100}, 0.01);
    EXPECT_EQ(states, States{});
    move(1, {112, 100}, 0.02);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_NEAR(pan->translationInView().x, 2, 1e-9);
    EXPECT_EQ(pan->translationInView().y, 0);
    move(1, {117, 96}, 0.03);
    EXPECT_EQ(states, (States{State::Began, State::Changed}));
    EXPECT_NEAR(pan->translationInView().x, 7, 1e-9);
    EXPECT_NEAR(pan->translationInView().y, -4, 1e-9);
    up(1, {117, 96}, 0.04);
    EXPECT_EQ(states, (States{State::Began, State::Changed, State::Ended}));
    EXPECT_EQ(pan->state(), State::Possible);
}

TEST_F(UIPanGestureRecognizerTest, APointerBeginsBeyondThreePoints) {
    down(1, {100, 100}, 0, mouse);
    move(1, {100, 103}, 0.01, mouse);
    EXPECT_EQ(states, States{});
    move(1, {100, 104}, 0.02, mouse);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_NEAR(pan->translationInView().y, 1, 1e-9);
}

TEST_F(UIPanGestureRecognizerTest, AFirstLongMoveLosesTheSlopOnly) {
    down(1, {100, 100}, 0, mouse);
    move(1, {130, 140}, 0.01, mouse);
    EXPECT_NEAR(pan->translationInView().x, 30 * 47.0 / 50, 1e-9);
    EXPECT_NEAR(pan->translationInView().y, 40 * 47.0 / 50, 1e-9);
}

TEST_F(UIPanGestureRecognizerTest, TheTranslationGoesOnFromWhatIsSet) {
    down(1, {100, 100}, 0);
    move(1, {120, 100}, 0.01);
    pan->setTranslation({});
    move(1, {123, 101}, 0.02);
    EXPECT_EQ(pan->translationInView(), (CGPoint{3, 1}));
}

TEST_F(UIPanGestureRecognizerTest, ATouchThatNeverMovesFarFailsSilently) {
    down(1, {100, 100}, 0);
    up(1, {105, 100}, 0.1);
    EXPECT_EQ(states, States{});
    EXPECT_EQ(pan->state(), State::Possible);
    down(1, {100, 100}, 1);
    move(1, {108, 100}, 1.1);
    EXPECT_EQ(states, States{}) << "the move of the first touch does not count for the second";
}

TEST_F(UIPanGestureRecognizerTest, AMoveThatComesWithTheLiftCounts) {
    down(1, {100, 100}, 0);
    up(1, {150, 100}, 0.1);
    EXPECT_EQ(states, (States{State::Began, State::Ended}));
}

TEST_F(UIPanGestureRecognizerTest, AddingAndLiftingAFingerMovesNothing) {
    down(1, {100, 100}, 0);
    move(1, {130, 100}, 0.01);
    pan->setTranslation({});
    down(2, {300, 200}, 0.02);
    EXPECT_EQ(pan->translationInView(), (CGPoint{0, 0}));
    EXPECT_EQ(pan->locationInView(), (CGPoint{215, 150}));
    EXPECT_EQ(pan->numberOfTouches(), 2u);
    move(2, {310, 200}, 0.03);
    EXPECT_EQ(pan->translationInView(), (CGPoint{5, 0})) << "the middle moves by half";
    move(1, {140, 100}, 0.03);
    EXPECT_EQ(pan->translationInView(), (CGPoint{10, 0}));
    up(1, {140, 100}, 0.04);
    EXPECT_EQ(pan->translationInView(), (CGPoint{10, 0}));
    EXPECT_EQ(pan->locationInView(), (CGPoint{310, 200}));
    move(2, {310, 207}, 0.05);
    EXPECT_EQ(pan->translationInView(), (CGPoint{10, 7}));
    EXPECT_EQ(states.back(), State::Changed);
    up(2, {310, 207}, 0.06);
    EXPECT_EQ(states.back(), State::Ended);
}

TEST_F(UIPanGestureRecognizerTest, TheVelocityIsThatOfTheLastFiftyMilliseconds) {
    CGPoint atEnd{-1, -1};
    pan->setHandler([&](UIGestureRecognizer& r) {
        if (r.state() == State::Ended)
            atEnd = pan->velocityInView();
    });
    down(1, {100, 100}, 0);
    for (int i = 1; i <= 10; ++i)
        move(1, {100 + i * 20.0, 100}, i * 0.01);
    for (int i = 1; i <= 5; ++i)
        move(1, {300, 100 - i * 2.0}, 0.1 + i * 0.01);
    up(1, {300, 90}, 0.15);
    EXPECT_NEAR(atEnd.x, 0, 1e-6);
    EXPECT_NEAR(atEnd.y, -200, 1e-6);
}

TEST_F(UIPanGestureRecognizerTest, AFingerThatRestsBeforeTheLiftHasNoVelocity) {
    CGPoint atEnd{-1, -1};
    pan->setHandler([&](UIGestureRecognizer&) { atEnd = pan->velocityInView(); });
    down(1, {100, 100}, 0);
    move(1, {200, 100}, 0.02);
    EXPECT_NEAR(atEnd.x, 5000, 1e-6);
    up(1, {200, 100}, 0.1);
    EXPECT_EQ(atEnd, (CGPoint{0, 0}));
}

TEST_F(UIPanGestureRecognizerTest, AddingAFingerGivesNoVelocity) {
    down(1, {100, 100}, 0);
    move(1, {120, 100}, 0.01);
    move(1, {120, 100}, 0.1);
    down(2, {300, 100}, 0.11);
    move(2, {300, 100}, 0.12);
    EXPECT_EQ(pan->velocityInView(), (CGPoint{0, 0}));
}

TEST_F(UIPanGestureRecognizerTest, WithFewerThanTheMinimumNothingBeginsOrChanges) {
    pan->setMinimumNumberOfTouches(2);
    down(1, {100, 100}, 0);
    move(1, {200, 100}, 0.01);
    EXPECT_EQ(states, States{});
    down(2, {200, 200}, 0.02);
    EXPECT_EQ(states, States{});
    move(1, {240, 100}, 0.03);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_NEAR(pan->translationInView().x, 10, 1e-9);
    up(2, {200, 200}, 0.04);
    move(1, {300, 100}, 0.05);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_NEAR(pan->translationInView().x, 10, 1e-9);
    up(1, {300, 100}, 0.06);
    EXPECT_EQ(states, (States{State::Began, State::Ended}));
}

TEST_F(UIPanGestureRecognizerTest, MoreThanTheMaximumFailsBeforeTheBeginningAndIsNotFollowedAfter) {
    pan->setMaximumNumberOfTouches(1);
    down(1, {100, 100}, 0);
    down(2, {200, 100}, 0.01);
    move(1, {150, 100}, 0.02);
    up(2, {200, 100}, 0.03);
    move(1, {200, 100}, 0.04);
    EXPECT_EQ(states, States{});
    up(1, {200, 100}, 0.05);

    down(1, {100, 100}, 1);
    move(1, {150, 100}, 1.01);
    pan->setTranslation({});
    down(2, {300, 100}, 1.02);
    move(2, {350, 100}, 1.03);
    EXPECT_EQ(states, States{State::Began});
    EXPECT_EQ(pan->numberOfTouches(), 1u);
    EXPECT_EQ(pan->locationInView(), (CGPoint{150, 100}));
    up(1, {150, 100}, 1.04);
    EXPECT_EQ(pan->translationInView(), (CGPoint{0, 0})) << "the other finger takes over where it is";
    move(2, {353, 100}, 1.05);
    EXPECT_EQ(pan->translationInView(), (CGPoint{3, 0}));
}

TEST_F(UIPanGestureRecognizerTest, TranslationAndLocationAreInTheViewsPoints) {
    const auto inner = TestView::make({{50, 60}, {200, 200}});
    view->addSubview(inner);
    States innerStates;
    const auto innerPan = add<UIPanGestureRecognizer>(innerStates, inner);
    down(1, {100, 100}, 0);
    move(1, {120, 100}, 0.01);
    EXPECT_EQ(innerStates, States{State::Began});
    EXPECT_EQ(innerPan->locationInView(), (CGPoint{70, 40}));
    EXPECT_EQ(states, States{}) << "the inner view's gesture took the touch";
}

} // namespace veyra
