// How names on the map are written. Plain values; any thread. Zooms count from a world of 256 points.
//
// Names grow with the map in a few steps. Between two steps a name keeps its size, so that where it fits it goes on
// fitting as the map grows.
#pragma once

#include "Platform/MapKit/Basemap/BasemapNames.h"
#include "Platform/MapKit/MKTile.h"

#include <array>

namespace veyra {

/// The steps: each begins at its zoom.
inline constexpr std::array<double, 3> MKLabelSteps = {-100, 3.6, 5.6};

/// The step that a zoom belongs to.
size_t MKLabelStepAt(double zoom);

/// The letters of a name.
struct MKLabelFont {
    double size = 0;          ///< points
    double letterSpacing = 0; ///< points
    bool isBold = false;
    bool isItalic = false;
    bool isUpperCase = false;
    friend bool operator==(const MKLabelFont&, const MKLabelFont&) = default;

    static MKLabelFont forName(const BasemapName& name, size_t step);
};

/// The mark of a city: a disc, or for a capital a ring with a disc in it.
struct MKLabelMark {
    double radius = 0; ///< points; 0: none
    bool isCapital = false;

    static MKLabelMark forName(const BasemapName& name, size_t step);
};

/// The colours of a name.
struct MKLabelColors {
    MKTileColor text = 0, halo = 0;
    double haloWidth = 0; ///< points around the letters
    double haloOpacity = 1;

    static MKLabelColors forName(const BasemapName& name, MKMapType mapType, UIUserInterfaceStyle style);
};

} // namespace veyra
