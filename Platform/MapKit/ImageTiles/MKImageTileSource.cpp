#include "Platform/MapKit/ImageTiles/MKImageTileSource.h"

#include "Platform/MapKit/ImageTiles/MKImageTilePainter.h"
#include "Platform/MapKit/MKGeometry.h"

#include <cmath>

namespace veyra {

namespace {

/// Screens so dense get images of twice the density.
constexpr double denseScreen = 1.5;

bool isDoubled(const MKTileKey& key, const MKImageSet& set) {
    return set.hasDoubled() && key.deviceScale >= denseScreen;
}

int imageSide(const MKTileKey& key, const MKImageSet& set) {
    return isDoubled(key, set) ? 2 * set.tileSize() : set.tileSize();
}

} // namespace

MKImageTileSource::MKImageTileSource(Sets sets, std::shared_ptr<const MKTileSource> world)
    : _sets(std::move(sets)), _world(std::move(world)) {}

std::shared_ptr<const MKImageSet> MKImageTileSource::imageSet(MKMapType mapType) const {
    const auto found = _sets.find(mapType);
    return found == _sets.end() ? nullptr : found->second;
}

std::vector<MKImageKey> MKImageTileSource::imagesFor(const MKTileKey& key) const {
    const auto set = imageSet(key.mapType);
    const int minimum = set->minimumZoom(), maximum = set->maximumZoom();
    const int side = imageSide(key, *set);
    // Below a lowest zoom that does not show the whole world in one image there are too many to draw small.
    const bool isTooSmall = minimum > 0 && key.scale * MKWorldSide < std::ldexp(side, minimum) * std::sqrt(0.5);
    if (isTooSmall || minimum > maximum) {
        return {};
    }
    const MKImageGrid grid(key, side, minimum, maximum);
    std::vector<MKImageKey> keys;
    for (int row = grid.firstRow; row <= grid.lastRow; ++row) {
        for (int column = grid.firstColumn; column <= grid.lastColumn; ++column) {
            keys.push_back({set->identifier(), grid.zoom, column, row, isDoubled(key, *set)});
        }
    }
    return keys;
}

std::shared_ptr<const MKTile> MKImageTileSource::drawTile(const MKTileKey& key) const {
    return _world->drawTile(key);
}

std::shared_ptr<const MKTile> MKImageTileSource::drawTileFromImages(const MKTileKey& key,
                                                                    const MKTileImages& images) const {
    const auto set = imageSet(key.mapType);
    return set ? MKImageTilePainter(key, imageSide(key, *set), images, *_world).draw() : drawTile(key);
}

MKTileColor MKImageTileSource::backgroundColor(MKMapType mapType) const {
    return _world->backgroundColor(mapType);
}

const BasemapNames* MKImageTileSource::names(MKMapType mapType) const {
    return imageSet(mapType) ? nullptr : _world->names(mapType);
}

MKTileAttribution MKImageTileSource::attribution(MKMapType mapType) const {
    const auto set = imageSet(mapType);
    return set ? set->attribution() : _world->attribution(mapType);
}

} // namespace veyra
