#pragma once

// Reads a world base map: vector shapes in map points, in a few levels of detail, each level cut into square cells that
// are packed one by one, so that only what is shown is ever unpacked. `Basemap/FORMAT.md` describes the bytes.
//
// Threads: immutable once constructed; every method may be called from any number of threads at once, without locks.
// Ownership: the bytes are not copied; they belong to the caller and must outlive the object. Decoded cells belong to
// the caller. Nothing is cached here.
//
// Broken data are reported, never trusted: the constructor checks the header and the whole index, decoding checks the
// cell, and both throw BasemapError. No allocation is larger than the bytes at hand can justify.

#include "Platform/MapKit/Basemap/BasemapCell.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace veyra {

// The data are not a base map, or a damaged one. The message names the file, the place (byte offset or cell) and the
// fault.
class BasemapError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// How one level of detail is laid out. All lengths are in map points.
struct BasemapLevel {
    std::uint16_t columns = 0; // cells in a row; as many rows; a power of two
    std::int32_t cellSide = 0; // columns * cellSide is the world's width, 2^28
    std::int32_t margin = 0;   // by how much areas reach past their cell on each side
    std::int32_t step = 0;     // every coordinate of the level is a multiple of it
    double minimumZoom = 0;    // from this zoom on the level is fine enough to be worth drawing
};

class BasemapFile {
public:
    // `name` stands for the file in error messages. Throws BasemapError.
    BasemapFile(std::span<const std::byte> data, std::string name);

    // Levels run from 0 (coarsest) to levelCount() - 1; there is at least one.
    int levelCount() const { return static_cast<int>(_levels.size()); }

    // Throws std::out_of_range for a level that does not exist.
    const BasemapLevel& level(int level) const { return _levels.at(static_cast<std::size_t>(level)).layout; }

    // The level to draw at a zoom: the finest whose minimumZoom is not above it, else level 0; level 0 for NaN.
    // zoom = log2(side of the world / 256), the side in device pixels, so on a display of scale 2 it is 1 higher than
    // in points.
    int levelForZoom(double zoom) const;

    // The cells of a level that meet a map rectangle and hold anything at all, row by row from the north-west.
    // The rectangle is in map points; cells that only touch its edges are left out, and one of no size meets the cell
    // to its south-east. What lies outside the square meets nothing (a caller that shows the world repeatedly asks once
    // per copy, shifted by 2^28). NaN or inverted: no cells. Throws std::out_of_range for a level that does not exist.
    std::vector<BasemapCellId> cellsMeeting(int level, double minX, double minY, double maxX, double maxY) const;

    // Unpacks a cell. A cell with nothing in it gives empty shapes. Throws BasemapError when its data are broken,
    // std::out_of_range for a cell that does not exist.
    BasemapCell cell(BasemapCellId id) const;

    // Whom to name on the map, UTF-8, possibly empty. Lives as long as the bytes.
    std::string_view attribution() const { return _attribution; }

    const std::string& name() const { return _name; }

private:
    struct CellEntry {
        std::uint32_t offset = 0;       // of the packed bytes, from the start of the file
        std::uint32_t packedLength = 0; // 0: nothing stored
        std::uint32_t length = 0;       // once unpacked
        std::uint32_t flags = 0;
    };

    struct Level {
        BasemapLevel layout;
        std::vector<CellEntry> cells; // row by row
    };

    // Fills the fields below from the header and the index; throws BasemapError.
    void readHeader();
    Level readLevel(std::size_t recordOffset, std::size_t headerLength) const;
    void checkEntry(const CellEntry& entry, std::size_t entryOffset, std::size_t headerLength) const;
    [[noreturn]] void failAt(std::size_t offset, const std::string& fault) const;

    std::span<const std::byte> _data;
    std::string _name;
    std::vector<Level> _levels;
    std::string_view _attribution;
};

// The world that is linked into the program. Opened at the first call, from whichever thread; never destroyed.
const BasemapFile& builtInBasemap();

} // namespace veyra
