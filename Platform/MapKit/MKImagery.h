// The planet from above, drawn into tiles of any scale from a pyramid of pictures. Any thread, several at once.
//
// Beyond the finest pictures they are enlarged smoothly, and land and water each by themselves: how much of a pixel is
// land is known far better from the base map's shapes than from the picture, so shores stay sharp at every scale.
#pragma once

#include "Platform/MapKit/MKBasemapCells.h"
#include "Platform/MapKit/MKPictureTiles.h"
#include "Platform/MapKit/MKTile.h"

namespace veyra {

class MKImagery {
public:
    using Opener = std::function<const BasemapImagery&()>;

    /// `open` is called with every tile; it answers the same pictures each time, which outlive the object, or throws
    /// BasemapError.
    explicit MKImagery(Opener open);

    /// Fills a surface (RGB24, MKTileKey::side pixels square). Throws BasemapError when a picture is damaged.
    void draw(const MKTileKey& key, const BasemapFile& shapes, MKBasemapCells& cells, cairo_surface_t* surface) const;

private:
    const Opener _open;
    mutable MKPictureTiles _tiles; // has its own lock
};

} // namespace veyra
