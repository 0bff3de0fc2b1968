// A small picture in device pixels, with what a crowd of them needs to be drawn front to back: which pixels of each row
// are visible at all, and which hide everything behind them. Immutable; any thread.
#pragma once

#include "Platform/UIKit/CGGeometry.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace veyra {

class MKSprite {
public:
    using Pixels = std::vector<uint32_t>;

    /// `pixels` are width × height premultiplied ARGB32 pixels by rows, no colour of which is above its alpha, kept
    /// alive by `owner`. `origin` is where the upper left pixel lies from the upper left corner of the view that the
    /// sprite is drawn for.
    MKSprite(int width, int height, const uint32_t* pixels, std::shared_ptr<const void> owner, int originX = 0,
             int originY = 0);

    int width() const { return _width; }
    int height() const { return _height; }
    int originX() const { return _originX; }
    int originY() const { return _originY; }
    const uint32_t* row(int y) const { return _pixels + static_cast<size_t>(y) * static_cast<size_t>(_width); }

    /// Words of 64 pixels, the leftmost in the lowest bit, that a row's masks have.
    int words() const { return _words; }
    /// The pixels of a row that are not clear, and those that are opaque.
    const uint64_t* visible(int y) const { return &_visible[static_cast<size_t>(y) * static_cast<size_t>(_words)]; }
    const uint64_t* opaque(int y) const { return &_opaque[static_cast<size_t>(y) * static_cast<size_t>(_words)]; }
    /// Whether the pixel is there and more than a tenth visible.
    bool isVisibleAt(int x, int y) const;

private:
    const int _width, _height, _originX, _originY, _words;
    const uint32_t* const _pixels;
    const std::shared_ptr<const void> _owner;
    std::vector<uint64_t> _visible, _opaque;
};

} // namespace veyra
