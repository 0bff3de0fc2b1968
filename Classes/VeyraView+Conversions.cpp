// Conversions between places and points, from the geometry that the map reported last. Nothing guards against a view or
// a visible rectangle of size zero: what the divisions give is what the script gets.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraPointSO.h"
#include "Classes/VeyraRectSO.h"
#include "Classes/VeyraRegionSO.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"

namespace veyra {

namespace {

/// The argument of a conversion: its check, which reads every key, and the reads that follow.
class ConversionArgument {
public:
    ConversionArgument(Class cls, id caller, std::vector<NSString> keys, const std::vector<NSString>& readsAfterwards)
        : _cls(cls), _caller(std::move(caller)), _keys(std::move(keys)), _plan(joined(_keys, readsAfterwards)) {}
    const ScriptKeyPlan& plan() const { return _plan; }
    bool validate(const id& argument) const { return VeyraValidateWebScriptObject(argument, _cls, _caller, _keys); }

private:
    static std::vector<NSString> joined(std::vector<NSString> first, const std::vector<NSString>& second) {
        first.insert(first.end(), second.begin(), second.end());
        return first;
    }
    const Class _cls;
    const id _caller;
    const std::vector<NSString> _keys;
    const ScriptKeyPlan _plan;
};

} // namespace

id VeyraView::regionThatFits(const id& region) {
    static const auto& checked = *new ConversionArgument(
        VeyraRegionSO::classObject(), callerName("regionThatFits:"),
        {kOstrelRegionLatitude, kOstrelRegionLongitude, kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta},
        {kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta, kOstrelRegionLatitude, kOstrelRegionLongitude});
    const ScriptReadAhead ahead(region, checked.plan());
    if (!checked.validate(region))
        return id();
    MKCoordinateRegion wanted;
    wanted.span.latitudeDelta = geometryValueForKey(*region.object(), kOstrelRegionLatitudeDelta);
    wanted.span.longitudeDelta = geometryValueForKey(*region.object(), kOstrelRegionLongitudeDelta);
    wanted.center.latitude = geometryValueForKey(*region.object(), kOstrelRegionLatitude);
    wanted.center.longitude = geometryValueForKey(*region.object(), kOstrelRegionLongitude);
    const NSLockGuard guard(_lock);
    return id(VeyraRegionSO::withRegion(
        MKMapView::regionThatFitsMapTypeViewSizeRegion(static_cast<MKMapType>(_mapType), _boundsSize, wanted)));
}

id VeyraView::convertCoordinateToPoint(const id& coordinate) {
    static const auto& checked =
        *new ConversionArgument(VeyraLocationCoordinateSO::classObject(), callerName("convertCoordinateToPoint:"),
                                {kOstrelCoordinateLatitude, kOstrelCoordinateLongitude},
                                {kOstrelCoordinateLatitude, kOstrelCoordinateLongitude});
    const ScriptReadAhead ahead(coordinate, checked.plan());
    if (!checked.validate(coordinate))
        return id();
    CLLocationCoordinate2D place;
    place.latitude = geometryValueForKey(*coordinate.object(), kOstrelCoordinateLatitude);
    place.longitude = geometryValueForKey(*coordinate.object(), kOstrelCoordinateLongitude);
    const MKMapPoint p = MKMapPointForCoordinate(place);
    auto point = std::make_shared<VeyraPointSO>();
    const NSLockGuard guard(_lock);
    point->setX(_boundsSize.width * (p.x - _visibleMapRect.origin.x) / _visibleMapRect.size.width);
    point->setY(_boundsSize.height * (p.y - _visibleMapRect.origin.y) / _visibleMapRect.size.height);
    return id(std::move(point));
}

id VeyraView::convertPointToCoordinate(const id& point) {
    static const auto& checked =
        *new ConversionArgument(VeyraPointSO::classObject(), callerName("convertPointToCoordinate:"),
                                {kOstrelPointX, kOstrelPointY}, {kOstrelPointX, kOstrelPointY});
    const ScriptReadAhead ahead(point, checked.plan());
    if (!checked.validate(point))
        return id();
    // Points are taken in single precision. Each is narrowed where it is read: g++ 12 loses the narrowing of a pair of
    // numbers when it vectorises the arithmetic around it.
    const double x = static_cast<double>(geometryFloatForKey(*point.object(), kOstrelPointX));
    const double y = static_cast<double>(geometryFloatForKey(*point.object(), kOstrelPointY));
    MKMapPoint p;
    {
        const NSLockGuard guard(_lock);
        p.x = _visibleMapRect.origin.x + x / _boundsSize.width * _visibleMapRect.size.width;
        p.y = _visibleMapRect.origin.y + y / _boundsSize.height * _visibleMapRect.size.height;
    }
    return id(VeyraLocationCoordinateSO::withCoordinate(MKCoordinateForMapPoint(p)));
}

id VeyraView::convertRegionToRect(const id& region) {
    static const auto& checked = *new ConversionArgument(
        VeyraRegionSO::classObject(), callerName("convertRegionToRect:"),
        {kOstrelRegionLatitude, kOstrelRegionLongitude, kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta},
        {kOstrelRegionLatitude, kOstrelRegionLongitude, kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta});
    const ScriptReadAhead ahead(region, checked.plan());
    if (!checked.validate(region))
        return id();
    MKCoordinateRegion wanted;
    wanted.center.latitude = geometryValueForKey(*region.object(), kOstrelRegionLatitude);
    wanted.center.longitude = geometryValueForKey(*region.object(), kOstrelRegionLongitude);
    wanted.span.latitudeDelta = geometryValueForKey(*region.object(), kOstrelRegionLatitudeDelta);
    wanted.span.longitudeDelta = geometryValueForKey(*region.object(), kOstrelRegionLongitudeDelta);
    CLLocationCoordinate2D northWest, southEast;
    MKCoordinatesForRegion(wanted, &northWest, &southEast);
    const MKMapPoint p1 = MKMapPointForCoordinate(northWest), p2 = MKMapPointForCoordinate(southEast);
    double x1, y1, x2, y2;
    {
        const NSLockGuard guard(_lock);
        const MKMapRect& visible = _visibleMapRect;
        x1 = _boundsSize.width * (p1.x - visible.origin.x) / visible.size.width;
        y1 = _boundsSize.height * (p1.y - visible.origin.y) / visible.size.height;
        x2 = _boundsSize.width * (p2.x - visible.origin.x) / visible.size.width;
        y2 = _boundsSize.height * (p2.y - visible.origin.y) / visible.size.height;
    }
    auto rect = std::make_shared<VeyraRectSO>();
    rect->setX(x1);
    rect->setY(y1);
    rect->setWidth(x2 - x1);
    rect->setHeight(y2 - y2); // pages rely on a height of 0 (NaN for a southern edge that is not finite)
    return id(std::move(rect));
}

id VeyraView::convertRectToRegion(const id& rect) {
    static const auto& checked =
        *new ConversionArgument(VeyraRectSO::classObject(), callerName("convertRectToRegion:"),
                                {kOstrelRectX, kOstrelRectY, kOstrelRectWidth, kOstrelRectHeight},
                                {kOstrelRectX, kOstrelRectY, kOstrelRectWidth, kOstrelRectHeight});
    const ScriptReadAhead ahead(rect, checked.plan());
    if (!checked.validate(rect))
        return id();
    const double x = geometryValueForKey(*rect.object(), kOstrelRectX);
    const double y = geometryValueForKey(*rect.object(), kOstrelRectY);
    const double width = geometryValueForKey(*rect.object(), kOstrelRectWidth);
    const double height = geometryValueForKey(*rect.object(), kOstrelRectHeight);
    MKMapRect area;
    {
        const NSLockGuard guard(_lock);
        const MKMapRect& visible = _visibleMapRect;
        const double x1 = visible.origin.x + x / _boundsSize.width * visible.size.width;
        const double y1 = visible.origin.y + y / _boundsSize.height * visible.size.height;
        const double x2 = visible.origin.x + visible.size.width * ((x + width) / _boundsSize.width);
        const double y2 = visible.origin.y + visible.size.height * ((y + height) / _boundsSize.height);
        area = {{x1, y1}, {x2 - x1, y2 - y1}};
    }
    return id(VeyraRegionSO::withRegion(MKCoordinateRegionForMapRect(area)));
}

} // namespace veyra
