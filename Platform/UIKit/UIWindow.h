// The root of a view tree and its screen: takes the host's size, visibility and input, and draws frames into a store,
// from which the host copies what changed. Owned by the host. Main queue only, except where said.
#pragma once

#include "Platform/UIKit/DamageList.h"
#include "Platform/UIKit/UIEvent.h"
#include "Platform/UIKit/UIUserInterfaceStyle.h"
#include "Platform/UIKit/UIView.h"
#include "Platform/UIKit/UIWindowStore.h"

#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace veyra {

class UIGestureEnvironment;

/// A line of text that a window shows, for those who do not see it, and the address that a click on it leads to.
struct UICaption {
    std::string text; ///< "" for none
    std::string url;  ///< http or https, or ""
    CGRect frame{};   ///< where it is painted, in the window's points
    friend bool operator==(const UICaption&, const UICaption&) = default;
};

class UIWindow final : public UIView {
public:
    VEYRA_CLASS()
    /// An empty window of size 0 at scale 1, visible.
    static std::shared_ptr<UIWindow> make();
    ~UIWindow() override;

    /// The size in points and the device pixels a point (0.25 to 8; clamped). The store gets round(size × scale)
    /// pixels, at most 16384 a side; subviews follow by their masks and are laid out before this returns; everything is
    /// drawn anew. Sides that are negative or not finite count as 0. The same size and scale again change nothing.
    void setSize(CGSize points, double scale);
    double scale() const { return _scale; }
    int pixelWidth() const { return _pixelWidth; }
    int pixelHeight() const { return _pixelHeight; }

    /// A hidden window asks for no frames.
    void setVisible(bool visible);
    bool isVisible() const { return _visible; }

    /// What the window's surroundings look like; light at first. A change draws everything anew.
    UIUserInterfaceStyle userInterfaceStyle() const { return _userInterfaceStyle; }
    void setUserInterfaceStyle(UIUserInterfaceStyle style);

    /// Delivers input to the gesture recognisers (touches) or to the view under the pointer and its ancestors
    /// (scrolls), or to the views from the front down (keys), or to all views (focus,
    /// accessibility).
    void sendEvent(const UIEvent& event);
    /// Ends all touches as cancelled: the host lost the pointer.
    void cancelTouches();
    /// What the views will use. Any thread.
    UIInputPolicy inputPolicy() const;
    /// Views publish here what they use; see UIInputPolicy. Of clicks the window itself knows.
    void setInputPolicy(const UIInputPolicy& policy);

    /// Views publish here what a host hands on to assistive technology, and makes a link.
    const UICaption& caption() const { return _caption; }
    void setCaption(const UICaption& caption);
    /// `handler` is called on the main queue with each new caption, and at once when there is one already.
    void setCaptionHandler(std::function<void(const UICaption&)> handler);
    const UIAccessibilityState& accessibilityState() const { return _accessibilityState; }
    void setAccessibilityState(const UIAccessibilityState& state);
    /// Like the caption's.
    void setAccessibilityHandler(std::function<void(const UIAccessibilityState&)> handler);

    /// True when the next `drawFrame` has something to do.
    bool needsFrame() const;
    /// `handler` is called each time the window comes to need a frame, once until the next `drawFrame`.
    /// A frame needed already is asked for at once.
    void setFrameRequestHandler(std::function<void()> handler);
    /// Moves animations to `timestamp` (seconds, monotonic), lays out, draws what changed, and returns the changed
    /// rectangles (device pixels, disjoint, few); empty when nothing changed, and while the window is hidden. What no
    /// view covers is white.
    std::vector<PixelRect> drawFrame(double timestamp);
    /// True when no frame is needed and every view is idle.
    bool isIdle() const override;
    /// `handler` is called on the main queue whenever the window has become idle after having been busy.
    void setIdleHandler(std::function<void()> handler);
    /// For views: their answer to `isIdle` may have changed.
    void idleStateChanged();

    /// Where frames are drawn; null while the window is empty. Each size has its own.
    std::shared_ptr<const UIWindowStore> store() const { return _store; }
    /// The store's pixels or null. For drawing tests and writing pictures.
    cairo_surface_t* surface() const { return _store ? _store->surface() : nullptr; }

    /// For gesture recognisers.
    UIGestureEnvironment& gestureEnvironment() { return *_gestures; }
    /// For the gesture environment: whether the touch that began last is on a view that keeps its touches.
    void setTouchIsKept(bool isKept) { _touchIsKept = isKept; }

private:
    friend class UIView;
    UIWindow();
    void initWithFrame(const CGRect& frame) override;
    void addDamage(const CGRect& rect);
    void requestAnimationStep(const std::shared_ptr<UIView>& view);
    void forgetAnimation(const UIView& view);
    void requestFrame();
    void reportIdle();
    static void tellAll(UIView& view, const std::function<void(UIView&)>& tell);
    bool offerKey(UIView& view, const UIKeyEvent& event);
    void makeStore();
    PixelRect storeRect() const { return {0, 0, _pixelWidth, _pixelHeight}; }
    void runAnimations(double timestamp);
    void drawDamage(const PixelRect& damage);
    struct DrawItem;
    void collectViews(const std::shared_ptr<UIView>& view, CGPoint origin, const PixelRect& clip,
                      const PixelRect& damage, std::vector<DrawItem>& items) const;
    void drawItem(const DrawItem& item) const;

    double _scale = 1;
    int _pixelWidth = 0, _pixelHeight = 0;
    bool _visible = true;
    UIUserInterfaceStyle _userInterfaceStyle = UIUserInterfaceStyleLight;
    bool _frameRequested = false;
    bool _drawingFrame = false;
    bool _wasIdle = true;
    bool _idleReportQueued = false;
    std::shared_ptr<const UIWindowStore> _store;
    DamageList _damage;
    std::vector<std::weak_ptr<UIView>> _animating;
    std::function<void()> _frameRequestHandler;
    std::function<void()> _idleHandler;
    UICaption _caption;
    std::function<void(const UICaption&)> _captionHandler;
    UIAccessibilityState _accessibilityState;
    std::function<void(const UIAccessibilityState&)> _accessibilityHandler;
    std::atomic<unsigned> _inputPolicy{0};
    std::atomic<bool> _touchIsKept{false};
    std::unique_ptr<UIGestureEnvironment> _gestures;
};

} // namespace veyra
