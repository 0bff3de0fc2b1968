// Routes a window's touches to the gesture recognisers. The view under a touch when it begins decides: its recognisers
// and those of its ancestors, beyond one that keeps its touches only those that take such, the deepest view first, get
// the touch until it ends, whatever becomes of the views meanwhile. Owned by the window. Main queue only.
#pragma once

#include "Platform/UIKit/UIEvent.h"

#include <memory>
#include <vector>

namespace veyra {

class UIGestureRecognizer;
class UIWindow;

class UIGestureEnvironment {
public:
    /// Delivers the event. The caller keeps the window alive. A touch that begins again while it is down is cancelled
    /// first; events of unknown touches, and those whose location or time is not finite, are ignored, but that the end
    /// of a touch without such ends it where and when it was last.
    void handleTouch(UIWindow& window, const UITouchEvent& event);
    /// Cancels every touch that is down.
    void cancelTouches();

    /// For a recogniser that is about to recognise: false when a gesture under way that shares a touch with it forbids
    /// it; otherwise makes those fail that it prevents.
    bool claimTouches(UIGestureRecognizer& recognizer);

private:
    using Recognizers = std::vector<std::weak_ptr<UIGestureRecognizer>>;
    struct TrackedTouch {
        uint64_t serial; ///< tells touches of the same identifier apart
        UITouchEvent last;
        Recognizers recognizers;
    };

    void begin(UIWindow& window, const UITouchEvent& event);
    void end(uint64_t serial, const UITouchEvent& event);
    std::vector<TrackedTouch>::iterator find(int64_t identifier);
    std::vector<std::shared_ptr<UIGestureRecognizer>> sharingTouches(const UIGestureRecognizer& recognizer) const;

    std::vector<TrackedTouch> _touches;
    uint64_t _nextSerial = 1;
};

} // namespace veyra
