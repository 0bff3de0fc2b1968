// Makes the built-in base map from Natural Earth's public-domain data. See Basemap/PROVENANCE.md for the inputs.

#include "Basemap/Maker/CellCutter.h"
#include "Basemap/Maker/FileWriter.h"
#include "Basemap/Maker/LakeSeparator.h"
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
};

// A level is drawn from its zoom up to the next level's; there a pixel is 64 grid steps. The finest level is drawn from
// there on, and its step is a pixel at zoom 14. The sources are made for zoom 2.4 (1:110 million), 3.6 (1:50 million)
// and 5.9 (1:10 million) on a usual display; each takes over a zoom or so before that, so that the map never looks
// coarse.
constexpr std::array levelPlans = {
    LevelPlan{"110m", 16, 1, 0},
    LevelPlan{"50m", 18, 3, 2},
    LevelPlan{"10m", 22, 5, 4},
};

void makeBasemap(const std::string& shapefiles, const std::string& countries, const std::string& output) {
    // Leased ground; its edge is no border between countries.
    const std::vector<std::string> leased = {"Baikonur", "USNB Guantanamo Bay"};

    FileWriter writer("Natural Earth");
    LandAndLakes coarser;
    for (const LevelPlan& plan : levelPlans) {
        const std::string detail = plan.detail;
        LandAndLakes shapes =
            separateLakes(readPolygonShapefile(shapefiles + "/" + detail + "/ne_" + detail + "_land.shp"));
        addForgottenLakes(shapes, coarser);

        const Grid grid(plan.gridBits, plan.columnBits);
        CellCutter cutter(grid);
        cutter.addLand(shapes.land);
        cutter.addLakes(shapes.lakes);
        cutter.addBorders(TopologyReader(countries + "/countries-" + detail + ".json").sharedArcs("countries", leased));
        writer.addLevel(grid, plan.minimumZoom, cutter.finish());
        coarser = std::move(shapes);
    }
    writer.write(output);
}

} // namespace

} // namespace veyra::basemapMaker

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: basemap-maker SHAPEFILES COUNTRIES OUTPUT\n"
                     "  SHAPEFILES  folder with 110m/, 50m/ and 10m/, each with ne_*_land.shp\n"
                     "  COUNTRIES   folder with countries-110m.json, countries-50m.json and countries-10m.json\n"
                     "  OUTPUT      the base map file to write\n";
        return 2;
    }
    try {
        veyra::basemapMaker::makeBasemap(argv[1], argv[2], argv[3]);
    } catch (const std::exception& error) {
        std::cerr << "basemap-maker: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
