// The colours and line widths in which the built-in world is drawn. Plain values; any thread. Zooms count from a world
// of 256 points.
#pragma once

#include "Platform/MapKit/MKTile.h"

#include <array>

namespace veyra {

/// How the lines of a layer are drawn.
struct MKBasemapLine {
    MKTileColor color = 0;
    double width = 0;      ///< points, at the least zoom; 0 draws nothing
    double finalWidth = 0; ///< points, from `finalZoom` on; in between it grows evenly
    double leastZoom = 0;  ///< below it nothing is drawn
    double opacity = 1;
    double dash = 0, gap = 0; ///< points; a solid line when 0

    static constexpr double finalZoom = 8;
    /// In points; 0 when nothing is drawn.
    double widthAt(double zoom) const;
};

struct MKBasemapStyle {
    bool showsPicture = false; ///< the planet from above in place of the areas
    MKTileColor sea = 0, land = 0, lake = 0;
    MKBasemapLine coast{}, lakeShore{};
    std::array<MKBasemapLine, 4> rivers{}; ///< from the great ones to the small ones
    MKBasemapLine states{}, provinces{};
    MKBasemapLine borderGlow{}; ///< under borders, disputed ones too
    MKBasemapLine border{}, disputedBorder{};

    static const MKBasemapStyle& forMapType(MKMapType mapType, UIUserInterfaceStyle style = UIUserInterfaceStyleLight);
};

} // namespace veyra
