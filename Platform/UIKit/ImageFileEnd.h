// Whether the bytes of an image file reach the file's end. Decoders make a picture of what has come of a PNG or a JPEG,
// whose rest is missing then.
#pragma once

#include <string_view>

namespace veyra {

/// True when the last chunk of the PNG is there; what follows it does not matter.
bool reachesEndOfPNG(std::string_view data);
/// True when the end marker of the JPEG's main picture is there.
bool reachesEndOfJPEG(std::string_view data);
/// True when all that the WebP's header announces is there.
bool reachesEndOfWebP(std::string_view data);

} // namespace veyra
