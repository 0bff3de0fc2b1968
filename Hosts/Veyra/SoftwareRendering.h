// Tells whether pages would be composited by a software renderer, which costs more than painting them straight.
#pragma once

#include <string_view>

namespace veyra {

/// True for the name of an OpenGL renderer that runs on the processor.
bool isSoftwareRenderer(std::string_view renderer);

/// True when there is no graphics device that this user may open, or when what draws into GTK's windows is a software
/// renderer. After GTK has started; main thread.
bool rendersInSoftware();

} // namespace veyra
