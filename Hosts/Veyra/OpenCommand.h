// `veyra open`: a window that shows a page, or that WebKitWebDriver drives.
#pragma once

#include "Hosts/Veyra/CommandLine.h"

namespace veyra {

/// Returns when the window has been closed or the program is asked to end.
Outcome runOpen(const CommandLine& line);

} // namespace veyra
