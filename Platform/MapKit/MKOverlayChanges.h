// What differs between two lists of figures.
#pragma once

#include "Platform/MapKit/MKOverlayFigure.h"

namespace veyra {

struct MKOverlayChanges {
    /// What has gone, what has come, and what has moved past others (once or twice). The least there is: the figures
    /// that are in neither of them are in both lists in the same order.
    std::vector<const MKOverlayFigure*> figures;
    /// True when what has changed has come and lies over all the rest.
    bool areOnTop = true;
    /// With that: the first that has come.
    size_t firstOnTop = 0;

    static MKOverlayChanges between(const MKOverlayFigures& before, const MKOverlayFigures& now);
};

} // namespace veyra
