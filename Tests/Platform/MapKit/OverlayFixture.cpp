#include "Tests/Platform/MapKit/OverlayFixture.h"

#include <cairo.h>

namespace veyra {

std::shared_ptr<MKOverlayView> OverlayDelegate::mapViewViewForOverlay(MKMapView&, const Overlay& overlay) {
    asked.push_back(overlay);
    if (onAsked) {
        onAsked(overlay);
    }
    const auto found = views.find(overlay.get());
    return found == views.end() ? nullptr : found->second;
}

void OverlayDelegate::mapViewDidAddOverlayViews(MKMapView&, const std::vector<std::shared_ptr<MKOverlayView>>& added) {
    std::vector<Overlay> overlays;
    for (const auto& view : added) {
        overlays.push_back(view->overlay());
    }
    reported.push_back(std::move(overlays));
}

OverlayTest::OverlayTest() : overlayDelegate(std::make_shared<OverlayDelegate>()) {
    map->setTileSource(std::make_shared<PaperSource>());
    map->setDelegate(overlayDelegate);
}

std::shared_ptr<UIColor> OverlayTest::color(uint32_t rgb, double alpha) {
    return UIColor::initWithRedGreenBlueAlpha((rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0,
                                              alpha);
}

OverlayTest::Line OverlayTest::line(const std::vector<CLLocationCoordinate2D>& coordinates) {
    const auto overlay = MKPolyline::polylineWithCoordinates(coordinates);
    const auto view = MKPolylineView::initWithPolyline(overlay);
    view->setStrokeColor(color(0xff0000));
    view->setLineWidth(4);
    overlayDelegate->views[overlay.get()] = view;
    return {overlay, view};
}

OverlayTest::Area OverlayTest::area(const std::vector<CLLocationCoordinate2D>& coordinates) {
    const auto overlay = MKPolygon::polygonWithCoordinates(coordinates);
    const auto view = MKPolygonView::initWithPolygon(overlay);
    view->setStrokeColor(color(0xff0000));
    view->setLineWidth(4);
    overlayDelegate->views[overlay.get()] = view;
    return {overlay, view};
}

OverlayTest::Disc OverlayTest::disc(CLLocationCoordinate2D center, double radius) {
    const auto overlay = MKCircle::circleWithCenterCoordinateRadius(center, radius);
    const auto view = MKCircleView::initWithCircle(overlay);
    view->setStrokeColor(color(0xff0000));
    view->setLineWidth(4);
    overlayDelegate->views[overlay.get()] = view;
    return {overlay, view};
}

OverlayTest::Area OverlayTest::square(CLLocationCoordinate2D northWest, double side,
                                      const std::shared_ptr<UIColor>& fill) {
    const double north = northWest.latitude, west = northWest.longitude;
    const auto made = area({{north, west}, {north, west + side}, {north - side, west + side}, {north - side, west}});
    made.view->setStrokeColor(nullptr);
    made.view->setFillColor(fill);
    return made;
}

std::vector<uint32_t> OverlayTest::pixels() const {
    std::vector<uint32_t> all;
    for (int y = 0; y < window->pixelHeight(); ++y) {
        for (int x = 0; x < window->pixelWidth(); ++x) {
            all.push_back(pixelAt(x, y));
        }
    }
    return all;
}

} // namespace veyra
