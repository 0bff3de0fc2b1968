// Selection: what is reported, what a tap does, what is in front, and where the callout is.
#include "Tests/Platform/MapKit/AnnotationFixture.h"

#include "Platform/MapKit/MKCalloutView.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UILongPressGestureRecognizer.h"

namespace veyra {

namespace {

class Selection : public AnnotationTest {
protected:
    /// The callout that is shown, or null.
    std::shared_ptr<MKCalloutView> callout() const {
        for (const auto& container : map->subviews()) {
            for (const auto& view : container->subviews()) {
                if (auto found = std::dynamic_pointer_cast<MKCalloutView>(view)) {
                    return found;
                }
            }
        }
        return nullptr;
    }
    std::shared_ptr<TestAnnotation> shown(const std::string& name, CLLocationCoordinate2D place) {
        auto made = add(name, place);
        runQueue();
        takeCalls();
        return made;
    }
};

} // namespace

TEST_F(Selection, IsReportedAndShowsACallout) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    EXPECT_TRUE(map->viewForAnnotation(a)->isSelected());
    ASSERT_EQ(map->selectedAnnotations().size(), 1U);
    EXPECT_EQ(map->selectedAnnotations().front(), a);
    ASSERT_NE(callout(), nullptr);
    EXPECT_EQ(callout()->content().title, "Title of a");
}

TEST_F(Selection, OfTheSelectedReportsNothing) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    takeCalls();
    map->selectAnnotationAnimated(a, true);
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(Selection, OfAnotherReportsTheDeselectionFirst) {
    showAround();
    const auto a = shown("a", {0, 0}), b = shown("b", {5, 5});
    map->selectAnnotationAnimated(a, false);
    map->selectAnnotationAnimated(b, false);
    EXPECT_EQ(takeCalls(), (Calls{"selected a", "deselected a", "selected b"}));
    EXPECT_FALSE(map->viewForAnnotation(a)->isSelected());
}

TEST_F(Selection, InTheTurnOfTheAddIsReportedAfterIt) {
    showAround();
    const auto a = add("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "added a", "selected a"}));
}

TEST_F(Selection, OfWhatIsNotOnScreenHasNoEffect) {
    showAround();
    const auto far = shown("far", {0, 100}), near = shown("near", {0, 23});
    const auto unknown = annotation("unknown", {0, 0});
    for (const auto& one : {far, near, unknown}) {
        map->selectAnnotationAnimated(one, true);
    }
    EXPECT_TRUE(map->selectedAnnotations().empty());
    EXPECT_EQ(callout(), nullptr);
}

TEST_F(Selection, BeforeTheFirstLayoutHasNoEffect) {
    const auto a = add("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    EXPECT_TRUE(map->selectedAnnotations().empty());
}

TEST_F(Selection, WithoutATitleHasNoCallout) {
    showAround();
    const auto a = shown("a", {0, 0});
    a->titleText = id();
    map->selectAnnotationAnimated(a, false);
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    EXPECT_EQ(callout(), nullptr);
}

TEST_F(Selection, WithAnEmptyTitleHasACallout) {
    showAround();
    const auto a = shown("a", {0, 0});
    a->titleText = id(NSString());
    map->selectAnnotationAnimated(a, false);
    EXPECT_NE(callout(), nullptr);
}

TEST_F(Selection, OfAViewThatShowsNoneHasNoCallout) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->viewForAnnotation(a)->setCanShowCallout(false);
    map->selectAnnotationAnimated(a, false);
    EXPECT_EQ(callout(), nullptr);
    map->viewForAnnotation(a)->setCanShowCallout(true);
    EXPECT_NE(callout(), nullptr);
}

TEST_F(Selection, EndsWithADeselection) {
    showAround();
    const auto a = shown("a", {0, 0}), b = shown("b", {0, 0});
    map->selectAnnotationAnimated(a, false);
    map->deselectAnnotationAnimated(b, false);
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    map->deselectAnnotationAnimated(a, false);
    map->deselectAnnotationAnimated(a, false);
    EXPECT_EQ(takeCalls(), (Calls{"deselected a"}));
    EXPECT_EQ(callout(), nullptr);
    EXPECT_TRUE(map->selectedAnnotations().empty());
}

TEST_F(Selection, OfARemovedAnnotationIsReportedAsEndedFirst) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    takeCalls();
    bool wasThere = false;
    delegate->onCall = [&](const std::string&) { wasThere = map->annotations().size() == 1; };
    map->removeAnnotation(a);
    EXPECT_EQ(takeCalls(), (Calls{"deselected a"}));
    EXPECT_TRUE(wasThere);
    EXPECT_TRUE(map->annotations().empty());
}

TEST_F(Selection, SurvivesAPanOutOfView) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    const auto view = map->viewForAnnotation(a);
    map->setCenterCoordinate({0, 120});
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    EXPECT_EQ(map->viewForAnnotation(a), view);
    map->deselectAnnotationAnimated(a, false);
    EXPECT_EQ(map->viewForAnnotation(a), nullptr);
}

TEST_F(Selection, ByATap) {
    showAround();
    const auto a = shown("a", {0, 0});
    tap({200, 130});
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    tap({200, 130});
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(Selection, EndsWithATapElsewhere) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    takeCalls();
    tap({30, 280});
    EXPECT_EQ(takeCalls(), (Calls{"deselected a"}));
}

TEST_F(Selection, StaysThroughAPanAndAZoom) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    takeCalls();
    touch(1, UITouchPhase::Began, {30, 280});
    touch(1, UITouchPhase::Moved, {90, 280});
    frame();
    touch(1, UITouchPhase::Ended, {90, 280});
    scroll({30, 30}, -100);
    settle();
    EXPECT_EQ(takeCalls(), Calls());
    EXPECT_NE(callout(), nullptr);
}

TEST_F(Selection, TakesWhatIsInFront) {
    showAround();
    const auto north = shown("north", {1, 0}), south = shown("south", {0, 0}), other = shown("other", {1.2, 0});
    tap({200, 128});
    EXPECT_EQ(takeCalls(), (Calls{"selected south"}));
    map->selectAnnotationAnimated(other, false);
    takeCalls();
    tap({200, 118}); // both; the selected one is in front of all
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(Selection, TakesWhatIsSeenThroughTheClearCornerOfAnother) {
    showAround();
    const auto behind = shown("behind", {1, -1.2});
    const auto front = shown("front", {0, 0});
    const CGRect frame = map->viewForAnnotation(front)->frame();
    tap({frame.minX() + 1, frame.maxY() - 12});
    EXPECT_EQ(takeCalls(), (Calls{"selected behind"}));
}

TEST_F(Selection, DoesNotTakeWhatIsNotEnabled) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->viewForAnnotation(a)->setEnabled(false);
    tap({200, 130});
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(Selection, WorksOnEveryCopyOfTheWorld) {
    window->setSize({800, 300}, 1);
    map->setRegion({{0, 0}, {170, 360}});
    settle();
    const auto a = shown("a", {0, 178});
    const double right = pointOf(a).x;
    const double left = right - 800;
    ASSERT_LT(right, 800);
    tap({std::max(1.0, left + 5), 135});
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
}

TEST_F(Selection, AnimatedMovesTheMapUntilTheCalloutFits) {
    showAround();
    const auto corner = shown("corner", map->convertPointToCoordinateFromView({10, 20}, nullptr));
    map->selectAnnotationAnimated(corner, true);
    settle();
    EXPECT_EQ(delegate->regionChanges, 1);
    const CGRect frame = callout()->frame();
    EXPECT_GE(frame.minX(), 0);
    EXPECT_GE(frame.minY(), 0);
    EXPECT_LE(frame.maxX(), 400);
}

TEST_F(Selection, DoesNotMoveTheMapWhereTheCalloutFits) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, true);
    settle();
    EXPECT_EQ(delegate->regionChanges, 0);
}

TEST_F(Selection, NotAnimatedDoesNotMoveTheMap) {
    showAround();
    const auto corner = shown("corner", map->convertPointToCoordinateFromView({10, 20}, nullptr));
    map->selectAnnotationAnimated(corner, false);
    settle();
    EXPECT_EQ(delegate->regionChanges, 0);
    EXPECT_GE(callout()->frame().minX(), 0);
}

TEST_F(Selection, TheCalloutPointsAtTheMiddleOfTheViewsUpperEdgeAndFollowsTheMap) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    const CGRect before = callout()->frame();
    EXPECT_NEAR(before.center().x, 200, 1);
    EXPECT_LT(before.minY(), map->viewForAnnotation(a)->frame().minY());
    map->viewForAnnotation(a)->setCalloutOffset({7, 11});
    EXPECT_NEAR(callout()->frame().minX() - before.minX(), 7, 1);
    EXPECT_NEAR(callout()->frame().minY() - before.minY(), 11, 1);
    map->viewForAnnotation(a)->setCalloutOffset({0, 0});
    map->setCenterCoordinate({0, -4});
    EXPECT_NEAR(callout()->frame().minX() - before.minX(), 40, 1);
}

TEST_F(Selection, ButtonsOfTheCalloutReportTheirTaps) {
    showAround();
    const auto a = shown("a", {0, 0}), b = shown("b", {-5, 8});
    const auto info = UIButton::buttonWithType(UIButtonTypeInfoLight);
    const auto disclosure = UIButton::buttonWithType(UIButtonTypeDetailDisclosure);
    for (const auto& one : {a, b}) {
        map->viewForAnnotation(one)->setLeftCalloutAccessoryView(info);
        map->viewForAnnotation(one)->setRightCalloutAccessoryView(disclosure);
    }
    for (const auto& one : {a, b}) {
        map->selectAnnotationAnimated(one, false);
        settle();
        takeCalls();
        for (const auto& button : {info, disclosure}) {
            tap(button->convertPointToWindow({14, 14}));
            EXPECT_EQ(takeCalls(), (Calls{"tapped " + one->name}));
            EXPECT_EQ(delegate->tappedControl, button);
        }
        EXPECT_LT(info->convertPointToWindow({0, 0}).x, disclosure->convertPointToWindow({0, 0}).x);
    }
}

TEST_F(Selection, ATapOnTheCalloutDoesNotDeselect) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    settle();
    takeCalls();
    tap(callout()->frame().center());
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(Selection, ALongPressOnAViewOrACalloutDoesNotReachTheMap) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    settle();
    int presses = 0;
    const auto press = std::make_shared<UILongPressGestureRecognizer>();
    press->setMinimumPressDuration(0);
    press->setHandler(
        [&](UIGestureRecognizer& recognizer) { presses += recognizer.state() == UIGestureRecognizerState::Began; });
    map->addGestureRecognizer(press);
    for (const CGPoint at : {CGPoint{200, 130}, callout()->frame().center()}) {
        touch(1, UITouchPhase::Began, at);
        runQueue();
        touch(1, UITouchPhase::Ended, at);
        EXPECT_EQ(presses, 0);
    }
    touch(1, UITouchPhase::Began, {30, 280});
    runQueue();
    EXPECT_EQ(presses, 1);
}

TEST_F(Selection, MayBeChangedByTheDelegateThatIsToldOfIt) {
    showAround();
    const auto a = shown("a", {0, 0}), b = shown("b", {5, 5});
    delegate->onCall = [&](const std::string& call) {
        if (call == "selected a") {
            map->selectAnnotationAnimated(b, false);
        }
        if (call == "selected b") {
            map->removeAnnotation(b);
        }
    };
    map->selectAnnotationAnimated(a, true);
    EXPECT_EQ(takeCalls(), (Calls{"selected a", "deselected a", "selected b", "deselected b"}));
    EXPECT_TRUE(map->selectedAnnotations().empty());
    EXPECT_EQ(callout(), nullptr);
}

} // namespace veyra
