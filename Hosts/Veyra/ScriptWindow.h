// Draws the window of a bare script's map, without any display: a frame on each beat of the frame clock while the
// window asks for frames. Main queue only, but for making it; the script host owns it.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/UIKit/UIWindow.h"

namespace veyra {

class ScriptWindow {
public:
    /// `startTime`: the clock's zero (seconds, monotonic).
    ScriptWindow(std::shared_ptr<UIWindow> window, double startTime)
        : _window(std::move(window)), _startTime(startTime) {}

    /// Gives the window its size. `idle` runs whenever the window has become idle.
    void start(CGSize size, double scale, std::function<void()> idle);
    /// Draws from now on.
    void startDrawing();
    /// Draws no more.
    void stop();
    bool isIdle() const { return _window->isIdle(); }
    /// Writes what is drawn as PNG; the problem when that fails, else "".
    std::string writePicture(const std::string& path) const;

private:
    void scheduleFrame();

    const std::shared_ptr<UIWindow> _window;
    const double _startTime;
    DispatchTimer _nextFrame;
};

} // namespace veyra
