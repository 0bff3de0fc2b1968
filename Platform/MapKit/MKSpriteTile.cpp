#include "Platform/MapKit/MKSpriteTile.h"

#include <bit>
#include <cstring>

namespace veyra {

namespace {

// Four premultiplied pixels, and their channels.
constexpr int lanes = 4;
typedef uint32_t Pixels __attribute__((vector_size(16)));
typedef uint16_t Channels __attribute__((vector_size(16)));

Pixels load(const uint32_t* pixels) {
    Pixels value;
    std::memcpy(&value, pixels, sizeof value);
    return value;
}

// Pixels with others put behind them, rounded: what is opaque stays as it is, and what is clear becomes what is put
// behind.
Pixels behind(Pixels front, Pixels back) {
    const Pixels share = 255 - (front >> 24);
    const Channels factor = std::bit_cast<Channels>(share | share << 16);
    Channels low = std::bit_cast<Channels>(back & 0x00ff00ff) * factor + 128;
    Channels high = std::bit_cast<Channels>(back >> 8 & 0x00ff00ff) * factor + 128;
    low = (low + (low >> 8)) >> 8;
    high = (high + (high >> 8)) & 0xff00;
    return front + std::bit_cast<Pixels>(low | high);
}

// The 64 bits of a row's mask that begin `shift` bits after a word's first.
uint64_t bitsAt(const uint64_t* word, int shift) {
    return word[0] >> shift | word[1] << 1 << (63 - shift);
}

void addBits(uint64_t* word, int shift, uint64_t bits) {
    word[0] |= bits << shift;
    word[1] |= bits >> 1 >> (63 - shift);
}

} // namespace

void MKSpriteTile::clear() {
    std::memset(_pixels.get(), 0, sizeof(uint32_t) * side * side);
    _covered = {};
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
        uint64_t added = 0;
        for (; row < end; ++row) {
            added |= drawRow(sprite, strip, row - y, row);
        }
        if (added == 0) {
            continue;
        }
        findFullBlocks(block, strip.firstWord);
        if (strip.shift > 0 && strip.firstWord + 1 < words) {
            findFullBlocks(block, strip.firstWord + 1);
        }
    }
}

inline uint64_t MKSpriteTile::drawRow(const MKSprite& sprite, const Strip& strip, int spriteRow, int row) {
    uint64_t* const covered = _covered[static_cast<size_t>(row)].data() + strip.firstWord;
    const int shift = strip.shift;
    const uint64_t visible = sprite.visible(spriteRow)[strip.word] >> strip.skipped & strip.inside;
    const uint64_t drawn = visible & ~bitsAt(covered, shift);
    if (drawn == 0) {
        return 0;
    }
    const uint32_t* const source = sprite.row(spriteRow) + 64 * strip.word + strip.skipped;
    uint32_t* const target = _pixels.get() + row * side + strip.column;
    // What is covered, or clear in the sprite, stays as it is: only the ends of the row matter.
    const int available = 64 - std::countl_zero(strip.inside), end = 64 - std::countl_zero(drawn);
    int i = std::countr_zero(drawn) / lanes * lanes;
    for (; i < end && i + lanes <= available; i += lanes) {
        const Pixels pixels = behind(load(target + i), load(source + i));
        std::memcpy(target + i, &pixels, sizeof pixels);
    }
    for (; i < end; ++i) {
        target[i] = behind(Pixels{target[i]}, Pixels{source[i]})[0];
    }
    const uint64_t opaque = drawn & sprite.opaque(spriteRow)[strip.word] >> strip.skipped;
    addBits(covered, shift, opaque);
    return opaque;
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
