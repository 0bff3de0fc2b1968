#include "Platform/Foundation/NSLock.h"

#include <gtest/gtest.h>

#include <thread>

namespace veyra {
namespace {

/// Whether another thread could take the lock just now.
bool isFree(NSLock& lock) {
    bool free = false;
    std::thread([&] {
        if (lock.tryLock()) {
            free = true;
            lock.unlock();
        }
    }).join();
    return free;
}

TEST(NSLock, IsHeldForTheScopeOfAGuard) {
    NSLock lock;
    EXPECT_TRUE(isFree(lock));
    {
        const NSLockGuard guard(lock);
        EXPECT_FALSE(isFree(lock));
    }
    EXPECT_TRUE(isFree(lock));
}

TEST(NSLock, KeepsThreadsApart) {
    NSLock lock;
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 20000; ++i) {
            const NSLockGuard guard(lock);
            ++count;
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 40000);
}

} // namespace
} // namespace veyra
