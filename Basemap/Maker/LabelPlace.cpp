#include "Basemap/Maker/LabelPlace.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veyra::basemapMaker {

namespace {

// Text is so many times wider than it is high, with some room around it.
constexpr double textAspect = 3.5;
// Places tried along each side of the polygon's bounds.
constexpr int steps = 48;

struct Point {
    double x, y;
};
using Ring = std::vector<Point>;

// Degrees of longitude, and of latitude stretched as on the map.
double stretched(double latitude) {
    const double phi = std::clamp(latitude, -85.0, 85.0) * std::numbers::pi / 180;
    return std::atanh(std::sin(phi)) * 180 / std::numbers::pi;
}

double latitudeAt(double y) {
    return std::asin(std::tanh(y * std::numbers::pi / 180)) * 180 / std::numbers::pi;
}

Ring projected(const PositionLine& line) {
    Ring ring;
    for (const Position& position : line) {
        ring.push_back({position.longitude, stretched(position.latitude)});
    }
    return ring;
}

// A small country on both sides of the antimeridian is one piece.
void joinAcrossAntimeridian(std::vector<Ring>& rings) {
    constexpr double tooWide = 300, tooFarSouth = -100;
    const auto [west, east] =
        std::minmax_element(rings[0].begin(), rings[0].end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    if (east->x - west->x < tooWide || rings[0][0].y < tooFarSouth) {
        return;
    }
    for (Ring& ring : rings) {
        for (Point& point : ring) {
            point.x += point.x < 0 ? 360 : 0;
        }
    }
}

// On the sphere, in square degrees at the equator.
double areaOf(const PositionLine& line) {
    constexpr double radians = std::numbers::pi / 180;
    double sum = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const Position &a = line[i], &b = line[(i + 1) % line.size()];
        const double across = std::remainder(b.longitude - a.longitude, 360);
        sum += across * (std::sin(a.latitude * radians) + std::sin(b.latitude * radians)) / 2;
    }
    return std::abs(sum) / radians;
}

// The free stretch through a point along its row; empty when the point lies outside.
struct Stretch {
    double low = 0, high = 0;
};
Stretch stretchAt(const std::vector<Ring>& rings, Point point) {
    std::vector<double> crossings;
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const Point &a = ring[i], &b = ring[(i + 1) % ring.size()];
            if ((a.y > point.y) != (b.y > point.y)) {
                crossings.push_back(a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x));
            }
        }
    }
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        if (crossings[i] <= point.x && point.x <= crossings[i + 1]) {
            return {crossings[i], crossings[i + 1]};
        }
    }
    return {point.x, point.x};
}

// The distance to the nearest edge when distances across count textAspect times less.
double roomAt(const std::vector<Ring>& rings, Point point) {
    double nearest = 1e9;
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const Point &a = ring[i], &b = ring[(i + 1) % ring.size()];
            const double dx = (b.x - a.x) / textAspect, dy = b.y - a.y;
            const double px = (point.x - a.x) / textAspect, py = point.y - a.y;
            const double length = dx * dx + dy * dy;
            const double along = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0;
            nearest = std::min(nearest, std::hypot(px - along * dx, py - along * dy));
        }
    }
    return nearest;
}

} // namespace

LabelPlace labelPlaceIn(const std::vector<std::vector<PositionLine>>& polygons) {
    const auto largest = std::max_element(polygons.begin(), polygons.end(), [](const auto& a, const auto& b) {
        return areaOf(a.front()) < areaOf(b.front());
    });
    std::vector<Ring> rings;
    for (const PositionLine& line : *largest) {
        rings.push_back(projected(line));
    }
    joinAcrossAntimeridian(rings);
    // Of all rings: the outer one of Antarctica is the pole.
    Ring all;
    for (const Ring& ring : rings) {
        all.insert(all.end(), ring.begin(), ring.end());
    }
    const auto [west, east] =
        std::minmax_element(all.begin(), all.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    const auto [south, north] =
        std::minmax_element(all.begin(), all.end(), [](const Point& a, const Point& b) { return a.y < b.y; });
    const double width = east->x - west->x, height = north->y - south->y;
    const Point middle{west->x + width / 2, south->y + height / 2};
    Point best = middle;
    double bestScore = 0;
    for (int i = 1; i < steps; ++i) {
        for (int k = 1; k < steps; ++k) {
            const Point point{west->x + width * i / steps, south->y + height * k / steps};
            const Stretch stretch = stretchAt(rings, point);
            if (stretch.low == stretch.high) {
                continue;
            }
            // Near the middle of the country, all else being equal.
            const double off = std::hypot((point.x - middle.x) / width, (point.y - middle.y) / height);
            const double score = roomAt(rings, point) * (1 - 0.5 * off);
            if (score > bestScore) {
                bestScore = score;
                best = point;
            }
        }
    }
    const Stretch stretch = stretchAt(rings, best);
    return {.middle = {.longitude = best.x > 180 ? best.x - 360 : best.x, .latitude = latitudeAt(best.y)},
            .width = std::max(stretch.high - stretch.low, width / 4),
            .area = areaOf(largest->front())};
}

} // namespace veyra::basemapMaker
