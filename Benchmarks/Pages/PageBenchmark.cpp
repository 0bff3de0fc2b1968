// Measures the map in a page: first frame, panning and zooming on the screen, idle cost, reads through the bridge,
// pages that were left. Prints one line a figure. Starts a virtual display for itself.
#include "Benchmarks/Pages/PageHost.h"
#include "Benchmarks/Pages/PageInput.h"
#include "Benchmarks/Pages/ScreenFrames.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace veyra::benchmark;

extern char** environ;

namespace {

// An Xvfb whose screen can be watched; ends with the program.
class VirtualDisplay {
public:
    VirtualDisplay() {
        char name[] = "/tmp/veyra-benchmark-XXXXXX";
        _folder = mkdtemp(name);
        int ends[2];
        if (pipe(ends) != 0)
            exit(1);
        const std::string number = std::to_string(ends[1]);
        const char* arguments[] = {"Xvfb",   "-displayfd",    number.c_str(), "-screen", "0",    "1280x1024x24",
                                   "-fbdir", _folder.c_str(), "-nolisten",    "tcp",     nullptr};
        if (posix_spawnp(&_process, "Xvfb", nullptr, nullptr, const_cast<char**>(arguments), environ) != 0) {
            std::cerr << "Xvfb cannot be started; install the package xvfb\n";
            exit(1);
        }
        close(ends[1]);
        char display[16] = ":";
        if (read(ends[0], display + 1, sizeof display - 2) <= 0)
            exit(1);
        close(ends[0]);
        display[strcspn(display, "\n")] = 0;
        setenv("DISPLAY", display, 1);
    }
    ~VirtualDisplay() {
        kill(_process, SIGTERM);
        waitpid(_process, nullptr, 0);
        std::filesystem::remove_all(_folder);
    }
    const std::string& folder() const { return _folder; }

private:
    std::string _folder;
    pid_t _process = 0;
};

void figure(const std::string& name, double value, const char* unit) {
    std::printf("%-58s %9.2f %s\n", name.c_str(), value, unit);
    std::fflush(stdout);
}

void measureFirstFrame(PageHost& host) {
    std::vector<double> times;
    host.run("await firstFrame({ latitude: 0, longitude: 0, latitudeDelta: 100, longitudeDelta: 100 })");
    for (int i = 0; i < 12; ++i) {
        const std::string place = "{ latitude: " + std::to_string(-30 + 6 * i) +
                                  ".5, longitude: " + std::to_string(-100 + 17 * i) +
                                  ".5, latitudeDelta: 12, longitudeDelta: 12 }";
        times.push_back(std::atof(host.run("return await firstFrame(" + place + ")").c_str()));
    }
    figure("insertion to first complete frame, warm process, median", median(times), "ms");
    figure("insertion to first complete frame, worst of 12", *std::max_element(times.begin(), times.end()), "ms");
}

void measureMotion(PageHost& host, ScreenFrames& screen, const std::string& name, const std::function<void()>& move) {
    host.wait(0.5);
    const int process = host.webProcess();
    const auto before = host.statistics();
    const double total = processSeconds(process), ours = threadSeconds(process, "veyra-main"),
                 workers = threadSeconds(process, "veyra-tiles");
    screen.start(100, 100, 800, 500);
    move();
    const auto gaps = screen.stop();
    const auto after = host.statistics();
    const double frames = static_cast<double>(after.at("frames-put") - before.at("frames-put"));
    if (gaps.empty() || frames == 0) {
        std::cerr << name << ": nothing reached the screen\n";
        return;
    }
    auto sorted = gaps;
    std::sort(sorted.begin(), sorted.end());
    double sum = 0;
    for (const double gap : gaps)
        sum += gap;
    figure(name + ": frames a second on the screen", 1000 * static_cast<double>(gaps.size()) / sum, "");
    figure(name + ": gap between frames, 95th percentile", sorted[sorted.size() * 95 / 100], "ms");
    figure(name + ": map thread, a frame", 1000 * (threadSeconds(process, "veyra-main") - ours) / frames, "ms cpu");
    figure(name + ": tile workers, a frame", 1000 * (threadSeconds(process, "veyra-tiles") - workers) / frames,
           "ms cpu");
    figure(name + ": whole web process, a frame", 1000 * (processSeconds(process) - total) / frames, "ms cpu");
}

void measureMotion(PageHost& host, ScreenFrames& screen, const std::string& name, const std::string& script) {
    measureMotion(host, screen, name, [&] { host.run(script); });
}

void measureGestures(PageHost& host, ScreenFrames& screen) {
    PageInput hand(host.view());
    measureMotion(host, screen, "drag with the mouse, 3 s", [&] { hand.drag(3); });
    measureMotion(host, screen, "wheel, 3 s", [&] { hand.turnWheel(3); });
    measureMotion(host, screen, "flights to far places", "await fly()");
}

void measureConversions(PageHost& host) {
    const double nanoseconds = std::atof(host.run("return await conversions()").c_str());
    figure("convertCoordinateToPoint, calls a second", 1e3 / nanoseconds, "million");
    const auto memory = [&] {
        host.collectGarbage();
        host.wait(1);
        return residentMegabytes(host.webProcess());
    };
    host.run("await conversions(10)");
    const double before = memory();
    host.run("await conversions(50)");
    figure("conversions: memory after 10 million more calls", memory() - before, "MB more");
}

// `content` is a script expression, `add` a call that adds it.
void addAndMove(PageHost& host, ScreenFrames& screen, const std::string& what, const std::string& content,
                const std::string& add) {
    std::vector<double> times;
    for (int i = 0; i < 5; ++i)
        times.push_back(
            std::atof(host.run("const content = " + content + "; return await timed(() => " + add + ")").c_str()));
    figure("add " + what + " until drawn, median of 5", median(times), "ms");
    measureMotion(host, screen, "pan " + what, "await pan(300, 48, 10, 3)");
    measureMotion(host, screen, "zoom " + what, "await zoom(300, 48, 10)");
    host.run("clear()");
}

void measureContent(PageHost& host, ScreenFrames& screen) {
    addAndMove(host, screen, "10,000 pins", "pins(10000)", "map.addAnnotations(content)");
    addAndMove(host, screen, "10,000 pins, one a call,", "pins(10000)",
               "content.forEach((pin) => map.addAnnotation(pin))");
    addAndMove(host, screen, "100,000 pins", "pins(100000)", "map.addAnnotations(content)");
    addAndMove(host, screen, "a line of 200,000 vertices", "line(200000)", "map.addOverlay(content)");
    addAndMove(host, screen, "a line of 1,000,000 vertices", "line(1000000)", "map.addOverlay(content)");
    addAndMove(host, screen, "2,000 polygons of 24 vertices", "polygons(2000)", "map.addOverlays(content)");
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
    figure("memory of the first map, " + size, one - before, "MB");
    constexpr int further = 4;
    for (int i = 0; i < further; ++i)
        host.run("insert({}, " + std::to_string(width) + ", " + std::to_string(height) + ")");
    figure("memory of each of four further maps, " + size, (settled() - one) / further, "MB");
}

void measureIdle(PageHost& host, const char* name) {
    host.wait(5); // the engine's own work after what was before
    const int process = host.webProcess();
    const auto before = host.statistics();
    const double busy = processSeconds(process);
    host.wait(10);
    const auto after = host.statistics();
    figure(std::string(name) + ": processor", 100 * (processSeconds(process) - busy) / 10, "% of a core");
    figure(std::string(name) + ": animation frames requested in 10 s",
           static_cast<double>(after.at("animation-frames-requested") - before.at("animation-frames-requested")), "");
}

void measureReads(PageHost& host) {
    const std::string answer = host.run("return read(['bareAccessor', 'zoomEnabled', 'mapType'])");
    double bare = 0, boolean = 0, number = 0;
    if (std::sscanf(answer.c_str(), "[%lf,%lf,%lf]", &bare, &boolean, &number) != 3) {
        std::cerr << "no read times: " << answer << '\n';
        return;
    }
    figure("read of a bare native accessor on an <object>", bare, "ns");
    figure("read of zoomEnabled", boolean, "ns");
    figure("read of mapType", number, "ns");
    figure("read of zoomEnabled / bare accessor", boolean / bare, "times");
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
    figure("200 left pages: views alive", static_cast<double>(left.at("views")), "");
    figure("200 left pages: script contexts alive", static_cast<double>(left.at("contexts")), "");
}

} // namespace

int main(int argc, char** argv) {
    const VirtualDisplay display;
    gtk_init(&argc, &argv);
    ScreenFrames screen(display.folder());
    const std::string page = "file://" VEYRA_BENCHMARK_PAGES "/map.html";
    const std::string world =
        "insert(); map.setRegion({ latitude: 48, longitude: 10, latitudeDelta: 20, longitudeDelta: 20 }, false);"
        "await new Promise(r => setTimeout(r, 1500));";
    measureMemory(page, 300, 150);
    measureMemory(page, 1024, 768);
    for (const bool composited : {false, true}) {
        PageHost host({VEYRA_EXTENSIONS, composited, 1024, 768});
        host.load(page);
        const std::string way = composited ? " (engine's default way to the screen)" : "";
        if (!composited) {
            measureIdle(host, "idle, the page without a map");
            measureFirstFrame(host);
        }
        host.run(world);
        measureMotion(host, screen, "pan" + way, "await pan(600, 48, 10, 3)");
        measureMotion(host, screen, "zoom" + way, "await zoom(600, 48, 10)");
        if (!composited) {
            measureGestures(host, screen);
            measureContent(host, screen);
            measureConversions(host);
            measureIdle(host, "idle, one map");
            measureReads(host);
            measureLeftPages(host, page);
        }
    }
}
