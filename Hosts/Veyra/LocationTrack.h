// Where the user is said to be, for demonstrations and tests: one place from the command line, or the recorded track of
// a GPX file. A value; any thread.
#pragma once

#include "Platform/CoreLocation/CLLocation.h"

#include <string>
#include <vector>

namespace veyra {

struct LocationFix {
    double time = 0; ///< seconds since the first fix
    std::shared_ptr<const CLLocation> location;
};

/// In the order of time; a track that could be read is not empty.
using LocationTrack = std::vector<LocationFix>;

/// Reads "LAT,LON[,ACCURACY[,ALTITUDE]]": degrees, -90 to 90 and -180 to 180, then metres; the accuracy, 10 when left
/// out, is at least 0. Empty, and a problem, for anything else.
LocationTrack readLocation(const std::string& text, std::string& problem);

/// Reads the points of all tracks of a GPX file, or of its routes when it has no tracks. Their times count from the
/// first, in UTC where they name no zone; a point whose time is missing, or earlier than that of the point before,
/// comes a second after that one. Accuracies are 5 m, scaled by a point's horizontal dilution of precision. Empty, and
/// a problem that names the file and where there is one the line, for a file without points or with a broken one.
LocationTrack readGPX(const std::string& path, std::string& problem);

} // namespace veyra
