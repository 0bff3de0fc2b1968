#include "Platform/UIKit/UIView.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/UIKit/CALayer.h"
#include "Platform/UIKit/UIGestureRecognizer.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>

namespace veyra {

Class UIView::classObject() {
    static ClassObject* const cls = new ClassObject("UIView", NSObject::classObject(), {});
    return cls;
}

void UIView::initWithFrame(const CGRect& frame) {
    _frame = frame;
    _layer = std::make_shared<CALayer>();
    _layer->setDelegate(shared_from_this());
}

UIView::~UIView() {
    // The handlers may refer to the object that is going: they are not called any more.
    for (const auto& recognizer : _gestureRecognizers)
        recognizer->forgetTouches();
    for (const auto& view : _subviews)
        view->_layer->removeFromSuperlayer();
    if (_layer)
        _layer->removeFromSuperlayer();
}

void UIView::destroyOnMainQueue(UIView* view) {
    DispatchQueue& queue = dispatch_get_main_queue();
    if (queue.isCurrent())
        delete view;
    else
        queue.async([view] { delete view; });
}

std::shared_ptr<UIView> UIView::sharedView() const {
    return std::static_pointer_cast<UIView>(std::const_pointer_cast<SelfSharingObject>(weak_from_this().lock()));
}

std::shared_ptr<UIWindow> UIView::window() const {
    auto root = sharedView();
    while (root) {
        auto above = root->containingView();
        if (!above)
            break;
        root = std::move(above);
    }
    return std::dynamic_pointer_cast<UIWindow>(root);
}

void UIView::addSubview(const std::shared_ptr<UIView>& view) {
    insertSubview(view, SIZE_MAX);
}

void UIView::insertSubviewAtIndex(const std::shared_ptr<UIView>& view, size_t index) {
    insertSubview(view, index);
}

void UIView::insertSubview(std::shared_ptr<UIView> view, size_t index) {
    const auto self = sharedView();
    if (!view || !self)
        return;
    for (auto above = self; above; above = above->containingView())
        if (above == view)
            return;

    const bool staysHere = view->containingView() == self;
    if (staysHere)
        std::erase(_subviews, view);
    else
        view->removeFromSuperview();
    index = std::min(index, _subviews.size());
    _subviews.insert(_subviews.begin() + static_cast<ptrdiff_t>(index), view);
    view->_superview = self;
    insertSublayer(*view, index);
    if (!staysHere)
        if (const auto host = window())
            view->subtreeEnteredWindow(*host);
    view->setNeedsDisplay();
    setNeedsLayout();
}

/// The layer goes right below that of the next view; the host's own layers keep their places.
void UIView::insertSublayer(const UIView& view, size_t index) {
    view._layer->removeFromSuperlayer();
    size_t position = SIZE_MAX;
    if (index + 1 < _subviews.size()) {
        const auto& sublayers = _layer->sublayers();
        const auto next = std::find(sublayers.begin(), sublayers.end(), _subviews[index + 1]->_layer);
        if (next != sublayers.end())
            position = static_cast<size_t>(next - sublayers.begin());
    }
    _layer->insertSublayerAtIndex(view._layer, position);
}

void UIView::removeFromSuperview() {
    const auto self = sharedView();
    const auto above = containingView();
    if (!above)
        return;
    const auto host = window();
    setNeedsDisplay();
    std::erase(above->_subviews, self);
    _superview.reset();
    _layer->removeFromSuperlayer();
    above->setNeedsLayout();
    subtreeLeavesWindow(host.get());
}

void UIView::subtreeEnteredWindow(UIWindow& window) {
    if (_needsAnimationStep)
        window.requestAnimationStep(sharedView());
    for (const auto& view : _subviews)
        view->subtreeEnteredWindow(window);
}

/// Handlers run here, which may change the lists.
void UIView::subtreeLeavesWindow(UIWindow* window) {
    if (window && _needsAnimationStep)
        window->forgetAnimation(*this);
    const auto recognizers = _gestureRecognizers;
    for (const auto& recognizer : recognizers)
        recognizer->cancel();
    const auto views = _subviews;
    for (const auto& view : views)
        view->subtreeLeavesWindow(window);
}

void UIView::addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    const auto added = recognizer;
    if (!added || added->view().get() == this)
        return;
    if (const auto former = added->view())
        former->removeGestureRecognizer(added);
    added->_view = sharedView();
    _gestureRecognizers.push_back(added);
}

void UIView::removeGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    const auto removed = recognizer;
    const auto self = sharedView(); // the handler may drop the view
    if (!removed || std::erase(_gestureRecognizers, removed) == 0)
        return;
    removed->cancel();
    removed->_view.reset();
}

std::shared_ptr<UIView> UIView::hitTest(CGPoint point) {
    if (_hidden || !bounds().contains(point))
        return nullptr;
    for (size_t i = _subviews.size(); i-- > 0;) {
        const auto& view = _subviews[i];
        if (auto hit = view->hitTest({point.x - view->_frame.origin.x, point.y - view->_frame.origin.y}))
            return hit;
    }
    return sharedView();
}

CGPoint UIView::convertPointToWindow(CGPoint point) const {
    for (auto view = sharedView(); view; view = view->containingView()) {
        // The root's own frame says where it lies outside.
        if (!view->containingView())
            break;
        point.x += view->_frame.origin.x;
        point.y += view->_frame.origin.y;
    }
    return point;
}

CGPoint UIView::convertPointFromWindow(CGPoint point) const {
    const CGPoint origin = convertPointToWindow({0, 0});
    return {point.x - origin.x, point.y - origin.y};
}

} // namespace veyra
