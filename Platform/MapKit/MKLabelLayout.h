// Where the names of a base map go, and from which zoom on each is shown. Main queue only; shared by the maps that show
// those names.
//
// Every name has one range of zooms in which it is shown wherever the map looks, and one place beside its city or upon
// its land, chosen once. Both follow from the names that matter more alone, but that names make room for large cities
// and capitals that matter less: a name is shown from the zoom on beyond which it never again meets one that matters
// more. So nothing flickers: moving the map changes nothing, and enlarging it only ever adds names, until those of
// countries and seas have grown out of their land.
//
// Names are settled when they are first asked for, together with those that matter more and lie near.
#pragma once

#include "Platform/MapKit/MKLabelWriter.h"

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace veyra {

/// A rectangle in points, relative to where the name's place is on the screen.
struct MKLabelBox {
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// What is known of a name once it is settled.
struct MKSettledLabel {
    double firstZoom = 0; ///< above the last one when it is never shown
    double lastZoom = 0;
    std::array<MKLabelBox, MKLabelSteps.size()> text; ///< by step
    std::array<double, MKLabelSteps.size()> markRadius{};

    bool isShownAt(double zoom) const { return firstZoom <= zoom && zoom <= lastZoom; }
};

class MKLabelLayout {
public:
    /// The room that is kept between two names, in points.
    static constexpr double gapX = 4, gapY = 1.5;

    /// The names outlive the object.
    explicit MKLabelLayout(const BasemapNames& names);
    /// The layout of those names that all maps share, for names that are never destroyed.
    static MKLabelLayout& shared(const BasemapNames& names);

    const BasemapNames& names() const { return _names; }
    /// Indexes of the names whose place lies in a rectangle of map points within the world and which may be shown at a
    /// zoom, from the most important to the least.
    std::vector<size_t> namesIn(double minX, double minY, double maxX, double maxY, double zoom) const;
    bool isSettled(size_t index) const { return _settled[index] != nullptr; }
    const MKSettledLabel& settled(size_t index);
    /// No name reaches further than this from its place, in points.
    static constexpr double farthest = 190;

private:
    using Places = std::vector<MKSettledLabel>; // that a name may go to, the best first
    /// Their first zoom is the least at which the place itself will do.
    Places placesOf(const BasemapName& name);
    /// From which zoom on the label never meets one of those that matter more.
    double firstZoomOf(size_t index, const MKSettledLabel& label, const std::vector<size_t>& others);
    std::vector<size_t> moreImportantNear(size_t index) const;
    /// A city that a name which matters more may keep waiting.
    struct City {
        const BasemapName& name;
        const Places& places;
    };
    struct LargeCity {
        size_t index;
        double leastScale; ///< at which it may be shown
    };
    const Places& placesOfCity(size_t index);
    std::vector<City> citiesNear(size_t index);
    /// By how many zooms, weighted, a name keeps a city waiting, wherever beside its mark the city's own name goes.
    static double delayOf(const City& city, const BasemapName& name, const MKSettledLabel& label);
    size_t bucketOf(double x, double y) const;

    static constexpr int bucketBits = 6; // the world has 2^6 buckets a side
    const BasemapNames& _names;
    MKLabelWriter _writer;
    std::vector<std::vector<uint32_t>> _buckets; // names by place, most important first
    std::vector<std::unique_ptr<MKSettledLabel>> _settled;
    std::vector<LargeCity> _largeCities;            // for which room is made, most important first
    std::unordered_map<size_t, Places> _cityPlaces; // of those
};

} // namespace veyra
