// A rectangle on the screen that draws itself, holds subviews and receives touches through gesture recognisers. Main
// queue only; the last reference may be dropped on any thread, the teardown then runs on the main queue. A view owns
// its subviews, its layer and its recognisers.
#pragma once

#include "Platform/Foundation/SelfSharingObject.h"
#include "Platform/UIKit/UIEvent.h"

typedef struct _cairo cairo_t;

namespace veyra {

class CALayer;
class UIGestureEnvironment;
class UIGestureRecognizer;
class UIWindow;

/// Where a view draws: the origin is the view's top-left corner, the unit the point. The context is the view's own for
/// the call: nothing set in it reaches other views. Its target (`cairo_get_target`) is the window's store itself, an
/// RGB24 image surface, and its clip is `clip`: a view may also write the store's bytes inside `clip` directly, after
/// `cairo_surface_flush` and before `cairo_surface_mark_dirty_rectangle` on the target.
struct UIGraphicsContext {
    cairo_t* cairo;
    double scale; ///< device pixels a point
    PixelRect
        clip; ///< what must be drawn: the damage inside the view's bounds, in device pixels of the window; not empty
    CGPoint origin; ///< the view's origin in the window, in points
};

enum UIViewAutoresizing : unsigned {
    UIViewAutoresizingNone = 0,
    UIViewAutoresizingFlexibleLeftMargin = 1,
    UIViewAutoresizingFlexibleWidth = 2,
    UIViewAutoresizingFlexibleRightMargin = 4,
    UIViewAutoresizingFlexibleTopMargin = 8,
    UIViewAutoresizingFlexibleHeight = 16,
    UIViewAutoresizingFlexibleBottomMargin = 32,
};

class UIView : public SelfSharingObject {
public:
    VEYRA_CLASS()

    /// Allocates a view of class T whose teardown runs on the main queue, and initialises it with `initWithFrame`.
    template <class T>
    static std::shared_ptr<T> make(const CGRect& frame) {
        std::shared_ptr<T> view(new T, [](T* last) { destroyOnMainQueue(last); });
        static_cast<UIView&>(*view).initWithFrame(frame); // subclasses may keep theirs protected
        return view;
    }

    ~UIView() override;

    CGRect frame() const { return _frame; }
    /// A change of size resizes subviews by their masks and asks for a layout.
    void setFrame(const CGRect& frame);
    CGRect bounds() const { return {{0, 0}, _frame.size}; }
    unsigned autoresizingMask() const { return _autoresizingMask; }
    void setAutoresizingMask(unsigned mask) { _autoresizingMask = mask; }
    bool isHidden() const { return _hidden; }
    void setHidden(bool hidden);

    const std::shared_ptr<CALayer>& layer() const { return _layer; }
    /// The view that this one was added to. A subclass may answer from another tree.
    virtual std::shared_ptr<UIView> superview() const { return _superview.lock(); }
    const std::vector<std::shared_ptr<UIView>>& subviews() const { return _subviews; }
    /// Appends the view, in front of its siblings; it leaves its former superview first. Adding a view under itself is
    /// ignored.
    void addSubview(const std::shared_ptr<UIView>& view);
    /// The same, at `index` among the subviews (counted without the view itself); beyond the end appends.
    void insertSubviewAtIndex(const std::shared_ptr<UIView>& view, size_t index);
    /// Gestures under way in the view and below it are cancelled.
    void removeFromSuperview();
    std::shared_ptr<UIWindow> window() const;

    void setNeedsLayout();
    /// Lays out this view and everything below it that needs it.
    void layoutIfNeeded();
    /// Override to place subviews; called with the new bounds. The base does nothing.
    virtual void layoutSubviews() {}

    /// True when `drawRect` covers the whole bounds with opaque colour: what lies behind is then not drawn.
    virtual bool isOpaque() const { return false; }
    /// Asks for the whole view, or a part of it in its own points, to be drawn with the next frame.
    void setNeedsDisplay();
    void setNeedsDisplayInRect(const CGRect& rect);
    /// Override to draw; subviews are drawn over it.
    virtual void drawRect(const UIGraphicsContext&) {}
    /// Override to move animations on; called once before each frame is drawn, at `timestamp` seconds. Returns true
    /// while more frames are wanted.
    virtual bool stepAnimations(double /*timestamp*/) { return false; }
    /// Asks for `stepAnimations` with the next frame; outside a window, with the first frame inside one.
    void setNeedsAnimationStep();
    /// True when the view waits for nothing: no animation, nothing to draw, no data on the way.
    virtual bool isIdle() const { return true; }

    const std::vector<std::shared_ptr<UIGestureRecognizer>>& gestureRecognizers() const { return _gestureRecognizers; }
    void addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    void removeGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer);

    /// A scroll whose location (window points) lies in the view, or a key. Returns true when the view used it;
    /// otherwise the next view is asked.
    virtual bool handleScroll(const UIScrollEvent&) { return false; }
    virtual bool handleKey(const UIKeyEvent&) { return false; }
    /// The window has got or lost the keys; every view is told.
    virtual void handleFocus(const UIFocusEvent&) {}
    /// What assistive technology asks for; every view is told.
    virtual void handleAccessibility(const UIAccessibilityEvent&) {}

    /// True when touches that begin in the view, or in one below it, reach no recogniser of the views above it, but
    /// for those that take kept touches.
    virtual bool keepsTouches() const { return false; }

    /// The deepest visible view under the point (own points), or null.
    virtual std::shared_ptr<UIView> hitTest(CGPoint point);
    /// The point of this view in the window's points.
    CGPoint convertPointToWindow(CGPoint point) const;
    CGPoint convertPointFromWindow(CGPoint point) const;
    std::shared_ptr<UIView> sharedView() const;

protected:
    UIView() = default;
    /// Subclasses call the base first.
    virtual void initWithFrame(const CGRect& frame);
    /// The tree of views as it was built, whatever `superview` answers.
    std::shared_ptr<UIView> containingView() const { return _superview.lock(); }

private:
    friend class UIGestureEnvironment;
    friend class UIWindow;
    static void destroyOnMainQueue(UIView* view);
    void resizeSubviews(CGSize oldSize);
    void insertSubview(std::shared_ptr<UIView> view, size_t index);
    void insertSublayer(const UIView& view, size_t index);
    void subtreeEnteredWindow(UIWindow& window);
    void subtreeLeavesWindow(UIWindow* window);
    void markSubtreeNeedsLayout();

    CGRect _frame;
    unsigned _autoresizingMask = UIViewAutoresizingNone;
    bool _hidden = false;
    bool _needsLayout = true;
    bool _subtreeNeedsLayout = true; // this view or one below it
    bool _needsAnimationStep = false;
    std::shared_ptr<CALayer> _layer;
    std::weak_ptr<UIView> _superview;
    std::vector<std::shared_ptr<UIView>> _subviews;
    std::vector<std::shared_ptr<UIGestureRecognizer>> _gestureRecognizers;
};

} // namespace veyra
