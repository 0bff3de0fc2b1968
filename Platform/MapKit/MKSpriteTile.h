// A square of pixels into which sprites are drawn from the front to the back: a pixel that is covered is not touched
// again, so that a crowd of a hundred thousand costs little more than what is seen of it. Owned by a sprite layer; main
// queue only.
#pragma once

#include "Platform/MapKit/MKSprite.h"

#include <array>

namespace veyra {

class MKSpriteTile {
public:
    static constexpr int side = 256;

    MKSpriteTile() : _pixels(new uint32_t[size_t{side} * side]) {}

    /// Makes the tile clear.
    void clear();
    /// Draws a sprite behind everything drawn so far, its upper left pixel at (x, y) of the tile.
    void drawBehind(const MKSprite& sprite, int x, int y);

    bool isClear() const { return _extent.isEmpty(); }
    /// What has been drawn on.
    const PixelRect& extent() const { return _extent; }
    const uint32_t* pixels() const { return _pixels.get(); }

private:
    static constexpr int words = side / 64;
    static constexpr int blockSide = 16;
    static constexpr int blocks = side / blockSide;

    bool isHidden(const PixelRect& rect) const;
    void drawRowBehind(const MKSprite& sprite, int row, int x, int y);
    void cover(int y, int word, uint64_t bits);

    std::unique_ptr<uint32_t[]> _pixels;
    // Pixels that are opaque; a word more in each row, so that a mask may reach beyond the end.
    std::array<std::array<uint64_t, words + 1>, side> _covered;
    // Of squares of 16 x 16 pixels: how many are not covered yet.
    std::array<std::array<uint16_t, blocks>, blocks> _open;
    PixelRect _extent;
};

} // namespace veyra
