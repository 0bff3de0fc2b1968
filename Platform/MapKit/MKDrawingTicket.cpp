#include "Platform/MapKit/MKDrawingTicket.h"

#include <algorithm>

namespace veyra {

void MKDrawingTicket::check() const {
    if (_isAbandoned) {
        throw Abandoned();
    }
}

void MKDrawingTicket::begin(size_t part, const MKOverlayFigure& figure) {
    const NSLockGuard guard(_mutex);
    _figures[part] = &figure;
    if (figure.isMuch() && !isKept(&figure)) {
        abandon();
    }
    check();
}

void MKDrawingTicket::end(size_t part) {
    const NSLockGuard guard(_mutex);
    _figures[part] = nullptr;
}

void MKDrawingTicket::keep(std::shared_ptr<const MKOverlayFigures> figures) {
    const NSLockGuard guard(_mutex);
    _kept = std::move(figures);
    for (const MKOverlayFigure* const figure : _figures) {
        if (figure && !isKept(figure)) {
            abandon();
        }
    }
}

bool MKDrawingTicket::isKept(const MKOverlayFigure* figure) const {
    return !_kept || std::any_of(_kept->begin(), _kept->end(), [=](const auto& kept) { return kept.get() == figure; });
}

} // namespace veyra
