#include "Hosts/WebExtension/Statistics.h"

#include "Classes/VeyraView.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <mutex>

namespace veyra {

namespace {

struct ViewList {
    std::mutex mutex;
    std::vector<std::weak_ptr<NSObject>> views; // guarded by mutex
};

ViewList& viewList() {
    static auto* list = new ViewList;
    return *list;
}

} // namespace

FrameStatistics& frameStatistics() {
    static auto* statistics = new FrameStatistics;
    return *statistics;
}

void countViews() {
    NSNotificationCenter::defaultCenter().addObserver(VeyraCreatedNotification, [](const NSNotification& notification) {
        std::lock_guard guard(viewList().mutex);
        std::erase_if(viewList().views, [](const auto& view) { return view.expired(); });
        viewList().views.push_back(notification.object);
    });
}

size_t liveViews() {
    std::lock_guard guard(viewList().mutex);
    std::erase_if(viewList().views, [](const auto& view) { return view.expired(); });
    return viewList().views.size();
}

} // namespace veyra
