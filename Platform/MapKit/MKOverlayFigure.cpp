#include "Platform/MapKit/MKOverlayFigure.h"

namespace veyra {

MKOverlayFigure::MKOverlayFigure(MKPathStyle style, const MKMapRect& bounds)
    : _style(std::move(style)), _bounds(bounds),
      _middleLatitude(MKMapRectIsNull(bounds)
                          ? 0
                          : MKCoordinateForMapPoint({MKMapRectGetMidX(bounds), MKMapRectGetMidY(bounds)}).latitude) {}

double MKOverlayFigure::lineWidth(double scale, double deviceScale) const {
    return _style.stroke ? _style.widthAt(scale / deviceScale, _middleLatitude) * deviceScale : 0;
}

} // namespace veyra
