#include "Tests/Platform/MapKit/Basemap/BasemapTestSupport.h"

#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <zlib.h>

#include <cmath>
#include <numbers>

namespace veyra::basemapTest {

namespace {

void appendVarint(std::vector<unsigned char>& out, unsigned value) {
    for (; value >= 0x80; value >>= 7) {
        out.push_back(static_cast<unsigned char>(value | 0x80));
    }
    out.push_back(static_cast<unsigned char>(value));
}

void appendDelta(std::vector<unsigned char>& out, int delta) {
    appendVarint(out, delta < 0 ? static_cast<unsigned>(-2 * delta - 1) : static_cast<unsigned>(2 * delta));
}

void append(Bytes& out, std::uint32_t value, int byteCount) {
    for (int i = 0; i < byteCount; ++i) {
        out.push_back(static_cast<std::byte>(value >> (8 * i)));
    }
}

Bytes packed(const std::vector<unsigned char>& payload) {
    uLongf length = compressBound(payload.size());
    std::vector<unsigned char> out(length);
    compress(out.data(), &length, payload.data(), payload.size());
    Bytes bytes;
    for (std::size_t i = 0; i < length; ++i) {
        bytes.push_back(static_cast<std::byte>(out[i]));
    }
    return bytes;
}

bool isWithin(const BasemapBounds& outer, const BasemapBounds& inner) {
    return inner.minX >= outer.minX && inner.maxX <= outer.maxX && inner.minY >= outer.minY && inner.maxY <= outer.maxY;
}

} // namespace

std::vector<unsigned char> section(unsigned char layer, const std::vector<std::vector<RawPoint>>& parts) {
    std::vector<unsigned char> content;
    appendVarint(content, static_cast<unsigned>(parts.size()));
    RawPoint last;
    for (const std::vector<RawPoint>& part : parts) {
        appendVarint(content, static_cast<unsigned>(part.size()));
        for (const RawPoint point : part) {
            appendDelta(content, point.x - last.x);
            appendDelta(content, point.y - last.y);
            last = point;
        }
    }
    std::vector<unsigned char> out = {layer};
    appendVarint(out, static_cast<unsigned>(content.size()));
    out.insert(out.end(), content.begin(), content.end());
    return out;
}

std::vector<unsigned char> joined(std::initializer_list<std::vector<unsigned char>> sections) {
    std::vector<unsigned char> out;
    for (const std::vector<unsigned char>& part : sections) {
        out.insert(out.end(), part.begin(), part.end());
    }
    return out;
}

Bytes makeFile(const std::vector<RawCell>& cells) {
    const std::string attribution = "Somebody";
    const auto headerLength = static_cast<std::uint32_t>(28 + attribution.size() + 12 + 16 * cells.size());
    Bytes out;
    for (const int byte : {0x89, 0x56, 0x42, 0x4d, 0x0d, 0x0a, 0x1a, 0x0a}) {
        out.push_back(static_cast<std::byte>(byte));
    }
    append(out, 0, 4); // checksum
    append(out, 1, 2);
    append(out, 1, 2);
    append(out, headerLength, 4);
    append(out, 0, 4); // file length
    append(out, static_cast<std::uint32_t>(attribution.size()), 4);
    for (const char character : attribution) {
        out.push_back(static_cast<std::byte>(character));
    }
    append(out, 8, 1);
    append(out, cells.size() == 1 ? 0 : 1, 1);
    append(out, 384, 2);
    append(out, 4, 4);
    append(out, static_cast<std::uint32_t>(28 + attribution.size() + 12), 4);
    Bytes data;
    for (const RawCell& cell : cells) {
        const Bytes bytes = cell.payload.empty() ? Bytes() : packed(cell.payload);
        append(out, bytes.empty() ? 0 : static_cast<std::uint32_t>(headerLength + data.size()), 4);
        append(out, static_cast<std::uint32_t>(bytes.size()), 4);
        append(out, static_cast<std::uint32_t>(cell.payload.size()), 4);
        append(out, cell.flags, 4);
        data.insert(data.end(), bytes.begin(), bytes.end());
    }
    out.insert(out.end(), data.begin(), data.end());
    reseal(out);
    return out;
}

Bytes makeSmallFile() {
    // A square of land that leaves the cell to the east, with a lake that has an island.
    const RawCell northWest{joined({section(0, {{{100, 10}, {132, 10}, {132, 60}, {128, 60}, {100, 60}}}),
                                    section(2, {{{104, 20}, {120, 20}, {120, 50}, {104, 50}},
                                                {{108, 30}, {108, 40}, {112, 40}, {112, 30}}}),
                                    section(200, {{{1, 2}, {3, 4}}}), section(4, {{{100, 15}, {110, 15}, {128, 18}}})}),
                            0};
    const RawCell southEast{
        section(
            0, {{{-4, 120}, {0, 120}, {60, 100}, {128, 120}, {132, 120}, {132, 128}, {128, 128}, {0, 128}, {-4, 128}}}),
        0};
    return makeFile({northWest, {{}, 1}, {}, southEast});
}

std::uint32_t readU32(const Bytes& file, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value |= std::to_integer<std::uint32_t>(file[offset + i]) << (8 * i);
    }
    return value;
}

void writeU32(Bytes& file, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        file[offset + i] = static_cast<std::byte>(value >> (8 * i));
    }
}

void reseal(Bytes& file) {
    writeU32(file, 20, static_cast<std::uint32_t>(file.size()));
    const std::size_t headerLength = readU32(file, 16);
    if (headerLength >= 12 && headerLength <= file.size()) {
        const auto* const start = reinterpret_cast<const unsigned char*>(file.data()) + 12;
        writeU32(file, 8, static_cast<std::uint32_t>(crc32_z(0, start, headerLength - 12)));
    }
}

std::string faultOf(const BasemapCell& cell) {
    for (std::size_t layer = 0; layer < basemapLayerCount; ++layer) {
        const BasemapShapes& shapes = cell.layers[layer];
        const bool isAreas = layer == 0 || layer == 2;
        const BasemapBounds& allowed = isAreas ? cell.fillBounds : cell.bounds;
        const std::string where = "layer " + std::to_string(layer) + ": ";
        if (shapes.partBounds.size() != shapes.partCount() || shapes.points.empty() != shapes.isEmpty()) {
            return where + "parts and bounds do not match";
        }
        BasemapBounds all;
        std::size_t next = 0;
        for (std::size_t i = 0; i < shapes.partCount(); ++i) {
            BasemapBounds bounds;
            for (const BasemapPoint point : shapes.part(i)) {
                bounds.include(point);
            }
            if (shapes.partStarts[i] != next || shapes.part(i).size() < (isAreas ? 3u : 2u)) {
                return where + "a part has the wrong length";
            }
            if (bounds != shapes.partBounds[i] || !isWithin(allowed, bounds)) {
                return where + "a part's bounds are wrong";
            }
            next += shapes.part(i).size();
            all.include(bounds);
        }
        if (next != shapes.points.size() || all != shapes.bounds) {
            return where + "the layer's bounds are wrong";
        }
    }
    return {};
}

DecodeResult decodeAll(const BasemapFile& file) {
    DecodeResult result;
    for (int level = 0; level < file.levelCount(); ++level) {
        for (std::uint16_t row = 0; row < file.level(level).columns; ++row) {
            for (std::uint16_t column = 0; column < file.level(level).columns; ++column) {
                try {
                    const std::string fault = faultOf(file.cell({static_cast<std::uint8_t>(level), column, row}));
                    result.fault = fault.empty() ? result.fault : fault;
                    ++result.decoded;
                } catch (const BasemapError&) {
                    ++result.refused;
                }
            }
        }
    }
    return result;
}

Place mapPoint(double latitude, double longitude) {
    const double world = basemapFormat::worldSide;
    const double sine = std::sin(latitude * std::numbers::pi / 180);
    return {(longitude + 180) / 360 * world,
            world * (0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi))};
}

int winding(const BasemapShapes& areas, Place place) {
    int turns = 0;
    for (std::size_t i = 0; i < areas.partCount(); ++i) {
        const auto ring = areas.part(i);
        for (std::size_t k = 0; k < ring.size(); ++k) {
            const BasemapPoint a = ring[k];
            const BasemapPoint b = ring[(k + 1) % ring.size()];
            if ((a.y > place.y) == (b.y > place.y)) {
                continue;
            }
            const double x = a.x + (place.y - a.y) / (b.y - a.y) * (b.x - a.x);
            if (x > place.x) {
                turns += b.y > a.y ? 1 : -1;
            }
        }
    }
    return turns;
}

} // namespace veyra::basemapTest
