#include "Platform/Foundation/WorkQueue.h"

#include "Tests/Platform/Foundation/CapturedLog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace veyra {

namespace {

void waitUntil(const std::function<bool()>& condition) {
    for (int tries = 0; tries < 1000 && !condition(); ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_TRUE(condition());
}

} // namespace

TEST(WorkQueue, RunsEveryBlockOnAnotherThread) {
    std::atomic<int> ran{0};
    std::atomic<int> ranHere{0};
    const auto here = std::this_thread::get_id();
    for (int i = 0; i < 1000; ++i)
        dispatch_async(dispatch_get_global_queue(), [&] {
            ranHere += std::this_thread::get_id() == here;
            ++ran;
        });
    waitUntil([&] { return ran == 1000; });
    EXPECT_EQ(ranHere, 0);
}

TEST(WorkQueue, GoesOnAfterABlockThatThrows) {
    const CapturedLog log;
    std::atomic<bool> ran{false};
    dispatch_async(dispatch_get_global_queue(), [] { throw std::runtime_error("broken"); });
    dispatch_async(dispatch_get_global_queue(), [&] { ran = true; });
    waitUntil([&] { return ran && log.lines().size() == 1; });
    EXPECT_EQ(log.lines(), std::vector<std::string>{"message: Uncaught exception in work queue: broken"});
}

TEST(WorkQueue, ASlowBlockDoesNotKeepTheNextOneWaiting) {
    std::atomic<bool> released{false};
    std::atomic<bool> ran{false};
    dispatch_async(dispatch_get_global_queue(), [&] {
        while (!released)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    dispatch_async(dispatch_get_global_queue(), [&] { ran = true; });
    waitUntil([&] { return ran.load(); });
    released = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

} // namespace veyra
