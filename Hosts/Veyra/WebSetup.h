// What `open` and `snapshot` share: web contexts with the plug-in, views on the fastest way to the screen, addresses of pages.
// Main thread.
#pragma once

#include "Hosts/Veyra/ExitStatus.h"

#include <memory>
#include <string>
#include <webkit2/webkit2.h>

namespace veyra {

/// The folder with the loadable module: beside the program in the build tree or where it was installed; "" when there is none.
std::string extensionFolder();

/// A new context that keeps nothing on disk and loads the plug-in into its pages. The caller owns it. Null, and a problem,
/// without the module.
WebKitWebContext* makeWebContext(Outcome& problem);

/// A new view of the context (floating). Its console messages go to standard output. `isAutomated`: driven by WebKitWebDriver.
WebKitWebView* makeWebView(WebKitWebContext* context, bool isAutomated = false);

/// The address that an argument means: an existing file's, else the argument itself when it is an address, else the
/// address of the missing file.
std::string addressOfPage(const std::string& argument);

/// Why a failed load is one that the user need hear of; "" for a load that gave way to another.
std::string loadProblem(const char* address, const GError* error);

} // namespace veyra
