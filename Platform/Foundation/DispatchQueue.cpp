#include "Platform/Foundation/DispatchQueue.h"

#include "Platform/Foundation/NSException.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace veyra {
namespace {

/// How long blocks run in a row, and how long other sources then have the context for themselves: a source that is
/// always ready would keep those of lower priority from ever running. Microseconds.
constexpr gint64 sliceLength = 8000;
constexpr gint64 sliceGap = 1000;

gboolean dispatchSource(GSource*, GSourceFunc callback, gpointer data) {
    return callback(data);
}

/// A source that runs its callback at its ready time, and `release` with the same data when it is done with it.
GSource* makeSource(GSourceFunc callback, gpointer data, GDestroyNotify release) {
    static GSourceFuncs functions{nullptr, nullptr, dispatchSource, nullptr, nullptr, nullptr};
    GSource* source = g_source_new(&functions, sizeof(GSource));
    g_source_set_callback(source, callback, data, release);
    return source;
}

void destroySource(GSource* source) {
    g_source_destroy(source);
    g_source_unref(source);
}

std::atomic<DispatchQueue*> mainQueue = nullptr;

} // namespace

struct DispatchQueue::State : std::enable_shared_from_this<State> {
    explicit State(const char* queueName) : name(queueName) {}

    /// Takes the oldest block; false when there is none.
    bool take(Block& block);
    /// Runs what waits, but no more than there is now and no longer than the slice lasts.
    void drain();
    /// Settles when the source runs again, after a drain that had until `end`.
    void finishSlice(gint64 end);

    const char* const name;
    std::mutex mutex;
    GSource* source = nullptr;   // guarded by mutex; null once the queue is destroyed
    std::deque<Block> blocks;    // guarded by mutex
    uint64_t queued = 0;         // blocks, ever; guarded by mutex
    uint64_t started = 0;        // guarded by mutex
    gint64 sliceEnd = 0;         // monotonic time in microseconds, 0 between slices; guarded by mutex
    std::shared_ptr<State> self; // held for the source
};

bool DispatchQueue::State::take(Block& block) {
    const std::lock_guard guard(mutex);
    if (blocks.empty())
        return false;
    block = std::move(blocks.front());
    blocks.pop_front();
    ++started;
    return true;
}

void DispatchQueue::State::drain() {
    const auto alive = shared_from_this();
    size_t count = 0;
    gint64 end = 0;
    {
        const std::lock_guard guard(mutex);
        if (!source)
            return;
        g_source_set_ready_time(source, -1);
        count = blocks.size();
        if (sliceEnd == 0)
            sliceEnd = g_get_monotonic_time() + sliceLength;
        end = sliceEnd;
    }
    Block block;
    while (count-- > 0 && take(block)) {
        runGuarded(name, block);
        block = nullptr; // what the block holds goes away here, on this thread and outside the mutex
        if (g_get_monotonic_time() >= end)
            break;
    }
    finishSlice(end);
}

void DispatchQueue::State::finishSlice(gint64 end) {
    const std::lock_guard guard(mutex);
    const gint64 now = g_get_monotonic_time();
    const bool isOver = now >= end;
    if (isOver || blocks.empty())
        sliceEnd = 0;
    if (source && !blocks.empty())
        g_source_set_ready_time(source, isOver ? now + sliceGap : 0);
}

DispatchQueue::DispatchQueue(GMainContext* context, const char* name)
    : _context(g_main_context_ref(context)), _name(name), _state(std::make_shared<State>(name)) {
    const auto drain = [](gpointer state) -> gboolean {
        static_cast<State*>(state)->drain();
        return G_SOURCE_CONTINUE;
    };
    const auto release = [](gpointer state) { const auto last = std::move(static_cast<State*>(state)->self); };
    _state->self = _state;
    _state->source = makeSource(drain, _state.get(), release);
    g_source_set_name(_state->source, name);
    g_source_attach(_state->source, _context);
}

DispatchQueue::~DispatchQueue() {
    std::deque<Block> dropped;
    GSource* source = nullptr;
    {
        const std::lock_guard guard(_state->mutex);
        dropped.swap(_state->blocks);
        source = std::exchange(_state->source, nullptr);
    }
    destroySource(source);
    dropped.clear();
    g_main_context_unref(_context);
}

void DispatchQueue::async(Block block) {
    const std::lock_guard guard(_state->mutex);
    _state->blocks.push_back(std::move(block));
    ++_state->queued;
    // A queue that was not empty has been woken already. Waking under the mutex lets the block end the queue's life.
    if (_state->blocks.size() == 1)
        g_source_set_ready_time(_state->source, 0);
}

size_t DispatchQueue::waitingBlocks() const {
    const std::lock_guard guard(_state->mutex);
    return _state->blocks.size();
}

uint64_t DispatchQueue::startedBlocks() const {
    const std::lock_guard guard(_state->mutex);
    return _state->started;
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

bool DispatchQueue::isCurrent() const {
    return g_main_context_is_owner(_context);
}

uint64_t DispatchQueue::queuedBlocks() const {
    const std::lock_guard guard(_state->mutex);
    return _state->queued;
}

void setMainQueue(DispatchQueue* queue) {
    mainQueue = queue;
}

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
        this, nullptr);
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
