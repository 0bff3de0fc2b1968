#include "Hosts/Veyra/LocationPlayer.h"

#include <algorithm>
#include <cmath>

namespace veyra {

void LocationPlayer::start(Handler handler) {
    stop();
    _handler = std::move(handler);
    if (_startTime == 0)
        _startTime = g_get_monotonic_time();
    const auto later = std::upper_bound(_track.begin(), _track.end(), elapsed(),
                                        [](double time, const LocationFix& fix) { return time < fix.time; });
    _next = static_cast<size_t>(std::max<ptrdiff_t>(later - _track.begin() - 1, 0));
    schedule();
}

void LocationPlayer::stop() {
    if (_source)
        g_source_remove(_source);
    _source = 0;
    _handler = nullptr;
}

double LocationPlayer::elapsed() const {
    return static_cast<double>(g_get_monotonic_time() - _startTime) / G_USEC_PER_SEC * _speed;
}

void LocationPlayer::schedule() {
    if (_next == _track.size()) {
        _source = 0;
        return;
    }
    const double wait = std::max((_track[_next].time - elapsed()) / _speed, 0.0);
    _source = g_timeout_add(static_cast<guint>(std::ceil(std::min(wait * 1000, 1e9))), tell, this);
}

gboolean LocationPlayer::tell(gpointer self) {
    auto* player = static_cast<LocationPlayer*>(self);
    const auto location = player->_track[player->_next++].location;
    player->schedule();
    const Handler handler = player->_handler; // it may stop the player
    handler(location);
    return G_SOURCE_REMOVE;
}

} // namespace veyra
