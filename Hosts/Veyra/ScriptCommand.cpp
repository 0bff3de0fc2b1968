#include "Hosts/Veyra/ScriptCommand.h"

#include "Hosts/Common/HostConfiguration.h"
#include "Hosts/Common/TileSources.h"
#include "Hosts/Veyra/ScriptPage.h"
#include "Platform/WebKit/WebThread.h"

#include <cstdio>
#include <cstdlib>
#include <pthread.h>
#include <thread>
#include <webkit2/webkit2.h>

namespace veyra {

namespace {

/// The thread of the script engine, for the life of one script.
class ScriptThread {
public:
    ScriptThread() : _context(g_main_context_new()), _loop(g_main_loop_new(_context, FALSE)) {
        setWebThread(new DispatchQueue(_context, "web"));
        _thread = std::thread([this] {
            pthread_setname_np(pthread_self(), "veyra-script");
            g_main_context_push_thread_default(_context);
            g_main_loop_run(_loop);
            g_main_context_pop_thread_default(_context);
        });
    }
    /// Runs what is queued before, and ends.
    ~ScriptThread() {
        webThread().async([this] { g_main_loop_quit(_loop); });
        _thread.join();
        g_main_loop_unref(_loop);
        g_main_context_unref(_context);
    }
    ScriptThread(const ScriptThread&) = delete;
    ScriptThread& operator=(const ScriptThread&) = delete;

private:
    GMainContext* const _context;
    GMainLoop* const _loop;
    std::thread _thread;
};

bool readFile(const std::string& path, std::string& content, Outcome& problem) {
    gchar* bytes = nullptr;
    gsize length = 0;
    GError* error = nullptr;
    if (!g_file_get_contents(path.c_str(), &bytes, &length, &error)) {
        problem = {ExitStatus::LoadFailed, std::string("cannot read ") + path + ": " + g_strerror(errno)};
        g_error_free(error);
        return false;
    }
    content.assign(bytes, length);
    g_free(bytes);
    return true;
}

gboolean endProcess(gpointer data) {
    const auto& line = *static_cast<const CommandLine*>(data);
    std::fprintf(stderr, "veyra: time-out after %g second%s: %s has not ended\n", *line.timeout,
                 *line.timeout == 1 ? "" : "s", line.input.c_str());
    std::fflush(nullptr);
    std::_Exit(static_cast<int>(ExitStatus::TimedOut));
}

/// The engine's collector asks for the process' main loop when a timer starts a full collection, and crashes when there
/// is none: the browser engine's classes make it known. No display is needed for it.
void prepareCollector() {
    g_type_class_ref(WEBKIT_TYPE_WEB_CONTEXT);
}

} // namespace

Outcome runScript(const CommandLine& line) {
    std::string source;
    Outcome outcome;
    if (!readFile(line.input, source, outcome))
        return outcome;
    prepareCollector();
    setMainQueue(new DispatchQueue(g_main_context_default(), "main"));
    configureCreatedViews({.verboseDebugLogging = line.verbose, .tileSource = tileSourceOfEnvironment()});
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    if (line.timeout)
        g_timeout_add(static_cast<guint>(std::ceil(*line.timeout * 1000)), endProcess, const_cast<CommandLine*>(&line));
    ScriptThread thread;
    std::unique_ptr<ScriptPage> page; // used on the web thread
    const auto scriptEnded = [&](const Outcome& ended) {
        outcome = ended;
        // Everything that the map was asked for has been done; the picture is of what it came to.
        dispatch_async(dispatch_get_main_queue(), [&, window = page->window()] {
            if (outcome.status == ExitStatus::Success && !line.output.empty()) {
                const std::string problem = window->writePicture(line.output);
                if (!problem.empty())
                    outcome = {ExitStatus::Failed, problem};
            }
            if (window)
                window->stop();
            webThread().async([&] {
                page = nullptr;
                dispatch_async(dispatch_get_main_queue(), [&] { g_main_loop_quit(loop); });
            });
        });
    };
    webThread().async([&] {
        page = std::make_unique<ScriptPage>(line, scriptEnded);
        page->run(source);
    });
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
    return outcome;
}

} // namespace veyra
