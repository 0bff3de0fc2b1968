// The native functions by which SurfaceInput.js hands input to a map. Web thread; the window gets it on the main queue.
#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace veyra {

/// Defines `inputPolicy`, `touch`, `scroll`, `key`, `focus` and `act` on the host object.
void defineInputFunctions(JSContextRef context, JSObjectRef host);

} // namespace veyra
