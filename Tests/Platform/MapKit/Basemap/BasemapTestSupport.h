#pragma once

// Base map files made by hand, and what the tests of the base map share.

#include "Platform/MapKit/Basemap/BasemapFile.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace veyra::basemapTest {

using Bytes = std::vector<std::byte>;

// A cell of a hand-made file: the unpacked bytes and the flags of the index.
struct RawCell {
    std::vector<unsigned char> payload;
    std::uint32_t flags = 0;
};

// A section of a cell as the format has it: parts of vertices in grid steps from the cell's corner.
struct RawPoint {
    int x = 0;
    int y = 0;
};
std::vector<unsigned char> section(unsigned char layer, const std::vector<std::vector<RawPoint>>& parts);
std::vector<unsigned char> joined(std::initializer_list<std::vector<unsigned char>> sections);

// A file of one level with a grid of 256 steps (2^20 map points each), a margin of 4 steps, minimum zoom 1.5, the
// attribution "Somebody", and 1 or 4 cells.
Bytes makeFile(const std::vector<RawCell>& cells);

// The file that most tests use: four cells. North-west: land, a lake, a border, and a layer of a later version.
// North-east: all land. South-west: nothing. South-east: land across the whole bottom, cut off by the square.
Bytes makeSmallFile();

// Makes the checksum and the file's length right again after a change.
void reseal(Bytes& file);

std::uint32_t readU32(const Bytes& file, std::size_t offset);
void writeU32(Bytes& file, std::size_t offset, std::uint32_t value);

// Every vertex within the bounds that the header promises, every part long enough, all bounds right. The result is
// empty, or says what is wrong.
std::string faultOf(const BasemapCell& cell);

// Decodes all cells of all levels. Cells that are refused are counted, those that decode are checked with faultOf.
struct DecodeResult {
    int decoded = 0;
    int refused = 0;
    std::string fault;
};
DecodeResult decodeAll(const BasemapFile& file);

// The map point of a place, in degrees.
struct Place {
    double x = 0;
    double y = 0;
};
Place mapPoint(double latitude, double longitude);

// How often the rings go clockwise round a place; not 0 means that the area contains it.
int winding(const BasemapShapes& areas, Place place);

} // namespace veyra::basemapTest
