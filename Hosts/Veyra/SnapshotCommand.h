// `veyra snapshot`: a picture of a page once it is loaded and its maps are complete.
#pragma once

#include "Hosts/Veyra/CommandLine.h"

namespace veyra {

Outcome runSnapshot(const CommandLine& line);

} // namespace veyra
