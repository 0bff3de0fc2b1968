// The names on a map, between its picture of the world and what pages put upon it. Main queue only; owned by its map
// view. What is shown where is the layout's to say (MKLabelLayout); this draws it.
#pragma once

#include "Platform/MapKit/MKLabelLayout.h"
#include "Platform/MapKit/MKTileLayer.h"

#include <vector>

namespace veyra {

/// A name in one copy of the world.
struct MKPlacedLabel {
    size_t index;      ///< among the names
    int x, y;          ///< the name's place in the view, in device pixels
    MKLabelBox text;   ///< points from there
    double markRadius; ///< points; 0: none
};

class MKLabelLayer {
public:
    /// Rectangles of the view, in points, that names keep out of: a name that would reach into one is left out.
    void setKeptClear(std::vector<CGRect> areas) { _keptClear = std::move(areas); }
    /// The names that a scene shows, from the most important to the least. Once `seconds` have gone by, names that were
    /// never settled are left out, and `isComplete` becomes false.
    std::vector<MKPlacedLabel> labelsIn(const BasemapNames& names, const MKTileScene& scene, double seconds);
    /// Draws the names of a scene inside the context's clip, as far as it can be done in `seconds` or has been done
    /// before.
    void draw(const UIGraphicsContext& context, const BasemapNames& names, const MKTileScene& scene, double seconds);
    /// Says that the scene shows no names.
    void drawNone() { _isComplete = true; }
    /// False when names were left out the last time: draw again.
    bool isComplete() const { return _isComplete; }

private:
    bool isClear(const MKPlacedLabel& label, double deviceScale) const;

    std::vector<CGRect> _keptClear;
    bool _isComplete = true;
};

} // namespace veyra
