#include "Platform/MapKit/ImageTiles/MKImageLoader.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

constexpr unsigned maximumLooking = 12; // requests that look on this machine at a time

// Seconds between the attempts for one image: the first pause, doubled each time. A server that asks for more than
// `longestRest` has failed.
constexpr double firstRest = 0.4, longestRest = 10;
// A host that has failed so often in a row is asked only once for each image.
constexpr unsigned failuresOfABadHost = 6;
// Seconds for which an image that failed is not asked for again: the first time, and at most. One that another try will
// hardly mend rests longer.
constexpr double failureRest = 3, lastingFailureRest = 60, absenceRest = 300, longestFailureRest = 600;
constexpr size_t failuresKept = 4096;

double monotonicNow() {
    return static_cast<double>(g_get_monotonic_time()) / 1e6;
}

double now() {
    return static_cast<double>(g_get_real_time()) / 1e6;
}

} // namespace

MKImageLoader& MKImageLoader::shared() {
    static auto* const loader = new MKImageLoader;
    return *loader;
}

void MKImageLoader::beginWanting() {
    ++_wish;
}

const MKImageStatus& MKImageLoader::want(const MKImageKey& key, const std::shared_ptr<const MKImageSet>& set,
                                         double rank) {
    const auto [found, isNew] = _entries.try_emplace(key);
    Entry& entry = found->second;
    if (isNew) {
        entry.set = set;
        entry.host = set->host(key);
        settleFromMemory(key, entry);
    }
    entry.rank = entry.wish == _wish ? std::min(entry.rank, rank) : rank;
    entry.wish = _wish;
    return entry.status;
}

void MKImageLoader::settleFromMemory(const MKImageKey& key, Entry& entry) {
    if (const auto kept = _kept.find(key)) {
        if (kept->freshUntil > now()) {
            settle(entry, {.state = MKImageStatus::State::Ready,
                           .image = kept->image,
                           .freshUntil = kept->freshUntil,
                           .failure = {}});
            return;
        }
    }
    if (const auto failure = _failures.find(key);
        failure != _failures.end() && failure->second.until > monotonicNow()) {
        settle(entry, failure->second.status);
    }
}

void MKImageLoader::endWanting() {
    std::erase_if(_entries, [this](const auto& entry) { return entry.second.wish != _wish; });
    startRequests();
}

void MKImageLoader::startRequests() {
    using Step = Entry::Step;
    std::vector<std::pair<const MKImageKey*, Entry*>> ready;
    std::unordered_map<std::string, unsigned> loading;
    unsigned looking = 0;
    for (auto& [key, entry] : _entries) {
        looking += entry.step == Step::Looking;
        loading[entry.host] += entry.step == Step::Loading;
        if (entry.step == Step::Waiting || entry.step == Step::WaitingForHost) {
            ready.emplace_back(&key, &entry);
        }
    }
    std::sort(ready.begin(), ready.end(), [](const auto& a, const auto& b) { return a.second->rank < b.second->rank; });
    for (const auto& [key, entry] : ready) {
        if (entry->step == Step::Waiting && looking < maximumLooking) {
            ++looking;
            begin(*key, *entry);
        } else if (entry->step == Step::WaitingForHost && loading[entry->host] < maximumRequestsToAHost) {
            ++loading[entry->host];
            entry->step = Step::Loading;
            entry->request->load();
        }
    }
}

void MKImageLoader::begin(const MKImageKey& key, Entry& entry) {
    entry.step = Entry::Step::Looking;
    ++entry.attempts;
    entry.request =
        entry.set->request(key, {.needsHost =
                                     [this, key] {
                                         _entries.at(key).step = Entry::Step::WaitingForHost;
                                         startRequests();
                                     },
                                 .ended = [this, key](MKImageResult result) { ended(key, std::move(result)); }});
    entry.request->begin();
}

// Requests are owned by their entries alone: one that reports is wanted still.
void MKImageLoader::ended(const MKImageKey& key, MKImageResult result) {
    Entry& entry = _entries.at(key);
    entry.request = nullptr;
    if (!result.failure.empty()) {
        failed(key, entry, result);
    } else {
        _failures.erase(key);
        _hostFailures.erase(entry.host);
        MKImageStatus status;
        status.state = result.image ? MKImageStatus::State::Ready : MKImageStatus::State::Absent;
        status.image = result.image;
        status.freshUntil = result.freshUntil;
        if (result.image) {
            _kept.insert(key, std::make_shared<const Kept>(Kept{result.image, result.freshUntil}));
        } else {
            remember(key, status, absenceRest);
        }
        settle(entry, std::move(status));
        noteChange();
    }
    startRequests();
}

void MKImageLoader::failed(const MKImageKey& key, Entry& entry, const MKImageResult& result) {
    const unsigned inARow = result.mayPass ? ++_hostFailures[entry.host] : 0;
    const int allowed = inARow >= failuresOfABadHost ? 1 : maximumAttempts;
    const double rest = std::max(firstRest * std::exp2(entry.attempts - 1), result.retryAfter);
    if (result.mayPass && entry.attempts < allowed && rest <= longestRest) {
        entry.step = Entry::Step::Resting;
        entry.rest.start(dispatch_get_main_queue(), rest, [this, key] {
            _entries.at(key).step = Entry::Step::Waiting; // the timer goes with its entry
            startRequests();
        });
        return;
    }
    const MKImageStatus status{
        .state = MKImageStatus::State::Failed, .image = nullptr, .failure = result.failure, .mayPass = result.mayPass};
    remember(key, status, std::max(result.mayPass ? failureRest : lastingFailureRest, result.retryAfter));
    settle(entry, status);
    noteChange();
}

void MKImageLoader::remember(const MKImageKey& key, const MKImageStatus& status, double rest) {
    if (_failures.size() >= failuresKept) {
        _failures.clear();
    }
    Failure& failure = _failures[key];
    failure.status = status;
    failure.until = monotonicNow() + std::min(rest * std::exp2(failure.count), longestFailureRest);
    failure.count = std::min(failure.count + 1, 16);
}

void MKImageLoader::settle(Entry& entry, MKImageStatus status) {
    entry.step = Entry::Step::Settled;
    entry.status = std::move(status);
}

void MKImageLoader::noteChange() {
    if (_changeIsQueued) {
        return;
    }
    _changeIsQueued = true;
    dispatch_async(dispatch_get_main_queue(), [this] {
        _changeIsQueued = false;
        if (_changed) {
            _changed();
        }
    });
}

std::shared_ptr<const MKTileImage> MKImageLoader::imageAtHand(const MKImageKey& key) {
    if (const auto entry = _entries.find(key); entry != _entries.end() && entry->second.status.image) {
        return entry->second.status.image;
    }
    const auto kept = _kept.find(key);
    return kept ? kept->image : nullptr;
}

void MKImageLoader::forgetAll() {
    _kept.removeAll();
    _failures.clear();
    _hostFailures.clear();
}

size_t MKImageLoader::byteSize() const {
    size_t size = _kept.byteSize();
    for (const auto& [key, entry] : _entries) {
        size += entry.status.image ? entry.status.image->byteSize() : 0;
    }
    return size;
}

} // namespace veyra
