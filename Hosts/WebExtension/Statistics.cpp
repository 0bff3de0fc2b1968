#include "Hosts/WebExtension/Statistics.h"

#include "Classes/VeyraView.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <algorithm>
#include <mutex>

namespace veyra {

namespace {

constexpr size_t mostTimes = 1000;

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

void FrameTimes::add(uint64_t microseconds) {
    const NSLockGuard guard(_mutex);
    if (_times.size() < mostTimes)
        _times.push_back(microseconds);
    else
        _times[_count % mostTimes] = microseconds;
    ++_count;
}

uint64_t FrameTimes::takePercentile95() {
    const NSLockGuard guard(_mutex);
    _count = 0;
    auto times = std::exchange(_times, {});
    if (times.empty())
        return 0;
    const auto place = times.begin() + static_cast<ptrdiff_t>(times.size() * 95 / 100);
    std::nth_element(times.begin(), place, times.end());
    return *place;
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
