// Between a drawing under way and whoever asked for it: which figures it is at, and whether anybody still wants it. Any
// thread.
#pragma once

#include "Platform/Foundation/NSLock.h"
#include "Platform/MapKit/MKOverlayFigure.h"

#include <array>
#include <atomic>
#include <exception>

namespace veyra {

class MKDrawingTicket {
public:
    /// Ends a drawing that nobody wants.
    class Abandoned final : public std::exception {};

    void abandon() { _isAbandoned = true; }
    bool isAbandoned() const { return _isAbandoned; }
    /// Throws Abandoned when the drawing is no longer wanted. To be asked every few milliseconds.
    void check() const;

    /// Parts of a picture that may be drawn at the same time.
    static constexpr size_t parts = 4;
    /// Says which figure is drawn in a part from now on. Throws Abandoned when it would take long and is not kept.
    void begin(size_t part, const MKOverlayFigure& figure) VEYRA_EXCLUDES(_mutex);
    /// Says that nothing more is drawn in a part.
    void end(size_t part) VEYRA_EXCLUDES(_mutex);
    /// Says which figures are still wanted, all until then. Abandons the drawing when it is at another one in any part,
    /// or when it comes to another one that would take long; what is quickly drawn in vain is.
    void keep(std::shared_ptr<const MKOverlayFigures> figures) VEYRA_EXCLUDES(_mutex);

private:
    bool isKept(const MKOverlayFigure* figure) const VEYRA_REQUIRES(_mutex);

    NSLock _mutex;
    std::array<const MKOverlayFigure*, parts> _figures VEYRA_GUARDED_BY(_mutex){}; // null where nothing is drawn
    std::shared_ptr<const MKOverlayFigures> _kept VEYRA_GUARDED_BY(_mutex);        // null for all
    std::atomic<bool> _isAbandoned = false;
};

} // namespace veyra
