// How the program ends. The numbers are part of its interface.
#pragma once

#include <string>

namespace veyra {

enum class ExitStatus {
    Success = 0,
    ScriptFailed = 1, ///< an exception that the script did not catch
    BadArguments = 2, ///< the command line
    LoadFailed = 3,   ///< the page or the script could not be loaded, or the web process ended
    TimedOut = 4,
    Failed = 5, ///< no display, no plug-in, no picture written
};

/// How a command ended; the message is for the user, empty on success.
struct Outcome {
    ExitStatus status = ExitStatus::Success;
    std::string message;
};

} // namespace veyra
