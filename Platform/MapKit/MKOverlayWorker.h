// The thread that draws overlays, and those that help it with much to draw. One a process, started with the first job
// and never ended. Any thread may hand it work; none waits for it.
#pragma once

#include "Platform/Foundation/WorkQueue.h"

#include <condition_variable>
#include <deque>
#include <functional>

namespace veyra {

class MKOverlayWorker {
public:
    static MKOverlayWorker& shared();
    /// For the parts of one job: not the process's own queue, whose images should not wait for long lines.
    static WorkQueue& bandQueue();
    MKOverlayWorker(const MKOverlayWorker&) = delete;
    MKOverlayWorker& operator=(const MKOverlayWorker&) = delete;

    /// Runs the job, which must not throw, after those that came before.
    void run(std::function<void()> job) VEYRA_EXCLUDES(_mutex);

private:
    MKOverlayWorker();
    ~MKOverlayWorker() = default;
    void work();
    std::function<void()> take() VEYRA_EXCLUDES(_mutex);

    NSLock _mutex;
    std::condition_variable_any _jobsCame;
    std::deque<std::function<void()>> _jobs VEYRA_GUARDED_BY(_mutex);
};

} // namespace veyra
