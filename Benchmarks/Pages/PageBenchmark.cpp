// Measures the map in a page: first frame, movements on the screen, content, idle cost, reads through the bridge, pages
// that were left. Prints one line a figure. Starts a virtual display for itself.
#include "Benchmarks/Pages/Measurements.h"
#include "Benchmarks/Pages/PageInput.h"
#include "Benchmarks/Pages/SideBySide.h"
#include "Benchmarks/Pages/WatchedDisplay.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>

using namespace veyra::benchmark;

namespace {

void measureFirstFrame(PageHost& host) {
    std::vector<double> times;
    host.run("await firstFrame({ latitude: 0, longitude: 0, latitudeDelta: 100, longitudeDelta: 100 })");
    for (int i = 0; i < 12; ++i) {
        const std::string place = "{ latitude: " + std::to_string(-30 + 6 * i) +
                                  ".5, longitude: " + std::to_string(-100 + 17 * i) +
                                  ".5, latitudeDelta: 12, longitudeDelta: 12 }";
        times.push_back(std::atof(host.run("return await firstFrame(" + place + ")").c_str()));
    }
    printFigure("insertion to first complete frame, warm process, median", median(times), "ms");
    printFigure("insertion to first complete frame, worst of 12", *std::max_element(times.begin(), times.end()), "ms");
}

void measureJumps(PageHost& host, ScreenFrames& screen) {
    std::vector<std::string> jumps;
    for (int i = 0; i < 12; ++i) { // to places that no earlier run has drawn
        jumps.push_back("return await jump({ latitude: " + std::to_string(-27 + 6 * i) +
                        ", longitude: " + std::to_string(91 - 17 * i) + ", latitudeDelta: 12, longitudeDelta: 12 })");
    }
    measureUntilShown(host, screen, "jump to another place", jumps);
}

void measureGestures(PageHost& host, ScreenFrames& screen) {
    PageInput hand(host.view());
    measureMotion(host, screen, "drag with the mouse, 3 s", [&] { hand.drag(3); });
    measureMotion(host, screen, "wheel, 3 s", [&] { hand.turnWheel(3); });
    measureMotion(host, screen, "flights to far places", "await fly()");
}

void measureConversions(PageHost& host) {
    const double nanoseconds = std::atof(host.run("return await conversions()").c_str());
    printFigure("convertCoordinateToPoint, calls a second", 1e3 / nanoseconds, "million");
    const double ofStrings = std::atof(host.run("return await conversions(9, '48.2')").c_str());
    printFigure("the same with a latitude that is a string", 1e3 / ofStrings, "million");
    const auto memory = [&] {
        host.collectGarbage();
        host.wait(1);
        return residentMegabytes(host.webProcess());
    };
    host.run("await conversions(10)");
    const double before = memory();
    host.run("await conversions(50)");
    printFigure("conversions: memory after 10 million more calls", memory() - before, "MB more");
}

void measureContents(PageHost& host, ScreenFrames& screen) {
    for (const Content& content : {
             Content{"10,000 pins", "pins(10000)", "addPins"},
             Content{"10,000 pins, one a call,", "pins(10000)", "addPinsOneByOne"},
             Content{"100,000 pins", "pins(100000)", "addPins"},
             Content{"a line of 200,000 vertices", "line(200000)", "addLine"},
             Content{"a line of 1,000,000 vertices", "line(1000000)", "addLine"},
             Content{"2,000 polygons of 24 vertices", "polygons(2000)", "addPolygons"},
             Content{"1,000 pins", "pins(1000)", "addPins"},
             Content{"1,000 pins beside a million elsewhere", "[...pins(1000), ...pinsElsewhere(1000000)]", "addPins",
                     1},
         })
        measureContent(host, screen, content);
}

// In a web process of its own, which has shown a page and a canvas before.
void measureMemory(const std::string& page, int width, int height) {
    PageHost host({VEYRA_EXTENSIONS, false, 1024, 768});
    host.load(page);
    host.run("canvas()");
    const auto settled = [&] {
        host.wait(4);
        host.collectGarbage();
        host.wait(1);
        return privateMegabytes(host.webProcess());
    };
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    const double before = settled();
    host.run("insert({}, " + std::to_string(width) + ", " + std::to_string(height) + ")");
    const double one = settled();
    printFigure("memory of the first map, " + size, one - before, "MB");
    constexpr int further = 4;
    for (int i = 0; i < further; ++i)
        host.run("insert({}, " + std::to_string(width) + ", " + std::to_string(height) + ")");
    printFigure("memory of each of four further maps, " + size, (settled() - one) / further, "MB");
}

void measureMemory(const std::string& page) {
    measureMemory(page, 300, 150);
    measureMemory(page, 1024, 768);
}

void measureIdle(PageHost& host, const char* name) {
    host.wait(5); // the engine's own work after what was before
    const int process = host.webProcess();
    const auto before = host.statistics();
    const double busy = processSeconds(process);
    host.wait(10);
    const auto after = host.statistics();
    printFigure(std::string(name) + ": processor", 100 * (processSeconds(process) - busy) / 10, "% of a core");
    printFigure(std::string(name) + ": animation frames requested in 10 s",
                static_cast<double>(after.at("animation-frames-requested") - before.at("animation-frames-requested")),
                "");
}

void measureReads(PageHost& host) {
    const std::string answer = host.run("return read(['bareAccessor', 'zoomEnabled', 'mapType'])");
    double bare = 0, boolean = 0, number = 0;
    if (std::sscanf(answer.c_str(), "[%lf,%lf,%lf]", &bare, &boolean, &number) != 3) {
        std::cerr << "no read times: " << answer << '\n';
        return;
    }
    printFigure("read of a bare native accessor on an <object>", bare, "ns");
    printFigure("read of zoomEnabled", boolean, "ns");
    printFigure("read of mapType", number, "ns");
    printFigure("read of zoomEnabled / bare accessor", boolean / bare, "times");
}

void measureLeftPages(PageHost& host, const std::string& page) {
    for (int i = 0; i < 200; ++i) {
        host.load(page + "?" + std::to_string(i));
        host.run(
            "insert(); map.setRegion({ latitude: 10, longitude: 10, latitudeDelta: 5, longitudeDelta: 5 }, false)");
    }
    // Of the pages that were left the engine keeps the last two whole, until its page cache is switched off.
    host.load("about:blank");
    webkit_settings_set_enable_page_cache(webkit_web_view_get_settings(host.view()), FALSE);
    host.load("about:blank?empty");
    for (int i = 0; i < 10; ++i) {
        host.wait(0.3);
        host.collectGarbage();
    }
    const auto left = host.statistics();
    printFigure("200 left pages: views alive", static_cast<double>(left.at("views")), "");
    printFigure("200 left pages: script contexts alive, that of the shown page included",
                static_cast<double>(left.at("contexts")), "");
}

} // namespace

int main(int argc, char** argv) {
    const WatchedDisplay display;
    gtk_init(&argc, &argv);
    ScreenFrames screen(display.folder());
    const std::string page = "file://" VEYRA_BENCHMARK_PAGES "/map.html", what = argc > 1 ? argv[1] : "";
    if (what == "--side-by-side" && argc > 2) {
        measureSideBySide(screen, argv[2], {argv + 3, argv + argc});
        return 0;
    }
    if (what == "--conversions") {
        PageHost host({VEYRA_EXTENSIONS});
        host.load(page);
        host.run("await library.start()");
        measureConversions(host);
        measureReads(host); // what any call on an <object> costs
        return 0;
    }
    if (what == "--memory") {
        measureMemory(page);
        return 0;
    }
    if (!what.empty()) {
        std::cerr << "usage: bench-pages [--conversions | --memory | --side-by-side FOLDER-OF-NODE-MODULES [MAP...]]\n";
        return 2;
    }
    measureMemory(page);
    for (const bool composited : {false, true}) {
        PageHost host({VEYRA_EXTENSIONS, composited});
        host.load(page);
        const std::string way = composited ? " (engine's default way to the screen)" : "";
        if (!composited) {
            measureIdle(host, "idle, the page without a map");
            measureFirstFrame(host);
        }
        measureMotion(host, screen, "a bare canvas" + way, "await bareFrames(600)");
        host.run("await library.start()");
        measureMotion(host, screen, "pan" + way, "await pan(600, 48, 10, 3)");
        measureMotion(host, screen, "zoom" + way, "await zoom(600, 48, 10)");
        if (!composited) {
            measureJumps(host, screen);
            measureGestures(host, screen);
            measureConversions(host);
            measureReads(host);
            measureContents(host, screen);
            measureIdle(host, "idle, one map");
            measureLeftPages(host, page);
        }
    }
}
