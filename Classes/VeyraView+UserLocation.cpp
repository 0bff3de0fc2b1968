// The user's location and the permission to show it. The host's web view decides; this view is the listener of the
// decision.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraUserLocationSO.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/MapKit/MKUserLocation.h"
#include "Platform/WebKit/WebPlugInContainer.h"

#include <array>

namespace veyra {

namespace {

/// The object for scripts; all fields 0 without a location.
std::shared_ptr<VeyraUserLocationSO> scriptObjectFor(const std::shared_ptr<const CLLocation>& location) {
    auto object = std::make_shared<VeyraUserLocationSO>();
    if (location) {
        object->setLatitude(location->coordinate().latitude);
        object->setLongitude(location->coordinate().longitude);
        object->setAltitude(location->altitude());
        object->setHorizontalAccuracy(location->horizontalAccuracy());
        object->setVerticalAccuracy(location->verticalAccuracy());
    }
    return object;
}

} // namespace

bool VeyraView::showsUserLocation() const {
    const NSLockGuard guard(_lock);
    return _showsUserLocation;
}

void VeyraView::setShowsUserLocation(bool shows) {
    {
        const NSLockGuard guard(_lock);
        _showsUserLocation = shows;
    }
    if (shows)
        askForLocation();
    else
        onMap([](MKMapView& map) { map.setShowsUserLocation(false); });
}

void VeyraView::askForLocation() {
    const auto arguments = pluginArguments();
    const auto container =
        arguments ? arguments->objectForKey(WebPlugInContainerKey).as<WebPlugInContainer>() : nullptr;
    const auto frame = container ? container->webFrame() : nullptr;
    const auto webView = frame ? frame->webView() : nullptr;
    const auto delegate = webView ? webView->UIDelegate() : nullptr;
    Class canDecide = NSClassFromString("UIWebViewWebViewDelegate");
    if (!delegate || !canDecide || !delegate->isKindOfClass(canDecide)) {
        deny();
        return;
    }
    const std::array<id, 4> request{id(webView), id(), id(frame), id(objectForWebScript())};
    delegate->performSelector("webView:decidePolicyForGeolocationRequestFromOrigin:frame:listener:", request);
}

void VeyraView::allow() {
    bool shows = false;
    {
        const NSLockGuard guard(_lock);
        shows = _showsUserLocation;
    }
    onMap([shows](MKMapView& map) { map.setShowsUserLocation(shows); });
}

void VeyraView::deny() {
    {
        const NSLockGuard guard(_lock);
        _showsUserLocation = false;
    }
    sendEvent(kVeyraUpdateUserLocationFailed, {id(kVeyraUserLocationDeniedError)});
}

bool VeyraView::userLocationVisible() const {
    const NSLockGuard guard(_lock);
    return _userLocationVisible;
}

id VeyraView::userLocation() const {
    std::shared_ptr<const CLLocation> location;
    {
        const NSLockGuard guard(_lock);
        location = _userLocation ? _userLocation->location() : nullptr;
    }
    return id(scriptObjectFor(location));
}

void VeyraView::mapViewWillStartLocatingUser(MKMapView&) {
    sendEvent(kVeyraWillStartUpdatingUserLocation);
}

void VeyraView::mapViewDidStopLocatingUser(MKMapView&) {
    {
        const NSLockGuard guard(_lock);
        _userLocationVisible = false;
    }
    sendEvent(kVeyraDidStopUpdatingUserLocation);
}

void VeyraView::mapViewDidUpdateUserLocation(MKMapView&, const std::shared_ptr<MKUserLocation>& userLocation) {
    const bool visible = _mapView->isUserLocationVisible();
    std::shared_ptr<MKUserLocation> replaced = userLocation; // released without the lock
    {
        const NSLockGuard guard(_lock);
        _userLocation.swap(replaced);
        _userLocationVisible = visible;
    }
    sendEvent(kVeyraDidUpdateUserLocation, {id(scriptObjectFor(userLocation->location()))});
}

void VeyraView::mapViewDidFailToLocateUserWithError(MKMapView&, const std::shared_ptr<NSError>&) {
    {
        const NSLockGuard guard(_lock);
        _userLocationVisible = false;
    }
    sendEvent(kVeyraUpdateUserLocationFailed, {id(kVeyraUserLocationUnusableError)});
}

} // namespace veyra
