// Annotations for those who do not see them: what has the focus, in words, and the ways on from there. There are never
// more than a few elements, however many annotations are in view.
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/UIKit/UIButton.h"

namespace veyra {

std::string MKAnnotationContainerView::labelOf(uint32_t number) const {
    const auto& annotation = _store[number].annotation;
    const id title = annotation->title(), subtitle = annotation->subtitle();
    std::string label = title.isNil() ? std::string() : title.description().utf8();
    if (label.empty()) {
        label = "Annotation without a title";
    }
    if (!subtitle.isNil() && subtitle.description().length() > 0) {
        label += ", " + subtitle.description().utf8();
    }
    return label;
}

UIAccessibilityState MKAnnotationContainerView::accessibilityState() {
    UIAccessibilityState state;
    if (!isShowingMap()) {
        return state;
    }
    checkFocus();
    const uint32_t focused = _focus.number;
    const auto add = [&](UIAccessibilityAction action, const std::string& label) {
        state.elements.push_back({action, label});
    };
    if (focused != none) {
        const auto& view = _store[focused].view;
        state.status = labelOf(focused);
        if (focused == _dragged) {
            state.status += ", lifted; arrow keys move it, Enter sets it down, Escape takes it back";
        } else {
            state.status += focused == _selected ? ", selected" : "";
            state.status += view->isDraggable() ? ", can be moved with the space bar" : "";
        }
        if (const uint32_t previous = focusableAfter(focused, false); previous != none) {
            add(UIAccessibilityAction::Previous, "Previous: " + labelOf(previous));
        }
        add(UIAccessibilityAction::Activate, labelOf(focused));
        if (focused == _selected) {
            for (const FocusPart part : {FocusPart::LeftButton, FocusPart::RightButton}) {
                if (const auto button = calloutButton(part)) {
                    add(part == FocusPart::LeftButton ? UIAccessibilityAction::LeftButton
                                                      : UIAccessibilityAction::RightButton,
                        (button->buttonType() == UIButtonTypeDetailDisclosure ? "Details: " : "Information: ") +
                            labelOf(focused));
                }
            }
        }
    }
    if (const uint32_t next = focusableAfter(focused, true); next != none) {
        add(UIAccessibilityAction::Next, "Next: " + labelOf(next));
    }
    return state;
}

void MKAnnotationContainerView::handleAccessibility(const UIAccessibilityEvent& event) {
    if (!isShowingMap()) {
        return;
    }
    const auto self = sharedView();
    checkFocus();
    switch (event.action) {
    case UIAccessibilityAction::Previous:
    case UIAccessibilityAction::Next: {
        const uint32_t next = focusableAfter(_focus.number, event.action == UIAccessibilityAction::Next);
        if (next != none && !isDragging()) {
            setFocus({next, FocusPart::View});
        }
        return;
    }
    case UIAccessibilityAction::Activate:
        if (_focus.number != none) {
            setFocus({_focus.number, FocusPart::View});
            handleActivation(false);
        }
        return;
    case UIAccessibilityAction::LeftButton:
    case UIAccessibilityAction::RightButton:
        if (const auto button = calloutButton(
                event.action == UIAccessibilityAction::LeftButton ? FocusPart::LeftButton : FocusPart::RightButton)) {
            calloutButtonTapped(button);
        }
        return;
    }
}

} // namespace veyra
