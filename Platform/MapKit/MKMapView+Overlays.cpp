// The overlays of the map: their order, and when their views are asked for and reported.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKOverlayLayer.h"
#include "Platform/MapKit/MKOverlayList.h"
#include "Platform/UIKit/UIWindow.h"

#include <string>

namespace veyra {

std::vector<std::shared_ptr<MKOverlay>> MKMapView::overlays() const {
    return _overlays->overlays();
}

void MKMapView::addOverlay(const std::shared_ptr<MKOverlay>& overlay) {
    overlaysChanged(_overlays->append(overlay));
}

void MKMapView::addOverlays(const std::vector<std::shared_ptr<MKOverlay>>& overlays) {
    for (const auto& overlay : overlays) {
        addOverlay(overlay);
    }
}

void MKMapView::removeOverlay(const std::shared_ptr<MKOverlay>& overlay) {
    overlaysChanged(overlay && _overlays->remove(*overlay));
}

void MKMapView::removeOverlays(const std::vector<std::shared_ptr<MKOverlay>>& overlays) {
    for (const auto& overlay : overlays) {
        removeOverlay(overlay);
    }
}

void MKMapView::insertOverlayAtIndex(const std::shared_ptr<MKOverlay>& overlay, uint64_t index) {
    overlaysChanged(_overlays->insertAt(index, overlay));
}

void MKMapView::insertOverlayAboveOverlay(const std::shared_ptr<MKOverlay>& overlay,
                                          const std::shared_ptr<MKOverlay>& sibling) {
    overlaysChanged(_overlays->insertAbove(sibling.get(), overlay));
}

void MKMapView::insertOverlayBelowOverlay(const std::shared_ptr<MKOverlay>& overlay,
                                          const std::shared_ptr<MKOverlay>& sibling) {
    overlaysChanged(_overlays->insertBelow(sibling.get(), overlay));
}

void MKMapView::exchangeOverlayAtIndexWithOverlayAtIndex(uint64_t first, uint64_t second) {
    const bool isOnMap = _overlays->exchange(first, second);
    if (!isOnMap) {
        NSLog("MKMapView: there are no two overlays at the indexes %@ and %@ to exchange",
              {NSString(std::to_string(first)), NSString(std::to_string(second))}); // as numbers they would lose digits
    }
    overlaysChanged(isOnMap);
}

void MKMapView::overlaysChanged(bool changed) {
    if (changed) {
        queueOverlayUpdate();
    }
}

void MKMapView::askForOverlaysThatCameIntoSight() {
    if (hasLayout() && _overlays->hasMeeting(visibleMapRect())) {
        queueOverlayUpdate();
    }
}

// One for all that is changed in a turn of the main queue.
void MKMapView::queueOverlayUpdate() {
    if (std::exchange(_overlayUpdateQueued, true)) {
        return;
    }
    overlayWorkChanged();
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this()] {
        if (const auto self = std::static_pointer_cast<MKMapView>(weak.lock())) {
            self->_overlayUpdateQueued = false;
            self->updateOverlays();
        }
    });
}

void MKMapView::updateOverlays() {
    std::vector<std::shared_ptr<MKOverlayView>> added;
    const auto delegate = this->delegate();
    if (hasLayout() && delegate) {
        for (const auto& overlay : _overlays->takeMeeting(visibleMapRect())) {
            if (!_overlays->contains(*overlay)) { // the delegate took it away meanwhile
                continue;
            }
            const auto view = delegate->mapViewViewForOverlay(*this, overlay);
            if (_overlays->setView(*overlay, view)) {
                added.push_back(view);
            }
        }
    }
    _overlayLayer->setFigures(_overlays->figures());
    if (delegate && !added.empty()) {
        delegate->mapViewDidAddOverlayViews(*this, added);
    }
    overlayWorkChanged();
}

// The map may have become busy, or idle, without a frame in between.
void MKMapView::overlayWorkChanged() {
    if (const auto window = this->window()) {
        window->idleStateChanged();
    }
}

} // namespace veyra
