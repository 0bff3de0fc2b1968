// What stands on the map without belonging to the world: the scale bar and whose data are shown.
#include "Platform/MapKit/MKAttributionView.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKScaleBar.h"
#include "Platform/MapKit/MKTileLayer.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veyra {

namespace {

constexpr double furnitureMargin = 6;                        // points, to the map's edges
constexpr double longestScaleBar = 120;                      // points
constexpr double leastWidthForScale = 160, leastHeight = 80; // points; of a map with a scale bar

double longestScaleBarIn(CGSize viewSize) {
    return std::min(longestScaleBar, viewSize.width / 4);
}

/// Metres on the ground, along the parallel on the ellipsoid (WGS84), that a map point covers.
double metersEastPerMapPoint(double latitude) {
    constexpr double equatorialRadius = 6378137, eccentricitySquared = 6.69437999014131699613723354004e-3;
    const double angle = latitude * std::numbers::pi / 180;
    const double sine = std::sin(angle);
    return equatorialRadius * std::cos(angle) / std::sqrt(1 - eccentricitySquared * sine * sine) * 2 *
           std::numbers::pi / MKWorldSide;
}

} // namespace

void MKMapView::addFurniture() {
    _scaleBar = UIView::make<MKScaleBar>({{0, 0}, {0, 0}});
    _attributionView = UIView::make<MKAttributionView>({{0, 0}, {0, 0}});
    _scaleBar->setHidden(true);
    _attributionView->setHidden(true);
    // Under everything else that is added to the map.
    insertSubviewAtIndex(_scaleBar, 0);
    insertSubviewAtIndex(_attributionView, 0);
}

void MKMapView::setShowsScale(bool shows) {
    _showsScale = shows;
    layOutFurniture();
}

void MKMapView::setShowsAttribution(bool shows) {
    _showsAttribution = shows;
    layOutFurniture();
}

void MKMapView::layOutFurniture() {
    if (!hasLayout()) {
        return;
    }
    const std::vector<CGRect> areasBefore = furnitureAreas();
    const bool hasScale = _showsScale && _viewSize.width >= leastWidthForScale && _viewSize.height >= leastHeight;
    _scaleBar->setHidden(!hasScale);
    if (hasScale) {
        const double latitude = MKCoordinateForMapPoint(_camera.center).latitude;
        _scaleBar->setScale(
            MKScale::fitting(metersEastPerMapPoint(latitude) / _camera.scale, longestScaleBarIn(_viewSize)));
        _scaleBar->setFrame(
            {{furnitureMargin, _viewSize.height - furnitureMargin - MKScaleBar::height}, _scaleBar->frame().size});
    }
    const double left = hasScale ? longestScaleBar + 3 * furnitureMargin : furnitureMargin;
    _attributionView->setAttribution(_showsAttribution ? _tiles->source().attribution(_mapType) : MKTileAttribution(),
                                     _viewSize.width - left - furnitureMargin);
    const CGSize size = _attributionView->frame().size;
    _attributionView->setFrame(
        {{_viewSize.width - furnitureMargin - size.width, _viewSize.height - furnitureMargin - size.height}, size});
    if (furnitureAreas() != areasBefore) {
        setNeedsDisplay(); // names keep out of them
    }
    publishCaption();
}

void MKMapView::chooseFurnitureInk(UIUserInterfaceStyle style) {
    const bool isDark =
        _mapType != MKMapTypeStandard || (style == UIUserInterfaceStyleDark && _tiles->source().hasDarkPicture());
    const MKQuietInk ink = isDark ? MKQuietInk::Light : MKQuietInk::Dark;
    _scaleBar->setInk(ink);
    _attributionView->setInk(ink);
}

std::vector<CGRect> MKMapView::furnitureAreas() const {
    std::vector<CGRect> areas;
    if (!_scaleBar->isHidden()) {
        // As wide as it ever becomes: names would come and go with its width while the map moves.
        areas.push_back({{furnitureMargin, _viewSize.height - furnitureMargin - MKScaleBar::height},
                         {longestScaleBarIn(_viewSize) + furnitureMargin, MKScaleBar::height}});
    }
    if (!_attributionView->isHidden()) {
        areas.push_back(_attributionView->frame());
    }
    return areas;
}

// What is painted on the map is nothing to those who do not see it: the window tells them.
void MKMapView::publishCaption() {
    if (const auto window = this->window()) {
        const MKTileAttribution& attribution = _attributionView->attribution();
        const CGRect& frame = _attributionView->frame();
        window->setCaption({attribution.text, attribution.url, {convertPointToWindow(frame.origin), frame.size}});
    }
}

} // namespace veyra
