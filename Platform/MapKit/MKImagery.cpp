#include "Platform/MapKit/MKImagery.h"

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKLandMask.h"
#include "Platform/MapKit/MKResampler.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

constexpr size_t pictureBytes = size_t{6} << 20;

// Pictures may be enlarged so many times before finer ones are taken.
constexpr double enlargedAtMost = 1.2;
// From here on land and water are enlarged by themselves.
constexpr double separatedFrom = 1.5;
// Of either too little is near to know its colour.
constexpr float leastShare = 0.004f;

// A square of pixels of one level, its corner counted from the level's; columns go on round the world.
struct Window {
    int level;
    int left, top, side;
};

int wrapped(int value, int side) {
    return (value % side + side) % side;
}

// What is added before a pixel's channels are cut off to whole numbers, 0 to 1, as evenly scattered as can be: slow
// changes of colour would show as bands otherwise. Each tile scatters alike.
float scatter(int x, int y) {
    const float mixed = 0.06711056f * static_cast<float>(x) + 0.00583715f * static_cast<float>(y);
    const float whole = 52.9829189f * (mixed - std::floor(mixed));
    return whole - std::floor(whole);
}

uint32_t pixelOf(const float* rgb, int x, int y) {
    const float added = scatter(x, y);
    const auto channel = [&](float value) { return static_cast<uint32_t>(std::clamp(value + added, 0.0f, 255.0f)); };
    return channel(rgb[0]) << 16 | channel(rgb[1]) << 8 | channel(rgb[2]);
}

// Red, green and blue of a window into the first three channels. Beyond the poles the last row goes on.
void fetch(const BasemapImagery& imagery, MKPictureTiles& tiles, const Window& window, MKFloatPicture& out) {
    const int levelSide = imagery.levelSide(window.level), tileSide = imagery.tileSide();
    for (int y = 0; y < window.side; ++y) {
        const int row = std::clamp(window.top + y, 0, levelSide - 1);
        std::shared_ptr<const MKPicture> tile;
        int held = -1;
        for (int x = 0; x < window.side; ++x) {
            const int column = wrapped(window.left + x, levelSide);
            if (column / tileSide != held) {
                held = column / tileSide;
                tile = tiles.tile(imagery, window.level, held, row / tileSide);
            }
            const uint8_t* pixel = &(*tile)[3 * static_cast<size_t>(row % tileSide * tileSide + column % tileSide)];
            std::copy_n(pixel, 3, out.at(x, y));
        }
    }
}

void write(const MKFloatPicture& picture, cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    unsigned char* const pixels = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    for (int y = 0; y < picture.side; ++y) {
        auto* const row = reinterpret_cast<uint32_t*>(pixels + static_cast<size_t>(y) * stride);
        for (int x = 0; x < picture.side; ++x) {
            row[x] = pixelOf(picture.at(x, y), x, y);
        }
    }
    cairo_surface_mark_dirty(surface);
}

// Colours of seven channels: all, the share of land, land times its share. Mixed anew by the shares of `mask`.
void mix(const MKFloatPicture& parts, const std::vector<uint8_t>& mask, cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    unsigned char* const pixels = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    for (int y = 0; y < parts.side; ++y) {
        auto* const row = reinterpret_cast<uint32_t*>(pixels + static_cast<size_t>(y) * stride);
        const uint8_t* const shares = &mask[static_cast<size_t>(y) * static_cast<size_t>(parts.side)];
        for (int x = 0; x < parts.side; ++x) {
            const float* const part = parts.at(x, y);
            const float land = part[3], water = 1 - land;
            float mixed[3] = {part[0], part[1], part[2]};
            if (land > leastShare && water > leastShare) {
                const float share = static_cast<float>(shares[x]) / 255;
                for (int channel = 0; channel < 3; ++channel) {
                    mixed[channel] =
                        share * part[4 + channel] / land + (1 - share) * (part[channel] - part[4 + channel]) / water;
                }
            }
            row[x] = pixelOf(mixed, x, y);
        }
    }
    cairo_surface_mark_dirty(surface);
}

} // namespace

MKImagery::MKImagery(Opener open) : _open(std::move(open)), _tiles(pictureBytes) {}

void MKImagery::draw(const MKTileKey& key, const BasemapFile& shapes, MKBasemapCells& cells,
                     cairo_surface_t* surface) const {
    const BasemapImagery& imagery = _open();
    const double worldPixels = MKWorldSide * key.scale;
    int level = 0;
    while (level + 1 < imagery.levelCount() && imagery.levelSide(level) * enlargedAtMost < worldPixels) {
        ++level;
    }
    const double step = imagery.levelSide(level) / worldPixels; // source pixels a pixel
    const double left = key.column * double{MKTileKey::side} * step, top = key.row * double{MKTileKey::side} * step;
    const int margin = static_cast<int>(std::ceil(MKResampler::reach(step)));
    const Window window{level, static_cast<int>(std::floor(left)) - margin, static_cast<int>(std::floor(top)) - margin,
                        static_cast<int>(std::ceil(MKTileKey::side * step)) + 2 * margin + 1};
    const MKResampler horizontal{left - window.left, step};
    const MKResampler vertical{top - window.top, step};

    const bool separates = step * separatedFrom < 1;
    MKFloatPicture source(window.side, separates ? 7 : 3);
    fetch(imagery, _tiles, window, source);
    MKFloatPicture target(MKTileKey::side, source.channels);
    if (!separates) {
        MKResampler::scale(source, horizontal, vertical, target);
        write(target, surface);
        return;
    }
    const double sourceScale = imagery.levelSide(level) / MKWorldSide;
    const MKLandMask landInSource(shapes, cells, window.left / sourceScale, window.top / sourceScale, sourceScale,
                                  window.side);
    for (int y = 0; y < window.side; ++y) {
        for (int x = 0; x < window.side; ++x) {
            float* const pixel = source.at(x, y);
            pixel[3] = static_cast<float>(landInSource.at(x, y)) / 255;
            for (int channel = 0; channel < 3; ++channel) {
                pixel[4 + channel] = pixel[channel] * pixel[3];
            }
        }
    }
    MKResampler::scale(source, horizontal, vertical, target);
    const MKLandMask land(shapes, cells, key.column * key.mapSide(), key.row * key.mapSide(), key.scale,
                          MKTileKey::side);
    mix(target, land.shares(), surface);
}

} // namespace veyra
