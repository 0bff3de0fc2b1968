// Draws one tile of a base map. Made for one tile and used once, on any thread.
#pragma once

#include "Platform/MapKit/MKBasemapCells.h"
#include "Platform/MapKit/MKTile.h"

#include <vector>

namespace veyra {

class MKImagery;
class MKShapeClipper;
struct MKBasemapLine;
struct MKBasemapStyle;

class MKBasemapPainter {
public:
    /// What is referred to outlives the painter.
    MKBasemapPainter(const BasemapFile& file, MKBasemapCells& cells, const MKImagery& imagery, const MKTileKey& key);

    /// Throws BasemapError when a cell or a picture is damaged, std::bad_alloc when there is no memory for the tile.
    std::shared_ptr<const MKTile> draw();

private:
    struct Canvas;
    bool isPlain(MKTileColor& color) const;
    bool isAllLand() const;
    bool hasOnlyLand(const BasemapCell& cell) const;
    void drawPicture(Canvas& canvas) const;
    void drawAreas(Canvas& canvas) const;
    void drawInnerBorders(Canvas& canvas) const;
    void drawBorders(Canvas& canvas) const;
    MKShapeClipper clipperFor(const MKPlacedCell& placed) const;
    void fillAreas(Canvas& canvas, BasemapLayer layer, MKTileColor color) const;
    /// Lines of several layers as one, which counts where they cross and may shine through.
    void strokeLines(Canvas& canvas, std::initializer_list<BasemapLayer> layers, const MKBasemapLine& look) const;

    const BasemapFile& _file;
    MKBasemapCells& _cellCache;
    const MKImagery& _imagery;
    const MKTileKey _key;
    const MKBasemapStyle& _style;
    const double _zoom;  // of the world in points
    const double _bleed; // pixels around the tile whose shapes reach into it
    std::vector<MKPlacedCell> _cells;
};

} // namespace veyra
