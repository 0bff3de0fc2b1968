#pragma once

// Turns the unpacked bytes of one cell into shapes.
//
// Made for one cell and used once, on any thread; it refers to nothing but the bytes during decode(). The bytes may be
// anything at all: every count is checked against what is left of them before memory is taken for it, and every vertex
// against the cell's own bounds.

#include "Platform/MapKit/Basemap/BasemapCell.h"
#include "Platform/MapKit/Basemap/BasemapFile.h"

#include <cstdint>
#include <span>

namespace veyra {

class BasemapCellDecoder {
public:
    // `layout` is the level's, `id` a cell that it has.
    BasemapCellDecoder(const BasemapLevel& layout, BasemapCellId id);

    // Throws BasemapError, whose message gives the byte within the unpacked cell.
    BasemapCell decode(std::span<const unsigned char> bytes, bool isAllLand);

private:
    [[noreturn]] void fail(const char* fault) const;
    std::uint32_t readVarint();
    std::int32_t readDelta();
    void readSection(BasemapShapes& shapes, std::uint32_t minimumPartLength, const BasemapBounds& within);
    void readPart(BasemapShapes& shapes, std::uint32_t count, const BasemapBounds& within);
    void fillWithLand();

    // The outlines of `areas` as lines: without the edges that cutting into cells and the square's border have made.
    BasemapShapes outlines(const BasemapShapes& areas) const;
    bool isOutline(BasemapPoint from, BasemapPoint to) const;

    const BasemapLevel _layout;
    BasemapCell _cell;
    std::span<const unsigned char> _bytes;
    std::size_t _at = 0;
    std::size_t _end = 0; // of the section being read
    BasemapPoint _last;   // of the section being read
};

} // namespace veyra
