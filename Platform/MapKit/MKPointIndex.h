// Finds those of many points that lie in a rectangle: a quadtree over the world whose leaves hold up to 64 points. What
// a search costs goes by what it finds, however many points there are and however they crowd. Main queue only.
#pragma once

#include "Platform/Foundation/BlockArray.h"
#include "Platform/MapKit/MKGeometry.h"

#include <cstdint>

namespace veyra {

class MKPointIndex {
public:
    MKPointIndex() : _nodes(1) {}

    /// Adds a point of the world, x and y in [0, MKWorldSide], under a number that is not in use.
    void insert(uint32_t number, MKMapPoint point);
    /// Takes the point of that number out.
    void remove(uint32_t number);
    /// The point of a number, or the last one that it had.
    MKMapPoint pointOf(uint32_t number) const { return _points[number]; }

    /// Calls `found` with the number of every point in the rectangle (edges included), in no particular order. The
    /// index must not change meanwhile.
    template <class Found>
    void search(const MKMapRect& rect, const Found& found) const {
        search(0, MKMapRectWorld, rect, found);
    }

private:
    struct Node {
        uint32_t firstChild = 0; // of four; 0: a leaf
        std::vector<uint32_t> numbers;
    };
    struct Place {
        uint32_t node, position;
    };

    static bool contains(const MKMapRect& rect, MKMapPoint point) {
        return point.x >= rect.origin.x && point.y >= rect.origin.y && point.x <= MKMapRectGetMaxX(rect) &&
               point.y <= MKMapRectGetMaxY(rect);
    }
    static MKMapRect quarter(const MKMapRect& square, unsigned which) {
        const double half = square.size.width / 2;
        return {{square.origin.x + (which & 1 ? half : 0), square.origin.y + (which & 2 ? half : 0)}, {half, half}};
    }
    static unsigned quarterOf(const MKMapRect& square, MKMapPoint point) {
        const double half = square.size.width / 2;
        return (point.x >= square.origin.x + half ? 1U : 0U) | (point.y >= square.origin.y + half ? 2U : 0U);
    }
    void put(uint32_t node, uint32_t number);
    void split(uint32_t node, const MKMapRect& square);

    template <class Found>
    void search(uint32_t index, const MKMapRect& square, const MKMapRect& rect, const Found& found) const {
        const Node& node = _nodes[index];
        if (node.firstChild != 0) {
            for (unsigned which = 0; which < 4; ++which) {
                const MKMapRect part = quarter(square, which);
                if (part.origin.x <= MKMapRectGetMaxX(rect) && MKMapRectGetMaxX(part) >= rect.origin.x &&
                    part.origin.y <= MKMapRectGetMaxY(rect) && MKMapRectGetMaxY(part) >= rect.origin.y) {
                    search(node.firstChild + which, part, rect, found);
                }
            }
            return;
        }
        for (const uint32_t number : node.numbers) {
            if (contains(rect, _points[number])) {
                found(number);
            }
        }
    }

    std::vector<Node> _nodes;
    BlockArray<MKMapPoint> _points; // by number
    BlockArray<Place> _places;      // by number
    size_t _count = 0;
};

} // namespace veyra
