// The vertices of a shape on the flat world, with what fast drawing at every scale needs: a byte of importance for each
// vertex and bounds for each block of them. 17.2 bytes a vertex. Built on one thread; immutable and free to share once
// it is complete.
//
// Importance: the world is divided into square cells, at every level twice as large as at the one below. A vertex
// matters at a level when it lies in another cell than the vertex before it. So the highest level at which it matters
// follows from the highest bit in which the two places differ, whatever comes before and after; a line drawn through
// the vertices that matter is nowhere further from the true one than the diagonal of a cell.
#pragma once

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKTrivialArray.h"

#include <cstdint>

namespace veyra {

class MKVertexList {
public:
    /// The most vertices that a list takes.
    static constexpr size_t maximumSize = size_t{1} << 27;
    /// Vertices in a block.
    static constexpr size_t blockSize = 128;

    /// The extent of a block, rounded outwards; empty (least > greatest) when none of its vertices has a place.
    struct BlockBounds {
        float minX, minY, maxX, maxY;
    };

    MKVertexList() = default;
    explicit MKVertexList(std::span<const CLLocationCoordinate2D> coordinates);
    MKVertexList(MKVertexList&&) = default;
    MKVertexList& operator=(MKVertexList&&) = default;

    /// Projects a coordinate and appends it. A coordinate that is not finite counts but has no place. Throws
    /// std::bad_alloc when there is no memory or the list is full.
    void append(CLLocationCoordinate2D coordinate);
    /// No vertex comes any more.
    void complete();

    size_t size() const { return _points.size(); }
    std::span<const MKMapPoint> points() const { return _points.values(); }
    /// 0 for a vertex without a place, 255 for the first and the last one with a place.
    std::span<const uint8_t> importances() const { return _importances.values(); }
    std::span<const BlockBounds> blocks() const { return _blocks.values(); }
    /// Null when no vertex has a place.
    MKMapRect bounds() const;
    size_t byteSize() const { return _points.byteSize() + _importances.byteSize() + _blocks.byteSize(); }

    /// The least importance of the vertices to draw so that the line is nowhere further off than `tolerance` map
    /// points.
    static uint8_t leastImportance(double tolerance);

private:
    uint8_t importanceOf(MKMapPoint point);
    void extendBounds(MKMapPoint point);

    MKTrivialArray<MKMapPoint> _points;
    MKTrivialArray<uint8_t> _importances;
    MKTrivialArray<BlockBounds> _blocks;
    double _minX = 0, _minY = 0, _maxX = 0, _maxY = 0;
    bool _hasPlace = false;
    int64_t _lastX = 0, _lastY = 0; // of the last vertex with a place, in the smallest cells
    size_t _last = 0;               // its index
};

} // namespace veyra
