// What a host tells a window about its input devices. Plain values, made on any thread, delivered on the main queue.
// Locations are in the window's points; times are seconds of one monotonic clock.
#pragma once

#include "Platform/UIKit/CGGeometry.h"
#include "Platform/UIKit/UIAccessibility.h"

#include <cstdint>
#include <string>
#include <variant>

namespace veyra {

enum class UITouchPhase { Began, Moved, Ended, Cancelled };
enum class UITouchType { Direct, Pencil, IndirectPointer }; ///< finger, pen, mouse button

/// One finger, pen tip or pressed mouse button. A touch keeps its identifier from began to ended or cancelled.
struct UITouchEvent {
    int64_t identifier = 0;
    UITouchType type = UITouchType::Direct;
    UITouchPhase phase = UITouchPhase::Began;
    CGPoint location;
    double timestamp = 0;
};

/// A turn of a wheel or a two-finger stroke on a touchpad. Positive deltas scroll towards the right and the bottom.
struct UIScrollEvent {
    CGPoint location;
    double deltaX = 0, deltaY = 0; ///< points
    bool pinches = false;          ///< a touchpad pinch, or a wheel turned with the control key: always meant as a zoom
    double timestamp = 0;
};

/// A key that went down. `key` is the name that web pages know it by: "ArrowLeft", "+", "Home", "Enter", "a".
struct UIKeyEvent {
    std::string key;
    bool shift = false, control = false, alternate = false, meta = false;
    double timestamp = 0;
};

/// The window has come to receive keys, or no longer does.
struct UIFocusEvent {
    bool hasFocus = false;
};

/// Assistive technology asks for what one of the elements of UIAccessibilityState does.
struct UIAccessibilityEvent {
    UIAccessibilityAction action = UIAccessibilityAction::Next;
};

using UIEvent = std::variant<UITouchEvent, UIScrollEvent, UIKeyEvent, UIFocusEvent, UIAccessibilityEvent>;

/// Which input the views of a window will use, for hosts that must decide at once whether the page gets it too.
struct UIInputPolicy {
    bool usesDrags = false;          ///< one-finger and pointer drags
    bool usesScrolls = false;        ///< wheel and touchpad
    bool usesPinches = false;        ///< two-finger gestures
    bool usesPanKeys = false;        ///< arrows; with the next, Home
    bool usesZoomKeys = false;       ///< plus, minus
    bool usesNextKey = false;        ///< Tab
    bool usesPreviousKey = false;    ///< Tab with shift
    bool usesActivationKeys = false; ///< Enter, space
    bool usesEscapeKey = false;      ///< Escape
    bool usesClick = false;          ///< the click of the touch that began last, on a view that keeps its touches
    friend bool operator==(const UIInputPolicy&, const UIInputPolicy&) = default;

    /// The same as a number: a bit a member, the first one lowest.
    unsigned bits() const {
        return unsigned{usesDrags} | unsigned{usesScrolls} << 1 | unsigned{usesPinches} << 2 |
               unsigned{usesPanKeys} << 3 | unsigned{usesZoomKeys} << 4 | unsigned{usesNextKey} << 5 |
               unsigned{usesPreviousKey} << 6 | unsigned{usesActivationKeys} << 7 | unsigned{usesEscapeKey} << 8 |
               unsigned{usesClick} << 9;
    }
    static UIInputPolicy fromBits(unsigned bits) {
        const auto bit = [bits](unsigned index) { return (bits >> index & 1) != 0; };
        return {bit(0), bit(1), bit(2), bit(3), bit(4), bit(5), bit(6), bit(7), bit(8), bit(9)};
    }
};

} // namespace veyra
