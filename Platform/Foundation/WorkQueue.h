// Threads for work that takes too long for the main queue, such as decoding images. One set a process, started with the
// first block and never ended. Queuing is allowed on any thread and never waits.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLock.h"

#include <condition_variable>
#include <deque>

namespace veyra {

class WorkQueue {
public:
    WorkQueue() = default;
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;
    /// The threads never end.
    ~WorkQueue() = delete;

    static constexpr unsigned threadCount = 2;

    /// Runs the block on one of the threads; blocks begin in the order of queuing. What it throws is logged. Throws
    /// std::system_error when not even one thread can be made.
    void async(Block block) VEYRA_EXCLUDES(_mutex);

private:
    void startThreads() VEYRA_REQUIRES(_mutex);
    void run();
    Block takeBlock() VEYRA_EXCLUDES(_mutex);

    NSLock _mutex;
    std::condition_variable_any _blocksCame;
    std::deque<Block> _blocks VEYRA_GUARDED_BY(_mutex);
    unsigned _threads VEYRA_GUARDED_BY(_mutex) = 0;
};

/// The process's own.
WorkQueue& dispatch_get_global_queue();
inline void dispatch_async(WorkQueue& queue, Block block) {
    queue.async(std::move(block));
}
/// Runs the block with each number below `count`, on this thread and on those of the queue's that are free, and returns
/// when all runs have ended. They may run at the same time. What one throws is thrown on afterwards.
void dispatch_apply(size_t count, WorkQueue& queue, const std::function<void(size_t)>& block);

} // namespace veyra
