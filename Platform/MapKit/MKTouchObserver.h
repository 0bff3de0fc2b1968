// Sees every touch that goes down in its view, and is no gesture itself: it prevents none and is never recognised. By
// it a touch stops a map that moves on its own. Main queue only.
#pragma once

#include "Platform/UIKit/UIGestureRecognizer.h"

namespace veyra {

class MKTouchObserver final : public UIGestureRecognizer {
public:
    VEYRA_CLASS()
    explicit MKTouchObserver(std::function<void()> touchDown) : _touchDown(std::move(touchDown)) {}

protected:
    void touchBegan(const UITouchEvent&) override { _touchDown(); }
    void touchMoved(const UITouchEvent&) override {}
    void touchEnded(const UITouchEvent&) override {}

private:
    const std::function<void()> _touchDown;
};

} // namespace veyra
