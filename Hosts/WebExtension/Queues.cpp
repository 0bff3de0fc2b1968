#include "Hosts/WebExtension/Queues.h"

#include "Platform/WebKit/WebThread.h"

#include <pthread.h>
#include <thread>

namespace veyra {

void installWebThread() {
    setWebThread(new DispatchQueue(g_main_context_default(), "web"));
}

void startMainQueue() {
    [[maybe_unused]] static const bool isStarted = [] {
        GMainContext* context = g_main_context_new();
        setMainQueue(new DispatchQueue(context, "main"));
        std::thread([context] {
            pthread_setname_np(pthread_self(), "veyra-main");
            g_main_context_push_thread_default(context);
            g_main_loop_run(g_main_loop_new(context, FALSE));
        }).detach();
        return true;
    }();
}

} // namespace veyra
