#include "Platform/MapKit/MKBasemapSource.h"

#include "Platform/MapKit/Basemap/BasemapNames.h"
#include "Platform/MapKit/MKBasemapPainter.h"
#include "Platform/MapKit/MKBasemapStyle.h"

namespace veyra {

namespace {

constexpr size_t cellBytes = size_t{24} << 20;

} // namespace

MKBasemapSource::MKBasemapSource(Opener open, MKImagery::Opener openImagery, NamesOpener openNames)
    : _open(std::move(open)), _openNames(std::move(openNames)), _imagery(std::move(openImagery)), _cells(cellBytes) {}

std::shared_ptr<const MKTileSource> MKBasemapSource::shared() {
    // The reference in the static is never given up: workers may still draw while the process ends.
    static const auto* const source = new std::shared_ptr<const MKTileSource>(
        std::make_shared<MKBasemapSource>(&builtInBasemap, &builtInImagery, &builtInNames));
    return *source;
}

std::shared_ptr<const MKTile> MKBasemapSource::drawTile(const MKTileKey& key) const {
    return MKBasemapPainter(_open(), _cells, _imagery, key).draw();
}

MKTileAttribution MKBasemapSource::attribution(MKMapType mapType) const {
    switch (mapType) {
    case MKMapTypeSatellite:
        return {"NASA Blue Marble", ""};
    case MKMapTypeHybrid:
        return {"NASA Blue Marble, Natural Earth", ""};
    default:
        return {"Natural Earth", ""};
    }
}

MKTileColor MKBasemapSource::backgroundColor(MKMapType mapType) const {
    return MKBasemapStyle::forMapType(mapType).sea;
}

MKTileColor MKBasemapSource::darkBackgroundColor(MKMapType mapType) const {
    return MKBasemapStyle::forMapType(mapType, UIUserInterfaceStyleDark).sea;
}

const BasemapNames* MKBasemapSource::names(MKMapType mapType) const {
    return mapType == MKMapTypeSatellite ? nullptr : &_openNames();
}

} // namespace veyra
