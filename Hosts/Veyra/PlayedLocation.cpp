#include "Hosts/Veyra/PlayedLocation.h"

#include "Platform/Foundation/DispatchQueue.h"

namespace veyra {

PlayedLocation::PlayedLocation(const LocationTrack& track, double speed, std::function<void()> ended)
    : _knowsLocation(!track.empty()), _ended(std::move(ended)), _player(track, speed) {}

void PlayedLocation::startUpdatingLocation(Handlers handlers) {
    const unsigned start = ++_starts;
    if (!_knowsLocation) {
        dispatch_async(dispatch_get_main_queue(), [self = shared_from_this(), start, failed = handlers.didFail] {
            if (self->_starts == start)
                failed(
                    std::make_shared<NSError>(NSString(kCLErrorDomain), kCLErrorLocationUnknown, NSDictionary::Map()));
        });
        return;
    }
    _player.start([this, updated = handlers.didUpdate](const std::shared_ptr<const CLLocation>& location) {
        updated(location);
        if (!isPlaying())
            _ended();
    });
}

void PlayedLocation::stopUpdatingLocation() {
    ++_starts;
    _player.stop();
    _ended();
}

} // namespace veyra
