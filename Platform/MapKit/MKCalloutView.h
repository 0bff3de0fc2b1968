// The bubble above a selected annotation: a title, a subtitle, a view on either side, and a tip that points at the
// annotation. A subview of the map's annotations; main queue only. It holds the accessory views while it shows them.
#pragma once

#include "Platform/UIKit/UIView.h"

#include <string>

namespace veyra {

class MKCalloutView final : public UIView {
public:
    VEYRA_CLASS()
    static constexpr double tipHeight = 10;
    /// How near the bubble comes to the map's edges, in points.
    static constexpr double mapMargin = 8;

    struct Content {
        std::string title, subtitle; // UTF-8; an empty subtitle takes no room
        std::shared_ptr<UIView> left, right;
        friend bool operator==(const Content&, const Content&) = default;
    };

    static std::shared_ptr<MKCalloutView> make() { return UIView::make<MKCalloutView>({}); }

    const Content& content() const { return _content; }
    void setContent(const Content& content);

    /// Puts the bubble's tip at `tip` on a map of that size (points of the superview), for a view whose lower edge is
    /// at `viewBottom`. The bubble is as wide as its text needs and the map allows, and lies above the tip; while the
    /// view is in the map, the bubble is shifted to stay inside too, and leaves it with the view.
    void pointAt(CGPoint tip, double viewBottom, CGSize mapSize);
    /// How far a map of that size must be moved, in points, so that the bubble lies wholly inside when its tip is at
    /// `tip`: 0 where it does already, or where it has no room either way.
    CGPoint moveToFit(CGPoint tip, CGSize mapSize) const;

    /// The button that has the keyboard's focus, marked by a ring; null for none.
    void setFocusedButton(const std::shared_ptr<UIView>& button);

    bool keepsTouches() const override { return true; }
    void layoutSubviews() override;
    void drawRect(const UIGraphicsContext& context) override;

private:
    friend class UIView;
    MKCalloutView() = default;

    CGSize sizeFor(CGSize mapSize) const;
    double textWidth() const;

    Content _content;
    double _titleWidth = 0, _subtitleWidth = 0; // points, as if there were room
    std::shared_ptr<UIView> _focusedButton;
    double _tipX = 0; // in the bubble
};

} // namespace veyra
