// Makes the test's own thread the main queue, and iterates it when the test says so.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace veyra {

class MainQueueFixture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        // Never destroyed: views may be on their way to it.
        static DispatchQueue* const queue = [] {
            GMainContext* const context = g_main_context_default();
            g_main_context_acquire(context);
            auto* const made = new DispatchQueue(context, "main");
            setMainQueue(made);
            return made;
        }();
        ASSERT_TRUE(queue->isCurrent());
    }
    void TearDown() override { drainMainQueue(); }

    static void drainMainQueue() {
        while (g_main_context_iteration(g_main_context_default(), FALSE)) {
        }
    }
    /// Iterates until the condition holds; false when it does not within `seconds`.
    static bool runMainQueueUntil(const std::function<bool()>& condition, double seconds = 5) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= end)
                return false;
            if (!g_main_context_iteration(g_main_context_default(), FALSE))
                g_usleep(1000);
        }
        return true;
    }
    static void runMainQueueFor(double seconds) {
        runMainQueueUntil([] { return false; }, seconds);
    }
};

} // namespace veyra
