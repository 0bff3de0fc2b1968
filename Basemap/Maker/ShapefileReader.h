#pragma once

#include "Basemap/Maker/Sources.h"

#include <string>
#include <vector>

namespace veyra::basemapMaker {

// All rings of a shapefile of polygons, in the file's order. Holes are told by their direction, as the format
// prescribes: outer rings run clockwise. Throws std::runtime_error when the file cannot be read or holds no polygons.
std::vector<PositionRing> readPolygonShapefile(const std::string& path);

// The lines of each shape of a shapefile of lines, in the file's order: shape i has record i of the table of
// attributes. Throws std::runtime_error when the file cannot be read or holds no lines.
std::vector<std::vector<PositionLine>> readLineShapefile(const std::string& path);

// The places of a shapefile of points, in the file's order. Throws likewise.
std::vector<Position> readPointShapefile(const std::string& path);

} // namespace veyra::basemapMaker
