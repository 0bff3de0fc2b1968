// The colours and line widths in which the built-in world is drawn. Plain values; any thread.
#pragma once

#include "Platform/MapKit/MKTile.h"

namespace veyra {

struct MKBasemapStyle {
    MKTileColor sea, land, lake;
    MKTileColor coast, lakeShore, border;
    double coastWidth, lakeShoreWidth, borderWidth; ///< points

    static const MKBasemapStyle& forMapType(MKMapType mapType);
};

} // namespace veyra
