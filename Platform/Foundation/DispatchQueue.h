// Serial executors on GMainContexts. A process has two, installed by its host before the first view exists: the main
// queue (map, views, gestures, downloads, drawing) and the web thread (script engine). Blocks run in the order in which
// they were queued, each with its exceptions caught and logged. Queuing is allowed on any thread and never waits. Blocks
// run in slices of a few milliseconds, between which the context's other sources get their turn.
#pragma once

#include <glib.h>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace veyra {

using Block = std::function<void()>;

class DispatchQueue {
public:
    /// A queue that runs on the thread that iterates `context` (referenced). `name` appears in log lines.
    DispatchQueue(GMainContext* context, const char* name);
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;
    /// Drops what has not run. No thread may use the queue any more; process-wide queues are never destroyed.
    ~DispatchQueue();

    void async(Block block);
    /// Queues the block and waits until it has run; on the queue's own thread it runs at once. For hosts only.
    void sync(const Block& block);
    /// True on the thread that runs the queue's blocks: the one that iterates the context just now, or holds it acquired.
    bool isCurrent() const;
    GMainContext* context() const { return _context; }

private:
    static gboolean drain(gpointer self);
    /// Takes the oldest block; false when there is none.
    bool takeBlock(Block& block);

    GMainContext* const _context;
    const char* const _name;
    GSource* _source;
    std::mutex _mutex;
    std::deque<Block> _blocks; // guarded by _mutex
    gint64 _sliceEnd = 0;      // the monotonic time at which the running slice ends, 0 between slices; guarded by _mutex
};

/// Runs the block and logs what it throws: nothing that a page does may end the process.
void runGuarded(const char* where, const Block& block);

/// Installs the main queue for the process. Called once, by the host, before any view exists; the queue is never destroyed.
/// A later call replaces the queue.
void setMainQueue(DispatchQueue* queue);
/// The main queue; a host has installed it. Throws NSException (NSInternalInconsistencyException) when none has.
DispatchQueue& dispatch_get_main_queue();
inline void dispatch_async(DispatchQueue& queue, Block block) { queue.async(std::move(block)); }

/// A timer on a queue. Made, cancelled and destroyed on the queue's thread; its block runs there.
class DispatchTimer {
public:
    DispatchTimer() = default;
    ~DispatchTimer() { cancel(); }
    DispatchTimer(const DispatchTimer&) = delete;
    DispatchTimer& operator=(const DispatchTimer&) = delete;

    /// Runs the block once after `seconds` (at once on the next turn when that is not above 0); a timer that was running is
    /// cancelled first. The block may restart or destroy the timer.
    void start(DispatchQueue& queue, double seconds, Block block);
    void cancel();
    bool isRunning() const { return _source != nullptr; }

private:
    GSource* _source = nullptr;
    Block _block;
};

} // namespace veyra
