#include "Basemap/Maker/LineReader.h"

#include "Basemap/Maker/AttributeTable.h"
#include "Basemap/Maker/Raster.h"
#include "Basemap/Maker/ShapefileReader.h"

#include <algorithm>
#include <map>
#include <optional>

namespace veyra::basemapMaker {

namespace {

// Sorts the shapes of a file into layers by what `layerOf` says of a record.
LayeredLines readLayered(const std::string& path, const auto& layerOf) {
    const AttributeTable table(path + ".dbf");
    const std::vector<std::vector<PositionLine>> shapes = readLineShapefile(path + ".shp");
    std::map<BasemapLayer, std::vector<PositionLine>> layers;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const std::optional<BasemapLayer> layer = layerOf(table, static_cast<int>(i));
        if (layer) {
            std::vector<PositionLine>& lines = layers[*layer];
            lines.insert(lines.end(), shapes[i].begin(), shapes[i].end());
        }
    }
    return {layers.begin(), layers.end()};
}

// Tells land from sea, to about four kilometres.
class LandFinder {
public:
    explicit LandFinder(const std::vector<PositionRing>& land)
        : _mask(landMask({land, {}}, width, height, [](Position position) {
              return PixelPlace{(position.longitude + 180) / 360 * width, (90 - position.latitude) / 180 * height};
          })) {}

    std::vector<PositionLine> onLand(const std::vector<PositionLine>& lines) const {
        std::vector<PositionLine> pieces;
        for (const PositionLine& line : lines) {
            PositionLine piece;
            for (std::size_t i = 0; i + 1 < line.size(); ++i) {
                const Position &a = line[i], &b = line[i + 1];
                if (!isLand((a.longitude + b.longitude) / 2, (a.latitude + b.latitude) / 2)) {
                    piece.clear();
                    continue;
                }
                if (piece.empty()) {
                    piece.push_back(a);
                    pieces.emplace_back();
                }
                piece.push_back(b);
                pieces.back() = piece;
            }
        }
        return pieces;
    }

private:
    static constexpr int width = 10800, height = 5400;

    bool isLand(double longitude, double latitude) const {
        const int x = std::clamp(static_cast<int>((longitude + 180) / 360 * width), 0, width - 1);
        const int y = std::clamp(static_cast<int>((90 - latitude) / 180 * height), 0, height - 1);
        return *_mask.at(x, y) > 0;
    }

    const Raster _mask;
};

} // namespace

LayeredLines readRivers(const std::string& path) {
    return readLayered(path, [](const AttributeTable& table, int record) -> std::optional<BasemapLayer> {
        const double rank = table.number(record, "scalerank");
        return rank <= 3   ? BasemapLayer::GreatRivers
               : rank <= 5 ? BasemapLayer::LargeRivers
               : rank <= 7 ? BasemapLayer::MediumRivers
                           : BasemapLayer::SmallRivers;
    });
}

LayeredLines readProvinceLines(const std::string& path, double zoom, const std::vector<PositionRing>& land) {
    // The zooms are Natural Earth's own: those of the states of large countries end at 5.
    constexpr double lastOfStates = 5, lastOfProvinces = 8;
    LayeredLines layers =
        readLayered(path, [zoom](const AttributeTable& table, int record) -> std::optional<BasemapLayer> {
            const double least = table.number(record, "min_zoom");
            if (least > zoom || least > lastOfProvinces) {
                return std::nullopt;
            }
            return least <= lastOfStates ? BasemapLayer::StateLines : BasemapLayer::ProvinceLines;
        });
    const LandFinder finder(land);
    for (auto& [layer, lines] : layers) {
        lines = finder.onLand(lines);
    }
    return layers;
}

} // namespace veyra::basemapMaker
