#include "Classes/VeyraPolylineOverlay.h"

#include "Classes/VeyraConstants.h"
#include "Classes/VeyraOverlayVertices.h"
#include "Platform/MapKit/MKPolylineView.h"

namespace veyra {

Class VeyraPolylineOverlay::classObject() {
    static Class cls = new ClassObject("VeyraPolylineOverlay", MKPolyline::classObject(), {});
    return cls;
}

std::shared_ptr<VeyraPolylineOverlay> VeyraPolylineOverlay::polylineOverlayForWebScriptObject(const id& object) {
    auto vertices = VerticesFromWebScriptObject(object, "Constructing polyline");
    if (!vertices)
        return nullptr;
    const auto script = object.as<WebScriptObject>();
    auto polyline = std::make_shared<VeyraPolylineOverlay>(std::move(*vertices));
    polyline->setIdentifier(script->valueForKey(kOstrelOverlayId));
    polyline->setPathOptions(PathOptionsFromWebScriptObject(*script));
    return polyline;
}

std::shared_ptr<MKOverlayPathView> VeyraPolylineOverlay::overlayView() {
    auto view = MKPolylineView::initWithPolyline(std::static_pointer_cast<VeyraPolylineOverlay>(shared_from_this()));
    VeyraUpdateOverlayViewWithPathOptions(*view, *pathOptions());
    return view;
}

} // namespace veyra
