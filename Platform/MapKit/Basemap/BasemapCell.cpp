#include "Platform/MapKit/Basemap/BasemapCell.h"

#include <algorithm>

namespace veyra {

void BasemapBounds::include(BasemapPoint point) {
    minX = std::min(minX, point.x);
    minY = std::min(minY, point.y);
    maxX = std::max(maxX, point.x);
    maxY = std::max(maxY, point.y);
}

void BasemapBounds::include(const BasemapBounds& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
}

std::span<const BasemapPoint> BasemapShapes::part(std::size_t index) const {
    const std::size_t first = partStarts[index];
    const std::size_t end = index + 1 < partStarts.size() ? partStarts[index + 1] : points.size();
    return std::span(points).subspan(first, end - first);
}

void BasemapShapes::finishPart(std::size_t first) {
    BasemapBounds partBound;
    for (std::size_t i = first; i < points.size(); ++i) {
        partBound.include(points[i]);
    }
    partStarts.push_back(static_cast<std::uint32_t>(first));
    partBounds.push_back(partBound);
    bounds.include(partBound);
}

std::size_t BasemapCell::byteSize() const {
    std::size_t size = sizeof(*this);
    for (const BasemapShapes& shape : layers) {
        size += shape.points.capacity() * sizeof(BasemapPoint);
        size += shape.partStarts.capacity() * sizeof(std::uint32_t);
        size += shape.partBounds.capacity() * sizeof(BasemapBounds);
    }
    return size;
}

} // namespace veyra
