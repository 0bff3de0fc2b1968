#include "Platform/MapKit/MKPictureTiles.h"

#include "Platform/MapKit/Basemap/BasemapFile.h"
#include "Platform/UIKit/UIImage.h"

#include <algorithm>

namespace veyra {

namespace {

// The picture of a JPEG file that has `side` pixels square, or what is wrong with it.
std::string decode(std::span<const std::byte> file, int side, MKPicture& picture) {
    const auto image = UIImage::imageWithData({reinterpret_cast<const char*>(file.data()), file.size()});
    if (!image) {
        return "no picture";
    }
    if (image->pixelWidth() != side || image->pixelHeight() != side) {
        return "not a picture of the right size";
    }
    const size_t count = static_cast<size_t>(side) * static_cast<size_t>(side);
    picture.resize(count * 3);
    const uint32_t* const pixels = image->pixels();
    uint8_t* out = picture.data();
    for (size_t i = 0; i < count; ++i, out += 3) {
        const uint32_t pixel = pixels[i];
        out[0] = static_cast<uint8_t>(pixel >> 16);
        out[1] = static_cast<uint8_t>(pixel >> 8);
        out[2] = static_cast<uint8_t>(pixel);
    }
    return {};
}

} // namespace

std::shared_ptr<const MKPicture> MKPictureTiles::tile(const BasemapImagery& imagery, int level, int column, int row) {
    {
        const NSLockGuard guard(_lock);
        const auto found = std::find_if(_entries.begin(), _entries.end(), [&](const Entry& entry) {
            return entry.level == level && entry.column == column && entry.row == row;
        });
        if (found != _entries.end()) {
            _entries.splice(_entries.begin(), _entries, found);
            return found->picture;
        }
    }
    auto picture = std::make_shared<MKPicture>();
    if (const std::string fault = decode(imagery.tile(level, column, row), imagery.tileSide(), *picture);
        !fault.empty()) {
        throw BasemapError(imagery.tileName(level, column, row) + ": " + fault);
    }
    const NSLockGuard guard(_lock);
    _entries.push_front({level, column, row, picture});
    _byteSize += picture->size();
    while (_byteSize > _byteLimit && _entries.size() > 1) {
        _byteSize -= _entries.back().picture->size();
        _entries.pop_back();
    }
    return picture;
}

} // namespace veyra
