// Draws tiles from sets of images, one for each map type that has one; the other map types, and what the images leave
// free, are those of another source. Any thread, several at once.
#pragma once

#include "Platform/MapKit/ImageTiles/MKImageSet.h"
#include "Platform/MapKit/ImageTiles/MKTileImages.h"
#include "Platform/MapKit/MKTile.h"

#include <map>

namespace veyra {

class MKImageTileSource final : public MKTileSource {
public:
    using Sets = std::map<MKMapType, std::shared_ptr<const MKImageSet>>;

    MKImageTileSource(Sets sets, std::shared_ptr<const MKTileSource> world);

    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override;
    std::shared_ptr<const MKTile> drawTileFromImages(const MKTileKey& key, const MKTileImages& images) const override;
    void rest() const override { _world->rest(); }
    MKTileColor backgroundColor(MKMapType mapType) const override;
    std::shared_ptr<const MKImageSet> imageSet(MKMapType mapType) const override;
    std::vector<MKImageKey> imagesFor(const MKTileKey& key) const override;
    MKTileAttribution attribution(MKMapType mapType) const override;
    bool hasDarkPicture() const override { return _world->hasDarkPicture(); }
    MKTileColor darkBackgroundColor(MKMapType mapType) const override { return _world->darkBackgroundColor(mapType); }
    /// Images bring their own names.
    const BasemapNames* names(MKMapType mapType) const override;
    const BasemapNames* namesOfWorldAlone(MKMapType mapType) const override { return _world->names(mapType); }

private:
    const Sets _sets;
    const std::shared_ptr<const MKTileSource> _world;
};

} // namespace veyra
