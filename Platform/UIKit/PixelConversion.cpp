#include "Platform/UIKit/PixelConversion.h"

#include <bit>
#include <cstring>

namespace veyra {

static_assert(std::endian::native == std::endian::little, "the byte order of a pixel is that of the word below");

void convertRGB24ToRGBA(const uint32_t* __restrict source, uint8_t* __restrict target, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t pixel = source[i];
        const uint32_t turned = 0xff000000u | (pixel & 0x0000ff00u) | ((pixel >> 16) & 0xffu) | ((pixel & 0xffu) << 16);
        std::memcpy(target + 4 * i, &turned, 4);
    }
}

} // namespace veyra
