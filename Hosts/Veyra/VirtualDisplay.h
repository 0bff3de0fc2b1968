// A display for machines that have none: an Xvfb of our own, which ends with the program. Main thread, before GTK
// starts.
#pragma once

#include "Hosts/Veyra/ExitStatus.h"

#include <memory>
#include <string>
#include <sys/types.h>

namespace veyra {

class VirtualDisplay {
public:
    /// Starts Xvfb and points the environment to it. Nothing else may connect to it: the key is in a private file. Null
    /// when that fails; then `problem` says why.
    static std::unique_ptr<VirtualDisplay> start(std::string& problem);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

private:
    VirtualDisplay(pid_t process, std::string keyFile) : _process(process), _keyFile(std::move(keyFile)) {}
    const pid_t _process;
    const std::string _keyFile;
};

/// Starts GTK on the display that there is, or on a virtual one that `display` then holds. A failed outcome says what
/// is missing. `needsX11`: a Wayland display alone is none.
Outcome startGtk(bool needsX11, std::unique_ptr<VirtualDisplay>& display);

} // namespace veyra
