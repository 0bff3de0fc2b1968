// One page on its way to a picture: loads it out of sight, waits until it is ready, takes and writes the picture. What
// the page's console says goes to standard output meanwhile. Main thread; lives until `run` returns.
#pragma once

#include "Hosts/Veyra/CommandLine.h"
#include "Hosts/Veyra/ConsoleOutput.h"

#include <webkit2/webkit2.h>

namespace veyra {

class PageSnapshot {
public:
    /// The context, which the caller owns, loads the plug-in into its pages.
    PageSnapshot(WebKitWebContext* context, const CommandLine& line);
    ~PageSnapshot();
    PageSnapshot(const PageSnapshot&) = delete;
    PageSnapshot& operator=(const PageSnapshot&) = delete;

    /// Returns when the picture is written, the page could not be loaded, or the time is over.
    Outcome run();

private:
    void connectSignals();
    void loadChanged(WebKitLoadEvent event);
    bool refusesResponse(WebKitPolicyDecision* decision);
    void titleChanged();
    void waitUntilIdle();
    void takePicture();
    void writePicture(cairo_surface_t* picture);
    /// The first end counts.
    void end(ExitStatus status, const std::string& message);
    std::string lateness() const;

    const CommandLine _line;
    const std::string _address;
    ConsoleOutput _console;
    GMainLoop* const _loop;
    GCancellable* const _cancellable; // of what is asked of the page
    GtkWidget* _window = nullptr;
    WebKitWebView* _view = nullptr; // the window owns it
    unsigned _loads = 0;            // begun so far: what was asked for an earlier one does not count
    bool _isLoaded = false;
    bool _isTaking = false;
    bool _hasEnded = false;
    Outcome _outcome;
};

} // namespace veyra
