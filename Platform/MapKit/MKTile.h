// Tiles: squares of 512 device pixels that a picture of the world is drawn in. The world at a scale is laid out in
// tiles from its north-west corner; the last column and row reach past the square. Keys are plain values; a tile is
// immutable, but for how its picture is kept, and shared.
#pragma once

#include "Platform/MapKit/ImageTiles/MKTileImage.h"
#include "Platform/MapKit/MKMapType.h"
#include "Platform/MapKit/MKTileAttribution.h"
#include "Platform/MapKit/MKTilePicture.h"
#include "Platform/UIKit/UIUserInterfaceStyle.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace veyra {

class BasemapNames;
class MKImageSet;
struct MKTileImages;

/// A colour without transparency, 0x00RRGGBB as in a Cairo RGB24 surface.
using MKTileColor = uint32_t;

struct MKTileKey {
    static constexpr int side = 512; ///< device pixels

    uint64_t source = 0; ///< MKTileSource::identifier
    MKMapType mapType = MKMapTypeStandard;
    double scale = 0;       ///< device pixels a map point, exact: pictures of other scales are other tiles
    double deviceScale = 1; ///< device pixels a point, for the widths of lines
    int32_t column = 0, row = 0;
    UIUserInterfaceStyle style = UIUserInterfaceStyleLight; ///< dark only for sources that have a dark picture
    friend bool operator==(const MKTileKey&, const MKTileKey&) = default;

    /// The side in map points.
    double mapSide() const { return side / scale; }
};

/// What a drawn tile is worth.
struct MKTileQuality {
    /// False for one that stands in for the tile itself until that has come, or because that cannot be had.
    bool isFinal = true;
    /// Zoom levels by which the coarsest part of a tile that stands in is too coarse.
    int coarseness = 0;
    /// Seconds since 1970; not taken from a cache any more after that.
    double freshUntil = std::numeric_limits<double>::infinity();
    /// True when the source has nothing there, and all that is seen is the world in its place.
    bool isWorldAlone = false;
};

/// A drawn tile: one colour, or a picture of MKTileKey::side pixels square.
class MKTile {
public:
    /// The surface is one of MKTilePicture::makeSurface; nothing draws upon it any more.
    MKTile(const MKTileKey& key, MKTilePicture::Surface surface, const MKTileQuality& quality = {})
        : _key(key), _picture(std::make_unique<MKTilePicture>(std::move(surface))), _quality(quality) {}
    MKTile(const MKTileKey& key, MKTileColor color, const MKTileQuality& quality = {})
        : _key(key), _color(color), _quality(quality) {}
    MKTile(const MKTile&) = delete;
    MKTile& operator=(const MKTile&) = delete;

    const MKTileKey& key() const { return _key; }
    /// Null for a tile of one colour.
    MKTilePicture* picture() const { return _picture.get(); }
    MKTileColor color() const { return _color; }
    const MKTileQuality& quality() const { return _quality; }
    /// Less while the picture is packed.
    size_t byteSize() const { return sizeof(MKTile) + (_picture ? sizeof(MKTilePicture) + _picture->byteSize() : 0); }

private:
    const MKTileKey _key;
    const std::unique_ptr<MKTilePicture> _picture;
    const MKTileColor _color = 0;
    const MKTileQuality _quality;
};

/// Draws tiles. Any thread, several at once; outlives the maps that use it by shared ownership.
class MKTileSource {
public:
    MKTileSource();
    MKTileSource(const MKTileSource&) = delete;
    MKTileSource& operator=(const MKTileSource&) = delete;
    virtual ~MKTileSource() = default;

    /// Throws an exception derived from std::exception when the tile cannot be had.
    virtual std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const = 0;
    /// The colour of a place before anything of it is drawn.
    virtual MKTileColor backgroundColor(MKMapType mapType) const = 0;

    /// The images that tiles of a map type are put together from; null for tiles that are drawn without any.
    virtual std::shared_ptr<const MKImageSet> imageSet(MKMapType) const { return nullptr; }
    /// The images of that set that a tile needs.
    virtual std::vector<MKImageKey> imagesFor(const MKTileKey&) const { return {}; }
    /// Draws a tile with what there is of its images.
    virtual std::shared_ptr<const MKTile> drawTileFromImages(const MKTileKey& key, const MKTileImages&) const {
        return drawTile(key);
    }
    /// No tile has been drawn for a while: lets go of what can be had again in little more time than finding it takes.
    virtual void rest() const {}
    /// Whose data the tiles of a map type show. May change once the first of them are there.
    virtual MKTileAttribution attribution(MKMapType) const { return {}; }

    /// Whether the picture for dark surroundings is another one.
    virtual bool hasDarkPicture() const { return false; }
    /// The colour behind that picture.
    virtual MKTileColor darkBackgroundColor(MKMapType mapType) const { return backgroundColor(mapType); }
    /// Names to be written over the picture, or null. Throws like `drawTile`. They live as long as the source.
    virtual const BasemapNames* names(MKMapType) const { return nullptr; }
    /// The same for where all tiles in sight are the world alone.
    virtual const BasemapNames* namesOfWorldAlone(MKMapType) const { return nullptr; }
    /// Unique in the process and never used again.
    uint64_t identifier() const { return _identifier; }

private:
    const uint64_t _identifier;
};

} // namespace veyra

template <>
struct std::hash<veyra::MKTileKey> {
    size_t operator()(const veyra::MKTileKey& key) const noexcept {
        size_t value = std::hash<uint64_t>()(key.source) * 31 + key.mapType;
        value = value * 1000003 + std::hash<double>()(key.scale);
        value = value * 1000003 + std::hash<double>()(key.deviceScale);
        value = value * 31 + key.style;
        value = value * 1000003 + static_cast<uint32_t>(key.column);
        return value * 1000003 + static_cast<uint32_t>(key.row);
    }
};
