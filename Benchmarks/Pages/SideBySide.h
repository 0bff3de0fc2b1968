// The element and the script map libraries doing the same work in the same web view.
#pragma once

#include <string>

namespace veyra::benchmark {

class ScreenFrames;

/// `modules` is the folder in which npm has put leaflet, ol and maplibre-gl. Takes some ten minutes.
void measureSideBySide(ScreenFrames& screen, const std::string& modules);

} // namespace veyra::benchmark
