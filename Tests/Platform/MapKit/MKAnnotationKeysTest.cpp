// Annotations by the keyboard, and which keys a map leaves to the page.
#include "Tests/Platform/MapKit/AnnotationFixture.h"

#include "Platform/UIKit/UIButton.h"

namespace veyra {

namespace {

class AnnotationKeys : public AnnotationTest {
protected:
    void press(const std::string& name, bool shift = false) {
        UIKeyEvent event;
        event.key = name;
        event.shift = shift;
        event.timestamp = now;
        window->sendEvent(event);
        runQueue();
    }
    /// Which keys the page does not get: letters for Tab, shift and Tab, Enter, Escape.
    std::string keys() {
        runQueue();
        const UIInputPolicy policy = window->inputPolicy();
        return std::string(policy.usesNextKey ? "T" : "") + (policy.usesPreviousKey ? "S" : "") +
               (policy.usesActivationKeys ? "E" : "") + (policy.usesEscapeKey ? "X" : "");
    }
    std::shared_ptr<TestAnnotation> shown(const std::string& name, CLLocationCoordinate2D place) {
        auto made = add(name, place);
        settle();
        takeCalls();
        return made;
    }
    /// Selects what has the focus and says what it was.
    std::string focused() {
        press("Enter");
        const auto selected = map->selectedAnnotations();
        return selected.empty() ? "" : std::dynamic_pointer_cast<TestAnnotation>(selected.front())->name;
    }
};

using Action = UIAccessibilityAction;

class AnnotationsForAll : public AnnotationKeys {
protected:
    void act(Action action) {
        window->sendEvent(UIAccessibilityEvent{action});
        runQueue();
    }
    /// The labels of what can be done now.
    std::vector<std::string> labels() const {
        std::vector<std::string> found;
        for (const auto& element : window->accessibilityState().elements) {
            found.push_back(element.label);
        }
        return found;
    }
    std::string status() const { return window->accessibilityState().status; }
};

} // namespace

TEST_F(AnnotationKeys, TabGoesFromNorthToSouthAndLeavesAtTheEnd) {
    showAround();
    EXPECT_EQ(keys(), "");
    shown("south", {-5, 0});
    shown("north", {5, 3});
    shown("far", {0, 120});
    EXPECT_EQ(keys(), "T");
    press("Tab");
    EXPECT_EQ(keys(), "TSEX");
    EXPECT_EQ(focused(), "north");
    press("Tab");
    EXPECT_EQ(keys(), "SEX");
    EXPECT_EQ(focused(), "south");
    press("Tab");
    press("Escape");
    EXPECT_EQ(keys(), "T");
}

TEST_F(AnnotationKeys, TabWithShiftGoesBackToTheMapItself) {
    showAround();
    shown("south", {-5, 0});
    shown("north", {5, 3});
    press("Tab");
    press("Tab");
    press("Tab", true);
    EXPECT_EQ(focused(), "north");
    press("Escape");
    press("Tab", true);
    EXPECT_EQ(keys(), "T");
}

TEST_F(AnnotationKeys, EnterSelectsAndReportsIt) {
    showAround();
    shown("a", {0, 0});
    press("Enter");
    EXPECT_EQ(takeCalls(), Calls());
    press("Tab");
    press("Enter");
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    press("Escape");
    EXPECT_EQ(takeCalls(), (Calls{"deselected a"}));
}

TEST_F(AnnotationKeys, TheButtonsOfTheCalloutComeAfterTheirView) {
    showAround();
    const auto a = shown("a", {0, 0}), b = shown("b", {-5, 0});
    const auto info = UIButton::buttonWithType(UIButtonTypeInfoLight);
    const auto disclosure = UIButton::buttonWithType(UIButtonTypeDetailDisclosure);
    map->viewForAnnotation(a)->setLeftCalloutAccessoryView(info);
    map->viewForAnnotation(a)->setRightCalloutAccessoryView(disclosure);
    press("Tab");
    press("Enter");
    takeCalls();
    press("Tab");
    press("Enter");
    EXPECT_EQ(takeCalls(), (Calls{"tapped a"}));
    EXPECT_EQ(delegate->tappedControl, info);
    press("Tab");
    press(" ");
    EXPECT_EQ(takeCalls(), (Calls{"tapped a"}));
    EXPECT_EQ(delegate->tappedControl, disclosure);
    press("Tab");
    press("Enter");
    EXPECT_EQ(takeCalls(), (Calls{"deselected a", "selected b"}));
}

TEST_F(AnnotationKeys, EscapeTakesBackOneStepAfterTheOtherAndThenTabLeaves) {
    showAround();
    shown("a", {0, 0});
    press("Tab");
    press("Enter");
    EXPECT_EQ(keys(), "SEX");
    press("Escape");
    EXPECT_EQ(keys(), "SEX");
    press("Escape");
    EXPECT_EQ(keys(), "");
    press("Tab"); // the page's
    EXPECT_EQ(keys(), "T");
}

TEST_F(AnnotationKeys, ALostFocusIsForgotten) {
    showAround();
    shown("a", {0, 0});
    press("Tab");
    window->sendEvent(UIFocusEvent{false});
    EXPECT_EQ(keys(), "T");
    press("Enter");
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(AnnotationKeys, WhatLeavesTheScreenLosesTheFocus) {
    showAround();
    const auto a = shown("a", {0, 0});
    press("Tab");
    map->setCenterCoordinate({0, 100});
    EXPECT_EQ(keys(), "");
    map->setCenterCoordinate({0, 0});
    EXPECT_EQ(keys(), "T");
    press("Tab");
    map->removeAnnotation(a);
    EXPECT_EQ(keys(), "");
}

TEST_F(AnnotationKeys, SpaceLiftsADraggableViewAndArrowsMoveIt) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->viewForAnnotation(a)->setDraggable(true);
    press("Tab");
    const MKCoordinateRegion before = map->region();
    press(" ");
    EXPECT_EQ(takeCalls(), (Calls{"drag a 1<0", "drag a 2<1"}));
    press("ArrowRight");
    press("ArrowRight", true);
    EXPECT_NEAR(a->position.longitude, 1.1, 1e-6);
    press("Enter");
    EXPECT_EQ(takeCalls(), (Calls{"drag a 4<2", "drag a 0<4"}));
    EXPECT_EQ(map->region().center.longitude, before.center.longitude);
    press(" ");
    press("ArrowUp");
    EXPECT_GT(a->position.latitude, 0.9);
    takeCalls();
    press("Escape");
    EXPECT_EQ(takeCalls(), (Calls{"drag a 3<2", "drag a 0<3"}));
    EXPECT_NEAR(a->position.latitude, 0, 1e-9);
    EXPECT_NEAR(a->position.longitude, 1.1, 1e-6);
}

TEST_F(AnnotationKeys, ATouchOnTheMapTakesBackWhatTheKeysHaveLifted) {
    showAround();
    const auto a = shown("a", {0, 0});
    map->viewForAnnotation(a)->setDraggable(true);
    press("Tab");
    press(" ");
    press("ArrowRight");
    takeCalls();
    touch(1, UITouchPhase::Began, {30, 280});
    EXPECT_EQ(takeCalls(), (Calls{"drag a 3<2", "drag a 0<3"}));
    EXPECT_EQ(a->position.longitude, 0);
    EXPECT_EQ(keys(), "T");
}

TEST_F(AnnotationKeys, WhatIsMovedAwayByOthersLosesTheFocus) {
    showAround();
    const auto a = shown("a", {0, 0});
    press("Tab");
    a->position = {0, 120};
    map->annotationCoordinateDidChange(a);
    EXPECT_EQ(keys(), "");
    press("Enter");
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(AnnotationKeys, ArrowsStillMoveTheMapOtherwise) {
    showAround();
    shown("a", {0, 0});
    press("Tab");
    press("ArrowRight");
    settle();
    EXPECT_GT(map->region().center.longitude, 1);
}

TEST_F(AnnotationKeys, KeysWithControlAreThePages) {
    showAround();
    shown("a", {0, 0});
    UIKeyEvent event;
    event.key = "Tab";
    event.control = true;
    window->sendEvent(event);
    EXPECT_EQ(keys(), "T");
}

TEST_F(AnnotationKeys, ViewsThatAreNotEnabledAreLeftOut) {
    showAround();
    const auto a = shown("a", {5, 0});
    shown("b", {0, 0});
    map->viewForAnnotation(a)->setEnabled(false);
    press("Tab");
    EXPECT_EQ(focused(), "b");
}

TEST_F(AnnotationsForAll, TellWhatHasTheFocusAndTheWaysOn) {
    showAround();
    shown("south", {-5, 0});
    shown("north", {5, 0})->subtitleText = id(NSString("A place"));
    shown("far", {0, 120});
    EXPECT_EQ(status(), "");
    EXPECT_EQ(labels(), (std::vector<std::string>{"Next: Title of north"}));
    act(Action::Next);
    EXPECT_EQ(status(), "Title of north, A place");
    EXPECT_EQ(labels(), (std::vector<std::string>{"Title of north, A place", "Next: Title of south"}));
    act(Action::Next);
    EXPECT_EQ(labels(), (std::vector<std::string>{"Previous: Title of north, A place", "Title of south"}));
    act(Action::Previous);
    EXPECT_EQ(status(), "Title of north, A place");
}

TEST_F(AnnotationsForAll, SelectAndPressTheButtonsOfTheCallout) {
    showAround();
    const auto a = shown("a", {0, 0});
    const auto disclosure = UIButton::buttonWithType(UIButtonTypeDetailDisclosure);
    map->viewForAnnotation(a)->setRightCalloutAccessoryView(disclosure);
    act(Action::Activate); // nothing has the focus
    act(Action::Next);
    act(Action::Activate);
    EXPECT_EQ(takeCalls(), (Calls{"selected a"}));
    EXPECT_EQ(status(), "Title of a, selected");
    EXPECT_EQ(labels(), (std::vector<std::string>{"Title of a", "Details: Title of a"}));
    act(Action::LeftButton); // there is none
    act(Action::RightButton);
    EXPECT_EQ(takeCalls(), (Calls{"tapped a"}));
    EXPECT_EQ(delegate->tappedControl, disclosure);
}

TEST_F(AnnotationsForAll, TellHowADraggableOneIsMoved) {
    showAround();
    map->viewForAnnotation(shown("a", {0, 0}))->setDraggable(true);
    act(Action::Next);
    EXPECT_EQ(status(), "Title of a, can be moved with the space bar");
    press(" ");
    EXPECT_EQ(status(), "Title of a, lifted; arrow keys move it, Enter sets it down, Escape takes it back");
}

TEST_F(AnnotationsForAll, AreAFewElementsHoweverManyThereAre) {
    showAround();
    for (int i = 0; i < 1000; ++i) {
        add("a", {i % 20 / 10.0, i % 30 / 10.0});
    }
    settle();
    act(Action::Next);
    act(Action::Next);
    EXPECT_EQ(labels().size(), 3U);
}

} // namespace veyra
