#pragma once

// Collects levels and writes them as one base map file; Basemap/FORMAT.md describes the bytes.

#include "Basemap/Maker/CellCutter.h"

#include <cstdint>
#include <string>
#include <vector>

namespace veyra::basemapMaker {

class FileWriter {
public:
    // `attribution` is UTF-8.
    explicit FileWriter(std::string attribution);

    // `minimumZoom`: from which zoom on the level is drawn. Levels are added from the coarsest to the finest.
    void addLevel(const Grid& grid, double minimumZoom, const std::vector<CutCell>& cells);

    // Throws std::runtime_error when the file cannot be written.
    void write(const std::string& path) const;

private:
    struct PackedCell {
        std::vector<unsigned char> bytes;
        std::uint32_t length = 0; // unpacked
        bool isAllLand = false;
    };

    struct Level {
        Grid grid;
        double minimumZoom;
        std::vector<PackedCell> cells;
    };

    std::string _attribution;
    std::vector<Level> _levels;
};

} // namespace veyra::basemapMaker
