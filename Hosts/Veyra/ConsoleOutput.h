// Brings the console messages of pages to standard output. The web engine logs them to the standard error that its
// processes inherit, each in a write of its own; so that descriptor leads back to us while this object lives, and
// everything on it that is no console message is passed on to what standard error was. Main thread.
#pragma once

#include <glib.h>

#include <string>
#include <string_view>

namespace veyra {

class ConsoleOutput {
public:
    /// Made before the first web process starts; at most one at a time.
    ConsoleOutput();
    /// Shows what is still there and gives standard error back.
    ~ConsoleOutput();
    ConsoleOutput(const ConsoleOutput&) = delete;
    ConsoleOutput& operator=(const ConsoleOutput&) = delete;

    /// Shows what has been logged until now.
    void drain();

private:
    void show(std::string_view logged) const;

    int _standardError = -1; // what it was
    int _reading = -1;       // a record is what one write wrote
    guint _source = 0;
    std::string _begun; // the engine splits long messages over several writes, of which the last ends the line
};

} // namespace veyra
