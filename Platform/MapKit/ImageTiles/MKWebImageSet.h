// Images that a server hands out under addresses of a pattern, kept on disk between runs as far as the server allows.
#pragma once

#include "Platform/MapKit/ImageTiles/MKImageDisk.h"
#include "Platform/MapKit/ImageTiles/MKImageSet.h"
#include "Platform/MapKit/ImageTiles/MKTileAddress.h"

namespace veyra {

class MKWebImageSet final : public MKImageSet {
public:
    /// The disk outlives the set.
    MKWebImageSet(MKTileAddress address, MKImageSetProperties properties, MKImageDisk& disk = MKImageDisk::shared());

    bool hasDoubled() const override { return _address.hasDoubled(); }
    std::string host(const MKImageKey& key) const override;
    std::shared_ptr<MKImageRequest> request(const MKImageKey& key, MKImageRequest::Handlers handlers) const override;

private:
    const MKTileAddress _address;
    MKImageDisk& _disk;
};

} // namespace veyra
