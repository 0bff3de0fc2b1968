// The vertices of a shape on the flat world, with what fast drawing at every scale needs: a byte of importance for each
// vertex and bounds for each block of them. 17.2 bytes a vertex. Built on one thread; immutable and free to share once
// it is complete.
//
// A vertex's importance is how many levels of detail it matters at (MKVertexRanker): at a coarse scale only the few
// important ones are drawn.
#pragma once

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKTrivialArray.h"
#include "Platform/MapKit/MKVertexRanker.h"

#include <cstdint>
#include <limits>
#include <optional>

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

    /// Projects coordinates and appends them. A coordinate that is not finite counts but has no place. Throws
    /// std::bad_alloc when there is no memory or the list is full.
    void append(std::span<const CLLocationCoordinate2D> coordinates);
    void append(CLLocationCoordinate2D coordinate) { append({&coordinate, 1}); }
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

    /// The least importance of the vertices to draw so that those left out are less than `tolerance` map points, on
    /// either axis, from one that is drawn.
    static uint8_t leastImportance(double tolerance);

private:
    /// Extents in the course of being found out.
    struct Extent {
        double minX = std::numeric_limits<double>::infinity(), minY = minX, maxX = -minX, maxY = -minX;
        void add(MKMapPoint point);
        void add(const Extent& other);
    };
    void appendToBlock(std::span<const CLLocationCoordinate2D> coordinates);
    void completeBlock();

    MKTrivialArray<MKMapPoint> _points;
    MKTrivialArray<uint8_t> _importances;
    MKTrivialArray<BlockBounds> _blocks;
    Extent _extent, _blockExtent; // of the complete blocks, and of the one that is growing
    MKVertexRanker _ranker;
    std::optional<size_t> _last; // with a place
};

} // namespace veyra
