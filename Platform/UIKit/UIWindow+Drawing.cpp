// Frames: when one is asked for, what moves before it, and what is drawn in it.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/UIKit/UIWindow.h"

#include <cairo.h>

#include <utility>

namespace veyra {

namespace {

constexpr int farEdge = 1 << 20; // beyond every store

int pixelEdge(double pixels) {
    if (!(pixels > -farEdge))
        return -farEdge;
    return pixels < farEdge ? static_cast<int>(pixels) : farEdge;
}

PixelRect rectOfEdges(int left, int top, int right, int bottom) {
    return {left, top, right - left, bottom - top};
}

/// The whole pixels nearest to a rectangle: neighbours neither overlap nor leave a gap, and the window fills its store.
PixelRect nearestPixels(const CGRect& rect, double scale) {
    const auto edge = [scale](double points) { return pixelEdge(std::floor(points * scale + 0.5)); };
    return rectOfEdges(edge(rect.minX()), edge(rect.minY()), edge(rect.maxX()), edge(rect.maxY()));
}

/// All pixels that a rectangle touches, but for rounding errors.
PixelRect touchedPixels(const CGRect& rect, double scale) {
    constexpr double error = 1e-6;
    return rectOfEdges(
        pixelEdge(std::floor(rect.minX() * scale + error)), pixelEdge(std::floor(rect.minY() * scale + error)),
        pixelEdge(std::ceil(rect.maxX() * scale - error)), pixelEdge(std::ceil(rect.maxY() * scale - error)));
}

struct DestroyContext {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using Context = std::unique_ptr<cairo_t, DestroyContext>;

Context contextClippedTo(cairo_surface_t* surface, const PixelRect& clip) {
    Context cairo(cairo_create(surface));
    cairo_rectangle(cairo.get(), clip.x, clip.y, clip.width, clip.height);
    cairo_clip(cairo.get());
    return cairo;
}

} // namespace

/// A view as it is drawn for one rectangle of damage.
struct UIWindow::DrawItem {
    std::shared_ptr<UIView> view;
    CGPoint origin;
    PixelRect clip;
    bool hidesAllBehind;
};

bool UIWindow::needsFrame() const {
    return _visible && (!_damage.isEmpty() || !_animating.empty() || _subtreeNeedsLayout);
}

void UIWindow::setFrameRequestHandler(std::function<void()> handler) {
    _frameRequestHandler = std::move(handler);
    _frameRequested = false;
    requestFrame();
}

void UIWindow::requestFrame() {
    if (!needsFrame())
        return;
    _wasIdle = false;
    if (_frameRequested || _drawingFrame)
        return;
    if (const auto handler = _frameRequestHandler) {
        _frameRequested = true;
        handler();
    }
}

void UIWindow::addDamage(const CGRect& rect) {
    _damage.add(intersection(touchedPixels(rect, _scale), storeRect()));
    requestFrame();
}

void UIWindow::requestAnimationStep(const std::shared_ptr<UIView>& view) {
    _animating.push_back(view);
    requestFrame();
}

void UIWindow::forgetAnimation(const UIView& view) {
    std::erase_if(_animating, [&view](const auto& animating) { return animating.lock().get() == &view; });
}

std::vector<PixelRect> UIWindow::drawFrame(double timestamp) {
    const auto self = sharedView();
    if (_drawingFrame)
        return {};
    _frameRequested = false;
    std::vector<PixelRect> damage;
    if (_visible) {
        _drawingFrame = true;
        runAnimations(timestamp);
        runGuarded("layout", [this] { layoutIfNeeded(); });
        damage = _damage.take();
        for (const PixelRect& rect : damage)
            if (storeRect().contains(rect)) // or a view has resized the window while drawing
                drawDamage(rect);
        _drawingFrame = false;
    }
    requestFrame();
    idleStateChanged();
    return damage;
}

void UIWindow::runAnimations(double timestamp) {
    const auto animating = std::exchange(_animating, {});
    for (const auto& weak : animating) {
        const auto view = weak.lock();
        // One view's step may have taken another out of the window: it goes on when it is back.
        if (!view || view->window().get() != this)
            continue;
        view->_needsAnimationStep = false;
        runGuarded("animation", [&view, timestamp] {
            if (view->stepAnimations(timestamp))
                view->setNeedsAnimationStep();
        });
    }
}

void UIWindow::drawDamage(const PixelRect& damage) {
    std::vector<DrawItem> items;
    collectViews(sharedView(), {0, 0}, damage, damage, items);
    if (items.empty() || !items.front().hidesAllBehind) {
        const Context cairo = contextClippedTo(surface(), damage);
        cairo_set_source_rgb(cairo.get(), 1, 1, 1);
        cairo_paint(cairo.get());
    }
    for (const DrawItem& item : items)
        drawItem(item);
}

void UIWindow::collectViews(const std::shared_ptr<UIView>& view, CGPoint origin, const PixelRect& clip,
                            const PixelRect& damage, std::vector<DrawItem>& items) const {
    const PixelRect visible = intersection(clip, nearestPixels({origin, view->_frame.size}, _scale));
    if (view->_hidden || visible.isEmpty())
        return;
    const bool hidesAllBehind = visible.contains(damage) && view->isOpaque();
    if (hidesAllBehind)
        items.clear();
    items.push_back({view, origin, visible, hidesAllBehind});
    for (const auto& subview : view->_subviews)
        collectViews(subview, {origin.x + subview->_frame.origin.x, origin.y + subview->_frame.origin.y}, visible,
                     damage, items);
}

/// Each view has a context of its own, so that neither its settings nor its errors reach the next one.
void UIWindow::drawItem(const DrawItem& item) const {
    if (!storeRect().contains(item.clip))
        return;
    const Context cairo = contextClippedTo(surface(), item.clip);
    cairo_scale(cairo.get(), _scale, _scale);
    cairo_translate(cairo.get(), item.origin.x, item.origin.y);
    runGuarded("drawing", [&] { item.view->drawRect({cairo.get(), _scale, item.clip, item.origin}); });
}

} // namespace veyra
