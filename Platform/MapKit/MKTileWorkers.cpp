#include "Platform/MapKit/MKTileWorkers.h"

#include <algorithm>
#include <pthread.h>
#include <thread>

namespace veyra {

MKTileWorkers::MKTileWorkers(unsigned count, Completion completion) : _completion(std::move(completion)) {
    for (unsigned i = 0; i < count; ++i) {
        std::thread([this] {
            pthread_setname_np(pthread_self(), "veyra-tiles");
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
    _jobsCame.notify_all();
}

void MKTileWorkers::acknowledge(const MKTileKey& key) {
    const NSLockGuard guard(_mutex);
    _underWay.erase(key);
}

MKTileJob MKTileWorkers::takeJob() {
    const NSLockGuard guard(_mutex);
    while (_jobs.empty()) {
        _jobsCame.wait(_mutex);
    }
    MKTileJob job = std::move(_jobs.back());
    _jobs.pop_back();
    _underWay.insert(job.key);
    return job;
}

void MKTileWorkers::run() {
    for (;;) {
        const MKTileJob job = takeJob();
        MKTileResult result{job.key, nullptr, job.images.isWaiting ? std::string() : job.images.failure,
                            job.images.mayPass, job.images.distance()};
        try {
            result.tile = job.source->drawTileFromImages(job.key, job.images);
        } catch (const std::exception& exception) {
            result.failure = exception.what();
            result.mayPass = false;
        }
        _completion(std::move(result));
    }
}

} // namespace veyra
