#include "Platform/WebKit/WebThread.h"

#include <atomic>

namespace veyra {

namespace {
std::atomic<DispatchQueue*> installed{nullptr};
}

void setWebThread(DispatchQueue* queue) {
    installed.store(queue);
}

DispatchQueue& webThread() {
    return *installed.load();
}

void WebThreadRun(Block block) {
    DispatchQueue& queue = webThread();
    if (queue.isCurrent())
        runGuarded("web thread", block);
    else
        queue.async(std::move(block));
}

} // namespace veyra
