#include "Platform/MapKit/MKImagery.h"

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKLandMask.h"
#include "Platform/MapKit/MKResampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace veyra {

namespace {

constexpr size_t pictureBytes = size_t{8} << 20;

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
// changes of colour would show as bands otherwise. A square that repeats.
class Scatter {
public:
    static constexpr int side = 64;
    Scatter() {
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                const double mixed = 0.06711056 * x + 0.00583715 * y;
                const double whole = 52.9829189 * (mixed - std::floor(mixed));
                _values[static_cast<size_t>(y * side + x)] = static_cast<float>(whole - std::floor(whole));
            }
        }
    }
    const float* row(int y) const { return &_values[static_cast<size_t>(y % side * side)]; }

private:
    std::array<float, side * side> _values;
};

// The pixels of a tile in the making.
class Canvas {
public:
    explicit Canvas(cairo_surface_t* surface) : _surface(surface) { cairo_surface_flush(surface); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() { cairo_surface_mark_dirty(_surface); }

    /// `rgb` of each pixel is `channels` floats from the next one's.
    void putRow(int y, const float* rgb, int channels) {
        static const Scatter scatter;
        const float* const added = scatter.row(y);
        auto* const row =
            reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(_surface) +
                                        static_cast<ptrdiff_t>(y) * cairo_image_surface_get_stride(_surface));
        for (int x = 0; x < MKTileKey::side; ++x) {
            const float more = added[x % Scatter::side];
            row[x] = channel(rgb[0] + more) << 16 | channel(rgb[1] + more) << 8 | channel(rgb[2] + more);
            rgb += channels;
        }
    }

private:
    static uint32_t channel(float value) { return static_cast<uint32_t>(std::clamp(static_cast<int>(value), 0, 255)); }
    cairo_surface_t* const _surface;
};

// Rows of a window of the pictures, so many channels a pixel, of which the first three are filled. Beyond the poles the
// last row goes on.
class WindowReader {
public:
    WindowReader(const BasemapImagery& imagery, MKPictureTiles& tiles, const Window& window)
        : _imagery(imagery), _tiles(tiles), _window(window) {}

    void read(int y, float* row, int channels) {
        const int levelSide = _imagery.levelSide(_window.level), tileSide = _imagery.tileSide();
        const int pictureRow = std::clamp(_window.top + y, 0, levelSide - 1);
        if (pictureRow / tileSide != _tileRow) {
            _tileRow = pictureRow / tileSide;
            _held.clear();
        }
        for (int x = 0; x < _window.side;) {
            const int column = wrapped(_window.left + x, levelSide);
            const int run = std::min(tileSide - column % tileSide, _window.side - x);
            const uint8_t* pixel =
                &tile(column / tileSide)[3 * static_cast<size_t>(pictureRow % tileSide * tileSide + column % tileSide)];
            for (int i = 0; i < run; ++i) {
                row[0] = pixel[0];
                row[1] = pixel[1];
                row[2] = pixel[2];
                pixel += 3;
                row += channels;
            }
            x += run;
        }
    }

private:
    const MKPicture& tile(int column) {
        std::shared_ptr<const MKPicture>& held = _held[column];
        if (!held) {
            held = _tiles.tile(_imagery, _window.level, column, _tileRow);
        }
        return *held;
    }

    const BasemapImagery& _imagery;
    MKPictureTiles& _tiles;
    const Window _window;
    int _tileRow = -1;
    std::map<int, std::shared_ptr<const MKPicture>> _held; // of that row, by column
};

// Eight channels: the colour of land times how surely the pixel tells it, and how surely; the same of water. A pixel
// that is partly land tells little about either.
void separate(float* pixel, float land) {
    const float water = 1 - land;
    const float asLand = land * land * land, asWater = water * water * water;
    for (int channel = 0; channel < 3; ++channel) {
        pixel[4 + channel] = pixel[channel] * asWater;
        pixel[channel] *= asLand;
    }
    pixel[3] = asLand;
    pixel[7] = asWater;
}

// Puts colours together anew by the shares of land.
void mixRow(const float* parts, const uint8_t* shares, float* rgb) {
    for (int x = 0; x < MKTileKey::side; ++x) {
        // Where there is next to nothing of one kind, everything takes part in the colour.
        const bool isMixed = parts[3] > leastShare && parts[7] > leastShare;
        const float share = static_cast<float>(shares[x]) / 255;
        const float ofLand = isMixed ? share / parts[3] : 1 / (parts[3] + parts[7]);
        const float ofWater = isMixed ? (1 - share) / parts[7] : ofLand;
        for (int channel = 0; channel < 3; ++channel) {
            rgb[channel] = ofLand * parts[channel] + ofWater * parts[4 + channel];
        }
        parts += 8;
        rgb += 3;
    }
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
    const int margin = static_cast<int>(std::ceil(MKResampledAxis::reach(step)));
    const Window window{level, static_cast<int>(std::floor(left)) - margin, static_cast<int>(std::floor(top)) - margin,
                        static_cast<int>(std::ceil(MKTileKey::side * step)) + 2 * margin + 1};
    const MKResampledAxis across{left - window.left, step, MKTileKey::side, window.side};
    const MKResampledAxis down{top - window.top, step, MKTileKey::side, window.side};
    WindowReader reader(imagery, _tiles, window);
    Canvas canvas(surface);
    if (step * separatedFrom >= 1) {
        MKResampler<4>(across, down)
            .run([&](int y, float* row) { reader.read(y, row, 4); },
                 [&](int y, const float* row) { canvas.putRow(y, row, 4); });
        return;
    }
    const double sourceScale = imagery.levelSide(level) / MKWorldSide;
    const MKLandMask landInSource(shapes, cells, window.left / sourceScale, window.top / sourceScale, sourceScale,
                                  window.side);
    const MKLandMask land(shapes, cells, key.column * key.mapSide(), key.row * key.mapSide(), key.scale,
                          MKTileKey::side);
    std::vector<float> mixed(3 * MKTileKey::side);
    MKResampler<8>(across, down)
        .run(
            [&](int y, float* row) {
                reader.read(y, row, 8);
                for (int x = 0; x < window.side; ++x, row += 8) {
                    separate(row, static_cast<float>(landInSource.at(x, y)) / 255);
                }
            },
            [&](int y, const float* row) {
                mixRow(row, &land.shares()[static_cast<size_t>(y) * MKTileKey::side], mixed.data());
                canvas.putRow(y, mixed.data(), 3);
            });
}

} // namespace veyra
