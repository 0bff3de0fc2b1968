#include "Hosts/WebExtension/FramePresenter.h"

#include "Hosts/WebExtension/Statistics.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/WebKit/WebThread.h"

namespace veyra {

namespace {

double monotonicSeconds() {
    return static_cast<double>(g_get_monotonic_time()) / G_USEC_PER_SEC;
}

} // namespace

// One drawing on its way over the main queue and back.
struct FramePresenter::Drawing {
    std::shared_ptr<UIWindow> window;
    // The results.
    Picture picture;
    bool needsAnotherFrame = false;

    void run() {
        const int64_t start = g_get_monotonic_time();
        picture.changes = window->drawFrame(monotonicSeconds());
        picture.drawingTime = g_get_monotonic_time() - start;
        picture.store = window->store();
        needsAnotherFrame = window->needsFrame();
        if (!picture.changes.empty())
            ++frameStatistics().drawn;
    }
};

FramePresenter::FramePresenter(std::shared_ptr<UIWindow> window, JSGlobalContextRef context, JSObjectRef surface,
                               std::function<void()> settled)
    : _window(std::move(window)), _settled(std::move(settled)), _surface(context, surface) {}

void FramePresenter::start() {
    dispatch_async(dispatch_get_main_queue(), [window = _window, weak = weak_from_this()] {
        window->setVisible(false);
        window->setFrameRequestHandler([weak] {
            webThread().async([weak] {
                if (const auto self = weak.lock())
                    self->frameWanted();
            });
        });
        window->setIdleHandler([weak] {
            webThread().async([weak] {
                if (const auto self = weak.lock())
                    self->_settled();
            });
        });
        window->setCaptionHandler([weak](const UICaption& caption) {
            webThread().async([weak, caption] {
                if (const auto self = weak.lock()) {
                    self->_newCaption = caption;
                    self->advance();
                }
            });
        });
        window->setAccessibilityHandler([weak](const UIAccessibilityState& state) {
            webThread().async([weak, state] {
                if (const auto self = weak.lock()) {
                    self->_newAccessibilityState = state;
                    self->advance();
                }
            });
        });
    });
}

void FramePresenter::stop() {
    _surface.detach();
}

void FramePresenter::layOut(CGSize size, double scale, bool isVisible, UIUserInterfaceStyle style) {
    if (size != _size || scale != _scale) {
        _size = size;
        _scale = scale;
        _isWanted = true;
        dispatch_async(dispatch_get_main_queue(), [window = _window, size, scale] { window->setSize(size, scale); });
    }
    if (isVisible != _isVisible) {
        _isVisible = isVisible;
        _isWanted = true;
        dispatch_async(dispatch_get_main_queue(), [window = _window, isVisible] { window->setVisible(isVisible); });
    }
    if (style != _style) {
        _style = style;
        _isWanted = true;
        dispatch_async(dispatch_get_main_queue(), [window = _window, style] { window->setUserInterfaceStyle(style); });
    }
    advance();
}

void FramePresenter::suspend() {
    layOut(_size, _scale, false, _style);
}

void FramePresenter::frameWanted() {
    _isWanted = true;
    advance();
}

void FramePresenter::advance() {
    if (isShown()) {
        if (_newCaption)
            _surface.setCaption(*_newCaption);
        _newCaption.reset();
        if (_newAccessibilityState)
            _surface.setAccessibilityState(*_newAccessibilityState);
        _newAccessibilityState.reset();
        if (_isWanted && !_isDrawing && !_picture && _hadFrameSinceDrawing)
            startDrawing();
        if ((_isDrawing || _picture) && !_isFrameRequested) {
            _isFrameRequested = true;
            _surface.requestFrame();
        }
    }
    if (isSettled())
        _settled();
}

void FramePresenter::startDrawing() {
    _isWanted = false;
    _isDrawing = true;
    _hadFrameSinceDrawing = false;
    const auto drawing = std::make_shared<Drawing>();
    drawing->window = _window;
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this(), drawing] {
        runGuarded("drawing a frame", [&] { drawing->run(); });
        webThread().async([weak, drawing] {
            if (const auto self = weak.lock())
                self->finishDrawing(*drawing);
        });
    });
}

void FramePresenter::finishDrawing(Drawing& drawing) {
    _isDrawing = false;
    if (!_surface.isAttached())
        return;
    if (!drawing.picture.changes.empty() && drawing.picture.store) {
        _picture = std::move(drawing.picture);
        if (_lastStore.lock() != _picture->store)
            _picture->changes = {_picture->store->bounds()};
        _lastStore = _picture->store;
    }
    if (drawing.needsAnotherFrame)
        _isWanted = true;
    advance();
}

const FramePresenter::Picture* FramePresenter::animationFrame() {
    _isFrameRequested = false;
    if (_picture && _surface.isAttached()) {
        _putStart = g_get_monotonic_time();
        return &*_picture;
    }
    _hadFrameSinceDrawing = true;
    advance();
    return nullptr;
}

void FramePresenter::framePut() {
    if (_picture)
        frameStatistics().times.add(static_cast<uint64_t>(_picture->drawingTime + g_get_monotonic_time() - _putStart));
    _picture.reset();
    _hadFrameSinceDrawing = true;
    ++frameStatistics().put;
    advance();
}

bool FramePresenter::isSettled() const {
    return !isShown() || (!_isWanted && !_isDrawing && !_picture);
}

} // namespace veyra
