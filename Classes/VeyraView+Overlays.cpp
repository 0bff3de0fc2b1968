// The registry of overlays by identifier, what scripts do with it, and what the map asks and tells about overlays. The
// registry changes at once, on the web thread; the map follows on the main queue, in the same order.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraOverlay.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/NSException.h"

#include <functional>
#include <new>
#include <utility>

namespace veyra {

namespace {

using MapOverlays = std::vector<std::shared_ptr<MKOverlay>>;

/// What the platform raises about an element of a batch makes that a bad one: the batch goes on, and the script gets
/// the exception when the call returns.
void guardElement(const std::function<void()>& take) {
    try {
        take();
    } catch (const NSException& raised) {
        WebScriptObject::throwException(raised.reason());
    } catch (const std::bad_alloc&) {
        WebScriptObject::throwException("Out of memory");
    }
}

} // namespace

bool VeyraView::storeOverlay(const std::shared_ptr<VeyraOverlay>& overlay) {
    if (overlay->identifier().isNil())
        throw NSException(NSInvalidArgumentException, "-[NSMutableDictionary setObject:forKey:]: key cannot be nil");
    {
        const NSLockGuard guard(_lock);
        if (_overlaysById.try_emplace(overlay->identifier(), overlay).second)
            return true;
    }
    logVerbose("Map already has overlay with Id '%@'", overlay->identifier());
    return false;
}

std::shared_ptr<VeyraOverlay> VeyraView::takeOverlay(const id& identifier) {
    {
        const NSLockGuard guard(_lock);
        if (auto entry = _overlaysById.extract(identifier))
            return std::move(entry.mapped());
    }
    logVerbose("Map does not have overlay with Id '%@'; cannot remove", identifier);
    return nullptr;
}

id VeyraView::overlays() const {
    NSArray identifiers;
    const NSLockGuard guard(_lock);
    identifiers.reserve(_overlaysById.size());
    for (const auto& [identifier, overlay] : _overlaysById)
        identifiers.push_back(identifier);
    return id(std::move(identifiers));
}

void VeyraView::addOverlay(const id& overlay) {
    auto made = VeyraOverlayFromWebScriptObject(overlay);
    if (made && storeOverlay(made))
        onMap([made = std::move(made)](MKMapView& map) { map.addOverlay(made); });
}

void VeyraView::addOverlays(const id& overlays) {
    if (!VeyraValidateWebScriptObject(overlays, nullptr, callerName("addOverlays:"), {"length"}))
        return;
    MapOverlays accepted;
    bool lastWasUndefined = false;
    forEachElement(overlays, [&](const id& element) {
        // Of undefined elements in a row the first has said it all: a false length costs as little as it can.
        if (std::exchange(lastWasUndefined, element.isUndefined()) && lastWasUndefined)
            return;
        guardElement([&] {
            const auto made = VeyraOverlayFromWebScriptObject(element);
            if (made && storeOverlay(made))
                accepted.push_back(made);
        });
    });
    onMap([accepted = std::move(accepted)](MKMapView& map) { map.addOverlays(accepted); });
}

void VeyraView::removeOverlay(const id& identifier) {
    if (auto removed = takeOverlay(identifier))
        onMap([removed = std::move(removed)](MKMapView& map) { map.removeOverlay(removed); });
}

void VeyraView::removeOverlays(const id& identifiers) {
    if (!VeyraValidateWebScriptObject(identifiers, nullptr, callerName("removeOverlays:"), {"length"}))
        return;
    MapOverlays removed;
    forEachElement(identifiers, [&](const id& identifier) {
        if (const auto overlay = takeOverlay(identifier))
            removed.push_back(overlay);
    });
    onMap([removed = std::move(removed)](MKMapView& map) { map.removeOverlays(removed); });
}

void VeyraView::insertOverlayAtIndex(const id& overlay, const id& index) {
    auto made = VeyraOverlayFromWebScriptObject(overlay);
    if (!made || !storeOverlay(made))
        return;
    uint64_t place = 0;
    try {
        place = index.unsignedIntegerValue();
    } catch (const NSException&) { // a refused call changes nothing
        takeOverlay(made->identifier());
        throw;
    }
    onMap([made = std::move(made), place](MKMapView& map) { map.insertOverlayAtIndex(made, place); });
}

void VeyraView::exchangeOverlayAtIndexWithOverlayAtIndex(const id& first, const id& second) {
    onMap([from = first.unsignedIntegerValue(), to = second.unsignedIntegerValue()](MKMapView& map) {
        map.exchangeOverlayAtIndexWithOverlayAtIndex(from, to);
    });
}

void VeyraView::insertOverlayAboveOverlay(const id& overlay, const id& sibling) {
    insertOverlayNextTo(overlay, sibling, &MKMapView::insertOverlayAboveOverlay);
}

void VeyraView::insertOverlayBelowOverlay(const id& overlay, const id& sibling) {
    insertOverlayNextTo(overlay, sibling, &MKMapView::insertOverlayBelowOverlay);
}

// An overlay whose sibling is unknown stays in the registry all the same, though it is on no map: pages rely on that.
void VeyraView::insertOverlayNextTo(const id& overlay, const id& sibling, OverlayInsertion insertion) {
    auto made = VeyraOverlayFromWebScriptObject(overlay);
    if (!made)
        return;
    std::shared_ptr<VeyraOverlay> neighbour;
    {
        const NSLockGuard guard(_lock);
        const auto found = _overlaysById.find(sibling);
        if (found != _overlaysById.end())
            neighbour = found->second;
    }
    if (!storeOverlay(made))
        return;
    if (neighbour)
        onMap([made = std::move(made), neighbour = std::move(neighbour), insertion](MKMapView& map) {
            (map.*insertion)(made, neighbour);
        });
    else
        logVerbose("Map does not have overlay with Id '%@'", sibling);
}

std::shared_ptr<MKOverlayView> VeyraView::mapViewViewForOverlay(MKMapView&, const std::shared_ptr<MKOverlay>& overlay) {
    const auto ours = std::dynamic_pointer_cast<VeyraOverlay>(overlay);
    return ours ? ours->overlayView() : nullptr;
}

void VeyraView::mapViewDidAddOverlayViews(MKMapView&, const std::vector<std::shared_ptr<MKOverlayView>>& views) {
    NSArray identifiers;
    for (const auto& view : views)
        if (const auto ours = std::dynamic_pointer_cast<VeyraOverlay>(view->overlay()))
            identifiers.push_back(ours->identifier());
    sendEvent(kVeyraDidAddOverlays, std::move(identifiers));
}

} // namespace veyra
