#include "Hosts/WebExtension/PixelBuffers.h"

namespace veyra {

PixelBuffers::PixelBuffers(int width, int height, std::array<uint8_t*, 2> bytes)
    : _width(width), _height(height), _bytes(bytes) {}

std::vector<PixelRect> PixelBuffers::draw(UIWindow& window, int index, double timestamp) {
    auto changes = window.drawFrame(timestamp);
    if (_isFirst)
        changes = {{0, 0, _width, _height}};
    _isFirst = false;
    for (DamageList& stale : _stale) {
        for (const PixelRect& rect : changes)
            stale.add(rect);
    }
    for (const PixelRect& rect : _stale[static_cast<size_t>(index)].take())
        window.copyPixels(rect, _bytes[static_cast<size_t>(index)], static_cast<size_t>(_width) * 4);
    return changes;
}

} // namespace veyra
