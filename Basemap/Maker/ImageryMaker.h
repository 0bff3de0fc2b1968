#pragma once

// Makes the pictures of the map's satellite view: the world seen from above, shaded by its relief.

#include "Basemap/Maker/LakeSeparator.h"
#include "Basemap/Maker/Raster.h"

#include <string>

namespace veyra::basemapMaker {

struct ImageryInputs {
    Raster picture; // of the whole world, in degrees: twice as wide as high
    Raster heights; // likewise; brighter is higher, and the scale does not matter
    LandAndLakes shapes;
};

// The world in spherical Mercator projection, `side` pixels square. Along the shores each pixel takes its colour from
// pixels of its own kind, land or water, so that shores are as sharp as the shapes and not as the picture.
Raster makeImagery(const ImageryInputs& inputs, int side);

// Writes a picture and its halves down to one tile, as tiles of `tileSide` pixels; Basemap/FORMAT.md describes the
// bytes. Throws std::runtime_error when that fails.
void writeImagery(Raster picture, int tileSide, int quality, const std::string& attribution, const std::string& path);

} // namespace veyra::basemapMaker
