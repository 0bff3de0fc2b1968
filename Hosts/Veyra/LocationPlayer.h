// Plays a track in its own time, or faster: tells each fix when it is due. Main thread; whoever made it owns it.
#pragma once

#include "Hosts/Veyra/LocationTrack.h"

#include <functional>
#include <glib.h>

namespace veyra {

class LocationPlayer {
public:
    using Handler = std::function<void(const std::shared_ptr<const CLLocation>&)>;
    /// The track is not empty. `speed`: seconds of the track a second, above 0.
    LocationPlayer(LocationTrack track, double speed) : _track(std::move(track)), _speed(speed) {}
    ~LocationPlayer() { stop(); }
    LocationPlayer(const LocationPlayer&) = delete;
    LocationPlayer& operator=(const LocationPlayer&) = delete;

    /// From now on the handler is told where the user is: at first, in a moment, where that is just now, then each
    /// further fix. The track begins with the first start and goes on while nobody listens.
    void start(Handler handler);
    void stop();
    /// True while somebody listens and there is more to tell.
    bool isPlaying() const { return _source != 0; }

private:
    void schedule();
    static gboolean tell(gpointer self);
    double elapsed() const;

    const LocationTrack _track;
    const double _speed;
    Handler _handler;
    gint64 _startTime = 0; // microseconds, monotonic; 0: not started yet
    size_t _next = 0;      // the fix that is told next
    guint _source = 0;
};

} // namespace veyra
