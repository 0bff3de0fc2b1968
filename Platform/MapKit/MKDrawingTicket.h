// Between a drawing under way and whoever asked for it: what is being drawn, and whether anybody still wants it. Any
// thread.
#pragma once

#include <atomic>
#include <exception>

namespace veyra {

class MKOverlayFigure;

class MKDrawingTicket {
public:
    /// Ends a drawing that nobody wants.
    class Abandoned final : public std::exception {};

    void abandon() { _isAbandoned = true; }
    bool isAbandoned() const { return _isAbandoned; }
    /// Throws Abandoned when the drawing is no longer wanted. To be asked every few milliseconds.
    void check() const {
        if (_isAbandoned) {
            throw Abandoned();
        }
    }

    /// Says what is drawn from now on.
    void begin(const MKOverlayFigure* figure) { _figure = figure; }
    /// Only to compare with: it need not be alive.
    const MKOverlayFigure* figure() const { return _figure; }

private:
    std::atomic<bool> _isAbandoned = false;
    std::atomic<const MKOverlayFigure*> _figure = nullptr;
};

} // namespace veyra
