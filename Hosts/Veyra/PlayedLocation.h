// The location provider of a bare script's map: a track, or nothing to know. Main queue.
#pragma once

#include "Hosts/Veyra/LocationPlayer.h"
#include "Platform/CoreLocation/CLLocationProvider.h"

namespace veyra {

class PlayedLocation final : public CLLocationProvider, public std::enable_shared_from_this<PlayedLocation> {
public:
    /// An empty track: every start fails. `ended` is called when there is nothing more to tell.
    PlayedLocation(const LocationTrack& track, double speed, std::function<void()> ended);
    void startUpdatingLocation(Handlers handlers) override;
    void stopUpdatingLocation() override;
    /// True while the map follows the user and there is more to tell.
    bool isPlaying() const { return _player.isPlaying(); }

private:
    const bool _knowsLocation;
    const std::function<void()> _ended;
    LocationPlayer _player;
    unsigned _starts = 0;
};

} // namespace veyra
