#include "Platform/Foundation/WorkQueue.h"

#include <pthread.h>
#include <thread>

namespace veyra {

namespace {

constexpr unsigned threadCount = 2;

} // namespace

WorkQueue& dispatch_get_global_queue() {
    static auto* const queue = new WorkQueue;
    return *queue;
}

void WorkQueue::async(Block block) {
    bool starts = false;
    {
        const NSLockGuard guard(_mutex);
        _blocks.push_back(std::move(block));
        starts = !std::exchange(_started, true);
    }
    for (unsigned i = 0; starts && i < threadCount; ++i)
        std::thread([this] {
            pthread_setname_np(pthread_self(), "veyra-work");
            run();
        }).detach();
    _blocksCame.notify_one();
}

Block WorkQueue::takeBlock() {
    const NSLockGuard guard(_mutex);
    while (_blocks.empty())
        _blocksCame.wait(_mutex);
    Block block = std::move(_blocks.front());
    _blocks.pop_front();
    return block;
}

void WorkQueue::run() {
    for (;;)
        runGuarded("work queue", takeBlock());
}

} // namespace veyra
