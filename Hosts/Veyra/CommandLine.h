// What the user asked for, read from the command line.
#pragma once

#include "Hosts/Veyra/ExitStatus.h"
#include "Hosts/Veyra/LocationTrack.h"

#include <optional>
#include <string>
#include <variant>

namespace veyra {

/// How it is decided whether a page may know where the user is.
enum class GeolocationPolicy { Ask, Allow, Deny };

struct CommandLine {
    enum class Command { Open, Snapshot, Script };

    Command command = Command::Open;
    bool verbose = false;           ///< log what the map quietly ignores
    bool automation = false;        ///< `open` waits for WebKitWebDriver instead of opening a page
    std::string input;              ///< page (address or file), or script file
    std::string output;             ///< picture file; empty: none
    int width = 1024, height = 768; ///< in points, 1 to 16384
    double scale = 1;               ///< device pixels a point; a whole number for `snapshot`
    std::optional<std::string> titlePrefix;
    std::optional<double> timeout; ///< seconds, above 0; none: no limit
    GeolocationPolicy geolocation = GeolocationPolicy::Ask;
    LocationTrack location;   ///< where the user is said to be; empty: what the system knows
    double locationSpeed = 1; ///< seconds of the track a second
    std::string tileSources;  ///< the setting of VEYRA_SOURCES; empty: as the environment has it
};

/// The command line, or how the program ends at once: after help or version, and after a message on standard error
/// about a bad argument.
std::variant<CommandLine, ExitStatus> readCommandLine(int argc, char** argv);

} // namespace veyra
