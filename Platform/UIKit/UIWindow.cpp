#include "Platform/UIKit/UIWindow.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/UIKit/UIGestureEnvironment.h"

#include <new>

namespace veyra {

namespace {

constexpr double maximumSide = 16384;

double validLength(double length) {
    return std::isfinite(length) && length > 0 ? length : 0;
}

bool isFinite(CGPoint point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

bool subviewsAreIdle(const UIView& view) {
    return std::all_of(view.subviews().begin(), view.subviews().end(),
                       [](const auto& subview) { return subview->isIdle() && subviewsAreIdle(*subview); });
}

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

} // namespace

Class UIWindow::classObject() {
    static ClassObject* const cls = new ClassObject("UIWindow", UIView::classObject(), {});
    return cls;
}

UIWindow::UIWindow() : _gestures(std::make_unique<UIGestureEnvironment>()) {}

UIWindow::~UIWindow() = default;

std::shared_ptr<UIWindow> UIWindow::make() {
    return UIView::make<UIWindow>({});
}

void UIWindow::initWithFrame(const CGRect& frame) {
    UIView::initWithFrame(frame);
    layoutIfNeeded();
}

void UIWindow::setSize(CGSize points, double scale) {
    const CGSize size{validLength(points.width), validLength(points.height)};
    scale = std::isnan(scale) ? 1 : std::clamp(scale, 0.25, 8.0);
    if (size == bounds().size && scale == _scale)
        return;
    _scale = scale;
    _pixelWidth = static_cast<int>(std::min(std::round(size.width * scale), maximumSide));
    _pixelHeight = static_cast<int>(std::min(std::round(size.height * scale), maximumSide));
    makeStore();
    setFrame({{0, 0}, size});
    layoutIfNeeded();
    setNeedsDisplay();
}

void UIWindow::setUserInterfaceStyle(UIUserInterfaceStyle style) {
    if (_userInterfaceStyle != style) {
        _userInterfaceStyle = style;
        setNeedsDisplay();
    }
}

void UIWindow::makeStore() {
    _store = nullptr;
    _damage.clear();
    if (!storeRect().isEmpty()) {
        try {
            _store = std::make_shared<const UIWindowStore>(_pixelWidth, _pixelHeight, _scale);
            return;
        } catch (const std::bad_alloc&) {
            NSLog("No memory for a window of %f × %f pixels",
                  {static_cast<double>(_pixelWidth), static_cast<double>(_pixelHeight)});
        }
    }
    _pixelWidth = _pixelHeight = 0;
}

void UIWindow::setVisible(bool visible) {
    if (visible == _visible)
        return;
    _visible = visible;
    // A host may have dropped its request when it hid the window.
    _frameRequested = false;
    requestFrame();
    idleStateChanged();
}

void UIWindow::setCaption(const UICaption& caption) {
    if (caption == _caption)
        return;
    _caption = caption;
    if (const auto handler = _captionHandler)
        handler(caption);
}

void UIWindow::setCaptionHandler(std::function<void(const UICaption&)> handler) {
    _captionHandler = std::move(handler);
    if (const auto handing = _captionHandler; handing && _caption != UICaption())
        handing(_caption);
}

void UIWindow::setAccessibilityState(const UIAccessibilityState& state) {
    if (state == _accessibilityState)
        return;
    _accessibilityState = state;
    if (const auto handler = _accessibilityHandler)
        handler(state);
}

void UIWindow::setAccessibilityHandler(std::function<void(const UIAccessibilityState&)> handler) {
    _accessibilityHandler = std::move(handler);
    if (const auto handing = _accessibilityHandler; handing && _accessibilityState != UIAccessibilityState())
        handing(_accessibilityState);
}

void UIWindow::sendEvent(const UIEvent& event) {
    const auto self = sharedView(); // handlers may drop the window
    std::visit(Overloaded{[this](const UITouchEvent& touch) { _gestures->handleTouch(*this, touch); },
                          [this](const UIScrollEvent& scroll) {
                              if (!isFinite(scroll.location))
                                  return;
                              for (auto view = hitTest(scroll.location); view; view = view->containingView())
                                  if (view->handleScroll(scroll))
                                      return;
                          },
                          [this](const UIKeyEvent& key) { offerKey(*this, key); },
                          [this](const UIFocusEvent& focus) {
                              tellAll(*this, [&focus](UIView& view) { view.handleFocus(focus); });
                          },
                          [this](const UIAccessibilityEvent& action) {
                              tellAll(*this, [&action](UIView& view) { view.handleAccessibility(action); });
                          }},
               event);
}

/// The views in front first; a view after those inside it.
bool UIWindow::offerKey(UIView& view, const UIKeyEvent& event) {
    if (view.isHidden())
        return false;
    const auto views = view.subviews();
    for (size_t i = views.size(); i-- > 0;)
        if (offerKey(*views[i], event))
            return true;
    return view.handleKey(event);
}

void UIWindow::tellAll(UIView& view, const std::function<void(UIView&)>& tell) {
    const auto views = view.subviews();
    for (const auto& below : views)
        tellAll(*below, tell);
    tell(view);
}

void UIWindow::cancelTouches() {
    const auto self = sharedView();
    _gestures->cancelTouches();
}

UIInputPolicy UIWindow::inputPolicy() const {
    UIInputPolicy policy = UIInputPolicy::fromBits(_inputPolicy.load());
    policy.usesClick = _touchIsKept.load();
    return policy;
}

void UIWindow::setInputPolicy(const UIInputPolicy& policy) {
    _inputPolicy = policy.bits();
}

bool UIWindow::isIdle() const {
    return !needsFrame() && subviewsAreIdle(*this);
}

void UIWindow::setIdleHandler(std::function<void()> handler) {
    _idleHandler = std::move(handler);
}

void UIWindow::idleStateChanged() {
    if (!isIdle()) {
        _wasIdle = false;
        return;
    }
    if (_wasIdle || _idleReportQueued)
        return;
    _idleReportQueued = true;
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this()] {
        if (const auto self = std::static_pointer_cast<UIWindow>(weak.lock()))
            self->reportIdle();
    });
}

/// Busy again by now: the next change of state asks for another report.
void UIWindow::reportIdle() {
    _idleReportQueued = false;
    if (_wasIdle || !isIdle())
        return;
    _wasIdle = true;
    if (const auto handler = _idleHandler)
        handler();
}

} // namespace veyra
