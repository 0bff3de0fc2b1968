// Images of an archive. Its zooms and its attribution, as far as they were not given, are known once it was opened,
// which happens with the first image that is asked for.
#pragma once

#include "Platform/MapKit/ImageTiles/MKImageSet.h"
#include "Platform/MapKit/ImageTiles/MKTileArchive.h"

#include <atomic>

namespace veyra {

class MKArchiveImageSet final : public MKImageSet {
public:
    /// Of the properties' zooms those that the archive has are used.
    MKArchiveImageSet(const std::string& path, MKImageSetProperties properties);

    int minimumZoom() const override;
    int maximumZoom() const override;
    MKTileAttribution attribution() const override VEYRA_EXCLUDES(_learned->lock);
    std::shared_ptr<MKImageRequest> request(const MKImageKey& key, MKImageRequest::Handlers handlers) const override;

private:
    /// What requests under way use: they may outlive the set.
    struct Learned {
        explicit Learned(const std::string& path) : archive(path) {}
        MKTileArchive archive;
        std::atomic<int> minimumZoom{0}, maximumZoom{largestZoom};
        NSLock lock;
        MKTileAttribution attribution VEYRA_GUARDED_BY(lock);
    };
    class Request;

    const std::shared_ptr<Learned> _learned;
};

} // namespace veyra
