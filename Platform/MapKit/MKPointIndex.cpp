#include "Platform/MapKit/MKPointIndex.h"

namespace veyra {

namespace {

constexpr size_t leafCapacity = 64;
// Where a leaf is no longer split, as its points may all be one: squares of 16 map points, some 2 metres.
constexpr double smallestSquare = 16;

} // namespace

void MKPointIndex::insert(uint32_t number, MKMapPoint point) {
    if (_places.size() <= number) {
        _places.resize(size_t{number} + 1);
        _points.resize(size_t{number} + 1);
    }
    _points[number] = point;
    ++_count;
    uint32_t node = 0;
    MKMapRect square = MKMapRectWorld;
    for (;;) {
        if (_nodes[node].firstChild == 0) {
            if (_nodes[node].numbers.size() < leafCapacity || square.size.width <= smallestSquare) {
                put(node, number);
                return;
            }
            split(node, square);
        }
        const unsigned which = quarterOf(square, point);
        node = _nodes[node].firstChild + which;
        square = quarter(square, which);
    }
}

void MKPointIndex::put(uint32_t node, uint32_t number) {
    auto& numbers = _nodes[node].numbers;
    _places[number] = {node, static_cast<uint32_t>(numbers.size())};
    numbers.push_back(number);
}

void MKPointIndex::split(uint32_t node, const MKMapRect& square) {
    const auto firstChild = static_cast<uint32_t>(_nodes.size());
    _nodes.resize(_nodes.size() + 4);
    const std::vector<uint32_t> numbers = std::move(_nodes[node].numbers);
    _nodes[node] = {firstChild, {}};
    for (const uint32_t number : numbers) {
        put(firstChild + quarterOf(square, _points[number]), number);
    }
}

void MKPointIndex::remove(uint32_t number) {
    if (--_count == 0) {
        _nodes = std::vector<Node>(1);
        return;
    }
    const Place place = _places[number];
    auto& numbers = _nodes[place.node].numbers;
    numbers[place.position] = numbers.back();
    _places[numbers[place.position]].position = place.position;
    numbers.pop_back();
}

} // namespace veyra
