// The scripts of this folder as text, each a function expression named after its file. Made by EmbedScripts.cmake.
#pragma once

namespace veyra {

extern const char* const scriptSurfaceElement;
extern const char* const scriptSurfaceInput;
extern const char* const scriptSurface;

} // namespace veyra
