// What a host tells a window about its input devices. Plain values, made on any thread, delivered on the main queue.
// Locations are in the window's points; times are seconds of one monotonic clock.
#pragma once

#include "Platform/UIKit/CGGeometry.h"

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

using UIEvent = std::variant<UITouchEvent, UIScrollEvent, UIKeyEvent>;

/// Which input the views of a window will use, for hosts that must decide at once whether the page gets it too.
struct UIInputPolicy {
    bool usesDrags = false;    ///< one-finger and pointer drags
    bool usesScrolls = false;  ///< wheel and touchpad
    bool usesPinches = false;  ///< two-finger gestures
    bool usesPanKeys = false;  ///< arrows, Home
    bool usesZoomKeys = false; ///< plus, minus
    friend bool operator==(const UIInputPolicy&, const UIInputPolicy&) = default;
};

} // namespace veyra
