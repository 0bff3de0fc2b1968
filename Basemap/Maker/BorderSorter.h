#pragma once

#include "Basemap/Maker/TopologyReader.h"

#include <string>
#include <vector>

namespace veyra::basemapMaker {

// Borders, apart by whether the two sides agree on them.
struct SortedBorders {
    std::vector<PositionLine> agreed;
    std::vector<PositionLine> disputed;
};

// Sorts borders. One is disputed where it runs along a line of `disputedLines` (within `reach` degrees), or where the
// two that it parts are known to disagree about all of it.
SortedBorders sortBorders(const std::vector<SharedArc>& borders, const std::vector<PositionLine>& disputedLines,
                          double reach);

// The lines of Natural Earth's map of boundaries that are marked as disputed, indefinite or lines of control. `path` is
// the shapefile's, without ".shp".
std::vector<PositionLine> readDisputedLines(const std::string& path);

} // namespace veyra::basemapMaker
