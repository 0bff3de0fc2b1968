#include "Basemap/Maker/FileWriter.h"

#include "Basemap/Maker/Bytes.h"
#include "Platform/MapKit/Basemap/BasemapCell.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <cmath>
#include <utility>

namespace veyra::basemapMaker {

namespace {

using namespace basemapFormat;

void appendSection(Bytes& out, BasemapLayer layer, const std::vector<GridLine>& parts, GridPoint corner) {
    if (parts.empty()) {
        return;
    }
    Bytes section;
    appendVarint(section, parts.size());
    GridPoint last = corner;
    for (const GridLine& part : parts) {
        appendVarint(section, part.size());
        for (const GridPoint point : part) {
            appendDelta(section, point.x - last.x);
            appendDelta(section, point.y - last.y);
            last = point;
        }
    }
    out.push_back(static_cast<unsigned char>(layer));
    appendVarint(out, section.size());
    out.insert(out.end(), section.begin(), section.end());
}

} // namespace

FileWriter::FileWriter(std::string attribution) : _attribution(std::move(attribution)) {}

void FileWriter::addLevel(const Grid& grid, double minimumZoom, const std::vector<CutCell>& cells) {
    Level level{grid, minimumZoom, {}};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const CutCell& cell = cells[i];
        const auto column = static_cast<std::int32_t>(i) % grid.columns();
        const auto row = static_cast<std::int32_t>(i) / grid.columns();
        const GridPoint corner{column * grid.cellSide(), row * grid.cellSide()};
        Bytes bytes;
        appendSection(bytes, BasemapLayer::Land, cell.land, corner);
        appendSection(bytes, BasemapLayer::Lakes, cell.lakes, corner);
        for (std::size_t layer = 0; layer < cell.lines.size(); ++layer) {
            appendSection(bytes, static_cast<BasemapLayer>(layer), cell.lines[layer], corner);
        }
        level.cells.push_back(
            {bytes.empty() ? Bytes() : packed(bytes), static_cast<std::uint32_t>(bytes.size()), cell.isAllLand});
    }
    _levels.push_back(std::move(level));
}

void FileWriter::write(const std::string& path) const {
    std::size_t headerLength = fixedHeaderLength + _attribution.size() + _levels.size() * levelRecordLength;
    const std::size_t firstIndex = headerLength;
    for (const Level& level : _levels) {
        headerLength += level.cells.size() * cellEntryLength;
    }

    Bytes records;
    Bytes index;
    Bytes data;
    for (const Level& level : _levels) {
        appendLittleEndian(records, static_cast<std::uint32_t>(level.grid.gridBits()), 1);
        appendLittleEndian(records, static_cast<std::uint32_t>(level.grid.columnBits()), 1);
        appendLittleEndian(records, static_cast<std::uint32_t>(std::lround(level.minimumZoom / zoomUnit)), 2);
        appendLittleEndian(records, static_cast<std::uint32_t>(level.grid.margin()), 4);
        appendLittleEndian(records, static_cast<std::uint32_t>(firstIndex + index.size()), 4);
        for (const PackedCell& cell : level.cells) {
            const std::size_t offset = cell.bytes.empty() ? 0 : headerLength + data.size();
            appendLittleEndian(index, static_cast<std::uint32_t>(offset), 4);
            appendLittleEndian(index, static_cast<std::uint32_t>(cell.bytes.size()), 4);
            appendLittleEndian(index, cell.length, 4);
            appendLittleEndian(index, cell.isAllLand ? allLandFlag : 0, 4);
            data.insert(data.end(), cell.bytes.begin(), cell.bytes.end());
        }
    }

    Bytes covered; // by the checksum
    appendLittleEndian(covered, version, 2);
    appendLittleEndian(covered, static_cast<std::uint32_t>(_levels.size()), 2);
    appendLittleEndian(covered, static_cast<std::uint32_t>(headerLength), 4);
    appendLittleEndian(covered, static_cast<std::uint32_t>(headerLength + data.size()), 4);
    appendLittleEndian(covered, static_cast<std::uint32_t>(_attribution.size()), 4);
    covered.insert(covered.end(), _attribution.begin(), _attribution.end());
    covered.insert(covered.end(), records.begin(), records.end());
    covered.insert(covered.end(), index.begin(), index.end());

    Bytes out = withChecksum({magic.begin(), magic.end()}, covered);
    out.insert(out.end(), data.begin(), data.end());
    writeFile(path, out);
}

} // namespace veyra::basemapMaker
