#include "Basemap/Maker/BorderSorter.h"

#include "Basemap/Maker/AttributeTable.h"
#include "Basemap/Maker/ShapefileReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace veyra::basemapMaker {

namespace {

// Pairs that disagree about the whole line between them, in alphabetical order.
constexpr std::array<std::pair<const char*, const char*>, 12> disagreements = {{
    {"Algeria", "W. Sahara"},
    {"China", "Siachen Glacier"},
    {"Cyprus", "Cyprus U.N. Buffer Zone"},
    {"Cyprus", "N. Cyprus"},
    {"Cyprus U.N. Buffer Zone", "N. Cyprus"},
    {"India", "Siachen Glacier"},
    {"Israel", "Palestine"},
    {"Kosovo", "Serbia"},
    {"Mauritania", "W. Sahara"},
    {"Morocco", "W. Sahara"},
    {"Pakistan", "Siachen Glacier"},
    {"Somalia", "Somaliland"},
}};

bool disagree(const SharedArc& arc) {
    const auto has = [&](const char* name) {
        return std::find(arc.names.begin(), arc.names.end(), name) != arc.names.end();
    };
    if (std::any_of(disagreements.begin(), disagreements.end(),
                    [&](const auto& pair) { return has(pair.first) && has(pair.second); })) {
        return true;
    }
    // Crimea, which the maps show with Russia.
    const Position& middle = arc.line[arc.line.size() / 2];
    return has("Russia") && has("Ukraine") && middle.longitude < 36.5 && middle.latitude < 46.5;
}

// Finds out whether a place lies near one of many segments.
class Neighbourhood {
public:
    Neighbourhood(const std::vector<PositionLine>& lines, double reach) : _reach(reach) {
        for (const PositionLine& line : lines) {
            for (std::size_t i = 0; i + 1 < line.size(); ++i) {
                add(line[i], line[i + 1]);
            }
        }
    }

    bool contains(Position place) const {
        const auto found = _segments.find(squareOf(place.longitude, place.latitude));
        return found != _segments.end() &&
               std::any_of(found->second.begin(), found->second.end(),
                           [&](const auto& segment) { return distance(place, segment) <= _reach; });
    }

private:
    using Segment = std::pair<Position, Position>;
    static std::pair<int, int> squareOf(double longitude, double latitude) {
        return {static_cast<int>(std::floor(longitude)), static_cast<int>(std::floor(latitude))};
    }

    void add(Position a, Position b) {
        const auto low =
            squareOf(std::min(a.longitude, b.longitude) - _reach, std::min(a.latitude, b.latitude) - _reach);
        const auto high =
            squareOf(std::max(a.longitude, b.longitude) + _reach, std::max(a.latitude, b.latitude) + _reach);
        for (int x = low.first; x <= high.first; ++x) {
            for (int y = low.second; y <= high.second; ++y) {
                _segments[{x, y}].emplace_back(a, b);
            }
        }
    }

    static double distance(Position p, const Segment& segment) {
        const auto& [a, b] = segment;
        const double dx = b.longitude - a.longitude, dy = b.latitude - a.latitude;
        const double length = dx * dx + dy * dy;
        const double px = p.longitude - a.longitude, py = p.latitude - a.latitude;
        const double along = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0;
        return std::hypot(px - along * dx, py - along * dy);
    }

    const double _reach;
    std::map<std::pair<int, int>, std::vector<Segment>> _segments; // by square degree
};

} // namespace

SortedBorders sortBorders(const std::vector<SharedArc>& borders, const std::vector<PositionLine>& disputedLines,
                          double reach) {
    const Neighbourhood disputed(disputedLines, reach);
    SortedBorders sorted;
    for (const SharedArc& arc : borders) {
        if (disagree(arc)) {
            sorted.disputed.push_back(arc.line);
            continue;
        }
        PositionLine piece = {arc.line.front()};
        bool pieceIsDisputed = false;
        const auto finish = [&] {
            if (piece.size() > 1) {
                (pieceIsDisputed ? sorted.disputed : sorted.agreed).push_back(piece);
            }
        };
        for (std::size_t i = 1; i < arc.line.size(); ++i) {
            const Position &a = arc.line[i - 1], &b = arc.line[i];
            const bool isDisputed = disputed.contains(
                {.longitude = (a.longitude + b.longitude) / 2, .latitude = (a.latitude + b.latitude) / 2});
            if (isDisputed != pieceIsDisputed) {
                finish();
                piece = {a};
                pieceIsDisputed = isDisputed;
            }
            piece.push_back(b);
        }
        finish();
    }
    return sorted;
}

std::vector<PositionLine> readDisputedLines(const std::string& path) {
    // What is not agreed on bears one of these at its head; one line of Western Sahara was marked by the packager.
    constexpr std::array marks = {"Disputed", "Indefinite", "Indeterminant", "Line of control", "ForgetMagics"};
    const AttributeTable table(path + ".dbf");
    const std::vector<std::vector<PositionLine>> shapes = readLineShapefile(path + ".shp");
    std::vector<PositionLine> lines;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const std::string kind = table.text(static_cast<int>(i), "featurecla");
        if (std::any_of(marks.begin(), marks.end(), [&](const char* mark) { return kind.rfind(mark, 0) == 0; })) {
            lines.insert(lines.end(), shapes[i].begin(), shapes[i].end());
        }
    }
    return lines;
}

} // namespace veyra::basemapMaker
