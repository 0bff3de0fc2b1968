#include "Platform/MapKit/MKLabelLayout.h"

#include "Platform/MapKit/MKGeometry.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace veyra {

namespace {

constexpr double zoomZeroSide = 256; // points
constexpr double never = 1000;
// A place that is not the best must let a name come so many zooms earlier.
constexpr double worthMoving = 0.3;
// By how much of the width of its land a name may move up or down.
constexpr double mostOfExtent = 0.4;
// Cities for which names that matter more make room: those above a million, and capitals, that come before this zoom.
constexpr double latestCity = 5;
constexpr int largeCity = 2;
// A city that waits for such a name longer than so many zooms counts no more.
constexpr double longestDelay = 2.5;
// Between a mark and its name, in points.
constexpr double markGap = 2.5;

double scaleAt(double zoom) {
    return zoomZeroSide * std::exp2(zoom) / MKWorldSide;
}

double zoomAt(double scale) {
    return std::log2(scale * MKWorldSide / zoomZeroSide);
}

// The scales at which something happens; empty when first is above last.
struct Range {
    double first, last;
};

Range common(Range a, Range b) {
    return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

// The scales at which offset + distance * scale lies between two bounds.
Range scalesWithin(double distance, double low, double high) {
    if (distance == 0) {
        return low < 0 && high > 0 ? Range{0, HUGE_VAL} : Range{1, 0};
    }
    const double a = low / distance, b = high / distance;
    return {std::min(a, b), std::max(a, b)};
}

// The scales at which two boxes meet, the second one's place lying (dx, dy) map points from the first one's.
Range scalesOfMeeting(const MKLabelBox& a, const MKLabelBox& b, double dx, double dy) {
    const double gapX = MKLabelLayout::gapX, gapY = MKLabelLayout::gapY;
    return common(scalesWithin(dx, a.left - b.right - gapX, a.right - b.left + gapX),
                  scalesWithin(dy, a.top - b.bottom - gapY, a.bottom - b.top + gapY));
}

MKLabelBox markBox(const MKSettledLabel& label, size_t step) {
    const double radius = label.markRadius[step];
    return {-radius, -radius, radius, radius};
}

// The largest scale, of those in `visible`, at which two labels meet; 0 when they never do.
double lastMeeting(const MKSettledLabel& a, const MKSettledLabel& b, double dx, double dy, Range visible) {
    static const std::array<double, MKLabelSteps.size() + 1> stepScales = [] {
        std::array<double, MKLabelSteps.size() + 1> scales;
        std::transform(MKLabelSteps.begin(), MKLabelSteps.end(), scales.begin(), scaleAt);
        scales.back() = HUGE_VAL;
        return scales;
    }();
    double last = 0;
    for (size_t step = 0; step < MKLabelSteps.size(); ++step) {
        const Range inStep = common(visible, {stepScales[step], stepScales[step + 1]});
        if (inStep.first >= inStep.last) {
            continue;
        }
        const auto meet = [&](const MKLabelBox& one, const MKLabelBox& other) {
            const Range range = common(inStep, scalesOfMeeting(one, other, dx, dy));
            if (range.first < range.last) {
                last = std::max(last, range.last);
            }
        };
        meet(a.text[step], b.text[step]);
        if (a.markRadius[step] > 0) {
            meet(markBox(a, step), b.text[step]);
        }
        if (b.markRadius[step] > 0) {
            meet(a.text[step], markBox(b, step));
        }
        if (a.markRadius[step] > 0 && b.markRadius[step] > 0) {
            meet(markBox(a, step), markBox(b, step));
        }
    }
    return last;
}

// The way from one place to the other, round the world by the shorter way.
double shortestAcross(double from, double to) {
    const double dx = to - from;
    return dx > MKWorldSide / 2 ? dx - MKWorldSide : dx < -MKWorldSide / 2 ? dx + MKWorldSide : dx;
}

} // namespace

MKLabelLayout::MKLabelLayout(const BasemapNames& names)
    : _names(names), _buckets(size_t{1} << (2 * bucketBits)), _settled(names.all().size()) {
    for (size_t i = 0; i < names.all().size(); ++i) {
        const BasemapName& name = names.all()[i];
        _buckets[bucketOf(name.x, name.y)].push_back(static_cast<uint32_t>(i));
        if (name.kind == BasemapNameKind::City && (name.isCapital || name.size >= largeCity) &&
            name.minimumZoom < latestCity) {
            _largeCities.push_back({i, scaleAt(name.minimumZoom)});
        }
    }
}

MKLabelLayout& MKLabelLayout::shared(const BasemapNames& names) {
    static auto* const layouts = new std::map<const BasemapNames*, std::unique_ptr<MKLabelLayout>>;
    std::unique_ptr<MKLabelLayout>& layout = (*layouts)[&names];
    if (!layout) {
        layout = std::make_unique<MKLabelLayout>(names);
    }
    return *layout;
}

size_t MKLabelLayout::bucketOf(double x, double y) const {
    constexpr double side = MKWorldSide / (1 << bucketBits);
    const auto index = [](double value) {
        return static_cast<size_t>(std::clamp(std::floor(value / side), 0.0, (1 << bucketBits) - 1.0));
    };
    return index(y) << bucketBits | index(x);
}

std::vector<size_t> MKLabelLayout::namesIn(double minX, double minY, double maxX, double maxY, double zoom) const {
    std::vector<size_t> found;
    const size_t first = bucketOf(minX, minY), last = bucketOf(maxX, maxY);
    constexpr size_t mask = (size_t{1} << bucketBits) - 1;
    for (size_t row = first >> bucketBits; row <= last >> bucketBits; ++row) {
        for (size_t column = first & mask; column <= (last & mask); ++column) {
            for (const uint32_t index : _buckets[row << bucketBits | column]) {
                const BasemapName& name = _names.all()[index];
                if (name.minimumZoom > zoom) {
                    break; // names come in the order of their zooms
                }
                if (name.x >= minX && name.x <= maxX && name.y >= minY && name.y <= maxY) {
                    found.push_back(index);
                }
            }
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<size_t> MKLabelLayout::moreImportantNear(size_t index) const {
    const BasemapName& name = _names.all()[index];
    const double reach = 2 * farthest / scaleAt(name.minimumZoom);
    std::vector<size_t> found;
    for (const double shift : {-MKWorldSide, 0.0, MKWorldSide}) {
        const double minX = std::max(name.x - reach + shift, 0.0), maxX = std::min(name.x + reach + shift, MKWorldSide);
        if (minX > maxX) {
            continue;
        }
        for (const size_t other : namesIn(minX, name.y - reach, maxX, name.y + reach, name.minimumZoom)) {
            if (other < index) {
                found.push_back(other);
            }
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

MKLabelLayout::Places MKLabelLayout::placesOf(const BasemapName& name) {
    MKSettledLabel middle, right, left, above, below;
    for (size_t step = 0; step < MKLabelSteps.size(); ++step) {
        const CGSize size = _writer.measure(_names.text(name), MKLabelFont::forName(name, step));
        // Letters do not fill the height of their line.
        const double halfX = size.width / 2, halfY = size.height / 2 * 0.86;
        const double radius = MKLabelMark::forName(name, step).radius, away = radius + markGap;
        for (MKSettledLabel* label : {&middle, &right, &left, &above, &below}) {
            label->markRadius[step] = radius;
        }
        middle.text[step] = {-halfX, -halfY, halfX, halfY};
        right.text[step] = {away, -halfY, away + size.width, halfY};
        left.text[step] = {-away - size.width, -halfY, -away, halfY};
        above.text[step] = {-halfX, -radius - 2 * halfY, halfX, -radius};
        below.text[step] = {-halfX, radius, halfX, radius + 2 * halfY};
    }
    if (name.kind == BasemapNameKind::City) {
        return {right, left, above, below};
    }
    // A name upon its land may move up and down by its own height, where the land is large enough.
    Places places;
    for (const double lines : {0.0, 0.5, -0.5, 1.0, -1.0, 1.5, -1.5, 2.0, -2.0}) {
        MKSettledLabel& place = places.emplace_back(middle);
        place.firstZoom = MKLabelSteps[0];
        for (size_t step = 0; step < MKLabelSteps.size(); ++step) {
            MKLabelBox& box = place.text[step];
            const double dy = lines * (box.bottom - box.top);
            const double leastZoom = zoomAt(std::abs(dy) / (mostOfExtent * std::max(name.extent, 1)));
            if (leastZoom > MKLabelSteps[step]) {
                place.firstZoom = leastZoom;
            }
            box.top += dy;
            box.bottom += dy;
        }
    }
    return places;
}

double MKLabelLayout::firstZoomOf(size_t index, const MKSettledLabel& label, const std::vector<size_t>& others) {
    const BasemapName& name = _names.all()[index];
    double first = scaleAt(std::max(name.minimumZoom, label.firstZoom));
    for (const size_t other : others) {
        const MKSettledLabel& known = settled(other);
        const Range visible{std::max(first, scaleAt(known.firstZoom)), scaleAt(known.lastZoom)};
        if (visible.first >= visible.last) {
            continue;
        }
        const BasemapName& otherName = _names.all()[other];
        first = std::max(first,
                         lastMeeting(label, known, shortestAcross(name.x, otherName.x), otherName.y - name.y, visible));
    }
    const double zoom = zoomAt(first);
    return zoom >= name.maximumZoom ? never : zoom;
}

const MKLabelLayout::Places& MKLabelLayout::placesOfCity(size_t index) {
    const auto found = _cityPlaces.find(index);
    return found != _cityPlaces.end() ? found->second
                                      : _cityPlaces.emplace(index, placesOf(_names.all()[index])).first->second;
}

std::vector<MKLabelLayout::City> MKLabelLayout::citiesNear(size_t index) {
    const BasemapName& name = _names.all()[index];
    std::vector<City> cities;
    if ((name.kind != BasemapNameKind::Country && name.kind != BasemapNameKind::City) ||
        name.minimumZoom >= latestCity) {
        return cities;
    }
    const double leastScale = scaleAt(name.minimumZoom);
    for (const LargeCity& large : _largeCities) {
        const BasemapName& city = _names.all()[large.index];
        const double reach = farthest / std::max(leastScale, large.leastScale);
        if (large.index > index && city.minimumZoom < name.maximumZoom && std::abs(city.x - name.x) < reach &&
            std::abs(city.y - name.y) < reach) {
            cities.push_back({city, placesOfCity(large.index)});
        }
    }
    return cities;
}

double MKLabelLayout::delayOf(const City& city, const BasemapName& name, const MKSettledLabel& label) {
    const Range visible{scaleAt(std::max(label.firstZoom, city.name.minimumZoom)), scaleAt(label.lastZoom)};
    if (visible.first >= visible.last) {
        return 0;
    }
    double least = HUGE_VAL;
    for (const MKSettledLabel& place : city.places) {
        const double last = lastMeeting(label, place, city.name.x - name.x, city.name.y - name.y, visible);
        if (last == 0) {
            return 0;
        }
        least = std::min(least, zoomAt(last) - city.name.minimumZoom);
    }
    const double weight = (city.name.isCapital ? 1 : 0.3) + (city.name.size > largeCity ? 0.6 : 0);
    return std::min(least, longestDelay) * weight;
}

const MKSettledLabel& MKLabelLayout::settled(size_t index) {
    if (_settled[index]) {
        return *_settled[index];
    }
    const BasemapName& name = _names.all()[index];
    const std::vector<size_t> others = moreImportantNear(index);
    const std::vector<City> cities = citiesNear(index);
    std::unique_ptr<MKSettledLabel> best;
    double leastCost = HUGE_VAL;
    for (MKSettledLabel& place : placesOf(name)) {
        place.lastZoom = name.maximumZoom;
        place.firstZoom = firstZoomOf(index, place, others);
        double cost = std::max(place.firstZoom - name.minimumZoom, 0.0);
        for (const City& city : cities) {
            cost += delayOf(city, name, place);
        }
        if (!best || cost < leastCost - worthMoving) {
            best = std::make_unique<MKSettledLabel>(place);
            leastCost = cost;
        }
        if (leastCost <= 0) {
            break;
        }
    }
    _settled[index] = std::move(best);
    return *_settled[index];
}

} // namespace veyra
