// A movement of the camera over time. Owned by the map view that it moves; main queue only. Times are those of frames,
// in seconds; a movement begins with the first frame that steps it.
#pragma once

#include "Platform/MapKit/MKCamera.h"

namespace veyra {

class MKMotion {
public:
    virtual ~MKMotion() = default;

    /// Moves the camera to where it is at `timestamp`. Returns false when the movement has come to its end.
    virtual bool step(double timestamp, CGSize viewSize, MKCamera& camera) = 0;
    /// Moves the camera to where the movement would end.
    virtual void finish(CGSize viewSize, MKCamera& camera) = 0;
    /// True while the scale is still going to change.
    virtual bool changesScale() const = 0;
};

} // namespace veyra
