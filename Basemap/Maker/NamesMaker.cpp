#include "Basemap/Maker/NamesMaker.h"

#include "Basemap/Maker/AttributeTable.h"
#include "Basemap/Maker/LabelPlace.h"
#include "Basemap/Maker/ShapefileReader.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <numbers>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>

namespace veyra::basemapMaker {

namespace {

constexpr double worldSide = basemapFormat::worldSide;
constexpr double zoomZeroSide = 256; // points
constexpr double innermostZoom = 24;

// The width of a letter in points, about.
constexpr double letterWidth = 7;

void setPlace(BasemapName& entry, Position position) {
    const double sine = std::sin(position.latitude * std::numbers::pi / 180);
    entry.x = static_cast<std::int32_t>(std::lround((position.longitude + 180) / 360 * worldSide));
    entry.y = static_cast<std::int32_t>(
        std::lround(worldSide * (0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi))));
}

// The zoom at which so many degrees of longitude are so many points wide.
double zoomFor(double degrees, double points) {
    return std::log2(points / (degrees / 360 * zoomZeroSide));
}

// Letters, not bytes.
std::size_t letterCount(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xc0) != 0x80; }));
}

struct Broken {
    std::string text;
    double width; // points, of the longest line
};

// A long name in two lines of about the same length.
Broken brokenInTwo(std::string text) {
    constexpr std::size_t longest = 11; // letters, of a name that stays in one line
    const std::size_t length = letterCount(text);
    std::size_t best = std::string::npos, bestLength = length;
    for (std::size_t at = text.find(' '); length > longest && at != std::string::npos; at = text.find(' ', at + 1)) {
        const std::size_t lineLength = std::max(letterCount(text.substr(0, at)), letterCount(text.substr(at + 1)));
        if (lineLength < bestLength) {
            best = at;
            bestLength = lineLength;
        }
    }
    if (best != std::string::npos) {
        text[best] = '\n';
    }
    return {std::move(text), static_cast<double>(bestLength) * letterWidth};
}

// One line for each word.
Broken brokenAtWords(std::string text) {
    std::replace(text.begin(), text.end(), ' ', '\n');
    std::size_t longest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, letterCount(line));
    }
    return {std::move(text), static_cast<double>(longest) * letterWidth};
}

// By Natural Earth's rank of a place, 0 to 10.
constexpr std::array cityZooms = {2.3, 2.9, 3.4, 3.9, 4.4, 4.9, 5.1, 5.6, 6.4, 6.9, 7.4};

double cityZoom(int rank, double population, bool isCapital) {
    const double zoom = cityZooms.at(static_cast<std::size_t>(std::clamp(rank, 0, 10)));
    // Within a rank the large ones come up to half a zoom before the small ones.
    const double size = std::clamp((std::log10(std::max(population, 1.0)) - 4) / 3, 0.0, 1.0);
    const double settled = zoom + 0.5 * (1 - size);
    // The capitals of very small countries need not come before the large cities of their neighbours.
    const double latest = population > 1e5 ? 4.3 - 0.8 * size : 5.2;
    return isCapital ? std::min(settled, latest) : settled;
}

std::uint8_t citySize(double population) {
    return population > 5e6 ? 3 : population > 1e6 ? 2 : population > 2e5 ? 1 : 0;
}

// Whether a place lies in a shape: inside an odd number of its rings.
bool isWithin(const NamedShape& shape, Position place) {
    bool inside = false;
    for (const std::vector<PositionLine>& polygon : shape.polygons) {
        for (const PositionLine& ring : polygon) {
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const Position &a = ring[i], &b = ring[(i + 1) % ring.size()];
                if ((a.latitude > place.latitude) != (b.latitude > place.latitude)) {
                    const double part = (place.latitude - a.latitude) / (b.latitude - a.latitude);
                    inside ^= place.longitude < a.longitude + part * (b.longitude - a.longitude);
                }
            }
        }
    }
    return inside;
}

// From which zoom on a country is worth naming: large ones and those with many people in cities come first.
double prominenceZoom(double area, double population) {
    const double millions = population / 1e6;
    return 3.45 - 0.8 * (std::log10(std::max(area, 1e-3)) + std::log10(millions + 0.3));
}

std::uint8_t areaSize(double degrees) {
    return degrees > 22 ? 3 : degrees > 9 ? 2 : degrees > 3 ? 1 : 0;
}

} // namespace

void NamesMaker::addCountries(const std::vector<NamedShape>& shapes) {
    // Land of its own, by what the inputs call it, that has not got a seat among the states of the world.
    const std::set<std::string> territories = {"American Samoa",
                                               "Anguilla",
                                               "Aruba",
                                               "Bermuda",
                                               "Br. Indian Ocean Ter.",
                                               "Cayman Is.",
                                               "British Virgin Is.",
                                               "Cook Is.",
                                               "Curaçao",
                                               "Faeroe Is.",
                                               "Falkland Is.",
                                               "Fr. Polynesia",
                                               "Gibraltar",
                                               "Greenland",
                                               "Fr. S. Antarctic Lands",
                                               "Guam",
                                               "Guernsey",
                                               "Hong Kong",
                                               "Jersey",
                                               "Heard I. and McDonald Is.",
                                               "Isle of Man",
                                               "Macao",
                                               "Montserrat",
                                               "N. Cyprus",
                                               "Indian Ocean Ter.",
                                               "N. Mariana Is.",
                                               "New Caledonia",
                                               "Niue",
                                               "Norfolk Island",
                                               "S. Geo. and the Is.",
                                               "Pitcairn Is.",
                                               "Puerto Rico",
                                               "Saint Helena",
                                               "Sint Maarten",
                                               "St. Pierre and Miquelon",
                                               "Somaliland",
                                               "St-Barthélemy",
                                               "St-Martin",
                                               "W. Sahara",
                                               "Turks and Caicos Is.",
                                               "Clipperton I.",
                                               "U.S. Virgin Is.",
                                               "Åland",
                                               "Antarctica",
                                               "Wallis and Futuna Is."};
    constexpr double tiny = 0.5, mostAcross = 90; // degrees
    for (const NamedShape& shape : shapes) {
        const std::optional<std::string> shown = _table.shown(shape.name);
        if (!shown || shape.polygons.empty()) {
            continue;
        }
        const bool isTerritory = territories.contains(shape.name);
        const LabelPlace place = labelPlaceIn(shape.polygons);
        const Broken broken = brokenInTwo(*shown);
        MadeName made{.entry = {}, .text = broken.text, .weight = place.area};
        made.entry.kind = isTerritory ? BasemapNameKind::Territory : BasemapNameKind::Country;
        // How wide the land is, taken all in all: where its name stands it may be narrow.
        const double stretch = 1 / std::cos(place.middle.latitude * std::numbers::pi / 180);
        const double across = std::min(std::sqrt(place.area) * stretch, mostAcross);
        const double room = std::max(place.width, across);
        made.entry.size = areaSize(room);
        // A name may be a good deal wider than its country. The small ones, which have no room at all, wait.
        const double fits = zoomFor(room, 0.33 * broken.width), fitsWell = zoomFor(room, 2 * broken.width);
        const double wanted = std::min(prominenceZoom(place.area, populationIn(shape)), fitsWell);
        const double latest = isTerritory || place.width < tiny ? 6.3 : 5.2;
        made.entry.minimumZoom = std::clamp(std::max(fits, wanted), isTerritory ? 1.8 : 0.8, latest);
        made.entry.maximumZoom = std::max(zoomFor(place.width, 2400), made.entry.minimumZoom + 3);
        made.entry.extent = static_cast<std::int32_t>(across / 360 * worldSide);
        setPlace(made.entry, place.middle);
        _names.push_back(std::move(made));
    }
}

void NamesMaker::addWaters(const std::vector<Water>& waters) {
    for (const Water& water : waters) {
        const Broken broken = water.kind == "ocean" ? brokenAtWords(water.name) : brokenInTwo(water.name);
        MadeName made{.entry = {}, .text = broken.text, .weight = water.width};
        made.entry.kind = water.kind == "ocean"  ? BasemapNameKind::Ocean
                          : water.kind == "lake" ? BasemapNameKind::Lake
                                                 : BasemapNameKind::Sea;
        made.entry.size = areaSize(water.width);
        const bool isOcean = made.entry.kind == BasemapNameKind::Ocean;
        made.entry.minimumZoom = isOcean ? std::max(0.8, zoomFor(water.width, 0.62 * broken.width))
                                         : std::max(1.8, zoomFor(water.width, 0.9 * broken.width));
        made.entry.maximumZoom = isOcean ? 5.5 : std::max(zoomFor(water.width, 2400), made.entry.minimumZoom + 3);
        made.entry.extent = static_cast<std::int32_t>(water.width / 360 * worldSide);
        setPlace(made.entry, water.middle);
        _names.push_back(std::move(made));
    }
}

void NamesMaker::addCities(const std::string& path) {
    const AttributeTable table(path + ".dbf");
    const std::vector<Position> places = readPointShapefile(path + ".shp");
    for (std::size_t i = 0; i < places.size(); ++i) {
        const int record = static_cast<int>(i);
        const std::optional<std::string> shown = _table.shown(table.text(record, "name"));
        const std::string kind = table.text(record, "featurecla");
        if (!shown || kind == "Scientific station" || kind == "Historic place" || std::abs(places[i].latitude) > 85) {
            continue;
        }
        const double population = table.number(record, "pop_max");
        MadeName made{.entry = {}, .text = *shown, .weight = population};
        made.entry.kind = BasemapNameKind::City;
        made.entry.isCapital = table.number(record, "adm0cap") != 0;
        made.entry.size = citySize(population);
        made.entry.minimumZoom =
            cityZoom(static_cast<int>(table.number(record, "scalerank")), population, made.entry.isCapital);
        made.entry.maximumZoom = innermostZoom;
        setPlace(made.entry, places[i]);
        _names.push_back(std::move(made));
        _cities.push_back({places[i], population});
    }
}

double NamesMaker::populationIn(const NamedShape& country) const {
    double sum = 0;
    for (const City& city : _cities) {
        sum += isWithin(country, city.place) ? city.population : 0;
    }
    return sum;
}

std::vector<MadeName> NamesMaker::finish() {
    const auto order = [](const MadeName& name) {
        return std::tuple(name.entry.minimumZoom, static_cast<int>(name.entry.kind), -name.weight, name.text,
                          name.entry.x);
    };
    for (MadeName& name : _names) {
        // As the file stores it, so that the order is the one that its readers see.
        name.entry.minimumZoom = std::round(name.entry.minimumZoom / basemapFormat::zoomUnit) * basemapFormat::zoomUnit;
    }
    std::sort(_names.begin(), _names.end(), [&](const MadeName& a, const MadeName& b) { return order(a) < order(b); });
    return std::move(_names);
}

} // namespace veyra::basemapMaker
