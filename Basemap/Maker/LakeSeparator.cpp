#include "Basemap/Maker/LakeSeparator.h"

#include <algorithm>

namespace veyra::basemapMaker {

namespace {

// A ring with its bounds, so that most comparisons end early. Refers to the ring.
struct BoundedRing {
    explicit BoundedRing(const PositionRing& source) : ring(&source) {
        const auto [west, east] =
            std::minmax_element(source.positions.begin(), source.positions.end(),
                                [](const Position& a, const Position& b) { return a.longitude < b.longitude; });
        const auto [south, north] =
            std::minmax_element(source.positions.begin(), source.positions.end(),
                                [](const Position& a, const Position& b) { return a.latitude < b.latitude; });
        minimum = {west->longitude, south->latitude};
        maximum = {east->longitude, north->latitude};
    }

    bool contains(const Position& position) const {
        if (position.longitude < minimum.longitude || position.longitude > maximum.longitude ||
            position.latitude < minimum.latitude || position.latitude > maximum.latitude) {
            return false;
        }
        const PositionLine& line = ring->positions;
        bool isInside = false;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const Position& a = line[i];
            const Position& b = line[(i + 1) % line.size()];
            if ((a.latitude > position.latitude) != (b.latitude > position.latitude)) {
                const double along = (position.latitude - a.latitude) / (b.latitude - a.latitude);
                isInside ^= position.longitude < a.longitude + along * (b.longitude - a.longitude);
            }
        }
        return isInside;
    }

    // Rings of one map never cross but may touch, so a vertex or two may lie upon the other ring.
    bool containsMostOf(const BoundedRing& other) const {
        if (other.minimum.longitude < minimum.longitude || other.maximum.longitude > maximum.longitude ||
            other.minimum.latitude < minimum.latitude || other.maximum.latitude > maximum.latitude) {
            return false;
        }
        const PositionLine& line = other.ring->positions;
        const auto inside = std::count_if(line.begin(), line.end(), [&](const Position& p) { return contains(p); });
        return 2 * static_cast<std::size_t>(inside) > line.size();
    }

    bool containsAnyOf(const BoundedRing& other) const {
        const PositionLine& line = other.ring->positions;
        return std::any_of(line.begin(), line.end(), [&](const Position& p) { return contains(p); });
    }

    const PositionRing* ring;
    Position minimum;
    Position maximum;
};

std::vector<BoundedRing> boundedRings(const std::vector<PositionRing>& rings, bool holes) {
    std::vector<BoundedRing> bounded;
    for (const PositionRing& ring : rings) {
        if (ring.isHole == holes && !ring.positions.empty()) {
            bounded.emplace_back(ring);
        }
    }
    return bounded;
}

} // namespace

LandAndLakes separateLakes(const std::vector<PositionRing>& land) {
    const std::vector<BoundedRing> lakes = boundedRings(land, true);
    LandAndLakes separated;
    for (const BoundedRing& lake : lakes) {
        separated.lakes.push_back({lake.ring->positions, false});
    }
    for (const BoundedRing& piece : boundedRings(land, false)) {
        const bool isIsland = std::any_of(lakes.begin(), lakes.end(),
                                          [&](const BoundedRing& lake) { return lake.containsMostOf(piece); });
        if (isIsland) {
            separated.lakes.push_back({piece.ring->positions, true});
        } else {
            separated.land.push_back(*piece.ring);
        }
    }
    return separated;
}

void addForgottenLakes(LandAndLakes& finer, const LandAndLakes& coarser) {
    const std::vector<BoundedRing> knownLakes = boundedRings(finer.lakes, false);
    const std::vector<BoundedRing> land = boundedRings(finer.land, false);
    const std::vector<BoundedRing> islands = boundedRings(coarser.lakes, true);
    std::vector<PositionRing> forgotten;
    for (const BoundedRing& lake : boundedRings(coarser.lakes, false)) {
        const bool isKnown = std::any_of(knownLakes.begin(), knownLakes.end(), [&](const BoundedRing& known) {
            return known.containsAnyOf(lake) || lake.containsAnyOf(known);
        });
        const bool isOnLand = std::any_of(land.begin(), land.end(), [&](const BoundedRing& piece) {
            const PositionLine& shore = lake.ring->positions;
            return std::all_of(shore.begin(), shore.end(), [&](const Position& p) { return piece.contains(p); });
        });
        if (isKnown || !isOnLand) {
            continue;
        }
        forgotten.push_back(*lake.ring);
        for (const BoundedRing& island : islands) {
            if (lake.containsMostOf(island)) {
                forgotten.push_back(*island.ring);
            }
        }
    }
    finer.lakes.insert(finer.lakes.end(), forgotten.begin(), forgotten.end());
}

} // namespace veyra::basemapMaker
