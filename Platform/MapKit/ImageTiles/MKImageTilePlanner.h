// Finds out what a tile can be put together from, and wants its images from the image loader. Main queue only.
#pragma once

#include "Platform/MapKit/ImageTiles/MKImageLoader.h"
#include "Platform/MapKit/ImageTiles/MKTileImages.h"
#include "Platform/MapKit/MKTile.h"

namespace veyra {

class MKImageTilePlanner {
public:
    /// Between the loader's `beginWanting` and `endWanting`.
    MKImageTilePlanner(MKImageLoader& loader, const MKTileSource& source, const MKTileKey& key, double rank);

    const MKTileImages& images() const { return _images; }

private:
    void add(const MKImageKey& place);
    /// The image of a place, or that of the finest zoom at which the set has one there.
    const MKImageStatus& want(MKImageKey& key);
    void addCoarser(const MKImageKey& place, MKImageKey key, bool isWaiting);

    MKImageLoader& _loader;
    const std::shared_ptr<const MKImageSet> _set;
    const double _rank;
    MKTileImages _images;
};

} // namespace veyra
