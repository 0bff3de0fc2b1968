// Turns Cairo's pixels into those of the web: whole rows at memory speed. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace veyra {

/// Writes `count` pixels as R, G, B, 255 from Cairo RGB24 pixels. `source` and `target` must not overlap; `target`
/// needs no alignment.
void convertRGB24ToRGBA(const uint32_t* source, uint8_t* target, size_t count);

} // namespace veyra
