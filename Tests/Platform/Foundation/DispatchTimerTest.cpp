#include "Platform/Foundation/DispatchQueue.h"

#include "Tests/Platform/Foundation/CapturedLog.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <stdexcept>
#include <vector>

namespace veyra {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class DispatchTimerTest : public testing::Test {
protected:
    ~DispatchTimerTest() override { g_main_context_unref(_context); }

    /// Iterates the context until the condition holds; false when that takes more than ten seconds.
    template <class Condition>
    bool iterateUntil(Condition condition) {
        const auto deadline = Clock::now() + 10s;
        while (!condition()) {
            if (Clock::now() > deadline)
                return false;
            g_main_context_iteration(_context, FALSE);
        }
        return true;
    }
    void iterateFor(Clock::duration duration) {
        const auto end = Clock::now() + duration;
        while (Clock::now() < end)
            g_main_context_iteration(_context, FALSE);
    }

    GMainContext* const _context = g_main_context_new();
    DispatchQueue _queue{_context, "test"};
};

TEST_F(DispatchTimerTest, RunsOnceAfterItsTime) {
    int ran = 0;
    DispatchTimer timer;
    const auto start = Clock::now();
    timer.start(_queue, 0.03, [&] { ++ran; });
    EXPECT_TRUE(timer.isRunning());
    ASSERT_TRUE(iterateUntil([&] { return ran > 0; }));
    EXPECT_GE(Clock::now() - start, 30ms);
    EXPECT_FALSE(timer.isRunning());
    iterateFor(50ms);
    EXPECT_EQ(ran, 1);
}

TEST_F(DispatchTimerTest, RunsOnTheNextTurnForTimesThatAreNotAboveZero) {
    for (const double seconds : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN()}) {
        bool ran = false;
        DispatchTimer timer;
        timer.start(_queue, seconds, [&] { ran = true; });
        EXPECT_FALSE(ran);
        EXPECT_TRUE(iterateUntil([&] { return ran; }));
    }
}

TEST_F(DispatchTimerTest, WaitsForAnEndlessTime) {
    bool ran = false;
    DispatchTimer timer;
    timer.start(_queue, std::numeric_limits<double>::infinity(), [&] { ran = true; });
    iterateFor(20ms);
    EXPECT_FALSE(ran);
    EXPECT_TRUE(timer.isRunning());
}

TEST_F(DispatchTimerTest, DoesNotRunAfterItWasCancelledAndLetsGoOfItsBlock) {
    const auto held = std::make_shared<int>(0);
    DispatchTimer timer;
    timer.start(_queue, 0.01, [held] { ++*held; });
    timer.cancel();
    EXPECT_FALSE(timer.isRunning());
    EXPECT_EQ(held.use_count(), 1);
    timer.cancel();
    {
        DispatchTimer shortLived;
        shortLived.start(_queue, 0.01, [held] { ++*held; });
    }
    EXPECT_EQ(held.use_count(), 1);
    iterateFor(30ms);
    EXPECT_EQ(*held, 0);
}

TEST_F(DispatchTimerTest, StartsAnew) {
    std::vector<int> ran;
    DispatchTimer timer;
    timer.start(_queue, 0.01, [&] { ran.push_back(1); });
    timer.start(_queue, 0.02, [&] { ran.push_back(2); });
    ASSERT_TRUE(iterateUntil([&] { return !ran.empty(); }));
    iterateFor(30ms);
    EXPECT_EQ(ran, std::vector<int>{2});
}

TEST_F(DispatchTimerTest, MayBeRestartedByItsBlock) {
    int ran = 0;
    DispatchTimer timer;
    Block step;
    step = [&] {
        if (++ran < 3)
            timer.start(_queue, 0.001, step);
    };
    timer.start(_queue, 0.001, step);
    ASSERT_TRUE(iterateUntil([&] { return ran == 3; }));
    EXPECT_FALSE(timer.isRunning());
}

TEST_F(DispatchTimerTest, MayBeDestroyedByItsBlock) {
    auto timer = std::make_unique<DispatchTimer>();
    const auto held = std::make_shared<int>(0);
    timer->start(_queue, 0, [&timer, held] {
        timer.reset();
        ++*held; // the block outlives its timer
    });
    ASSERT_TRUE(iterateUntil([&] { return *held == 1; }));
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(DispatchTimerTest, LogsWhatItsBlockThrows) {
    const CapturedLog log;
    DispatchTimer timer;
    timer.start(_queue, 0, [] { throw std::runtime_error("broken"); });
    ASSERT_TRUE(iterateUntil([&] { return !timer.isRunning(); }));
    EXPECT_EQ(log.lines(), std::vector<std::string>{"message: Uncaught exception in DispatchTimer: broken"});
}

} // namespace
} // namespace veyra
