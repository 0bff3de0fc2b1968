// The region and the centre: reads from the cached geometry, writes on the map, and the report of every change.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraRegionSO.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"

namespace veyra {

id VeyraView::region() const {
    return id(VeyraRegionSO::withRegion(coordinateRegion()));
}

id VeyraView::centerCoordinate() const {
    return id(VeyraLocationCoordinateSO::withCoordinate(coordinateRegion().center));
}

MKCoordinateRegion VeyraView::coordinateRegion() const {
    const NSLockGuard guard(_lock);
    return _region;
}

void VeyraView::setCoordinateRegion(const MKCoordinateRegion& region) {
    const NSLockGuard guard(_lock);
    _region = region;
}

MKMapRect VeyraView::visibleMapRect() const {
    const NSLockGuard guard(_lock);
    return _visibleMapRect;
}

void VeyraView::setVisibleMapRect(const MKMapRect& rect) {
    const NSLockGuard guard(_lock);
    _visibleMapRect = rect;
}

CGSize VeyraView::boundsSize() const {
    const NSLockGuard guard(_lock);
    return _boundsSize;
}

void VeyraView::setBoundsSize(CGSize size) {
    const NSLockGuard guard(_lock);
    _boundsSize = size;
}

void VeyraView::setRegion(const id& region) {
    setRegionFrom(region,
                  "setRegion:", [](MKMapView& map, const MKCoordinateRegion& wanted) { map.setRegion(wanted); });
}

void VeyraView::setRegionAnimated(const id& region, bool animated) {
    setRegionFrom(region, "setRegion:animated:", [animated](MKMapView& map, const MKCoordinateRegion& wanted) {
        map.setRegionAnimated(wanted, animated);
    });
}

void VeyraView::setRegionFrom(const id& region, SEL selector,
                              const std::function<void(MKMapView&, const MKCoordinateRegion&)>& apply) {
    if (!VeyraValidateWebScriptObject(
            region, VeyraRegionSO::classObject(), callerName(selector),
            {kOstrelRegionLatitude, kOstrelRegionLongitude, kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta}))
        return;
    const MKCoordinateRegion wanted = VeyraRegionSO::MKCoordinateRegionWithWebScriptObject(*region.object());
    onMap([apply, wanted](MKMapView& map) { apply(map, wanted); });
}

void VeyraView::setCenterCoordinate(const id& coordinate) {
    setCenterFrom(coordinate, "setCenterCoordinate:", [](MKMapView& map, CLLocationCoordinate2D wanted) {
        map.setCenterCoordinate(wanted);
    });
}

void VeyraView::setCenterCoordinateAnimated(const id& coordinate, bool animated) {
    setCenterFrom(coordinate,
                  "setCenterCoordinate:animated:", [animated](MKMapView& map, CLLocationCoordinate2D wanted) {
                      map.setCenterCoordinateAnimated(wanted, animated);
                  });
}

void VeyraView::setCenterFrom(const id& coordinate, SEL selector,
                              const std::function<void(MKMapView&, CLLocationCoordinate2D)>& apply) {
    if (!VeyraValidateWebScriptObject(coordinate, VeyraLocationCoordinateSO::classObject(), callerName(selector),
                                      {kOstrelCoordinateLatitude, kOstrelCoordinateLongitude}))
        return;
    // Unlike a region, a centre goes to the map as it stands.
    CLLocationCoordinate2D wanted;
    wanted.latitude = geometryValueForKey(*coordinate.object(), kOstrelCoordinateLatitude);
    wanted.longitude = geometryValueForKey(*coordinate.object(), kOstrelCoordinateLongitude);
    onMap([apply, wanted](MKMapView& map) { apply(map, wanted); });
}

void VeyraView::mapViewRegionDidChangeAnimated(MKMapView& mapView, bool) {
    id listener;
    {
        const NSLockGuard guard(_lock);
        _region = mapView.region();
        _visibleMapRect = mapView.visibleMapRect();
        _userLocationVisible = _mapView->isUserLocationVisible();
        listener = _jsListener;
    }
    if (listener.isNil())
        return;
    _veyra_webThreadCallWebScriptMethod(listener, kVeyraRegionDidChange,
                                        {id(VeyraRegionSO::withRegion(mapView.region()))});
}

} // namespace veyra
