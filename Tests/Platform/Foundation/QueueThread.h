// A thread that iterates a context of its own, for tests of what runs on queues.
#pragma once

#include <glib.h>

#include <thread>

namespace veyra {

class QueueThread {
public:
    QueueThread()
        : _context(g_main_context_new()), _loop(g_main_loop_new(_context, FALSE)), _thread([this] { run(); }) {}
    ~QueueThread() {
        GSource* const quit = g_idle_source_new(); // runs only once the loop does
        g_source_set_callback(
            quit,
            [](gpointer loop) -> gboolean {
                g_main_loop_quit(static_cast<GMainLoop*>(loop));
                return G_SOURCE_REMOVE;
            },
            _loop, nullptr);
        g_source_attach(quit, _context);
        g_source_unref(quit);
        _thread.join();
        g_main_loop_unref(_loop);
        g_main_context_unref(_context);
    }
    QueueThread(const QueueThread&) = delete;
    QueueThread& operator=(const QueueThread&) = delete;

    GMainContext* context() const { return _context; }
    std::thread::id threadId() const { return _thread.get_id(); }

private:
    void run() const {
        g_main_context_push_thread_default(_context);
        g_main_loop_run(_loop);
        g_main_context_pop_thread_default(_context);
    }

    GMainContext* const _context;
    GMainLoop* const _loop;
    std::thread _thread;
};

} // namespace veyra
