// Makes the built-in base map from Natural Earth's public-domain data. See Basemap/PROVENANCE.md for the inputs.

#include "Basemap/Maker/BorderSorter.h"
#include "Basemap/Maker/CellCutter.h"
#include "Basemap/Maker/FileWriter.h"
#include "Basemap/Maker/ImageryMaker.h"
#include "Basemap/Maker/LakeSeparator.h"
#include "Basemap/Maker/LineReader.h"
#include "Basemap/Maker/NamesMaker.h"
#include "Basemap/Maker/ShapefileReader.h"
#include "Basemap/Maker/TopologyReader.h"

#include <array>
#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace veyra::basemapMaker {

namespace {

struct LevelPlan {
    const char* detail; // Natural Earth's name for the scale
    int gridBits;
    int columnBits;
    double minimumZoom;
    double provinceZoom;    // the lines within countries that are for this zoom or less; none when 0
    std::int32_t tolerance; // grid steps by which rivers and the lines within countries may be simplified
    double disputedReach;   // degrees between a border and the line that marks it as disputed
};

// A level is drawn from its zoom up to the next level's; there a pixel is 64 grid steps. The finest level is drawn from
// there on, and its step is a pixel at zoom 14. The sources are made for zoom 2.4 (1:110 million), 3.6 (1:50 million)
// and 5.9 (1:10 million) on a usual display; each takes over a zoom or so before that, so that the map never looks
// coarse. There are lines within countries at 1:10 million alone. What is simplified is by a quarter of a pixel at the
// zoom at which the level ends, or, on the finest one, at zoom 8.
constexpr std::array levelPlans = {
    LevelPlan{"110m", 16, 1, 0, 0, 0, 0.3},
    LevelPlan{"50m", 18, 3, 2, 3, 16, 0.1},
    LevelPlan{"10m", 22, 5, 4, 8, 16, 0.03},
};

void makeWorld(const std::string& shapefiles, const std::string& countries, const std::string& output) {
    // Leased ground; its edge is no border between countries.
    const std::vector<std::string> leased = {"Baikonur", "USNB Guantanamo Bay"};

    const std::vector<PositionRing> finestLand =
        separateLakes(readPolygonShapefile(shapefiles + "/10m/ne_10m_land.shp")).land;
    FileWriter writer("Natural Earth");
    LandAndLakes coarser;
    for (const LevelPlan& plan : levelPlans) {
        const std::string detail = plan.detail;
        const std::string start = shapefiles + "/" + detail + "/ne_" + detail + "_";
        LandAndLakes shapes = separateLakes(readPolygonShapefile(start + "land.shp"));
        addForgottenLakes(shapes, coarser);

        const Grid grid(plan.gridBits, plan.columnBits);
        CellCutter cutter(grid);
        cutter.addLand(shapes.land);
        cutter.addLakes(shapes.lakes);
        const SortedBorders borders =
            sortBorders(TopologyReader(countries + "/countries-" + detail + ".json").sharedArcs("countries", leased),
                        readDisputedLines(start + "admin_0_boundary_lines_land"), plan.disputedReach);
        cutter.addLines(BasemapLayer::Borders, borders.agreed, 0);
        cutter.addLines(BasemapLayer::DisputedBorders, borders.disputed, 0);
        for (const auto& [layer, lines] : readRivers(start + "rivers_lake_centerlines")) {
            cutter.addLines(layer, lines, plan.tolerance);
        }
        if (plan.provinceZoom > 0) {
            const std::string provinces = shapefiles + "/10m/ne_10m_admin_1_states_provinces_lines";
            for (const auto& [layer, lines] : readProvinceLines(provinces, plan.provinceZoom, finestLand)) {
                cutter.addLines(layer, lines, plan.tolerance);
            }
        }
        writer.addLevel(grid, plan.minimumZoom, cutter.finish());
        coarser = std::move(shapes);
    }
    writer.write(output);
}

void makeNames(const std::string& shapefiles, const std::string& countries, const std::string& tables,
               const std::string& output) {
    NamesMaker maker{NameTable(tables + "/names.txt")};
    maker.addCities(shapefiles + "/10m/ne_10m_populated_places_simple");
    maker.addCountries(TopologyReader(countries + "/countries-50m.json").shapes("countries"));
    maker.addWaters(readWaters(tables + "/waters.txt"));
    writeNames(maker.finish(), output);
}

void makePictures(const std::string& shapefiles, const std::string& picture, const std::string& relief,
                  const std::string& output) {
    // The tiles of the relief's finest level.
    constexpr int reliefColumns = 16, reliefRows = 8;
    // A pixel at zoom 5 on a usual display, twice as fine as the picture: the relief and the shores are that fine.
    constexpr int side = 8192;
    constexpr int tileSide = 256;
    constexpr int quality = 74;
    const ImageryInputs inputs{readPicture(picture), readTiledPicture(relief, reliefColumns, reliefRows),
                               separateLakes(readPolygonShapefile(shapefiles + "/10m/ne_10m_land.shp"))};
    writeImagery(makeImagery(inputs, side), tileSide, quality, "NASA Blue Marble", output);
}

} // namespace

} // namespace veyra::basemapMaker

int main(int argc, char** argv) {
    using namespace veyra::basemapMaker;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const auto is = [&](const char* what, std::size_t count) {
        return arguments.size() == count && arguments[0] == what;
    };
    try {
        if (is("world", 4)) {
            makeWorld(arguments[1], arguments[2], arguments[3]);
        } else if (is("names", 5)) {
            makeNames(arguments[1], arguments[2], arguments[3], arguments[4]);
        } else if (is("pictures", 5)) {
            makePictures(arguments[1], arguments[2], arguments[3], arguments[4]);
        } else {
            std::cerr << "usage: basemap-maker world SHAPEFILES COUNTRIES OUTPUT\n"
                         "       basemap-maker names SHAPEFILES COUNTRIES TABLES OUTPUT\n"
                         "       basemap-maker pictures SHAPEFILES PICTURE RELIEF OUTPUT\n"
                         "  SHAPEFILES  folder with 110m/, 50m/ and 10m/, each with Natural Earth's shapefiles\n"
                         "  COUNTRIES   folder with countries-110m.json, countries-50m.json and countries-10m.json\n"
                         "  TABLES      folder with names.txt and waters.txt\n"
                         "  PICTURE     the world from above, in degrees\n"
                         "  RELIEF      folder with the tiles of its heights\n"
                         "  OUTPUT      the file to write\n";
            return 2;
        }
    } catch (const std::exception& error) {
        std::cerr << "basemap-maker: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
