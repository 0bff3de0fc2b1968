// What those are told of a window who do not see it, and what they can do there. A host hands it on to assistive
// technology. Plain values; any thread.
#pragma once

#include <string>
#include <vector>

namespace veyra {

enum class UIAccessibilityAction { Previous, Next, Activate, LeftButton, RightButton };

struct UIAccessibilityState {
    struct Element {
        UIAccessibilityAction action; ///< what the element does
        std::string label;            ///< UTF-8
        friend bool operator==(const Element&, const Element&) = default;
    };
    /// What has the focus, in words; "" for nothing. Worth announcing when it changes.
    std::string status;
    /// What can be done now: a few, however much there is to see.
    std::vector<Element> elements;
    friend bool operator==(const UIAccessibilityState&, const UIAccessibilityState&) = default;
};

} // namespace veyra
