// Draws one tile of a base map. Made for one tile and used once, on any thread.
#pragma once

#include "Platform/MapKit/MKBasemapCells.h"
#include "Platform/MapKit/MKTile.h"

#include <vector>

namespace veyra {

class MKShapeClipper;
struct MKBasemapStyle;

class MKBasemapPainter {
public:
    /// What is referred to outlives the painter.
    MKBasemapPainter(const BasemapFile& file, MKBasemapCells& cells, const MKTileKey& key);

    /// Throws BasemapError when a cell is damaged, std::bad_alloc when there is no memory for the picture.
    std::shared_ptr<const MKTile> draw();

private:
    /// A cell, and by how far its copy of the world lies east of the middle one, in map points.
    struct PlacedCell {
        std::shared_ptr<const BasemapCell> cell;
        double shift;
    };
    struct Canvas;
    void collectCells();
    bool isAllLand() const;
    MKShapeClipper clipperFor(const PlacedCell& placed) const;
    void fillAreas(Canvas& canvas, BasemapLayer layer, MKTileColor color) const;
    void strokeLines(Canvas& canvas, BasemapLayer layer, MKTileColor color, double width) const;

    const BasemapFile& _file;
    MKBasemapCells& _cellCache;
    const MKTileKey _key;
    const MKBasemapStyle& _style;
    const double _bleed; // pixels around the tile whose shapes reach into it
    std::vector<PlacedCell> _cells;
};

} // namespace veyra
