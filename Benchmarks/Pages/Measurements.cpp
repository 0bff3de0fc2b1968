#include "Benchmarks/Pages/Measurements.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace veyra::benchmark {

namespace {

constexpr double settling = 0.4; // seconds after which nothing of what was added is still to come to the screen

struct Screen {
    int x = 100, y = 100, width = 800, height = 500;
} constexpr watched;

} // namespace

void printFigure(const std::string& name, double value, const char* unit) {
    std::printf("%-72s %9.2f %s\n", name.c_str(), value, unit);
    std::fflush(stdout);
}

void measureMotion(PageHost& host, ScreenFrames& screen, const std::string& name, const std::function<void()>& move) {
    host.wait(0.5);
    const int process = host.webProcess();
    const auto before = host.statistics();
    const double total = processSeconds(process), ours = threadSeconds(process, "veyra-main"),
                 workers = threadSeconds(process, "veyra-tiles");
    screen.start(watched.x, watched.y, watched.width, watched.height);
    move();
    const auto gaps = screen.stop().gaps;
    if (gaps.empty()) {
        std::cerr << name << ": nothing reached the screen\n";
        return;
    }
    const double spent = processSeconds(process) - total;
    auto sorted = gaps;
    std::sort(sorted.begin(), sorted.end());
    double sum = 0;
    for (const double gap : gaps)
        sum += gap;
    printFigure(name + ": frames a second on the screen", 1000 * static_cast<double>(gaps.size()) / sum, "");
    printFigure(name + ": gap between frames, 95th percentile", sorted[sorted.size() * 95 / 100], "ms");
    const auto frames = static_cast<double>(gaps.size());
    if (before.contains("frames-put")) {
        printFigure(name + ": drawing and putting a frame, 95th percentile",
                    static_cast<double>(host.statistics().at("frame-microseconds")) / 1000, "ms");
        printFigure(name + ": map thread, a frame", 1000 * (threadSeconds(process, "veyra-main") - ours) / frames,
                    "ms cpu");
        printFigure(name + ": tile workers, a frame", 1000 * (threadSeconds(process, "veyra-tiles") - workers) / frames,
                    "ms cpu");
    }
    printFigure(name + ": whole web process, a frame", 1000 * spent / frames, "ms cpu");
}

void measureMotion(PageHost& host, ScreenFrames& screen, const std::string& name, const std::string& script) {
    measureMotion(host, screen, name, [&] { host.run(script); });
}

void measureUntilShown(PageHost& host, ScreenFrames& screen, const std::string& name,
                       const std::vector<std::string>& scripts) {
    std::vector<double> told, seen;
    for (const std::string& script : scripts) {
        host.run("await library.clear()");
        host.wait(settling);
        screen.start(watched.x, watched.y, watched.width, watched.height);
        const std::string answer = host.run(script);
        host.wait(settling);
        const double shown = screen.stop().lastChange;
        double start = 0, duration = 0;
        if (std::sscanf(answer.c_str(), "[%lf,%lf]", &start, &duration) != 2) {
            std::cerr << name << ": " << answer << '\n';
            return;
        }
        told.push_back(duration);
        seen.push_back(shown - start);
    }
    printFigure(name + " until the map says so and two frames, median", median(told), "ms");
    printFigure(name + " until the screen shows the last of it, median", median(seen), "ms");
}

void measureContent(PageHost& host, ScreenFrames& screen, const Content& content) {
    const std::string add =
        "const content = " + content.expression + "; return await timed(() => library." + content.method + "(content))";
    measureUntilShown(host, screen, "add " + content.name,
                      std::vector<std::string>(static_cast<size_t>(content.repetitions), add));
    const std::string frames = std::to_string(content.frames);
    measureMotion(host, screen, "pan " + content.name, "await pan(" + frames + ", 48, 10, 3)");
    measureMotion(host, screen, "zoom " + content.name, "await zoom(" + frames + ", 48, 10)");
    host.run("await library.clear()");
}

} // namespace veyra::benchmark
