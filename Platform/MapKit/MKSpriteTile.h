// A square of pixels into which sprites are drawn from the front to the back: a pixel that is covered is not touched
// again, so that a crowd of a hundred thousand costs little more than what is seen of it. Owned by a sprite layer; one
// thread at a time.
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
    static constexpr int blockSide = 8;
    static constexpr int blocks = side / blockSide;

    /// Where 64 columns of a sprite lie in the tile.
    struct Strip {
        int word;             // of the sprite's rows
        int skipped;          // its pixels to the left of the tile
        int firstWord, shift; // of the tile's rows, where the first pixel comes to lie
        int column;           // the same in pixels
        uint64_t inside;      // the pixels that are not beyond the tile
        uint32_t blocks;      // that it touches
    };

    void drawStrip(const MKSprite& sprite, const Strip& strip, int y, int firstRow, int endRow);
    /// The pixels that it covers.
    uint64_t drawRow(const MKSprite& sprite, const Strip& strip, int spriteRow, int row);
    void findFullBlocks(int blockRow, int word);

    std::unique_ptr<uint32_t[]> _pixels;
    // Pixels that are opaque; a word more in each row, so that a mask may reach beyond the end.
    std::array<std::array<uint64_t, words + 1>, side> _covered;
    // Of each row of blocks of 8 x 8 pixels, a bit a block: whether all of its pixels are covered.
    std::array<uint32_t, blocks> _fullBlocks;
    PixelRect _extent;
};

} // namespace veyra
