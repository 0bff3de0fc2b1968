#include "Platform/MapKit/Basemap/BasemapFile.h"

#include "Platform/MapKit/Basemap/BasemapCellDecoder.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace veyra {

namespace {

using namespace basemapFormat;

std::uint32_t littleEndian(std::span<const std::byte> data, std::size_t offset, int byteCount) {
    std::uint32_t value = 0;
    for (int i = byteCount - 1; i >= 0; --i) {
        value = value << 8 | std::to_integer<std::uint32_t>(data[offset + static_cast<std::size_t>(i)]);
    }
    return value;
}

std::uint32_t u32(std::span<const std::byte> data, std::size_t offset) {
    return littleEndian(data, offset, 4);
}

std::uint16_t u16(std::span<const std::byte> data, std::size_t offset) {
    return static_cast<std::uint16_t>(littleEndian(data, offset, 2));
}

const Bytef* zlibBytes(std::span<const std::byte> data) {
    return reinterpret_cast<const Bytef*>(data.data());
}

std::string cellName(BasemapCellId id) {
    return "cell " + std::to_string(id.level) + "/" + std::to_string(id.column) + "/" + std::to_string(id.row);
}

} // namespace

BasemapFile::BasemapFile(std::span<const std::byte> data, std::string name) : _data(data), _name(std::move(name)) {
    readHeader();
}

void BasemapFile::failAt(std::size_t offset, const std::string& fault) const {
    throw BasemapError(_name + ": byte " + std::to_string(offset) + ": " + fault);
}

void BasemapFile::readHeader() {
    if (_data.size() < fixedHeaderLength) {
        failAt(_data.size(), "the file ends inside its header");
    }
    for (std::size_t i = 0; i < magic.size(); ++i) {
        if (std::to_integer<unsigned char>(_data[i]) != magic[i]) {
            failAt(i, "not a base map file");
        }
    }
    if (u16(_data, versionOffset) != version) {
        failAt(versionOffset, "format version " + std::to_string(u16(_data, versionOffset)) + " is not known");
    }
    if (u32(_data, fileLengthOffset) != _data.size()) {
        failAt(fileLengthOffset, "the file should be " + std::to_string(u32(_data, fileLengthOffset)) +
                                     " bytes long but is " + std::to_string(_data.size()));
    }
    const std::size_t headerLength = u32(_data, headerLengthOffset);
    if (headerLength < fixedHeaderLength || headerLength > _data.size()) {
        failAt(headerLengthOffset, "the header's length is out of range");
    }
    const auto covered = _data.subspan(versionOffset, headerLength - versionOffset);
    if (crc32_z(0, zlibBytes(covered), covered.size()) != u32(_data, checksumOffset)) {
        failAt(checksumOffset, "the header's checksum is wrong");
    }

    const std::size_t attributionLength = u32(_data, attributionLengthOffset);
    const std::size_t levels = u16(_data, levelCountOffset);
    if (attributionLength > headerLength - fixedHeaderLength) {
        failAt(attributionLengthOffset, "the attribution runs beyond the header");
    }
    if (levels < 1 || levels > maximumLevels) {
        failAt(levelCountOffset, "the number of levels is out of range");
    }
    const std::size_t recordsOffset = fixedHeaderLength + attributionLength;
    if (levels * levelRecordLength > headerLength - recordsOffset) {
        failAt(levelCountOffset, "the level records run beyond the header");
    }
    _attribution = {reinterpret_cast<const char*>(_data.data()) + fixedHeaderLength, attributionLength};
    for (std::size_t i = 0; i < levels; ++i) {
        _levels.push_back(readLevel(recordsOffset + i * levelRecordLength, headerLength));
    }
}

BasemapFile::Level BasemapFile::readLevel(std::size_t recordOffset, std::size_t headerLength) const {
    const int gridBits = static_cast<int>(littleEndian(_data, recordOffset, 1));
    const int columnBits = static_cast<int>(littleEndian(_data, recordOffset + 1, 1));
    if (gridBits < minimumGridBits || gridBits > worldBits) {
        failAt(recordOffset, "the level's grid is out of range");
    }
    if (columnBits > std::min(maximumColumnBits, gridBits)) {
        failAt(recordOffset + 1, "the level's number of columns is out of range");
    }
    Level level;
    level.layout.columns = static_cast<std::uint16_t>(1 << columnBits);
    level.layout.cellSide = worldSide >> columnBits;
    level.layout.step = worldSide >> gridBits;
    level.layout.minimumZoom = static_cast<std::int16_t>(u16(_data, recordOffset + 2)) * zoomUnit;
    const std::uint32_t marginSteps = u32(_data, recordOffset + 4);
    if (marginSteps > static_cast<std::uint32_t>(level.layout.cellSide / level.layout.step)) {
        failAt(recordOffset + 4, "the level's margin is wider than a cell");
    }
    level.layout.margin = static_cast<std::int32_t>(marginSteps) * level.layout.step;

    const std::size_t indexOffset = u32(_data, recordOffset + 8);
    const std::size_t cellCount = std::size_t{1} << (2 * columnBits);
    if (indexOffset > headerLength || cellCount * cellEntryLength > headerLength - indexOffset) {
        failAt(recordOffset + 8, "the level's index runs beyond the header");
    }
    level.cells.reserve(cellCount);
    for (std::size_t i = 0; i < cellCount; ++i) {
        const std::size_t at = indexOffset + i * cellEntryLength;
        const CellEntry entry{u32(_data, at), u32(_data, at + 4), u32(_data, at + 8), u32(_data, at + 12)};
        checkEntry(entry, at, headerLength);
        level.cells.push_back(entry);
    }
    return level;
}

void BasemapFile::checkEntry(const CellEntry& entry, std::size_t entryOffset, std::size_t headerLength) const {
    if (entry.packedLength == 0) {
        if (entry.offset != 0 || entry.length != 0) {
            failAt(entryOffset, "a cell without data has an offset or a length");
        }
        return;
    }
    if (entry.offset < headerLength || entry.offset > _data.size() ||
        entry.packedLength > _data.size() - entry.offset) {
        failAt(entryOffset, "the cell's data lie outside the file");
    }
    const std::uint64_t longest = std::min(maximumCellLength, maximumPackingRatio * entry.packedLength);
    if (entry.length == 0 || entry.length > longest) {
        failAt(entryOffset + 8, "the cell's unpacked length is out of range");
    }
}

int BasemapFile::levelForZoom(double zoom) const {
    int best = 0;
    for (int i = 1; i < levelCount(); ++i) {
        if (zoom >= level(i).minimumZoom) {
            best = i;
        }
    }
    return best;
}

std::vector<BasemapCellId> BasemapFile::cellsMeeting(int level, double minX, double minY, double maxX,
                                                     double maxY) const {
    const Level& cells = _levels.at(static_cast<std::size_t>(level));
    const double side = cells.layout.cellSide;
    const int columns = cells.layout.columns;

    // First and last column (or row) of an interval; last < first when there is none.
    const auto range = [&](double low, double high) {
        if (!(low <= high) || low >= worldSide || high < 0 || (high == 0 && low < 0)) {
            return std::pair(0, -1);
        }
        const int first = static_cast<int>(std::floor(std::max(low, 0.0) / side));
        const int last = static_cast<int>(std::ceil(std::min(high, double{worldSide}) / side)) - 1;
        return std::pair(first, std::min(std::max(first, last), columns - 1));
    };
    const auto [firstColumn, lastColumn] = range(minX, maxX);
    const auto [firstRow, lastRow] = range(minY, maxY);

    std::vector<BasemapCellId> found;
    for (int row = firstRow; row <= lastRow; ++row) {
        for (int column = firstColumn; column <= lastColumn; ++column) {
            const CellEntry& entry = cells.cells[static_cast<std::size_t>(row * columns + column)];
            if (entry.packedLength != 0 || (entry.flags & allLandFlag) != 0) {
                found.push_back({static_cast<std::uint8_t>(level), static_cast<std::uint16_t>(column),
                                 static_cast<std::uint16_t>(row)});
            }
        }
    }
    return found;
}

BasemapCell BasemapFile::cell(BasemapCellId id) const {
    const Level& level = _levels.at(id.level);
    if (id.column >= level.layout.columns || id.row >= level.layout.columns) {
        throw std::out_of_range(_name + ": there is no " + cellName(id));
    }
    const CellEntry& entry = level.cells[std::size_t{id.row} * level.layout.columns + id.column];
    std::vector<unsigned char> unpacked(entry.length);
    if (entry.packedLength != 0) {
        const auto packed = _data.subspan(entry.offset, entry.packedLength);
        uLongf length = entry.length;
        uLong consumed = entry.packedLength;
        const int result = uncompress2(unpacked.data(), &length, zlibBytes(packed), &consumed);
        if (result == Z_MEM_ERROR) {
            throw std::bad_alloc();
        }
        if (result != Z_OK || length != entry.length || consumed != entry.packedLength) {
            throw BasemapError(_name + ": " + cellName(id) + ": the packed data are damaged");
        }
    }
    try {
        return BasemapCellDecoder(level.layout, id).decode(unpacked, (entry.flags & allLandFlag) != 0);
    } catch (const BasemapError& error) {
        throw BasemapError(_name + ": " + cellName(id) + ": " + error.what());
    }
}

} // namespace veyra
