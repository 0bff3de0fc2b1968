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

// Calls `run(first, end)` for each run of marked pixels.
template <class Run>
void forEachRun(uint64_t marked, const Run& run) {
    while (marked != 0) {
        const int first = std::countr_zero(marked);
        const int end = first + std::countr_one(marked >> first);
        run(first, end);
        marked = end < 64 ? marked >> end << end : 0;
    }
}

void copyMarked(uint32_t* target, const uint32_t* source, uint64_t marked) {
    forEachRun(marked, [=](int first, int end) {
        for (int i = first; i < end; ++i) {
            target[i] = source[i];
        }
    });
}

// Puts the marked pixels of `source` behind those of `target`.
void blendBehind(uint32_t* target, const uint32_t* source, uint64_t marked) {
    forEachRun(marked, [=](int first, int end) {
        for (int i = first; i < end; ++i) {
            target[i] += scaled(source[i], 255 - (target[i] >> 24));
        }
    });
}

// The 64 bits of a row's mask that begin `shift` bits after a word's first.
uint64_t bitsAt(const uint64_t* word, int shift) {
    return shift == 0 ? word[0] : word[0] >> shift | word[1] << (64 - shift);
}

void addBits(uint64_t* word, int shift, uint64_t bits) {
    word[0] |= bits << shift;
    if (shift > 0) {
        word[1] |= bits >> (64 - shift);
    }
}

} // namespace

void MKSpriteTile::clear() {
    std::memset(_pixels.get(), 0, sizeof(uint32_t) * side * side);
    _covered = {};
    _touched = {};
    _fullBlocks.fill(0);
    _extent = {};
}

void MKSpriteTile::drawBehind(const MKSprite& sprite, int x, int y) {
    const PixelRect rect = intersection(PixelRect{x, y, sprite.width(), sprite.height()}, PixelRect{0, 0, side, side});
    if (rect.isEmpty()) {
        return;
    }
    for (int word = 0; word < sprite.words(); ++word) {
        const int left = x + 64 * word;
        const int right = std::min(left + 64, rect.maxX());
        if (left >= side || right <= 0) {
            continue;
        }
        Strip strip{};
        strip.word = word;
        strip.skipped = std::max(0, -left);
        strip.column = std::max(0, left);
        strip.firstWord = strip.column / 64;
        strip.shift = strip.column % 64;
        strip.inside = ~uint64_t{0} >> (64 - (right - strip.column));
        strip.blocks =
            (~uint32_t{0} >> (blocks - 1 - (right - 1) / blockSide)) & (~uint32_t{0} << (strip.column / blockSide));
        drawStrip(sprite, strip, y, rect.y, rect.maxY());
    }
    if (_extent.isEmpty()) {
        _extent = rect;
    } else {
        const int left = std::min(_extent.x, rect.x), top = std::min(_extent.y, rect.y);
        _extent = {left, top, std::max(_extent.maxX(), rect.maxX()) - left,
                   std::max(_extent.maxY(), rect.maxY()) - top};
    }
}

void MKSpriteTile::drawStrip(const MKSprite& sprite, const Strip& strip, int y, int firstRow, int endRow) {
    for (int row = firstRow; row < endRow;) {
        const int block = row / blockSide;
        const int end = std::min(endRow, (block + 1) * blockSide);
        if ((strip.blocks & ~_fullBlocks[static_cast<size_t>(block)]) == 0) {
            row = end;
            continue;
        }
        for (; row < end; ++row) {
            drawRow(sprite, strip, row - y, row);
        }
        findFullBlocks(block, strip.firstWord);
        if (strip.shift > 0 && strip.firstWord + 1 < words) {
            findFullBlocks(block, strip.firstWord + 1);
        }
    }
}

inline void MKSpriteTile::drawRow(const MKSprite& sprite, const Strip& strip, int spriteRow, int row) {
    uint64_t* const covered = _covered[static_cast<size_t>(row)].data() + strip.firstWord;
    uint64_t* const touched = _touched[static_cast<size_t>(row)].data() + strip.firstWord;
    const int shift = strip.shift;
    const uint64_t visible = sprite.visible(spriteRow)[strip.word] >> strip.skipped & strip.inside;
    const uint64_t drawn = visible & ~bitsAt(covered, shift);
    if (drawn == 0) {
        return;
    }
    const uint64_t blended = drawn & bitsAt(touched, shift);
    const uint32_t* const source = sprite.row(spriteRow) + 64 * strip.word + strip.skipped;
    uint32_t* const target = _pixels.get() + row * side + strip.column;
    copyMarked(target, source, drawn & ~blended);
    if (blended != 0) {
        blendBehind(target, source, blended);
    }
    addBits(touched, shift, drawn);
    addBits(covered, shift, drawn & sprite.opaque(spriteRow)[strip.word] >> strip.skipped);
}

void MKSpriteTile::findFullBlocks(int blockRow, int word) {
    const auto first = static_cast<size_t>(blockRow * blockSide);
    uint64_t all = ~uint64_t{0};
    for (size_t row = first; row < first + blockSide; ++row) {
        all &= _covered[row][static_cast<size_t>(word)];
    }
    // The lowest bit of each byte whose bits are all set, gathered into one byte.
    all &= all >> 1;
    all &= all >> 2;
    all &= all >> 4;
    const uint64_t full = (all & 0x0101010101010101) * 0x0102040810204080 >> 56;
    _fullBlocks[static_cast<size_t>(blockRow)] |= static_cast<uint32_t>(full) << (word * (64 / blockSide));
}

} // namespace veyra
