#include "Platform/MapKit/ImageTiles/MKImageWorkers.h"

#include "Platform/Foundation/NSLock.h"

#include <condition_variable>
#include <deque>
#include <pthread.h>
#include <thread>

namespace veyra {

namespace {

constexpr unsigned workerCount = 2;

class Workers {
public:
    Workers() {
        for (unsigned i = 0; i < workerCount; ++i) {
            std::thread([this] {
                pthread_setname_np(pthread_self(), "veyra-images");
                for (;;) {
                    runGuarded("image worker", take());
                }
            }).detach();
        }
    }
    /// The threads never end.
    ~Workers() = delete;

    void add(Block block) VEYRA_EXCLUDES(_lock) {
        {
            const NSLockGuard guard(_lock);
            _blocks.push_back(std::move(block));
        }
        _blocksCame.notify_one();
    }

private:
    Block take() VEYRA_EXCLUDES(_lock) {
        const NSLockGuard guard(_lock);
        while (_blocks.empty()) {
            _blocksCame.wait(_lock);
        }
        Block block = std::move(_blocks.front());
        _blocks.pop_front();
        return block;
    }

    NSLock _lock;
    std::condition_variable_any _blocksCame;
    std::deque<Block> _blocks VEYRA_GUARDED_BY(_lock);
};

} // namespace

void runOnImageWorker(Block block) {
    static auto* const workers = new Workers;
    workers->add(std::move(block));
}

} // namespace veyra
