// An overlay that a script put on the map: a shape of the map kit with the script's identifier for it and its drawing
// options. By this class the view knows its own overlays. Made on the web thread, not changed once it is shared; then
// any thread.
#pragma once

#include "Classes/VeyraOverlayPathOptions.h"
#include "Platform/MapKit/MKOverlay.h"

namespace veyra {

class VeyraOverlay : public virtual MKOverlay {
public:
    /// The value that the script gave as "id", whatever it is.
    const id& identifier() const { return _identifier; }
    void setIdentifier(const id& identifier) { _identifier = identifier; }
    const std::shared_ptr<VeyraOverlayPathOptions>& pathOptions() const { return _pathOptions; }
    void setPathOptions(const std::shared_ptr<VeyraOverlayPathOptions>& options) { _pathOptions = options; }

    /// A new view of the overlay, with its options applied. Main queue.
    virtual std::shared_ptr<MKOverlayPathView> overlayView() = 0;

private:
    id _identifier;
    std::shared_ptr<VeyraOverlayPathOptions> _pathOptions;
};

/// The overlay that a script object describes: "circle", "polyline" or "polygon" by its "type". Null when it is
/// refused, which has been reported as a script exception, and, silently, for any other type. Throws NSException for
/// values without the conversion that is needed, std::bad_alloc when there is no memory. Web thread; **reading the keys
/// can run arbitrary script**.
std::shared_ptr<VeyraOverlay> VeyraOverlayFromWebScriptObject(const id& object);

} // namespace veyra
