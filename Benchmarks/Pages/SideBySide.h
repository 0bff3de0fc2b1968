// The element and the script map libraries doing the same work in the same web view.
#pragma once

#include <string>
#include <vector>

namespace veyra::benchmark {

class ScreenFrames;

/// `modules` is the folder in which npm has put leaflet, ol and maplibre-gl; `names` are those of the maps that are
/// measured, none for all, which takes some ten minutes.
void measureSideBySide(ScreenFrames& screen, const std::string& modules, const std::vector<std::string>& names);

} // namespace veyra::benchmark
