#include "Platform/MapKit/MKSpriteTile.h"

#include <bit>
#include <cstring>

namespace veyra {

namespace {

// The four channels of a premultiplied pixel times `factor` / 255, rounded, two channels at a time.
uint32_t scaled(uint32_t pixel, uint32_t factor) {
    const uint32_t low = (pixel & 0x00ff00ff) * factor + 0x00800080;
    const uint32_t high = (pixel >> 8 & 0x00ff00ff) * factor + 0x00800080;
    return (((low >> 8 & 0x00ff00ff) + low) >> 8 & 0x00ff00ff) | (((high >> 8 & 0x00ff00ff) + high) & 0xff00ff00);
}

// Puts the marked pixels of `source` behind those of `target`.
void blendBehind(uint32_t* target, const uint32_t* source, uint64_t marked) {
    while (marked != 0) {
        const int first = std::countr_zero(marked);
        const int count = std::countr_one(marked >> first);
        for (int i = first; i < first + count; ++i) {
            const uint32_t front = target[i];
            target[i] = front == 0 ? source[i] : front + scaled(source[i], 255 - (front >> 24));
        }
        marked = count + first < 64 ? marked >> (first + count) << (first + count) : 0;
    }
}

} // namespace

void MKSpriteTile::clear() {
    std::memset(_pixels.get(), 0, sizeof(uint32_t) * side * side);
    for (auto& row : _covered) {
        row.fill(0);
    }
    for (auto& row : _open) {
        row.fill(blockSide * blockSide);
    }
    _extent = {};
}

void MKSpriteTile::drawBehind(const MKSprite& sprite, int x, int y) {
    const PixelRect rect = intersection(PixelRect{x, y, sprite.width(), sprite.height()}, PixelRect{0, 0, side, side});
    if (rect.isEmpty() || isHidden(rect)) {
        return;
    }
    for (int row = rect.y; row < rect.maxY(); ++row) {
        drawRowBehind(sprite, row - y, x, row);
    }
    if (_extent.isEmpty()) {
        _extent = rect;
    } else {
        const int left = std::min(_extent.x, rect.x), top = std::min(_extent.y, rect.y);
        _extent = {left, top, std::max(_extent.maxX(), rect.maxX()) - left,
                   std::max(_extent.maxY(), rect.maxY()) - top};
    }
}

bool MKSpriteTile::isHidden(const PixelRect& rect) const {
    for (int y = rect.y / blockSide; y <= (rect.maxY() - 1) / blockSide; ++y) {
        for (int x = rect.x / blockSide; x <= (rect.maxX() - 1) / blockSide; ++x) {
            if (_open[static_cast<size_t>(y)][static_cast<size_t>(x)] > 0) {
                return false;
            }
        }
    }
    return true;
}

void MKSpriteTile::drawRowBehind(const MKSprite& sprite, int row, int x, int y) {
    auto& covered = _covered[static_cast<size_t>(y)];
    const uint64_t* const visibleWords = sprite.visible(row);
    const uint64_t* const opaqueWords = sprite.opaque(row);
    for (int i = 0; i < sprite.words(); ++i) {
        int at = x + 64 * i; // of the word's first pixel, in the tile
        uint64_t visible = visibleWords[i], opaque = opaqueWords[i];
        if (visible == 0 || at <= -64 || at >= side) {
            continue;
        }
        const uint32_t* source = sprite.row(row) + 64 * i;
        if (at < 0) {
            visible >>= -at;
            opaque >>= -at;
            source -= at;
            at = 0;
        }
        if (at > side - 64) {
            visible &= ~uint64_t{0} >> (at - (side - 64));
        }
        const int word = at / 64, shift = at % 64;
        const auto index = static_cast<size_t>(word);
        const uint64_t hidden = covered[index] >> shift | (shift > 0 ? covered[index + 1] << (64 - shift) : 0);
        const uint64_t drawn = visible & ~hidden;
        if (drawn == 0) {
            continue;
        }
        blendBehind(_pixels.get() + y * side + at, source, drawn);
        opaque &= drawn;
        cover(y, word, opaque << shift);
        if (shift > 0 && word + 1 < words) {
            cover(y, word + 1, opaque >> (64 - shift));
        }
    }
}

void MKSpriteTile::cover(int y, int word, uint64_t bits) {
    if (bits == 0) {
        return;
    }
    _covered[static_cast<size_t>(y)][static_cast<size_t>(word)] |= bits;
    auto* const open = &_open[static_cast<size_t>(y / blockSide)][static_cast<size_t>(word * 64 / blockSide)];
    for (int block = 0; block < 64 / blockSide; ++block) {
        const uint64_t part = bits >> (block * blockSide) & ((uint64_t{1} << blockSide) - 1);
        open[block] = static_cast<uint16_t>(open[block] - std::popcount(part));
    }
}

} // namespace veyra
