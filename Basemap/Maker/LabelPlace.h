#pragma once

#include "Basemap/Maker/Sources.h"

#include <vector>

namespace veyra::basemapMaker {

// Where the name of a country goes.
struct LabelPlace {
    Position middle;
    double width = 0; // of the country there, in degrees of longitude
    double area = 0;  // of its largest part, in square degrees at the equator's scale
};

// The place inside the largest of the polygons (outer ring first) with the most room for a line of text.
LabelPlace labelPlaceIn(const std::vector<std::vector<PositionLine>>& polygons);

} // namespace veyra::basemapMaker
