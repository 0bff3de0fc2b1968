// What `open` and `snapshot` share: web contexts with the plug-in, views on the fastest way to the screen, addresses of
// pages. Main thread.
#pragma once

#include "Hosts/Veyra/ExitStatus.h"

#include <memory>
#include <string>
#include <webkit2/webkit2.h>

namespace veyra {

/// The folder with the loadable module: beside the program in the build tree or where it was installed; "" when there
/// is none.
std::string extensionFolder();

/// A web context that loads the plug-in into its pages. What pages store is kept in a folder of its own and goes away
/// with it: of a context that stores nothing at all, the engine logs no console messages.
class WebContext {
public:
    /// Null, and a problem, without the module or a place for the folder.
    static std::unique_ptr<WebContext> make(Outcome& problem);
    ~WebContext();
    WebContext(const WebContext&) = delete;
    WebContext& operator=(const WebContext&) = delete;

    WebKitWebContext* get() const { return _context; }

private:
    WebContext(WebKitWebContext* context, std::string storage) : _context(context), _storage(std::move(storage)) {}
    WebKitWebContext* const _context;
    const std::string _storage;
};

/// A new view of the context (floating). It logs its console messages (see ConsoleOutput). `isAutomated`: driven by
/// WebKitWebDriver.
WebKitWebView* makeWebView(WebKitWebContext* context, bool isAutomated = false);

/// The address that an argument means: an existing file's, else the argument itself when it is an address, else the
/// address of the missing file.
std::string addressOfPage(const std::string& argument);

/// Why a failed load is one that the user need hear of; "" for a load that gave way to another.
std::string loadProblem(const char* address, const GError* error);

} // namespace veyra
