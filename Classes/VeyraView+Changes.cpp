// What scripts' calls change on the main queue takes effect in the order of the calls. A change that takes long, such
// as adding a million annotations, is made in slices: the main queue is never held, and the changes after it wait.
#include "Classes/VeyraView.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>

namespace veyra {

namespace {

// Microseconds. The first slice is long enough for what pages usually do at once. A later one lasts as long as what
// came before it on the main queue, within these limits: the change and the map's frames get equal shares.
constexpr int64_t firstSlice = 30000;
constexpr int64_t shortestSlice = 8000, longestSlice = 50000;

} // namespace

void VeyraView::onMainQueue(Block change) {
    onMainQueueInSlices([change = std::move(change)](int64_t) {
        change();
        return true;
    });
}

void VeyraView::onMap(std::function<void(MKMapView&)> change) {
    onMainQueue([this, change = std::move(change)] { change(*_mapView); });
}

void VeyraView::onMainQueueInSlices(LongChange change) {
    dispatch_async(dispatch_get_main_queue(), [view = objectForWebScript(), change = std::move(change)]() mutable {
        view->_changes.push_back(std::move(change));
        if (view->_changes.size() == 1)
            view->makeChanges(g_get_monotonic_time() + firstSlice);
    });
}

void VeyraView::makeChanges(int64_t end) {
    bool isComplete = true;
    do {
        runGuarded("script call", [&] {
            isComplete = true; // what throws is over
            isComplete = _changes.front()(end);
        });
        if (isComplete)
            _changes.pop_front();
    } while (!_changes.empty() && g_get_monotonic_time() < end);
    if (_changes.empty())
        return;
    idleStateChanged();
    dispatch_async(dispatch_get_main_queue(), [view = objectForWebScript(), last = g_get_monotonic_time()] {
        const int64_t now = g_get_monotonic_time();
        view->makeChanges(now + std::clamp(now - last, shortestSlice, longestSlice));
        if (view->_changes.empty())
            view->idleStateChanged();
    });
}

bool VeyraView::isIdle() const {
    return UIView::isIdle() && _changes.empty() && _imageLoads == 0;
}

void VeyraView::idleStateChanged() {
    if (const auto shownIn = window())
        shownIn->idleStateChanged();
}

} // namespace veyra
