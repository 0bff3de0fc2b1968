#include "Platform/MapKit/MKPolylineView.h"

#include "Platform/MapKit/MKVertexFigure.h"

namespace veyra {

Class MKPolylineView::classObject() {
    static auto* const cls = new ClassObject("MKPolylineView", MKOverlayPathView::classObject(), {});
    return cls;
}

std::shared_ptr<MKPolylineView> MKPolylineView::initWithPolyline(const std::shared_ptr<MKPolyline>& polyline) {
    auto view = makeFor<MKPolylineView>(polyline);
    view->_polyline = polyline;
    return view;
}

std::shared_ptr<const MKOverlayFigure> MKPolylineView::figure() const {
    return std::make_shared<MKVertexFigure>(style(), MKVertexFigure::Kind::Line, _polyline->vertices());
}

} // namespace veyra
