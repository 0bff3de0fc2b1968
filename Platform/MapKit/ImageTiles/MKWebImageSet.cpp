#include "Platform/MapKit/ImageTiles/MKWebImageSet.h"

#include "Platform/MapKit/ImageTiles/MKWebImageRequest.h"

namespace veyra {

MKWebImageSet::MKWebImageSet(MKTileAddress address, MKImageSetProperties properties, MKImageDisk& disk)
    : MKImageSet(std::move(properties)), _address(std::move(address)), _disk(disk) {}

std::string MKWebImageSet::host(const MKImageKey& key) const {
    return _address.host(key.zoom, key.column, key.row, key.doubled);
}

std::shared_ptr<MKImageRequest> MKWebImageSet::request(const MKImageKey& key, MKImageRequest::Handlers handlers) const {
    return std::make_shared<MKWebImageRequest>(_address.url(key.zoom, key.column, key.row, key.doubled), _disk,
                                               std::move(handlers));
}

} // namespace veyra
