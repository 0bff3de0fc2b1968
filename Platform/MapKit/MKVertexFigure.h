// The figure of a shape that is a list of vertices. Immutable; any thread.
#pragma once

#include "Platform/MapKit/MKOverlayFigure.h"

namespace veyra {

class MKVertexFigure final : public MKOverlayFigure {
public:
    enum class Kind { Line, Ring };
    /// A line is not filled.
    MKVertexFigure(MKPathStyle style, Kind kind, std::shared_ptr<const MKVertexList> vertices);

    size_t vertexCount() const override { return _vertices->size(); }
    void trace(const MKOutlinePlace& place, MKOutline& outline) const override;

private:
    const Kind _kind;
    const std::shared_ptr<const MKVertexList> _vertices;
};

} // namespace veyra
