#include "Hosts/Veyra/ScriptWindow.h"

#include "Hosts/Veyra/FrameClock.h"

#include <cairo.h>

namespace veyra {

void ScriptWindow::start(CGSize size, double scale, std::function<void()> idle) {
    _window->setIdleHandler(std::move(idle));
    _window->setSize(size, scale);
}

void ScriptWindow::startDrawing() {
    _window->setFrameRequestHandler([this] { scheduleFrame(); });
}

void ScriptWindow::stop() {
    _window->setFrameRequestHandler(nullptr);
    _window->setIdleHandler(nullptr);
    _nextFrame.cancel();
}

void ScriptWindow::scheduleFrame() {
    if (!_nextFrame.isRunning())
        _nextFrame.start(dispatch_get_main_queue(), secondsToNextFrame(_startTime, monotonicSeconds()),
                         [this] { _window->drawFrame(monotonicSeconds()); });
}

std::string ScriptWindow::writePicture(const std::string& path) const {
    const cairo_status_t status = cairo_surface_write_to_png(_window->surface(), path.c_str());
    return status == CAIRO_STATUS_SUCCESS ? "" : "cannot write " + path + ": " + cairo_status_to_string(status);
}

} // namespace veyra
