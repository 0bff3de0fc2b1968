#include "Platform/MapKit/MKBasemapSource.h"

#include "Platform/MapKit/MKBasemapPainter.h"
#include "Platform/MapKit/MKBasemapStyle.h"

namespace veyra {

namespace {

constexpr size_t cellBytes = size_t{24} << 20;

} // namespace

MKBasemapSource::MKBasemapSource(Opener open) : _open(std::move(open)), _cells(cellBytes) {}

std::shared_ptr<const MKTileSource> MKBasemapSource::shared() {
    // The reference in the static is never given up: workers may still draw while the process ends.
    static const auto* const source =
        new std::shared_ptr<const MKTileSource>(std::make_shared<MKBasemapSource>(&builtInBasemap));
    return *source;
}

std::shared_ptr<const MKTile> MKBasemapSource::drawTile(const MKTileKey& key) const {
    return MKBasemapPainter(_open(), _cells, key).draw();
}

MKTileAttribution MKBasemapSource::attribution(MKMapType) const {
    return {"Natural Earth", ""};
}

MKTileColor MKBasemapSource::backgroundColor(MKMapType mapType) const {
    return MKBasemapStyle::forMapType(mapType).sea;
}

} // namespace veyra
