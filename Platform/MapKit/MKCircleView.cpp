#include "Platform/MapKit/MKCircleView.h"

#include "Platform/MapKit/MKOverlayFigure.h"

namespace veyra {

namespace {

class CircleFigure final : public MKOverlayFigure {
public:
    CircleFigure(MKPathStyle style, const MKCircle& circle)
        : MKOverlayFigure(std::move(style), circle.boundingMapRect()), _center(circle.centerMapPoint()),
          _radius(circle.mapRadius()) {}

    size_t vertexCount() const override { return 100; }
    void trace(const MKOutlinePlace& place, MKOutline& outline) const override {
        outline.isClosed = true;
        outline.traceCircle(_center, _radius, place);
    }

private:
    const MKMapPoint _center;
    const double _radius;
};

} // namespace

Class MKCircleView::classObject() {
    static auto* const cls = new ClassObject("MKCircleView", MKOverlayPathView::classObject(), {});
    return cls;
}

std::shared_ptr<MKCircleView> MKCircleView::initWithCircle(const std::shared_ptr<MKCircle>& circle) {
    auto view = makeFor<MKCircleView>(circle);
    view->_circle = circle;
    return view;
}

std::shared_ptr<const MKOverlayFigure> MKCircleView::figure() const {
    return std::make_shared<CircleFigure>(style(), *_circle);
}

} // namespace veyra
