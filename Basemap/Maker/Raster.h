#pragma once

// Pictures in memory: rows of pixels of 8-bit channels.

#include "Basemap/Maker/Bytes.h"
#include "Basemap/Maker/LakeSeparator.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace veyra::basemapMaker {

struct Raster {
    int width = 0;
    int height = 0;
    int channels = 1;
    std::vector<std::uint8_t> pixels;

    Raster() = default;
    Raster(int pixelWidth, int pixelHeight, int channelCount)
        : width(pixelWidth), height(pixelHeight), channels(channelCount),
          pixels(static_cast<std::size_t>(pixelWidth) * static_cast<std::size_t>(pixelHeight) *
                 static_cast<std::size_t>(channelCount)) {}

    std::uint8_t* at(int x, int y) {
        return &pixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
                       static_cast<std::size_t>(channels)];
    }
    const std::uint8_t* at(int x, int y) const { return const_cast<Raster*>(this)->at(x, y); }
};

// Throws std::runtime_error when the file cannot be read. Colours have three channels.
Raster readPicture(const std::string& path);

// A picture that was cut into tiles, all of one size: FOLDER/000ROW/000ROW_000COLUMN.jpg with six digits each. Only the
// first channel is kept.
Raster readTiledPicture(const std::string& folder, int columns, int rows);

// How much of each pixel is land that is no lake, 0 to 255. `place` gives a position's pixel.
struct PixelPlace {
    double x, y;
};
Raster landMask(const LandAndLakes& shapes, int width, int height, const std::function<PixelPlace(Position)>& place);

// A square of a colour picture as a JPEG file.
Bytes jpegOf(const Raster& picture, int x, int y, int side, int quality);

// Half as wide and high.
Raster halved(const Raster& picture);

} // namespace veyra::basemapMaker
