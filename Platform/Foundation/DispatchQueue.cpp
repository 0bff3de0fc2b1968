#include "Platform/Foundation/DispatchQueue.h"

#include "Platform/Foundation/NSException.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <utility>

namespace veyra {
namespace {

/// How long blocks run in a row, and how long other sources then have the context for themselves: a source that is always
/// ready would keep those of lower priority from ever running. Microseconds.
constexpr gint64 sliceLength = 8000;
constexpr gint64 sliceGap = 1000;

gboolean dispatchSource(GSource*, GSourceFunc callback, gpointer data) { return callback(data); }

/// A source that runs its callback at its ready time.
GSource* makeSource(GSourceFunc callback, gpointer data) {
    static GSourceFuncs functions{nullptr, nullptr, dispatchSource, nullptr, nullptr, nullptr};
    GSource* source = g_source_new(&functions, sizeof(GSource));
    g_source_set_callback(source, callback, data, nullptr);
    return source;
}

void destroySource(GSource* source) {
    g_source_destroy(source);
    g_source_unref(source);
}

std::atomic<DispatchQueue*> mainQueue = nullptr;

} // namespace

DispatchQueue::DispatchQueue(GMainContext* context, const char* name)
    : _context(g_main_context_ref(context)), _name(name), _source(makeSource(drain, this)) {
    g_source_set_name(_source, name);
    g_source_attach(_source, _context);
}

DispatchQueue::~DispatchQueue() {
    destroySource(_source);
    std::deque<Block> dropped;
    {
        const std::lock_guard guard(_mutex);
        dropped.swap(_blocks);
    }
    dropped.clear();
    g_main_context_unref(_context);
}

void DispatchQueue::async(Block block) {
    const std::lock_guard guard(_mutex);
    _blocks.push_back(std::move(block));
    // A queue that was not empty has been woken already. Waking under the mutex lets the last block end the queue's life.
    if (_blocks.size() == 1)
        g_source_set_ready_time(_source, 0);
}

void DispatchQueue::sync(const Block& block) {
    if (isCurrent()) {
        runGuarded(_name, block);
        return;
    }
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
    async([&] {
        runGuarded(_name, block);
        const std::lock_guard guard(mutex);
        done = true;
        changed.notify_one(); // under the mutex: the waiter's stack is gone once it wakes
    });
    std::unique_lock guard(mutex);
    changed.wait(guard, [&] { return done; });
}

bool DispatchQueue::isCurrent() const { return g_main_context_is_owner(_context); }

bool DispatchQueue::takeBlock(Block& block) {
    const std::lock_guard guard(_mutex);
    if (_blocks.empty())
        return false;
    block = std::move(_blocks.front());
    _blocks.pop_front();
    return true;
}

gboolean DispatchQueue::drain(gpointer self) {
    DispatchQueue& queue = *static_cast<DispatchQueue*>(self);
    size_t count = 0;
    gint64 sliceEnd = 0;
    {
        const std::lock_guard guard(queue._mutex);
        g_source_set_ready_time(queue._source, -1);
        count = queue._blocks.size();
        if (queue._sliceEnd == 0)
            queue._sliceEnd = g_get_monotonic_time() + sliceLength;
        sliceEnd = queue._sliceEnd;
    }
    Block block;
    while (count-- > 0 && queue.takeBlock(block)) {
        runGuarded(queue._name, block);
        block = nullptr; // what the block holds goes away here, on this thread and outside the mutex
        if (g_get_monotonic_time() >= sliceEnd)
            break;
    }
    const std::lock_guard guard(queue._mutex);
    const gint64 now = g_get_monotonic_time();
    const bool sliceIsOver = now >= sliceEnd;
    if (sliceIsOver || queue._blocks.empty())
        queue._sliceEnd = 0;
    if (!queue._blocks.empty())
        g_source_set_ready_time(queue._source, sliceIsOver ? now + sliceGap : 0);
    return G_SOURCE_CONTINUE;
}

void setMainQueue(DispatchQueue* queue) { mainQueue = queue; }

DispatchQueue& dispatch_get_main_queue() {
    DispatchQueue* queue = mainQueue;
    if (!queue)
        throw NSException(NSInternalInconsistencyException, "No main queue is installed");
    return *queue;
}

void DispatchTimer::start(DispatchQueue& queue, double seconds, Block block) {
    constexpr double longest = 1e9;
    cancel();
    _block = std::move(block);
    _source = makeSource(
        [](gpointer self) -> gboolean {
            auto& timer = *static_cast<DispatchTimer*>(self);
            const Block running = std::move(timer._block);
            timer.cancel();
            runGuarded("DispatchTimer", running);
            return G_SOURCE_REMOVE;
        },
        this);
    const double delay = seconds > 0 ? std::min(seconds, longest) * 1e6 : 0;
    g_source_set_ready_time(_source, g_get_monotonic_time() + static_cast<gint64>(delay));
    g_source_attach(_source, queue.context());
}

void DispatchTimer::cancel() {
    if (!_source)
        return;
    destroySource(std::exchange(_source, nullptr));
    const Block released = std::exchange(_block, nullptr);
}

} // namespace veyra
