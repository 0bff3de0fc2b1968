// The picture of a tile, as pixels, or packed without loss while nothing draws it for a while: flat maps take a tenth
// of their memory then. Any thread.
//
// What it shows never changes. The packed bytes are made from the pixels once and kept; from then on the pixels are
// made from them whenever they are wanted and can be let go at any time. Who holds a surface keeps its pixels.
#pragma once

#include "Platform/Foundation/NSLock.h"

#include <cairo.h>

#include <cstddef>
#include <memory>

namespace veyra {

class MKTilePicture {
public:
    using Surface = std::shared_ptr<cairo_surface_t>;
    enum class Packing { NotTried, Done, Useless };

    /// Pixels to draw a tile's picture upon (RGB24, MKTileKey::side square), black at first. Throws std::bad_alloc.
    static Surface makeSurface();

    /// `surface` is one of `makeSurface`; nothing draws upon it any more.
    explicit MKTilePicture(Surface surface) : _surface(std::move(surface)) {}
    MKTilePicture(const MKTilePicture&) = delete;
    MKTilePicture& operator=(const MKTilePicture&) = delete;

    /// The pixels, to be read only; half a millisecond when they have to be unpacked. Throws std::bad_alloc.
    Surface surface() const VEYRA_EXCLUDES(_lock);

    /// Packs a copy of the pixels, which takes a millisecond: not for the main queue. Useless when that is hardly
    /// smaller, or there is no memory for it.
    void pack() VEYRA_EXCLUDES(_lock);
    Packing packing() const VEYRA_EXCLUDES(_lock);
    /// Lets go of the pixels of a picture that is packed.
    void letPixelsGo() VEYRA_EXCLUDES(_lock);
    /// False when there are no pixels just now.
    bool hasPixels() const VEYRA_EXCLUDES(_lock);
    /// What it holds just now, packed bytes and pixels.
    size_t byteSize() const VEYRA_EXCLUDES(_lock);

private:
    Surface unpacked() const VEYRA_REQUIRES(_lock);

    mutable NSLock _lock;
    mutable Surface _surface VEYRA_GUARDED_BY(_lock); // null while only the packed bytes are kept
    std::unique_ptr<char[]> _packed VEYRA_GUARDED_BY(_lock);
    size_t _packedSize VEYRA_GUARDED_BY(_lock) = 0;
    Packing _packing VEYRA_GUARDED_BY(_lock) = Packing::NotTried;
};

} // namespace veyra
