#pragma once

// What one cell of the built-in base map holds once it is decoded: per layer a flat array of vertices, cut into parts.
//
// Values only: copied and moved freely, owned by whoever asked for the cell, safe to read from any number of threads.
//
// Every coordinate is an absolute map point (the world is a square of 2^28 map points, origin north-west, x east, y
// south). Cells of the first and last column reach past the square by their margin, so x may be a little below 0 or
// above 2^28; y never leaves 0...2^28.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace veyra {

// The layers, in the order in which they are meant to be drawn. The numbers are those of the file.
enum class BasemapLayer : std::uint8_t {
    Land = 0,      // areas: land, going on beneath its lakes
    Coast = 1,     // lines: where land meets the sea
    Lakes = 2,     // areas: inland water (the Caspian Sea too), its islands cut out
    LakeShore = 3, // lines: where a lake meets its shore or an island
    Borders = 4,   // lines: between two countries, on land and across lakes, never along the coast
    // Lines: rivers, from the great ones of the world to small ones; each river is in one of these layers.
    GreatRivers = 5,
    LargeRivers = 6,
    MediumRivers = 7,
    SmallRivers = 8,
    StateLines = 9,       // lines: between the states of large countries
    ProvinceLines = 10,   // lines: between the provinces of the others
    DisputedBorders = 11, // lines: like Borders, where the two countries do not agree on them
};

inline constexpr std::size_t basemapLayerCount = 12;

// Whether a layer's shapes are lines that the file stores as such.
constexpr bool isStoredAsLines(BasemapLayer layer) {
    return layer >= BasemapLayer::Borders;
}

// One vertex, in map points.
struct BasemapPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;

    friend bool operator==(const BasemapPoint&, const BasemapPoint&) = default;
};

// A closed rectangle in map points. The default one is empty: its minima lie above its maxima.
struct BasemapBounds {
    std::int32_t minX = INT32_MAX;
    std::int32_t minY = INT32_MAX;
    std::int32_t maxX = INT32_MIN;
    std::int32_t maxY = INT32_MIN;

    bool isEmpty() const { return minX > maxX || minY > maxY; }
    void include(BasemapPoint point);
    void include(const BasemapBounds& other);

    friend bool operator==(const BasemapBounds&, const BasemapBounds&) = default;
};

// The shapes of one layer in one cell.
//
// Areas: each part is a ring of at least three vertices, closed without repeating its first vertex. All rings of a
// layer together are one area under the non-zero winding rule: outer rings run clockwise on screen, holes the other
// way. The rings of several cells may be filled as one path too.
//
// Lines: each part is an open run of at least two vertices; a closed shape repeats its first vertex at its end. Lines
// end on the border of the cell, at a vertex that the neighbouring cell's piece shares.
struct BasemapShapes {
    std::vector<BasemapPoint> points;
    std::vector<std::uint32_t> partStarts; // index of each part's first vertex; no entry after the last part
    std::vector<BasemapBounds> partBounds; // one per part
    BasemapBounds bounds;                  // of all parts; empty when there is none

    bool isEmpty() const { return partStarts.empty(); }
    std::size_t partCount() const { return partStarts.size(); }

    // The vertices of a part; `index` must be below partCount(). Valid until the shapes are changed or destroyed.
    std::span<const BasemapPoint> part(std::size_t index) const;

    // Ends the part that runs from vertex `first` to the last one, and takes its bounds into account.
    void finishPart(std::size_t first);
};

// Names a cell: columns count from the west, rows from the north, both from 0.
struct BasemapCellId {
    std::uint8_t level = 0;
    std::uint16_t column = 0;
    std::uint16_t row = 0;

    friend bool operator==(const BasemapCellId&, const BasemapCellId&) = default;
};

// A decoded cell.
struct BasemapCell {
    BasemapCellId id;
    BasemapBounds bounds;     // the cell itself; lines do not leave it
    BasemapBounds fillBounds; // the cell with its margin, within which areas are cut off
    bool isAllLand = false;   // the land layer is the one rectangle `fillBounds`
    std::array<BasemapShapes, basemapLayerCount> layers;

    const BasemapShapes& shapes(BasemapLayer layer) const& { return layers[static_cast<std::size_t>(layer)]; }

    // Taken out of a cell that is about to go.
    BasemapShapes shapes(BasemapLayer layer) && { return std::move(layers[static_cast<std::size_t>(layer)]); }

    // Memory held by the vertices and parts, in bytes, for caches that are bounded by bytes.
    std::size_t byteSize() const;
};

} // namespace veyra
