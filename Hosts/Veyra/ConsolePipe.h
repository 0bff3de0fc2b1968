// Brings the console messages of the web process to our standard output. The web engine writes them to the standard output
// that the web process inherits, so that descriptor is a pipe to ourselves from the making of this object on: nothing else
// in the program may print there. Main thread.
#pragma once

#include <glib.h>

#include <string>

namespace veyra {

class ConsolePipe {
public:
    /// Made before the first web process starts; one a process.
    ConsolePipe();
    /// Shows what is still there and gives standard output back.
    ~ConsolePipe();
    ConsolePipe(const ConsolePipe&) = delete;
    ConsolePipe& operator=(const ConsolePipe&) = delete;

    /// Shows what the web process has written until now.
    void drain();

private:
    void show(const std::string& line) const;

    int _terminal = -1; // what standard output was
    int _reading = -1;
    guint _source = 0;
    std::string _line; // begun, but not ended yet
};

} // namespace veyra
