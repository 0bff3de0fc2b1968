// A lock that is not recursive, with the annotations by which clang checks that guarded fields are read and written
// only while it is held.
#pragma once

#include <mutex>

#if defined(__clang__)
#define VEYRA_ANNOTATION(x) __attribute__((x))
#else
#define VEYRA_ANNOTATION(x)
#endif
#define VEYRA_CAPABILITY(name) VEYRA_ANNOTATION(capability(name))
#define VEYRA_SCOPED_CAPABILITY VEYRA_ANNOTATION(scoped_lockable)
#define VEYRA_GUARDED_BY(lock) VEYRA_ANNOTATION(guarded_by(lock))
#define VEYRA_ACQUIRE(...) VEYRA_ANNOTATION(acquire_capability(__VA_ARGS__))
#define VEYRA_RELEASE(...) VEYRA_ANNOTATION(release_capability(__VA_ARGS__))
#define VEYRA_TRY_ACQUIRE(...) VEYRA_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define VEYRA_REQUIRES(...) VEYRA_ANNOTATION(requires_capability(__VA_ARGS__))
#define VEYRA_EXCLUDES(...) VEYRA_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace veyra {

class VEYRA_CAPABILITY("mutex") NSLock {
public:
    void lock() VEYRA_ACQUIRE() { _mutex.lock(); }
    void unlock() VEYRA_RELEASE() { _mutex.unlock(); }
    bool tryLock() VEYRA_TRY_ACQUIRE(true) { return _mutex.try_lock(); }

private:
    std::mutex _mutex;
};

/// Holds the lock for a scope.
class VEYRA_SCOPED_CAPABILITY NSLockGuard {
public:
    explicit NSLockGuard(NSLock& lock) VEYRA_ACQUIRE(lock) : _lock(lock) { _lock.lock(); }
    ~NSLockGuard() VEYRA_RELEASE() { _lock.unlock(); }
    NSLockGuard(const NSLockGuard&) = delete;
    NSLockGuard& operator=(const NSLockGuard&) = delete;

private:
    NSLock& _lock;
};

} // namespace veyra
