#include "Platform/MapKit/MKVertexFigure.h"

namespace veyra {

namespace {

MKPathStyle withoutFill(MKPathStyle style) {
    style.fill.reset();
    return style;
}

} // namespace

MKVertexFigure::MKVertexFigure(MKPathStyle style, Kind kind, std::shared_ptr<const MKVertexList> vertices)
    : MKOverlayFigure(kind == Kind::Ring ? std::move(style) : withoutFill(std::move(style)), vertices->bounds()),
      _kind(kind), _vertices(std::move(vertices)) {}

void MKVertexFigure::trace(const MKOutlinePlace& place, MKOutline& outline) const {
    outline.isClosed = _kind == Kind::Ring;
    outline.traceVertices(*_vertices, place);
}

} // namespace veyra
