// The two pixel arrays of a map's canvas, as the drawing side sees them: brings one of them up to date with the window.
// They belong to the script engine, so whoever draws holds a SurfaceScript::Hold on them. Main queue only, but for
// making.
#pragma once

#include "Platform/UIKit/DamageList.h"
#include "Platform/UIKit/UIWindow.h"

#include <array>

namespace veyra {

class PixelBuffers {
public:
    /// Both arrays have width × height × 4 bytes.
    PixelBuffers(int width, int height, std::array<uint8_t*, 2> bytes);

    bool fits(const UIWindow& window) const { return window.pixelWidth() == _width && window.pixelHeight() == _height; }
    /// Draws a frame of the window, which must fit, and copies to the array of that index all that it lacks. Returns
    /// what changed since the last call, whichever array that was for: at the first call everything.
    std::vector<PixelRect> draw(UIWindow& window, int index, double timestamp);

private:
    const int _width, _height;
    const std::array<uint8_t*, 2> _bytes;
    std::array<DamageList, 2> _stale;
    bool _isFirst = true;
};

} // namespace veyra
