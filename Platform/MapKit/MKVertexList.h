// The vertices of a shape on the flat world, with what fast drawing at every scale needs: a byte of importance for each
// vertex and bounds for each block of them. 17.2 bytes a vertex. Filled on one thread; immutable and free to share once
// it is complete.
//
// A vertex's importance is how many levels of detail it matters at (MKVertexRanker): at a coarse scale only the few
// important ones are drawn. Long lists are ranked in runs, on several threads at a time; each run is ranked as a line
// of its own, so the first vertex of a run is drawn at every scale.
#pragma once

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKTrivialArray.h"

#include <cstdint>
#include <limits>
#include <optional>

namespace veyra {

class MKVertexRanker;

class MKVertexList {
public:
    /// The most vertices that a list takes.
    static constexpr size_t maximumSize = size_t{1} << 27;
    /// Vertices in a block, and in a run.
    static constexpr size_t blockSize = 128, runSize = 256 * blockSize;

    /// The extent of a block, rounded outwards; empty (least > greatest) when none of its vertices has a place.
    struct BlockBounds {
        float minX, minY, maxX, maxY;
    };

    MKVertexList() = default;
    explicit MKVertexList(std::span<const CLLocationCoordinate2D> coordinates);
    MKVertexList(MKVertexList&&) = default;
    MKVertexList& operator=(MKVertexList&&) = default;

    /// Appends coordinates. One that is not finite counts but has no place. Throws std::bad_alloc when there is no
    /// memory or the list is full.
    void append(std::span<const CLLocationCoordinate2D> coordinates);
    void append(CLLocationCoordinate2D coordinate) { append({&coordinate, 1}); }
    /// No vertex comes any more: projects and ranks those that have come. All that follows is for a complete list.
    /// Throws std::bad_alloc.
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
    /// What is found out about a run of vertices.
    struct Run {
        double minX = std::numeric_limits<double>::infinity(), minY = minX, maxX = -minX, maxY = -minX;
        std::optional<size_t> first, last; ///< with a place
        void add(MKMapPoint point);
        void add(const Run& next);
    };
    Run completeRun(size_t begin, size_t end);
    Run completeBlock(size_t begin, size_t end, MKVertexRanker& ranker);

    MKTrivialArray<MKMapPoint> _points; // degrees until the list is complete: x is the longitude
    MKTrivialArray<uint8_t> _importances;
    MKTrivialArray<BlockBounds> _blocks;
    Run _whole;
};

} // namespace veyra
