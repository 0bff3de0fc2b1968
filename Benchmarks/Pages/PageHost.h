// A bare WebKitGTK window with the web extension, for benchmarks: loads one page, hands out its console lines, and
// measures what the processes and the screen do meanwhile. GTK's main thread only.
#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace veyra::benchmark {

struct PageOptions {
    std::string extensions;  ///< the folder of the module; empty for none
    bool composited = false; ///< the engine's default way to the screen instead of the fast one without a GPU
    int width = 1024, height = 768;
};

class PageHost {
public:
    explicit PageHost(const PageOptions& options);
    ~PageHost();

    /// Loads a page and waits until it has loaded.
    void load(const std::string& uri);
    /// Runs a script in the page, as the body of an asynchronous function, and waits for its result as JSON text.
    std::string run(const std::string& script);
    /// Lets the main loop turn for that long.
    void wait(double seconds);
    /// The extension's counters; see PageMessages.h.
    std::map<std::string, uint64_t> statistics();
    /// Runs the collector in the web process.
    void collectGarbage();
    WebKitWebView* view() const { return _view; }

    /// The process that runs the page: that of the youngest host.
    int webProcess() const;

private:
    void send(const char* message, const std::function<void(WebKitUserMessage*)>& answer);

    GtkWidget* _window;
    WebKitWebView* _view;
};

/// Processor seconds of a process so far, and of its threads of one name.
double processSeconds(int process);
double threadSeconds(int process, const std::string& name);

/// Memory of a process, in megabytes.
double residentMegabytes(int process);
/// What the process has for itself alone.
double privateMegabytes(int process);

/// The middle value; 0 for none.
double median(std::vector<double> values);

} // namespace veyra::benchmark
