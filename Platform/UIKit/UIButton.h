// A small round button that reports taps. Main queue only; owned by its superview and whoever keeps it.
#pragma once

#include "Platform/UIKit/UIView.h"

#include <functional>

namespace veyra {

/// The looks that there are, with the platform's numbers.
enum UIButtonType {
    UIButtonTypeDetailDisclosure = 2, ///< a chevron on a blue disc
    UIButtonTypeInfoLight = 3,        ///< a slanted "i" in a blue circle
};

class UIButton final : public UIView {
public:
    VEYRA_CLASS()
    using TapHandler = std::function<void(UIButton&)>;

    /// A button of 28 × 28 points at the origin.
    static std::shared_ptr<UIButton> buttonWithType(UIButtonType type);

    UIButtonType buttonType() const { return _type; }
    /// `handler` is called with every tap on the button. It may replace itself or remove the button.
    void setTapHandler(TapHandler handler) { _tapHandler = std::move(handler); }

    void drawRect(const UIGraphicsContext& context) override;

private:
    friend class UIView;
    UIButton() = default;
    void initWithFrame(const CGRect& frame) override;

    UIButtonType _type = UIButtonTypeDetailDisclosure;
    TapHandler _tapHandler;
};

} // namespace veyra
