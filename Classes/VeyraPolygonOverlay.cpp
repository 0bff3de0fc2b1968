#include "Classes/VeyraPolygonOverlay.h"

#include "Classes/VeyraConstants.h"
#include "Classes/VeyraOverlayVertices.h"
#include "Platform/MapKit/MKPolygonView.h"

namespace veyra {

Class VeyraPolygonOverlay::classObject() {
    static Class cls = new ClassObject("VeyraPolygonOverlay", MKPolygon::classObject(), {});
    return cls;
}

std::shared_ptr<VeyraPolygonOverlay> VeyraPolygonOverlay::polygonOverlayForWebScriptObject(const id& object) {
    auto vertices = VerticesFromWebScriptObject(object, "Constructing polygon");
    if (!vertices)
        return nullptr;
    const auto script = object.as<WebScriptObject>();
    auto polygon = std::make_shared<VeyraPolygonOverlay>(std::move(*vertices));
    polygon->setIdentifier(script->valueForKey(kOstrelOverlayId));
    polygon->setPathOptions(PathOptionsFromWebScriptObject(*script));
    return polygon;
}

std::shared_ptr<MKOverlayPathView> VeyraPolygonOverlay::overlayView() {
    auto view = MKPolygonView::initWithPolygon(std::static_pointer_cast<VeyraPolygonOverlay>(shared_from_this()));
    VeyraUpdateOverlayViewWithPathOptions(*view, *pathOptions());
    return view;
}

} // namespace veyra
