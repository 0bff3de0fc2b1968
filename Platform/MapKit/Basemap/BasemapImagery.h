#pragma once

// Reads the pictures of a base map: the world seen from above, in spherical Mercator projection, as a pyramid of square
// JPEG tiles. `Basemap/FORMAT.md` describes the bytes. Nothing is decoded here.
//
// Threads: immutable once constructed; any number of threads may read it at once. Ownership: the bytes are not copied;
// they belong to the caller and must outlive the object.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veyra {

class BasemapImagery {
public:
    // `name` stands for the file in error messages. Throws BasemapError, whose message names the file and the place.
    BasemapImagery(std::span<const std::byte> data, std::string name);

    // Level 0 is the world in one tile; each further level has twice as many columns and rows.
    int levelCount() const { return _levelCount; }

    // Pixels.
    int tileSide() const { return _tileSide; }
    int levelSide(int level) const { return _tileSide << level; }

    // The JPEG file of a tile. Throws std::out_of_range for a tile that does not exist.
    std::span<const std::byte> tile(int level, int column, int row) const;

    // What to call a tile in a message: the file, the tile and its place in the file.
    std::string tileName(int level, int column, int row) const;

    // Whom to name on the map, UTF-8, possibly empty. Lives as long as the bytes.
    std::string_view attribution() const { return _attribution; }

private:
    struct Entry {
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
    };
    void readHeader();
    [[noreturn]] void failAt(std::size_t offset, const std::string& fault) const;
    const Entry& entry(int level, int column, int row) const;

    std::span<const std::byte> _data;
    std::string _name;
    std::vector<Entry> _tiles; // level by level, row by row
    std::string_view _attribution;
    int _levelCount = 0;
    int _tileSide = 0;
};

// The pictures that are linked into the program. Opened at the first call, from whichever thread; never destroyed.
const BasemapImagery& builtInImagery();

} // namespace veyra
