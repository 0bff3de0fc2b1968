#include "Platform/MapKit/Basemap/BasemapImagery.h"

#include "Platform/MapKit/Basemap/BasemapFile.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <zlib.h>

#include <utility>

namespace veyra {

namespace {

using namespace basemapFormat;

std::uint32_t littleEndian(std::span<const std::byte> data, std::size_t offset, std::size_t byteCount) {
    std::uint32_t value = 0;
    for (std::size_t i = byteCount; i-- > 0;) {
        value = value << 8 | std::to_integer<std::uint32_t>(data[offset + i]);
    }
    return value;
}

// Tiles of all levels before one.
std::size_t tilesBefore(int level) {
    return ((std::size_t{1} << (2 * level)) - 1) / 3;
}

} // namespace

BasemapImagery::BasemapImagery(std::span<const std::byte> data, std::string name)
    : _data(data), _name(std::move(name)) {
    readHeader();
}

void BasemapImagery::failAt(std::size_t offset, const std::string& fault) const {
    throw BasemapError(_name + ": byte " + std::to_string(offset) + ": " + fault);
}

void BasemapImagery::readHeader() {
    if (_data.size() < imageryHeaderLength) {
        failAt(_data.size(), "the file ends inside its header");
    }
    for (std::size_t i = 0; i < imageryMagic.size(); ++i) {
        if (std::to_integer<unsigned char>(_data[i]) != imageryMagic[i]) {
            failAt(i, "not a file of pictures");
        }
    }
    if (littleEndian(_data, imageryVersionOffset, 2) != imageryVersion) {
        failAt(imageryVersionOffset, "the format version is not known");
    }
    const std::uint32_t levels = littleEndian(_data, imageryLevelCountOffset, 2);
    const std::uint32_t side = littleEndian(_data, imageryTileSideOffset, 4);
    const std::uint32_t attributionLength = littleEndian(_data, imageryAttributionLengthOffset, 4);
    if (levels < 1 || levels > maximumImageryLevels) {
        failAt(imageryLevelCountOffset, "the number of levels is out of range");
    }
    if (side < 16 || side > 2048) {
        failAt(imageryTileSideOffset, "the side of the tiles is out of range");
    }
    if (littleEndian(_data, imageryFileLengthOffset, 4) != _data.size()) {
        failAt(imageryFileLengthOffset, "the file is not as long as it says");
    }
    _levelCount = static_cast<int>(levels);
    _tileSide = static_cast<int>(side);
    const std::size_t count = tilesBefore(_levelCount);
    if (attributionLength > _data.size() - imageryHeaderLength ||
        count * imageryEntryLength > _data.size() - imageryHeaderLength - attributionLength) {
        failAt(imageryAttributionLengthOffset, "the header runs beyond the file");
    }
    const std::size_t index = imageryHeaderLength + attributionLength;
    const std::size_t headerLength = index + count * imageryEntryLength;
    const auto* const bytes = reinterpret_cast<const Bytef*>(_data.data());
    if (crc32_z(0, bytes + imageryVersionOffset, headerLength - imageryVersionOffset) !=
        littleEndian(_data, checksumOffset, 4)) {
        failAt(checksumOffset, "the header's checksum is wrong");
    }
    _attribution = {reinterpret_cast<const char*>(_data.data()) + imageryHeaderLength, attributionLength};
    _tiles.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = index + i * imageryEntryLength;
        const Entry entry{littleEndian(_data, at, 4), littleEndian(_data, at + 4, 4)};
        if (entry.offset < headerLength || entry.offset > _data.size() || entry.length > _data.size() - entry.offset) {
            failAt(at, "a tile lies outside the file");
        }
        _tiles.push_back(entry);
    }
}

const BasemapImagery::Entry& BasemapImagery::entry(int level, int column, int row) const {
    const int columns = level >= 0 && level < _levelCount ? 1 << level : 0;
    if (column < 0 || column >= columns || row < 0 || row >= columns) {
        throw std::out_of_range(_name + ": there is no such tile");
    }
    return _tiles[tilesBefore(level) + static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                  static_cast<std::size_t>(column)];
}

std::span<const std::byte> BasemapImagery::tile(int level, int column, int row) const {
    const Entry& found = entry(level, column, row);
    return _data.subspan(found.offset, found.length);
}

std::string BasemapImagery::tileName(int level, int column, int row) const {
    return _name + ": tile " + std::to_string(level) + "/" + std::to_string(column) + "/" + std::to_string(row) +
           " at byte " + std::to_string(entry(level, column, row).offset);
}

} // namespace veyra
