// Serial executors on GMainContexts. A process has two, installed by its host before the first view exists: the main
// queue (map, views, gestures, downloads, drawing) and the web thread (script engine). Blocks run in the order in which
// they were queued, each with its exceptions caught and logged. Queuing is allowed on any thread and never waits.
// Blocks run in slices of a few milliseconds, between which the context's other sources get their turn.
#pragma once

#include <glib.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace veyra {

using Block = std::function<void()>;

class DispatchQueue {
public:
    /// A queue that runs on the thread that iterates `context` (referenced). `name` appears in log lines.
    DispatchQueue(GMainContext* context, const char* name);
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;
    /// Drops what has not run; a block that runs just now finishes. No thread may use the queue any more; process-wide
    /// queues are never destroyed.
    ~DispatchQueue();

    void async(Block block);
    /// Queues the block and waits until it has run; on the queue's own thread it runs at once. For hosts only.
    void sync(const Block& block);
    /// True on the thread that runs the queue's blocks: the one that iterates the context just now, or holds it
    /// acquired.
    bool isCurrent() const;
    /// Blocks queued so far. A host that asks twice knows whether anything has been queued in between. Any thread.
    uint64_t queuedBlocks() const;
    GMainContext* context() const { return _context; }
    /// Blocks that have been queued and not run yet, the running one not counted. Any thread.
    size_t waitingBlocks() const;
    /// Blocks that have been started so far. Any thread.
    uint64_t startedBlocks() const;

private:
    /// What the queue shares with its source, which may be at work on another thread while the queue is destroyed.
    struct State;

    GMainContext* const _context;
    const char* const _name;
    const std::shared_ptr<State> _state;
};

/// Runs the block and logs what it throws: nothing that a page does may end the process.
void runGuarded(const char* where, const Block& block);

/// Installs the main queue for the process. Called once, by the host, before any view exists; the queue is never
/// destroyed. A later call replaces the queue. While its blocks run, its context is the thread-default one of its
/// thread: GIO reports there.
void setMainQueue(DispatchQueue* queue);
/// The main queue; a host has installed it. Throws NSException (NSInternalInconsistencyException) when none has.
DispatchQueue& dispatch_get_main_queue();
inline void dispatch_async(DispatchQueue& queue, Block block) {
    queue.async(std::move(block));
}

/// A timer on a queue. Made, cancelled and destroyed on the queue's thread; its block runs there.
class DispatchTimer {
public:
    DispatchTimer() = default;
    ~DispatchTimer() { cancel(); }
    DispatchTimer(const DispatchTimer&) = delete;
    DispatchTimer& operator=(const DispatchTimer&) = delete;

    /// Runs the block once after `seconds` (at once on the next turn when that is not above 0); a timer that was
    /// running is cancelled first. The block may restart or destroy the timer.
    void start(DispatchQueue& queue, double seconds, Block block);
    void cancel();
    bool isRunning() const { return _source != nullptr; }

private:
    GSource* _source = nullptr;
    Block _block;
};

} // namespace veyra
