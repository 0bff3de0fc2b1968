// What is measured of any map in a page, and printed, one figure a line.
#pragma once

#include "Benchmarks/Pages/PageHost.h"
#include "Benchmarks/Pages/ScreenFrames.h"

#include <functional>
#include <string>
#include <vector>

namespace veyra::benchmark {

void printFigure(const std::string& name, double value, const char* unit);

/// Watches the screen while `move` moves the map.
void measureMotion(PageHost& host, ScreenFrames& screen, const std::string& name, const std::function<void()>& move);
/// The same with a script of the page.
void measureMotion(PageHost& host, ScreenFrames& screen, const std::string& name, const std::string& script);

/// The scripts answer when they began, in milliseconds since 1970, and how long it took until the map said that it was
/// done. Each begins with a map without content that has been at rest.
void measureUntilShown(PageHost& host, ScreenFrames& screen, const std::string& name,
                       const std::vector<std::string>& scripts);

struct Content {
    std::string name;       ///< of the figures: "10,000 pins"
    std::string expression; ///< of a script; makes it
    std::string method;     ///< of the page's `library`; adds it
    int repetitions = 5;    ///< of adding
    int frames = 300;       ///< of each movement
};

/// Adds the content to an empty map, then pans and zooms it.
void measureContent(PageHost& host, ScreenFrames& screen, const Content& content);

} // namespace veyra::benchmark
