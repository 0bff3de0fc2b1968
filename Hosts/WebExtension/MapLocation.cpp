#include "Hosts/WebExtension/MapLocation.h"

#include "Hosts/WebExtension/MapElement.h"
#include "Hosts/WebExtension/PageMessages.h"
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/WebKit/WebThread.h"

#include <utility>

namespace veyra {

namespace {

constexpr int permissionDenied = 1;

} // namespace

void MapLocation::ask(const std::shared_ptr<NSObject>& listener) {
    _listeners.push_back(listener);
    if (_isWatching && (_location || _error))
        answer(true);
    else
        setWatchWanted(true);
}

void MapLocation::located(const std::shared_ptr<const CLLocation>& location) {
    if (!_isWatching)
        return;
    _location = location;
    _error = nullptr;
    answer(true);
    report();
}

void MapLocation::notLocated(int code, const std::string& message) {
    if (!_isWatching)
        return;
    const bool isDenied = code == permissionDenied;
    _location = nullptr;
    _error = std::make_shared<NSError>(
        NSString(kCLErrorDomain), isDenied ? kCLErrorDenied : kCLErrorLocationUnknown,
        NSDictionary::Map{{NSString("NSLocalizedDescription"), id(NSString(std::string_view(message)))}});
    // A position that cannot be found is looked for by permission only.
    answer(!isDenied);
    report();
    if (isDenied)
        setWatchWanted(false);
}

void MapLocation::answer(bool allows) {
    const auto listeners = std::exchange(_listeners, {});
    for (const auto& weak : listeners) {
        if (const auto listener = weak.lock())
            listener->performSelector(allows ? "allow" : "deny");
    }
    if (listeners.empty())
        return;
    // Whether the map follows the user now is known once what the answer asked of it has been done.
    dispatch_async(dispatch_get_main_queue(),
                   [self = shared_from_this()] { webThread().async([self] { self->stopUnlessUsed(); }); });
    answerWaitingMessages();
}

void MapLocation::stopUnlessUsed() {
    if (!_isUpdating && _listeners.empty())
        setWatchWanted(false);
}

void MapLocation::setWatchWanted(bool wanted) {
    _isWatchWanted = wanted;
    followWishes();
}

void MapLocation::followWishes() {
    const auto map = _map.lock();
    if (_isWatching == _isWatchWanted || !map || !map->view() || map->isPageHidden())
        return;
    _isWatching = _isWatchWanted;
    _location = nullptr;
    _error = nullptr;
    if (_isWatching)
        map->presenter().surface().startLocating();
    else
        map->presenter().surface().stopLocating();
}

void MapLocation::startUpdatingLocation(Handlers handlers) {
    _handlers = std::make_shared<const Handlers>(std::move(handlers));
    webThread().async([self = shared_from_this()] {
        self->_isUpdating = true;
        self->setWatchWanted(true);
        self->report();
    });
}

void MapLocation::stopUpdatingLocation() {
    if (!std::exchange(_handlers, nullptr))
        return;
    webThread().async([self = shared_from_this()] {
        self->_isUpdating = false;
        self->stopUnlessUsed();
    });
}

void MapLocation::report() {
    if (!_isUpdating || (!_location && !_error))
        return;
    dispatch_async(dispatch_get_main_queue(), [self = shared_from_this(), location = _location, error = _error] {
        const auto handlers = self->_handlers;
        if (handlers && location)
            handlers->didUpdate(location);
        else if (handlers)
            handlers->didFail(error);
    });
}

} // namespace veyra
