#include "Platform/MapKit/MKTileWorkers.h"

#include "Platform/MapKit/MKHeap.h"

#include <algorithm>
#include <pthread.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace veyra {

namespace {

// How nice the threads are: where processors are short, a frame of what there is comes before the next tile.
constexpr int behindFrames = 5;

} // namespace

MKTileWorkers::MKTileWorkers(unsigned count, Completion completion) : _completion(std::move(completion)) {
    for (unsigned i = 0; i < count; ++i) {
        std::thread([this] {
            pthread_setname_np(pthread_self(), "veyra-tiles");
            setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), behindFrames);
            run();
        }).detach();
    }
}

void MKTileWorkers::setJobs(std::vector<MKTileJob> jobs) {
    {
        const NSLockGuard guard(_mutex);
        std::erase_if(jobs,
                      [this](const MKTileJob& job) VEYRA_REQUIRES(_mutex) { return _underWay.contains(job.key); });
        std::reverse(jobs.begin(), jobs.end());
        _jobs.swap(jobs);
    }
    _workCame.notify_all();
}

void MKTileWorkers::acknowledge(const MKTileKey& key) {
    const NSLockGuard guard(_mutex);
    _underWay.erase(key);
}

void MKTileWorkers::doWhenIdle(Block work) {
    {
        const NSLockGuard guard(_mutex);
        _whenIdle.push_back(std::move(work));
    }
    _workCame.notify_one();
}

void MKTileWorkers::giveHeapBack() {
    {
        const NSLockGuard guard(_mutex);
        ++_heapsWantedBack;
    }
    _workCame.notify_all();
}

std::variant<MKTileJob, Block> MKTileWorkers::takeWork(uint64_t& heapsGivenBack) {
    const NSLockGuard guard(_mutex);
    while (_jobs.empty() && _whenIdle.empty() && heapsGivenBack == _heapsWantedBack) {
        _workCame.wait(_mutex);
    }
    if (_jobs.empty() && _whenIdle.empty()) {
        heapsGivenBack = _heapsWantedBack;
        return giveHeapOfThreadBack;
    }
    if (_jobs.empty()) {
        Block work = std::move(_whenIdle.front());
        _whenIdle.pop_front();
        return work;
    }
    MKTileJob job = std::move(_jobs.back());
    _jobs.pop_back();
    _underWay.insert(job.key);
    return job;
}

void MKTileWorkers::run() {
    uint64_t heapsGivenBack = 0;
    for (;;) {
        const auto work = takeWork(heapsGivenBack);
        if (const auto* job = std::get_if<MKTileJob>(&work)) {
            draw(*job);
        } else {
            std::get<Block>(work)();
        }
    }
}

void MKTileWorkers::draw(const MKTileJob& job) {
    MKTileResult result{job.key, nullptr, job.images.isWaiting ? std::string() : job.images.failure, job.images.mayPass,
                        job.images.distance()};
    try {
        result.tile = job.source->drawTileFromImages(job.key, job.images);
    } catch (const std::exception& exception) {
        result.failure = exception.what();
        result.mayPass = false;
    }
    _completion(std::move(result));
}

} // namespace veyra
