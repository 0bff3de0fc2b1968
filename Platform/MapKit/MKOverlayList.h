// The overlays of a map in drawing order, each with the view that the delegate gave it. An overlay is on the list once.
// Adding, removing and inserting next to another cost the same however long the list is; an index is counted out. Main
// queue only; owned by its map view.
#pragma once

#include "Platform/MapKit/MKOverlayFigure.h"
#include "Platform/MapKit/MKOverlayView.h"

#include <list>
#include <unordered_map>

namespace veyra {

class MKOverlayList {
public:
    struct Entry {
        std::shared_ptr<MKOverlay> overlay;
        bool wasAsked = false; ///< the delegate has been asked for its view
        std::shared_ptr<MKOverlayView> view;
        std::shared_ptr<const MKOverlayFigure> figure;
    };

    std::vector<std::shared_ptr<MKOverlay>> overlays() const;
    size_t size() const { return _entries.size(); }
    bool contains(const MKOverlay& overlay) const { return _places.contains(&overlay); }
    MKOverlayFigures figures() const;

    // Each returns true when it has changed the list. An overlay that is null or on the list already is ignored.

    bool append(const std::shared_ptr<MKOverlay>& overlay);
    /// Beyond the end appends.
    bool insertAt(uint64_t index, const std::shared_ptr<MKOverlay>& overlay);
    /// Next to a sibling that is null or not on the list appends.
    bool insertAbove(const MKOverlay* sibling, const std::shared_ptr<MKOverlay>& overlay);
    bool insertBelow(const MKOverlay* sibling, const std::shared_ptr<MKOverlay>& overlay);
    bool remove(const MKOverlay& overlay);
    /// Changes nothing when an index is beyond the list.
    bool exchange(uint64_t first, uint64_t second);

    /// Marks the overlays that meet a map rectangle for the first time, on any copy of the world, as asked for, and
    /// returns them in order.
    std::vector<std::shared_ptr<MKOverlay>> takeMeeting(const MKMapRect& rect);
    bool hasMeeting(const MKMapRect& rect) const;
    /// Gives an overlay its view; one that is no longer on the list stays away. Returns whether it has one now.
    bool setView(const MKOverlay& overlay, const std::shared_ptr<MKOverlayView>& view);

private:
    using Entries = std::list<Entry>;
    bool insert(Entries::iterator before, const std::shared_ptr<MKOverlay>& overlay);
    Entries::iterator at(uint64_t index);

    Entries _entries;
    std::unordered_map<const MKOverlay*, Entries::iterator> _places;
    size_t _notAsked = 0;
};

} // namespace veyra
