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
    std::shared_ptr<PixelBuffers> buffers;
    std::shared_ptr<SurfaceScript::Hold> hold;
    int index;
    // The results.
    std::vector<PixelRect> changes;
    bool needsAnotherFrame = false;
    int missingWidth = 0, missingHeight = 0; // nothing is drawn: arrays of that size are needed first
    double scale = 1;

    void run() {
        if (!buffers || !buffers->fits(*window)) {
            missingWidth = window->pixelWidth();
            missingHeight = window->pixelHeight();
            scale = window->scale();
            return;
        }
        changes = buffers->draw(*window, index, monotonicSeconds());
        needsAnotherFrame = window->needsFrame();
        if (!changes.empty())
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
        if (_isWanted && !_isDrawing && _hadFrameSinceDrawing)
            startDrawing();
        if ((_isDrawing || _isReady) && !_isFrameRequested) {
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
    drawing->buffers = _buffers;
    drawing->hold = _surface.hold();
    drawing->index = 1 - _frontIndex;
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this(), drawing]() mutable {
        runGuarded("drawing a frame", [&] { drawing->run(); });
        // Moved on, so that the arrays are let go on the web thread.
        webThread().async([weak, finished = std::move(drawing)] {
            if (const auto self = weak.lock())
                self->finishDrawing(*finished);
            finished->hold = nullptr;
        });
    });
}

void FramePresenter::finishDrawing(const Drawing& drawing) {
    _isDrawing = false;
    if (!_surface.isAttached())
        return;
    if (drawing.missingWidth > 0 && drawing.missingHeight > 0) {
        _isWanted = true;
        if (isShown())
            allocate(drawing);
    } else if (!drawing.changes.empty()) {
        _isReady = true;
        _frontIndex = drawing.index;
        for (const PixelRect& rect : drawing.changes)
            _readyRects.add(rect);
    }
    if (drawing.needsAnotherFrame)
        _isWanted = true;
    advance();
}

void FramePresenter::allocate(const Drawing& drawing) {
    _isReady = false;
    _readyRects.clear();
    _hadFrameSinceDrawing = true;
    _buffers = _surface.allocate(drawing.missingWidth, drawing.missingHeight, drawing.scale);
    if (!_buffers) {
        _isWanted = false;
        NSLog("No memory for a map of %f × %f pixels",
              {static_cast<double>(drawing.missingWidth), static_cast<double>(drawing.missingHeight)});
    }
}

std::vector<int> FramePresenter::animationFrame() {
    _isFrameRequested = false;
    _hadFrameSinceDrawing = true;
    std::vector<int> put;
    if (_isReady && _surface.isAttached()) {
        put.push_back(_frontIndex);
        for (const PixelRect& rect : _readyRects.take())
            put.insert(put.end(), {rect.x, rect.y, rect.width, rect.height});
        _isReady = false;
        ++frameStatistics().put;
    }
    advance();
    return put;
}

bool FramePresenter::isSettled() const {
    return !isShown() || (!_isWanted && !_isDrawing && !_isReady);
}

} // namespace veyra
