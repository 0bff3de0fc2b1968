// Images of the whole world or a part of it in the XYZ scheme, and how one of them is had. A set is immutable but for
// what it learns of itself, and shared; any thread, except where said.
#pragma once

#include "Platform/MapKit/ImageTiles/MKTileImage.h"
#include "Platform/MapKit/MKTileAttribution.h"

#include <functional>
#include <limits>

namespace veyra {

/// What became of a request: an image; neither image nor failure when the set has none there; or why there is none.
struct MKImageResult {
    std::shared_ptr<const MKTileImage> image;
    double freshUntil = std::numeric_limits<double>::infinity(); ///< seconds since 1970
    std::string failure;
    bool mayPass = false;  ///< asking again may help
    double retryAfter = 0; ///< seconds that the server wants to be left alone
};

/// One image on its way. Main queue only; its last owner's release ends it without a word, and it never calls its
/// handlers from within `begin` or `load`.
class MKImageRequest {
public:
    struct Handlers {
        std::function<void()> needsHost; ///< `load` is waited for: the image must come from another machine
        std::function<void(MKImageResult)> ended;
    };
    MKImageRequest() = default;
    MKImageRequest(const MKImageRequest&) = delete;
    MKImageRequest& operator=(const MKImageRequest&) = delete;
    virtual ~MKImageRequest() = default;

    /// Looks on this machine. Called once.
    virtual void begin() = 0;
    /// Asks the other machine. Called once, after `needsHost`.
    virtual void load() {}
};

/// What is common to sets.
struct MKImageSetProperties {
    int tileSize = 256; ///< pixels a side: the side of zoom 0's image of the world; twice that for doubled images
    int minimumZoom = 0, maximumZoom = 22; ///< 0 to 30
    MKTileAttribution attribution;
};

class MKImageSet {
public:
    static constexpr int largestZoom = 30;

    explicit MKImageSet(MKImageSetProperties properties);
    MKImageSet(const MKImageSet&) = delete;
    MKImageSet& operator=(const MKImageSet&) = delete;
    virtual ~MKImageSet() = default;

    /// Unique in the process and never used again.
    uint64_t identifier() const { return _identifier; }
    int tileSize() const { return _properties.tileSize; }
    virtual int minimumZoom() const { return _properties.minimumZoom; }
    virtual int maximumZoom() const { return _properties.maximumZoom; }
    virtual MKTileAttribution attribution() const { return _properties.attribution; }
    /// True when there are images of twice the density.
    virtual bool hasDoubled() const { return false; }
    /// The machine that an image comes from; "" for this one.
    virtual std::string host(const MKImageKey&) const { return {}; }
    /// A request that has not begun. Main queue.
    virtual std::shared_ptr<MKImageRequest> request(const MKImageKey& key, MKImageRequest::Handlers handlers) const = 0;

private:
    const uint64_t _identifier;
    const MKImageSetProperties _properties;
};

} // namespace veyra
