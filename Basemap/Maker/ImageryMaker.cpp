#include "Basemap/Maker/ImageryMaker.h"

#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace veyra::basemapMaker {

namespace {

using Color = std::array<double, 3>;

// Pixels of the input around a place, as far as they count.
constexpr int reach = 3;
// Of the bell by which they count, in pixels.
constexpr double bellWidth = 0.62;
// How strongly the relief darkens and brightens.
constexpr double shadeStrength = 0.034;
// Colours are lifted a little: the picture is dark, as the planet is.
constexpr double landGamma = 0.80, waterGamma = 0.86;

constexpr Color deepestWater = {5, 13, 30};

class Maker {
public:
    Maker(const ImageryInputs& inputs, int side)
        : _picture(inputs.picture), _heights(inputs.heights), _side(side),
          _inputMask(landMask(inputs.shapes, _picture.width, _picture.height,
                              [this](Position p) {
                                  return PixelPlace{(p.longitude + 180) / 360 * _picture.width,
                                                    (90 - p.latitude) / 180 * _picture.height};
                              })),
          _mask(landMask(inputs.shapes, side, side, [this](Position p) {
              const double sine = std::sin(std::clamp(p.latitude, -88.0, 88.0) * std::numbers::pi / 180);
              return PixelPlace{(p.longitude + 180) / 360 * _side,
                                (0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi)) * _side};
          })) {}

    Raster make() {
        Raster out(_side, _side, 3);
        for (int y = 0; y < _side; ++y) {
            const double latitude =
                std::atan(std::sinh(std::numbers::pi * (1 - 2 * (y + 0.5) / _side))) * 180 / std::numbers::pi;
            const double inputY = (90 - latitude) / 180;
            for (int x = 0; x < _side; ++x) {
                const double inputX = (x + 0.5) / _side;
                const double land = *_mask.at(x, y) / 255.0;
                const Color color = colorAt(inputX, inputY, land);
                const double shade = land > 0 ? 1 + (shadeAt(inputX, inputY, latitude) - 1) * land : 1;
                const double gamma = landGamma * land + waterGamma * (1 - land);
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    const double value = 255 * std::pow(color[channel] / 255, gamma) * shade;
                    out.at(x, y)[channel] = static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
                }
            }
        }
        return out;
    }

private:
    static int wrapped(int x, int width) { return (x % width + width) % width; }

    // Where the picture's shores lie beside those of the shapes, land that looks like water counts for next to nothing,
    // and so does water that looks like land.
    static double blueness(const std::uint8_t* pixel) {
        constexpr double least = 0.0005, sure = 16;
        return std::clamp((pixel[2] - std::max(pixel[0], pixel[1])) / sure, least, 1 - least);
    }

    // Fractions of the input's width and height; `land`: how much of the pixel is land.
    Color colorAt(double inputX, double inputY, double land) const {
        const double centerX = inputX * _picture.width - 0.5, centerY = inputY * _picture.height - 0.5;
        const int firstX = static_cast<int>(std::floor(centerX)) - reach + 1;
        const int firstY = static_cast<int>(std::floor(centerY)) - reach + 1;
        std::array<double, 2 * reach> acrossWeights{};
        for (int i = 0; i < 2 * reach; ++i) {
            const double off = (firstX + i - centerX) / bellWidth;
            acrossWeights[static_cast<std::size_t>(i)] = std::exp(-off * off / 2);
        }
        Color ofLand{}, ofWater{};
        double landWeight = 1e-12, waterWeight = 1e-12;
        for (int k = 0; k < 2 * reach; ++k) {
            const int y = std::clamp(firstY + k, 0, _picture.height - 1);
            const double off = (firstY + k - centerY) / bellWidth;
            const double weight = std::exp(-off * off / 2);
            for (int i = 0; i < 2 * reach; ++i) {
                const int x = wrapped(firstX + i, _picture.width);
                const std::uint8_t* pixel = _picture.at(x, y);
                // A pixel that is but half land tells little about either.
                const double share = *_inputMask.at(x, y) / 255.0;
                const double both = weight * acrossWeights[static_cast<std::size_t>(i)];
                const double blue = blueness(pixel);
                const double asLand = both * share * share * share * (1 - blue);
                const double asWater = both * (1 - share) * (1 - share) * (1 - share) * blue;
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    ofLand[channel] += asLand * pixel[channel];
                    ofWater[channel] += asWater * pixel[channel];
                }
                landWeight += asLand;
                waterWeight += asWater;
            }
        }
        // An island too small for the input has the colour of what is there.
        const bool hasLand = landWeight > 1e-6, hasWater = waterWeight > 1e-6;
        Color color{};
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const double landColor = ofLand[channel] / landWeight;
            // Deep water is a dark blue, not black.
            const double waterColor =
                deepestWater[channel] + ofWater[channel] / waterWeight * (1 - deepestWater[channel] / 255);
            color[channel] = hasLand && hasWater ? landColor * land + waterColor * (1 - land)
                             : hasLand           ? landColor
                                                 : waterColor;
        }
        return color;
    }

    double heightAt(double x, double y) const {
        const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
        const double partX = x - left, partY = y - top;
        const auto at = [&](int column, int row) {
            return static_cast<double>(
                *_heights.at(wrapped(column, _heights.width), std::clamp(row, 0, _heights.height - 1)));
        };
        return (at(left, top) * (1 - partX) + at(left + 1, top) * partX) * (1 - partY) +
               (at(left, top + 1) * (1 - partX) + at(left + 1, top + 1) * partX) * partY;
    }

    // Light from the north-west. Slopes are measured on the ground: towards the poles a degree of longitude is shorter.
    double shadeAt(double inputX, double inputY, double latitude) const {
        const double x = inputX * _heights.width - 0.5, y = inputY * _heights.height - 0.5;
        const double across = 1 / std::max(0.2, std::cos(latitude * std::numbers::pi / 180));
        const double step = 1.2;
        const double slopeX = (heightAt(x + step * across, y) - heightAt(x - step * across, y)) / (2 * step);
        const double slopeY = (heightAt(x, y + step) - heightAt(x, y - step)) / (2 * step);
        // Towards the poles the heights are stretched and show their grain.
        const double strength = shadeStrength * std::clamp((85 - std::abs(latitude)) / 25, 0.3, 1.0);
        return std::clamp(1 - strength * (-slopeX - slopeY), 0.62, 1.30);
    }

    const Raster& _picture;
    const Raster& _heights;
    const int _side;
    const Raster _inputMask, _mask;
};

} // namespace

Raster makeImagery(const ImageryInputs& inputs, int side) {
    return Maker(inputs, side).make();
}

void writeImagery(Raster picture, int tileSide, int quality, const std::string& attribution, const std::string& path) {
    using namespace basemapFormat;
    std::vector<std::vector<Bytes>> levels; // from the finest
    for (;;) {
        std::vector<Bytes> tiles;
        for (int y = 0; y < picture.height; y += tileSide) {
            for (int x = 0; x < picture.width; x += tileSide) {
                tiles.push_back(jpegOf(picture, x, y, tileSide, quality));
            }
        }
        levels.push_back(std::move(tiles));
        if (picture.width <= tileSide) {
            break;
        }
        picture = halved(picture);
    }
    std::reverse(levels.begin(), levels.end());

    std::size_t count = 0;
    for (const auto& tiles : levels) {
        count += tiles.size();
    }
    const std::size_t headerLength = imageryHeaderLength + attribution.size() + count * imageryEntryLength;
    Bytes index, data;
    for (const auto& tiles : levels) {
        for (const Bytes& tile : tiles) {
            appendLittleEndian(index, static_cast<std::uint32_t>(headerLength + data.size()), 4);
            appendLittleEndian(index, static_cast<std::uint32_t>(tile.size()), 4);
            data.insert(data.end(), tile.begin(), tile.end());
        }
    }
    Bytes covered; // by the checksum
    appendLittleEndian(covered, imageryVersion, 2);
    appendLittleEndian(covered, static_cast<std::uint32_t>(levels.size()), 2);
    appendLittleEndian(covered, static_cast<std::uint32_t>(tileSide), 4);
    appendLittleEndian(covered, static_cast<std::uint32_t>(headerLength + data.size()), 4);
    appendLittleEndian(covered, static_cast<std::uint32_t>(attribution.size()), 4);
    covered.insert(covered.end(), attribution.begin(), attribution.end());
    covered.insert(covered.end(), index.begin(), index.end());
    Bytes out = withChecksum({imageryMagic.begin(), imageryMagic.end()}, covered);
    out.insert(out.end(), data.begin(), data.end());
    writeFile(path, out);
}

} // namespace veyra::basemapMaker
