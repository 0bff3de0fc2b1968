#pragma once

#include "Basemap/Maker/Grid.h"

namespace veyra::basemapMaker {

// The line with as few of its vertices as it needs so that none of those left out lies more than `tolerance` grid steps
// off it (Douglas and Peucker). Its ends stay; a tolerance of 0 keeps everything.
GridLine simplified(const GridLine& line, std::int32_t tolerance);

} // namespace veyra::basemapMaker
