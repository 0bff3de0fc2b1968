// Draws tiles from a base map of shapes and pictures. Any thread, several at once.
#pragma once

#include "Platform/MapKit/MKBasemapCells.h"
#include "Platform/MapKit/MKImagery.h"
#include "Platform/MapKit/MKTile.h"

namespace veyra {

class MKBasemapSource final : public MKTileSource {
public:
    using Opener = std::function<const BasemapFile&()>;
    using NamesOpener = std::function<const BasemapNames&()>;

    /// Each opener is called with every tile, or whenever names are asked for, on the thread that does so: what cannot
    /// be opened (BasemapError) makes tiles fail, or names. It answers the same object each time, which outlives the
    /// source.
    MKBasemapSource(Opener open, MKImagery::Opener openImagery, NamesOpener openNames);
    /// The built-in world; never destroyed.
    static std::shared_ptr<const MKTileSource> shared();

    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override;
    void rest() const override { _cells.removeAll(); }
    MKTileColor backgroundColor(MKMapType mapType) const override;
    MKTileAttribution attribution(MKMapType mapType) const override;
    bool hasDarkPicture() const override { return true; }
    MKTileColor darkBackgroundColor(MKMapType mapType) const override;
    const BasemapNames* names(MKMapType mapType) const override;

private:
    const Opener _open;
    const NamesOpener _openNames;
    const MKImagery _imagery;
    mutable MKBasemapCells _cells; // has its own lock
};

} // namespace veyra
