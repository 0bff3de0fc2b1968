#include "Basemap/Maker/LineReader.h"

#include "Basemap/Maker/AttributeTable.h"
#include "Basemap/Maker/ShapefileReader.h"

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

LayeredLines readProvinceLines(const std::string& path, double zoom) {
    // The zooms are Natural Earth's own: those of the states of large countries end at 5.
    constexpr double lastOfStates = 5, lastOfProvinces = 8;
    return readLayered(path, [zoom](const AttributeTable& table, int record) -> std::optional<BasemapLayer> {
        const double least = table.number(record, "min_zoom");
        if (least > zoom || least > lastOfProvinces) {
            return std::nullopt;
        }
        return least <= lastOfStates ? BasemapLayer::StateLines : BasemapLayer::ProvinceLines;
    });
}

} // namespace veyra::basemapMaker
