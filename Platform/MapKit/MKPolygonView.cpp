#include "Platform/MapKit/MKPolygonView.h"

#include "Platform/MapKit/MKVertexFigure.h"

namespace veyra {

Class MKPolygonView::classObject() {
    static auto* const cls = new ClassObject("MKPolygonView", MKOverlayPathView::classObject(), {});
    return cls;
}

std::shared_ptr<MKPolygonView> MKPolygonView::initWithPolygon(const std::shared_ptr<MKPolygon>& polygon) {
    auto view = makeFor<MKPolygonView>(polygon);
    view->_polygon = polygon;
    return view;
}

std::shared_ptr<const MKOverlayFigure> MKPolygonView::figure() const {
    return std::make_shared<MKVertexFigure>(style(), MKVertexFigure::Kind::Ring, _polygon->vertices());
}

} // namespace veyra
