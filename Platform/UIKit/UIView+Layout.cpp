// Frames, autoresizing, layout passes, and what must be drawn or animated.
#include "Platform/UIKit/UIView.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>

namespace veyra {

namespace {

/// One axis of autoresizing: `before`, `length` and what follows share the change of the superview's length.
struct Axis {
    double before, length;
};

Axis resizeAxis(Axis axis, double oldLength, double newLength, bool beforeFlexes, bool lengthFlexes, bool afterFlexes) {
    const double change = newLength - oldLength;
    const double after = oldLength - axis.before - axis.length;
    const double parts[] = {beforeFlexes ? axis.before : 0, lengthFlexes ? axis.length : 0, afterFlexes ? after : 0};
    const int count = beforeFlexes + lengthFlexes + afterFlexes;
    if (count == 0)
        return axis;
    // The flexible parts take their share by size; parts that have no sensible size take equal shares.
    const double sum = parts[0] + parts[1] + parts[2];
    const bool proportional = sum > 0 && parts[0] >= 0 && parts[1] >= 0 && parts[2] >= 0;
    const auto share = [&](double part, bool flexes) {
        if (!flexes)
            return 0.0;
        return count == 1 ? change : proportional ? change * (part / sum) : change / count;
    };
    axis.before += share(parts[0], beforeFlexes);
    axis.length = std::max(0.0, axis.length + share(parts[1], lengthFlexes));
    return axis;
}

} // namespace

void UIView::setFrame(const CGRect& frame) {
    if (frame == _frame)
        return;
    setNeedsDisplay();
    const CGSize oldSize = _frame.size;
    _frame = frame;
    setNeedsDisplay();
    if (frame.size != oldSize) {
        resizeSubviews(oldSize);
        setNeedsLayout();
    }
}

void UIView::resizeSubviews(CGSize oldSize) {
    const auto views = _subviews;
    for (const auto& view : views) {
        const unsigned mask = view->_autoresizingMask;
        const CGRect& frame = view->_frame;
        const auto x = resizeAxis({frame.origin.x, frame.size.width}, oldSize.width, _frame.size.width,
                                  (mask & UIViewAutoresizingFlexibleLeftMargin) != 0,
                                  (mask & UIViewAutoresizingFlexibleWidth) != 0,
                                  (mask & UIViewAutoresizingFlexibleRightMargin) != 0);
        const auto y = resizeAxis({frame.origin.y, frame.size.height}, oldSize.height, _frame.size.height,
                                  (mask & UIViewAutoresizingFlexibleTopMargin) != 0,
                                  (mask & UIViewAutoresizingFlexibleHeight) != 0,
                                  (mask & UIViewAutoresizingFlexibleBottomMargin) != 0);
        view->setFrame({{x.before, y.before}, {x.length, y.length}});
    }
}

void UIView::setHidden(bool hidden) {
    if (hidden == _hidden)
        return;
    setNeedsDisplay();
    _hidden = hidden;
    setNeedsDisplay();
}

void UIView::setNeedsLayout() {
    _needsLayout = true;
    markSubtreeNeedsLayout();
}

/// A marked view's superviews are marked too, up to the root: a pass need not look into what is not marked.
void UIView::markSubtreeNeedsLayout() {
    _subtreeNeedsLayout = true;
    for (auto view = containingView(); view && !view->_subtreeNeedsLayout; view = view->containingView())
        view->_subtreeNeedsLayout = true;
    if (const auto host = window())
        host->requestFrame();
}

void UIView::layoutIfNeeded() {
    if (!_subtreeNeedsLayout)
        return;
    const auto self = sharedView();
    if (_needsLayout) {
        _needsLayout = false;
        layoutSubviews();
    }
    const auto views = _subviews;
    for (const auto& view : views)
        view->layoutIfNeeded();
    // What asked for a layout when its turn had passed waits for the next pass.
    _subtreeNeedsLayout = _needsLayout || std::any_of(_subviews.begin(), _subviews.end(),
                                                      [](const auto& view) { return view->_subtreeNeedsLayout; });
}

void UIView::setNeedsDisplay() {
    setNeedsDisplayInRect(bounds());
}

void UIView::setNeedsDisplayInRect(const CGRect& rect) {
    CGRect damage = intersection(rect, bounds());
    auto view = sharedView();
    while (view && !view->_hidden && !damage.isEmpty()) {
        const auto above = view->containingView();
        if (!above) {
            if (const auto host = std::dynamic_pointer_cast<UIWindow>(view))
                host->addDamage(damage);
            return;
        }
        damage = intersection(damage.offsetBy(view->_frame.origin.x, view->_frame.origin.y), above->bounds());
        view = above;
    }
}

void UIView::setNeedsAnimationStep() {
    if (_needsAnimationStep)
        return;
    _needsAnimationStep = true;
    if (const auto host = window())
        host->requestAnimationStep(sharedView());
}

} // namespace veyra
