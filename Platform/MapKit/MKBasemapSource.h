// Draws tiles from a base map of vector shapes. Any thread, several at once.
#pragma once

#include "Platform/MapKit/MKBasemapCells.h"
#include "Platform/MapKit/MKTile.h"

namespace veyra {

class MKBasemapSource final : public MKTileSource {
public:
    using Opener = std::function<const BasemapFile&()>;

    /// `open` is called with every tile, on the thread that draws it: a base map that cannot be opened (BasemapError)
    /// makes its tiles fail. It answers the same base map each time, which outlives the source.
    explicit MKBasemapSource(Opener open);
    /// The built-in world; never destroyed.
    static std::shared_ptr<const MKTileSource> shared();

    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override;
    MKTileColor backgroundColor(MKMapType mapType) const override;
    MKTileAttribution attribution(MKMapType mapType) const override;

private:
    const Opener _open;
    mutable MKBasemapCells _cells; // has its own lock
};

} // namespace veyra
