#include "Platform/Foundation/WorkQueue.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <pthread.h>
#include <system_error>
#include <thread>

namespace veyra {

namespace {

// Runs of one block that several threads share. A thread that comes late finds nothing left, and the block gone.
class SharedRuns {
public:
    SharedRuns(size_t count, const std::function<void(size_t)>& block) : _count(count), _block(block) {}

    void take() {
        for (size_t number; (number = _next.fetch_add(1, std::memory_order_relaxed)) < _count;) {
            try {
                _block(number);
            } catch (...) {
                if (!_hasThrown.exchange(true))
                    _thrown = std::current_exception();
            }
            if (_ended.fetch_add(1, std::memory_order_acq_rel) + 1 == _count)
                _ended.notify_one();
        }
    }
    void waitUntilEnded() {
        for (size_t ended; (ended = _ended.load(std::memory_order_acquire)) < _count;)
            _ended.wait(ended, std::memory_order_acquire);
        if (_thrown)
            std::rethrow_exception(_thrown);
    }

private:
    const size_t _count;
    const std::function<void(size_t)>& _block;
    std::atomic<size_t> _next{0}, _ended{0};
    std::atomic<bool> _hasThrown{false};
    std::exception_ptr _thrown; // of the first; read when all have ended
};

} // namespace

WorkQueue& dispatch_get_global_queue() {
    static auto* const queue = new WorkQueue;
    return *queue;
}

void WorkQueue::async(Block block) {
    {
        const NSLockGuard guard(_mutex);
        startThreads();
        _blocks.push_back(std::move(block));
    }
    _blocksCame.notify_one();
}

void WorkQueue::startThreads() {
    try {
        for (; _threads < threadCount; ++_threads)
            std::thread([this] {
                pthread_setname_np(pthread_self(), "veyra-work");
                run();
            }).detach();
    } catch (const std::system_error&) {
        if (_threads == 0)
            throw;
    }
}

Block WorkQueue::takeBlock() {
    const NSLockGuard guard(_mutex);
    while (_blocks.empty())
        _blocksCame.wait(_mutex);
    Block block = std::move(_blocks.front());
    _blocks.pop_front();
    return block;
}

void dispatch_apply(size_t count, WorkQueue& queue, const std::function<void(size_t)>& block) {
    const auto runs = std::make_shared<SharedRuns>(count, block);
    try {
        for (size_t helpers = std::min<size_t>(count, WorkQueue::threadCount + 1); helpers > 1; --helpers)
            queue.async([runs] { runs->take(); });
    } catch (const std::exception&) { // there are no threads or there is no memory: this thread does it all
    }
    runs->take();
    runs->waitUntilEnded();
}

void WorkQueue::run() {
    for (;;)
        runGuarded("work queue", takeBlock());
}

} // namespace veyra
