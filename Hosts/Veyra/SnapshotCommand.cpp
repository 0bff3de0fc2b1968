#include "Hosts/Veyra/SnapshotCommand.h"

#include "Hosts/Veyra/GeolocationFeed.h"
#include "Hosts/Veyra/PageSnapshot.h"
#include "Hosts/Veyra/VirtualDisplay.h"
#include "Hosts/Veyra/WebSetup.h"

namespace veyra {

Outcome runSnapshot(const CommandLine& line) {
    if (line.verbose)
        g_setenv("VEYRA_VERBOSE", "1", TRUE);
    // On X11 GTK takes the scale of the screen from here.
    g_setenv("GDK_SCALE", std::to_string(static_cast<int>(line.scale)).c_str(), TRUE);
    std::unique_ptr<VirtualDisplay> display;
    Outcome outcome = startGtk(true, display);
    if (outcome.status != ExitStatus::Success)
        return outcome;
    const auto context = WebContext::make(outcome);
    if (!context)
        return outcome;
    const GeolocationFeed feed(context->get(), line.location, line.locationSpeed);
    return PageSnapshot(context->get(), line).run();
}

} // namespace veyra
