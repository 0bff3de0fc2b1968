#include "Platform/Foundation/WorkQueue.h"

#include "Tests/Platform/Foundation/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

TEST(WorkQueue, SharedRunsAreOneForEachNumber) {
    std::array<std::atomic<int>, 1000> runs{};
    dispatch_apply(runs.size(), dispatch_get_global_queue(), [&](size_t number) { ++runs[number]; });
    EXPECT_TRUE(std::ranges::all_of(runs, [](const auto& count) { return count == 1; }));
    dispatch_apply(0, dispatch_get_global_queue(), [](size_t) { FAIL(); });
}

TEST(WorkQueue, SharedRunsGoOnAtTheSameTime) {
    std::atomic<int> arrived{0};
    dispatch_apply(2, dispatch_get_global_queue(), [&](size_t) {
        ++arrived;
        waitUntil([&] { return arrived == 2; });
    });
}

TEST(WorkQueue, SharedRunsDoNotWaitForThreadsThatAreBusy) {
    std::atomic<bool> released{false};
    std::atomic<unsigned> busy{0};
    for (unsigned i = 0; i < WorkQueue::threadCount; ++i)
        dispatch_async(dispatch_get_global_queue(), [&] {
            ++busy;
            while (!released)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            --busy;
        });
    waitUntil([&] { return busy == WorkQueue::threadCount; });
    int runs = 0; // all on this thread
    dispatch_apply(100, dispatch_get_global_queue(), [&](size_t) { ++runs; });
    EXPECT_EQ(runs, 100);
    released = true;
    waitUntil([&] { return busy == 0; });
}

TEST(WorkQueue, WhatASharedRunThrowsIsThrownWhenAllHaveEnded) {
    std::atomic<int> runs{0};
    EXPECT_THROW(dispatch_apply(50, dispatch_get_global_queue(),
                                [&](size_t number) {
                                    ++runs;
                                    if (number % 10 == 3)
                                        throw std::runtime_error("broken");
                                }),
                 std::runtime_error);
    EXPECT_EQ(runs, 50);
}

} // namespace veyra
