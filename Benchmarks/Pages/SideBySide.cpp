#include "Benchmarks/Pages/SideBySide.h"

#include "Benchmarks/Pages/LibraryServer.h"
#include "Benchmarks/Pages/Measurements.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace veyra::benchmark {

namespace {

struct Map {
    const char* name;
    std::string uri;
    bool isOurs = false;
    bool takesMuch = true; ///< 100,000 pins and 1,000,000 vertices
};

const Content ordinary[] = {
    {"10,000 pins", "pins(10000)", "addPins", 3, 90},
    {"a line of 200,000 vertices", "line(200000)", "addLine", 3, 90},
    {"2,000 polygons of 24 vertices", "polygons(2000)", "addPolygons", 3, 90},
};
const Content much[] = {
    {"100,000 pins", "pins(100000)", "addPins", 1, 20},
    {"a line of 1,000,000 vertices", "line(1000000)", "addLine", 1, 30},
};

void measure(ScreenFrames& screen, const Map& map) {
    PageHost host({.extensions = map.isOurs ? VEYRA_EXTENSIONS : ""});
    host.load(map.uri);
    const std::string start = host.run("const start = performance.now(); await library.start(); await frame(); "
                                       "return performance.now() - start");
    std::printf("\n%s\n", map.name);
    printFigure("start until the map says that it has loaded", std::atof(start.c_str()), "ms");
    printFigure("conversions a second", 1e3 / std::atof(host.run("return await conversions()").c_str()), "million");
    measureMotion(host, screen, "pan the empty map", "await pan(90, 48, 10, 3)");
    measureMotion(host, screen, "zoom the empty map", "await zoom(90, 48, 10)");
    for (const Content& content : ordinary)
        measureContent(host, screen, content);
    printFigure("memory of the web process after that", residentMegabytes(host.webProcess()), "MB");
    if (!map.takesMuch)
        return;
    for (const Content& content : much)
        measureContent(host, screen, content);
    printFigure("memory of the web process after that", residentMegabytes(host.webProcess()), "MB");
}

} // namespace

void measureSideBySide(ScreenFrames& screen, const std::string& modules, const std::vector<std::string>& names) {
    const LibraryServer server(modules);
    const Map maps[] = {
        {"Veyra", "file://" VEYRA_BENCHMARK_PAGES "/map.html", true},
        {"Leaflet", server.url("leaflet.html"), false, false},
        {"Leaflet, circles on a canvas for pins", server.url("leaflet.html?canvas")},
        {"OpenLayers", server.url("openlayers.html")},
        {"MapLibre GL JS", server.url("maplibre.html"), false, false},
    };
    for (const Map& map : maps)
        if (names.empty() || std::find(names.begin(), names.end(), map.name) != names.end())
            measure(screen, map);
}

} // namespace veyra::benchmark
