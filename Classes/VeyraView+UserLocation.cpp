// The user's location and the permission to show it. The map does not locate anybody yet: a host that cannot be asked
// for permission has denied it, and no host can be asked.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraUserLocationSO.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"

namespace veyra {

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
        deny();
}

bool VeyraView::userLocationVisible() const {
    const NSLockGuard guard(_lock);
    return _userLocationVisible;
}

id VeyraView::userLocation() const {
    return id(std::make_shared<VeyraUserLocationSO>());
}

void VeyraView::deny() {
    {
        const NSLockGuard guard(_lock);
        _showsUserLocation = false;
    }
    sendEvent(kVeyraUpdateUserLocationFailed, {id(kVeyraUserLocationDeniedError)});
}

} // namespace veyra
