#pragma once

#include "Basemap/Maker/Sources.h"
#include "Platform/MapKit/Basemap/BasemapCell.h"

#include <string>
#include <utility>
#include <vector>

namespace veyra::basemapMaker {

// Lines with the layer of the map that they go into.
using LayeredLines = std::vector<std::pair<BasemapLayer, std::vector<PositionLine>>>;

// Rivers by their rank. `path` is the shapefile's, without ".shp".
LayeredLines readRivers(const std::string& path);

// The lines within countries, of those that are worth showing at zoom `zoom` and below. What of them crosses the sea is
// left out.
LayeredLines readProvinceLines(const std::string& path, double zoom, const std::vector<PositionRing>& land);

} // namespace veyra::basemapMaker
