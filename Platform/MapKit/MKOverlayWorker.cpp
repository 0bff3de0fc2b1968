#include "Platform/MapKit/MKOverlayWorker.h"

#include <pthread.h>
#include <thread>

namespace veyra {

MKOverlayWorker& MKOverlayWorker::shared() {
    static auto* const worker = new MKOverlayWorker;
    return *worker;
}

WorkQueue& MKOverlayWorker::bandQueue() {
    static auto* const queue = new WorkQueue;
    return *queue;
}

MKOverlayWorker::MKOverlayWorker() {
    std::thread([this] {
        pthread_setname_np(pthread_self(), "veyra-overlays");
        work();
    }).detach();
}

void MKOverlayWorker::run(std::function<void()> job) {
    {
        const NSLockGuard guard(_mutex);
        _jobs.push_back(std::move(job));
    }
    _jobsCame.notify_one();
}

std::function<void()> MKOverlayWorker::take() {
    const NSLockGuard guard(_mutex);
    while (_jobs.empty()) {
        _jobsCame.wait(_mutex);
    }
    auto job = std::move(_jobs.front());
    _jobs.pop_front();
    return job;
}

void MKOverlayWorker::work() {
    for (;;) {
        take()();
    }
}

} // namespace veyra
