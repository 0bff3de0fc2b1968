#include "Platform/Foundation/DispatchQueue.h"

#include "Tests/Platform/Foundation/CapturedLog.h"
#include "Tests/Platform/Foundation/QueueThread.h"
#include "Tests/Platform/Foundation/Raised.h"

#include <gtest/gtest.h>

#include <chrono>
#include <new>
#include <numeric>
#include <stdexcept>

namespace veyra {
namespace {

using namespace std::chrono_literals;

std::vector<int> countTo(int end) {
    std::vector<int> numbers(static_cast<size_t>(end));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

TEST(DispatchQueue, RunsBlocksInTheOrderInWhichTheyWereQueued) {
    QueueThread thread;
    DispatchQueue queue(thread.context(), "test");
    std::vector<int> order;
    for (int i = 0; i < 10000; ++i)
        queue.async([&order, i] { order.push_back(i); });
    queue.sync([] {});
    EXPECT_EQ(order, countTo(10000));
}

TEST(DispatchQueue, KeepsTheOrderOfEachOfManyThreads) {
    QueueThread thread;
    DispatchQueue queue(thread.context(), "test");
    std::vector<int> first;
    std::vector<int> second;
    const auto fill = [&queue](std::vector<int>& order) {
        for (int i = 0; i < 5000; ++i)
            queue.async([&order, i] { order.push_back(i); });
    };
    std::thread other([&] { fill(second); });
    fill(first);
    other.join();
    queue.sync([] {});
    EXPECT_EQ(first, countTo(5000));
    EXPECT_EQ(second, countTo(5000));
}

TEST(DispatchQueue, RunsBlocksOnTheThreadOfItsContext) {
    QueueThread thread;
    DispatchQueue queue(thread.context(), "test");
    std::thread::id ran;
    bool current = false;
    queue.sync([&] {
        ran = std::this_thread::get_id();
        current = queue.isCurrent();
    });
    EXPECT_EQ(ran, thread.threadId());
    EXPECT_TRUE(current);
    EXPECT_FALSE(queue.isCurrent());
    EXPECT_EQ(queue.context(), thread.context());
}

TEST(DispatchQueue, RunsASynchronousBlockAtOnceOnItsOwnThread) {
    QueueThread thread;
    DispatchQueue queue(thread.context(), "test");
    std::vector<std::string> order;
    queue.sync([&] {
        queue.async([&] { order.emplace_back("later"); });
        queue.sync([&] { order.emplace_back("at once"); });
    });
    queue.sync([] {});
    EXPECT_EQ(order, (std::vector<std::string>{"at once", "later"}));
}

TEST(DispatchQueue, RunsBlocksThatBlocksQueueAfterThoseThatWait) {
    QueueThread thread;
    DispatchQueue queue(thread.context(), "test");
    std::vector<int> order;
    queue.sync([&] {
        queue.async([&] {
            order.push_back(1);
            queue.async([&] { order.push_back(3); });
        });
        queue.async([&] { order.push_back(2); });
    });
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(DispatchQueue, DestroysABlockOnItsThreadAfterItRan) {
    QueueThread thread;
    DispatchQueue queue(thread.context(), "test");
    std::vector<std::string> order;
    std::thread::id destroyedOn;
    struct Noticing {
        std::vector<std::string>& order;
        std::thread::id& thread;
        DispatchQueue& queue;
        ~Noticing() {
            order.emplace_back("destroyed");
            thread = std::this_thread::get_id();
            queue.async([&o = order] { o.emplace_back("queued by the destructor"); }); // the mutex is free
        }
    };
    queue.sync([&] {
        queue.async(
            [held = std::make_shared<Noticing>(order, destroyedOn, queue)] { held->order.emplace_back("ran"); });
        queue.async([&] { order.emplace_back("next"); });
    });
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_EQ(order, (std::vector<std::string>{"ran", "destroyed", "next", "queued by the destructor"}));
    EXPECT_EQ(destroyedOn, thread.threadId());
}

TEST(DispatchQueue, DropsWhatHasNotRunWhenItIsDestroyed) {
    GMainContext* const context = g_main_context_new();
    const auto held = std::make_shared<int>(0);
    {
        DispatchQueue queue(context, "test");
        queue.async([held] { ++*held; });
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
    while (g_main_context_iteration(context, FALSE)) {
    }
    EXPECT_EQ(*held, 0);
    g_main_context_unref(context);
}

TEST(DispatchQueue, MayBeDestroyedWhileItsThreadFinishesABlock) {
    QueueThread thread;
    for (int i = 0; i < 200; ++i) {
        const auto queue = std::make_unique<DispatchQueue>(thread.context(), "test");
        queue->sync([] {}); // the queue's thread is still on its way out of the block
    }
    DispatchQueue queue(thread.context(), "test");
    bool ran = false;
    queue.sync([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(DispatchQueue, GoesOnAfterABlockThrewAndLogsWhatItThrew) {
    const CapturedLog log;
    QueueThread thread;
    DispatchQueue queue(thread.context(), "the map's queue");
    queue.async([] { throw NSException(NSRangeException, "100% past \xc3\xa9 the end"); });
    queue.async([] { throw std::bad_alloc(); });
    queue.async([] { throw std::runtime_error("broken"); });
    queue.async([] { throw 5; });
    int ran = 0;
    queue.sync([&] { ++ran; });
    queue.sync([] { throw std::runtime_error("waited for"); });
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{
                  "message: Uncaught NSException in the map's queue: NSRangeException: 100% past \xc3\xa9 the end",
                  "message: Out of memory in the map's queue", "message: Uncaught exception in the map's queue: broken",
                  "message: Uncaught exception of unknown type in the map's queue",
                  "message: Uncaught exception in the map's queue: waited for"}));
}

/// Blocks that queue each other for ever, and a source of the lowest priority beside them.
TEST(DispatchQueue, LeavesOtherSourcesTheirTurnDuringAFlood) {
    GMainContext* const context = g_main_context_new();
    DispatchQueue queue(context, "test");
    bool idleRan = false;
    GSource* const idle = g_idle_source_new();
    g_source_set_priority(idle, G_PRIORITY_LOW);
    g_source_set_callback(
        idle,
        [](gpointer flag) -> gboolean {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        },
        &idleRan, nullptr);
    g_source_attach(idle, context);
    Block again;
    again = [&] { queue.async(again); };
    queue.async(again);
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (!idleRan && std::chrono::steady_clock::now() < deadline)
        g_main_context_iteration(context, FALSE);
    EXPECT_TRUE(idleRan);
    g_source_unref(idle);
    g_main_context_unref(context);
}

TEST(DispatchQueue, RunsNoMoreThanASliceInARow) {
    GMainContext* const context = g_main_context_new();
    DispatchQueue queue(context, "test");
    int ran = 0;
    for (int i = 0; i < 100; ++i)
        queue.async([&ran] {
            std::this_thread::sleep_for(1ms);
            ++ran;
        });
    g_main_context_iteration(context, TRUE);
    EXPECT_GE(ran, 1);
    EXPECT_LE(ran, 8);
    while (ran < 100)
        g_main_context_iteration(context, TRUE);
    EXPECT_EQ(ran, 100);
    g_main_context_unref(context);
}

TEST(DispatchQueue, IsCurrentWhereTheContextIsHeld) {
    GMainContext* const context = g_main_context_new();
    const DispatchQueue queue(context, "test");
    EXPECT_FALSE(queue.isCurrent());
    ASSERT_TRUE(g_main_context_acquire(context));
    EXPECT_TRUE(queue.isCurrent());
    g_main_context_release(context);
    g_main_context_unref(context);
}

TEST(DispatchQueue, IsInstalledAsTheMainQueue) {
    setMainQueue(nullptr);
    EXPECT_EQ(raisedBy([] { dispatch_get_main_queue(); }),
              "NSInternalInconsistencyException: No main queue is installed");
    QueueThread thread;
    DispatchQueue first(thread.context(), "first");
    DispatchQueue second(thread.context(), "second");
    setMainQueue(&first);
    EXPECT_EQ(&dispatch_get_main_queue(), &first);
    setMainQueue(&second);
    EXPECT_EQ(&dispatch_get_main_queue(), &second);
    bool ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] { ran = true; });
    second.sync([] {});
    EXPECT_TRUE(ran);
    setMainQueue(nullptr);
}

TEST(RunGuarded, LetsNothingThrough) {
    const CapturedLog log;
    bool ran = false;
    runGuarded("a test", [&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(log.lines().empty());
    runGuarded("a test", [] { throw NSException(NSInvalidArgumentException, "why"); });
    runGuarded("a test", Block());
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"message: Uncaught NSException in a test: NSInvalidArgumentException: why",
                                        "message: Uncaught exception in a test: bad_function_call"}));
}

} // namespace
} // namespace veyra
