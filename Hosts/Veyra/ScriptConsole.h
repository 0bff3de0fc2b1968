// The `console` of a bare script: `log`, `info` and `debug` print a line to standard output, `warn` and `error` one to
// standard error. Arguments are converted as `String(value)` does and joined by spaces. Script thread.
#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace veyra {

/// Makes the object and the global of that name. An exception of a conversion is thrown to the caller.
void installScriptConsole(JSContextRef context);

} // namespace veyra
