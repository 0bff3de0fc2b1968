// `veyra script`: runs a script file with a map, with no page and no display. The process' main thread is the main
// queue; the web thread is a thread of its own.
#pragma once

#include "Hosts/Veyra/CommandLine.h"

namespace veyra {

/// Returns when the script has ended. When the time is over it does not return but ends the process, with a message: a
/// script that never yields cannot be stopped otherwise.
Outcome runScript(const CommandLine& line);

} // namespace veyra
