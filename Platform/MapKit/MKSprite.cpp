#include "Platform/MapKit/MKSprite.h"

namespace veyra {

MKSprite::MKSprite(int width, int height, const uint32_t* pixels, std::shared_ptr<const void> owner, int originX,
                   int originY)
    : _width(width), _height(height), _originX(originX), _originY(originY), _words((width + 63) / 64), _pixels(pixels),
      _owner(std::move(owner)), _visible(static_cast<size_t>(_words) * static_cast<size_t>(height)),
      _opaque(_visible.size()) {
    for (int y = 0; y < height; ++y) {
        const uint32_t* const line = row(y);
        const size_t first = static_cast<size_t>(y) * static_cast<size_t>(_words);
        for (int x = 0; x < width; ++x) {
            const uint32_t alpha = line[x] >> 24;
            const uint64_t bit = uint64_t{1} << (x & 63);
            _visible[first + static_cast<size_t>(x >> 6)] |= alpha > 0 ? bit : 0;
            _opaque[first + static_cast<size_t>(x >> 6)] |= alpha == 255 ? bit : 0;
        }
    }
}

bool MKSprite::isVisibleAt(int x, int y) const {
    return x >= 0 && y >= 0 && x < _width && y < _height && row(y)[x] >> 24 > 25;
}

} // namespace veyra
