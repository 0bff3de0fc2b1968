#include "Platform/MapKit/MKPointIndex.h"

namespace veyra {

namespace {

constexpr size_t leafCapacity = 64;
// Where a leaf is no longer split, as its points may all be one: squares of 16 map points, some 2 metres.
constexpr double smallestSquare = 16;

} // namespace

void MKPointIndex::clear() {
    _nodes.assign(1, Node());
    _places.clear();
    _count = 0;
}

void MKPointIndex::insert(uint32_t number, MKMapPoint point) {
    if (_places.size() <= number) {
        _places.resize(size_t{number} + 1);
    }
    ++_count;
    uint32_t node = 0;
    MKMapRect square = MKMapRectWorld;
    for (;;) {
        if (_nodes[node].firstChild == 0) {
            if (_nodes[node].entries.size() < leafCapacity || square.size.width <= smallestSquare) {
                put(node, {point, number});
                return;
            }
            split(node, square);
        }
        const unsigned which = quarterOf(square, point);
        node = _nodes[node].firstChild + which;
        square = quarter(square, which);
    }
}

void MKPointIndex::put(uint32_t node, const Entry& entry) {
    auto& entries = _nodes[node].entries;
    _places[entry.number] = {node, static_cast<uint32_t>(entries.size())};
    entries.push_back(entry);
}

void MKPointIndex::split(uint32_t node, const MKMapRect& square) {
    const auto firstChild = static_cast<uint32_t>(_nodes.size());
    _nodes.resize(_nodes.size() + 4);
    const std::vector<Entry> entries = std::move(_nodes[node].entries);
    _nodes[node] = {firstChild, {}};
    for (const Entry& entry : entries) {
        put(firstChild + quarterOf(square, entry.point), entry);
    }
}

void MKPointIndex::remove(uint32_t number) {
    if (--_count == 0) {
        clear();
        return;
    }
    const Place place = _places[number];
    auto& entries = _nodes[place.node].entries;
    entries[place.position] = entries.back();
    _places[entries[place.position].number].position = place.position;
    entries.pop_back();
}

} // namespace veyra
