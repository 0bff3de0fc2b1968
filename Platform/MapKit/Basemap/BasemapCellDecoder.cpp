#include "Platform/MapKit/Basemap/BasemapCellDecoder.h"

#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <algorithm>
#include <string>
#include <utility>

namespace veyra {

namespace {

using basemapFormat::worldSide;

bool contains(const BasemapBounds& bounds, std::int64_t x, std::int64_t y) {
    return x >= bounds.minX && x <= bounds.maxX && y >= bounds.minY && y <= bounds.maxY;
}

// Whether the middle between two coordinates lies in [low, high).
bool isMiddleWithin(std::int32_t a, std::int32_t b, std::int32_t low, std::int32_t high) {
    const std::int64_t sum = std::int64_t{a} + b;
    return sum >= 2 * std::int64_t{low} && sum < 2 * std::int64_t{high};
}

bool isOnSquareSide(std::int32_t a, std::int32_t b) {
    return a == b && (a == 0 || a == worldSide);
}

} // namespace

BasemapCellDecoder::BasemapCellDecoder(const BasemapLevel& layout, BasemapCellId id) : _layout(layout) {
    _cell.id = id;
    const std::int32_t west = id.column * layout.cellSide;
    const std::int32_t north = id.row * layout.cellSide;
    _cell.bounds = {west, north, west + layout.cellSide, north + layout.cellSide};
    _cell.fillBounds = {west - layout.margin, std::max(0, north - layout.margin), _cell.bounds.maxX + layout.margin,
                        std::min(worldSide, _cell.bounds.maxY + layout.margin)};
}

void BasemapCellDecoder::fail(const char* fault) const {
    throw BasemapError("unpacked byte " + std::to_string(_at) + ": " + fault);
}

std::uint32_t BasemapCellDecoder::readVarint() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift <= 28; shift += 7) {
        if (_at == _end) {
            fail("a number is cut off");
        }
        const unsigned char byte = _bytes[_at++];
        value |= std::uint64_t{byte & 0x7fu} << shift;
        if (byte < 0x80) {
            if (value > UINT32_MAX) {
                fail("a number is too large");
            }
            return static_cast<std::uint32_t>(value);
        }
    }
    fail("a number is too long");
}

std::int32_t BasemapCellDecoder::readDelta() {
    const std::uint32_t value = readVarint();
    return static_cast<std::int32_t>(value >> 1 ^ (0u - (value & 1)));
}

BasemapCell BasemapCellDecoder::decode(std::span<const unsigned char> bytes, bool isAllLand) {
    _bytes = bytes;
    _at = 0;
    if (isAllLand) {
        fillWithLand();
    }
    while (_at < _bytes.size()) {
        _end = _bytes.size();
        const unsigned char id = _bytes[_at++];
        const std::uint32_t length = readVarint();
        if (length > _bytes.size() - _at) {
            fail("a layer runs beyond the cell");
        }
        _end = _at + length;
        if (id >= basemapLayerCount) {
            _at = _end; // a layer of a later day
            continue;
        }
        const auto layer = static_cast<BasemapLayer>(id);
        if (layer == BasemapLayer::Coast || layer == BasemapLayer::LakeShore) {
            fail("a layer is stored that follows from another");
        }
        BasemapShapes& shapes = _cell.layers[id];
        if (!shapes.isEmpty()) {
            fail("a layer is there twice");
        }
        const bool isLines = isStoredAsLines(layer);
        readSection(shapes, isLines ? 2 : 3, isLines ? _cell.bounds : _cell.fillBounds);
    }
    if (!isAllLand) {
        _cell.layers[static_cast<std::size_t>(BasemapLayer::Coast)] = outlines(_cell.shapes(BasemapLayer::Land));
    }
    _cell.layers[static_cast<std::size_t>(BasemapLayer::LakeShore)] = outlines(_cell.shapes(BasemapLayer::Lakes));
    return std::move(_cell);
}

void BasemapCellDecoder::readSection(BasemapShapes& shapes, std::uint32_t minimumPartLength,
                                     const BasemapBounds& within) {
    const std::uint32_t partCount = readVarint();
    // A part takes at least one byte for its length and two for each vertex.
    if (partCount > (_end - _at) / (1 + 2 * minimumPartLength)) {
        fail("a layer has more parts than bytes");
    }
    shapes.partStarts.reserve(partCount);
    shapes.partBounds.reserve(partCount);
    shapes.points.reserve((_end - _at) / 3); // most vertices take three or four bytes
    _last = {_cell.bounds.minX, _cell.bounds.minY};
    for (std::uint32_t part = 0; part < partCount; ++part) {
        const std::uint32_t count = readVarint();
        if (count < minimumPartLength || count > (_end - _at) / 2) {
            fail("a part's number of vertices is out of range");
        }
        readPart(shapes, count, within);
    }
    if (_at != _end) {
        fail("a layer has bytes left over");
    }
}

void BasemapCellDecoder::readPart(BasemapShapes& shapes, std::uint32_t count, const BasemapBounds& within) {
    const std::size_t first = shapes.points.size();
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::int64_t x = _last.x + std::int64_t{readDelta()} * _layout.step;
        const std::int64_t y = _last.y + std::int64_t{readDelta()} * _layout.step;
        if (!contains(within, x, y)) {
            fail("a vertex lies outside its cell");
        }
        _last = {static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)};
        shapes.points.push_back(_last);
    }
    shapes.finishPart(first);
}

void BasemapCellDecoder::fillWithLand() {
    const BasemapBounds& area = _cell.fillBounds;
    BasemapShapes& land = _cell.layers[static_cast<std::size_t>(BasemapLayer::Land)];
    land.points = {{area.minX, area.minY}, {area.maxX, area.minY}, {area.maxX, area.maxY}, {area.minX, area.maxY}};
    land.finishPart(0);
    _cell.isAllLand = true;
}

bool BasemapCellDecoder::isOutline(BasemapPoint from, BasemapPoint to) const {
    const BasemapBounds& cell = _cell.bounds;
    return contains(cell, from.x, from.y) && contains(cell, to.x, to.y) &&
           isMiddleWithin(from.x, to.x, cell.minX, cell.maxX) && isMiddleWithin(from.y, to.y, cell.minY, cell.maxY) &&
           !isOnSquareSide(from.x, to.x) && !isOnSquareSide(from.y, to.y);
}

BasemapShapes BasemapCellDecoder::outlines(const BasemapShapes& areas) const {
    BasemapShapes lines;
    for (std::size_t i = 0; i < areas.partCount(); ++i) {
        const std::span<const BasemapPoint> ring = areas.part(i);
        const std::size_t count = ring.size();
        // A run must not start in the middle of a line, so the walk begins behind an edge that is left out. A ring
        // without such an edge is one closed line, wherever it starts.
        std::size_t start = 0;
        for (std::size_t k = 0; k < count; ++k) {
            if (!isOutline(ring[k], ring[(k + 1) % count])) {
                start = (k + 1) % count;
                break;
            }
        }
        std::size_t first = lines.points.size();
        for (std::size_t k = 0; k < count; ++k) {
            const BasemapPoint from = ring[(start + k) % count];
            const BasemapPoint to = ring[(start + k + 1) % count];
            if (isOutline(from, to)) {
                if (lines.points.size() == first) {
                    lines.points.push_back(from);
                }
                lines.points.push_back(to);
            } else if (lines.points.size() > first) {
                lines.finishPart(first);
                first = lines.points.size();
            }
        }
        if (lines.points.size() > first) {
            lines.finishPart(first);
        }
    }
    return lines;
}

} // namespace veyra
