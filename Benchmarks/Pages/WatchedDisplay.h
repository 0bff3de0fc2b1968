// An Xvfb whose screen can be watched, as the program's display. Ends with the object.
#pragma once

#include <string>
#include <sys/types.h>

namespace veyra::benchmark {

class WatchedDisplay {
public:
    /// Ends the program with a message when Xvfb cannot be started.
    WatchedDisplay();
    ~WatchedDisplay();
    WatchedDisplay(const WatchedDisplay&) = delete;
    WatchedDisplay& operator=(const WatchedDisplay&) = delete;

    /// Where Xvfb keeps the pixels; see ScreenFrames.
    const std::string& folder() const { return _folder; }

private:
    std::string _folder;
    pid_t _process = 0;
};

} // namespace veyra::benchmark
