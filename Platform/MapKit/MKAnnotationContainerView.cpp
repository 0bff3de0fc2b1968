// Life of the container, and what belongs to no topic of its own.
#include "Platform/MapKit/MKAnnotationContainerView.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKCalloutView.h"
#include "Platform/MapKit/MKMapView.h"

namespace veyra {

Class MKAnnotationContainerView::classObject() {
    static auto* const cls = new ClassObject("MKAnnotationContainerView", UIView::classObject(), {});
    return cls;
}

MKAnnotationContainerView::MKAnnotationContainerView() : _dropTimer(std::make_unique<DispatchTimer>()) {}

MKAnnotationContainerView::~MKAnnotationContainerView() {
    // Views that others keep outlive the map.
    for (const uint64_t key : _order) {
        if (const auto& view = _store[static_cast<uint32_t>(key)].view) {
            view->leaveMap();
        }
    }
    for (const uint32_t number : _newInOrder) {
        if (const auto& view = _store[number].view) {
            view->leaveMap();
        }
    }
}

std::shared_ptr<MKAnnotationContainerView>
MKAnnotationContainerView::makeForMap(const std::shared_ptr<MKMapView>& map) {
    auto container = UIView::make<MKAnnotationContainerView>(map->bounds());
    container->_map = map;
    container->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    return container;
}

void MKAnnotationContainerView::initWithFrame(const CGRect& frame) {
    UIView::initWithFrame(frame);
    addRecognizers();
}

std::shared_ptr<MKMapViewDelegate> MKAnnotationContainerView::delegate() const {
    const auto map = _map.lock();
    return map ? map->delegate() : nullptr;
}

MKAnnotationStore::Entry* MKAnnotationContainerView::entryOf(const MKAnnotationView& view) {
    const uint32_t number = _store.find(view._annotation.get());
    return number != none && _store[number].view.get() == &view ? &_store[number] : nullptr;
}

std::shared_ptr<MKAnnotationView>
MKAnnotationContainerView::viewForAnnotation(const std::shared_ptr<MKAnnotation>& annotation) const {
    const uint32_t number = _store.find(annotation.get());
    return number != none ? _store[number].view : nullptr;
}

bool MKAnnotationContainerView::stepAnimations(double timestamp) {
    const auto self = sharedView();
    bringViewsUpToDate();
    if (_reportQueued && !_awaitsMore) {
        reportAddedViews();
    }
    stepDrops(timestamp);
    checkFocus();
    return !_drops.isEmpty();
}

bool MKAnnotationContainerView::isIdle() const {
    return _wanted.empty() && !_reportQueued && !_awaitsMore && _drops.isEmpty();
}

} // namespace veyra
