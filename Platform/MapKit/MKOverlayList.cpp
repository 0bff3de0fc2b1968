#include "Platform/MapKit/MKOverlayList.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

/// True when the rectangle around an overlay meets another one on some copy of the world; a rectangle without width or
/// height meets what it lies in.
bool meet(const MKMapRect& bounds, const MKMapRect& rect) {
    if (MKMapRectIsNull(bounds) || MKMapRectGetMinY(bounds) > MKMapRectGetMaxY(rect) ||
        MKMapRectGetMaxY(bounds) < MKMapRectGetMinY(rect)) {
        return false;
    }
    const double worlds = std::ceil((MKMapRectGetMinX(rect) - MKMapRectGetMaxX(bounds)) / MKWorldSide);
    return MKMapRectGetMinX(bounds) + worlds * MKWorldSide <= MKMapRectGetMaxX(rect);
}

} // namespace

std::vector<std::shared_ptr<MKOverlay>> MKOverlayList::overlays() const {
    std::vector<std::shared_ptr<MKOverlay>> all;
    all.reserve(_entries.size());
    for (const Entry& entry : _entries) {
        all.push_back(entry.overlay);
    }
    return all;
}

MKOverlayFigures MKOverlayList::figures() const {
    MKOverlayFigures all;
    for (const Entry& entry : _entries) {
        if (entry.figure) {
            all.push_back(entry.figure);
        }
    }
    return all;
}

bool MKOverlayList::insert(Entries::iterator before, const std::shared_ptr<MKOverlay>& overlay) {
    if (!overlay || contains(*overlay)) {
        return false;
    }
    _places[overlay.get()] =
        _entries.insert(before, Entry{.overlay = overlay, .wasAsked = false, .view = {}, .figure = {}});
    ++_notAsked;
    return true;
}

MKOverlayList::Entries::iterator MKOverlayList::at(uint64_t index) {
    if (index >= _entries.size()) {
        return _entries.end();
    }
    const auto fromFront = static_cast<ptrdiff_t>(index), size = static_cast<ptrdiff_t>(_entries.size());
    return fromFront < size / 2 ? std::next(_entries.begin(), fromFront) : std::prev(_entries.end(), size - fromFront);
}

bool MKOverlayList::append(const std::shared_ptr<MKOverlay>& overlay) {
    return insert(_entries.end(), overlay);
}

bool MKOverlayList::insertAt(uint64_t index, const std::shared_ptr<MKOverlay>& overlay) {
    return insert(at(index), overlay);
}

bool MKOverlayList::insertAbove(const MKOverlay* sibling, const std::shared_ptr<MKOverlay>& overlay) {
    const auto found = _places.find(sibling);
    return insert(found == _places.end() ? _entries.end() : std::next(found->second), overlay);
}

bool MKOverlayList::insertBelow(const MKOverlay* sibling, const std::shared_ptr<MKOverlay>& overlay) {
    const auto found = _places.find(sibling);
    return insert(found == _places.end() ? _entries.end() : found->second, overlay);
}

bool MKOverlayList::remove(const MKOverlay& overlay) {
    const auto found = _places.find(&overlay);
    if (found == _places.end()) {
        return false;
    }
    const auto entry = found->second;
    _notAsked -= entry->wasAsked ? 0 : 1;
    _places.erase(found);
    _entries.erase(entry);
    return true;
}

bool MKOverlayList::exchange(uint64_t first, uint64_t second) {
    if (first >= _entries.size() || second >= _entries.size()) {
        return false;
    }
    if (first != second) {
        const auto one = at(first), other = at(second);
        std::swap(*one, *other);
        _places[one->overlay.get()] = one;
        _places[other->overlay.get()] = other;
    }
    return true;
}

std::vector<std::shared_ptr<MKOverlay>> MKOverlayList::takeMeeting(const MKMapRect& rect) {
    std::vector<std::shared_ptr<MKOverlay>> met;
    if (_notAsked == 0) {
        return met;
    }
    for (Entry& entry : _entries) {
        if (!entry.wasAsked && meet(entry.overlay->boundingMapRect(), rect)) {
            entry.wasAsked = true;
            --_notAsked;
            met.push_back(entry.overlay);
        }
    }
    return met;
}

bool MKOverlayList::hasMeeting(const MKMapRect& rect) const {
    return _notAsked > 0 && std::any_of(_entries.begin(), _entries.end(), [&](const Entry& entry) {
               return !entry.wasAsked && meet(entry.overlay->boundingMapRect(), rect);
           });
}

bool MKOverlayList::setView(const MKOverlay& overlay, const std::shared_ptr<MKOverlayView>& view) {
    const auto found = _places.find(&overlay);
    if (found == _places.end() || !view) {
        return false;
    }
    found->second->view = view;
    found->second->figure = view->figure();
    return true;
}

} // namespace veyra
