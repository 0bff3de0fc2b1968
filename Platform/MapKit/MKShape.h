// The base of the shapes that a map knows. Shapes are immutable; any thread may hold and drop them.
#pragma once

#include "Platform/Foundation/SelfSharingObject.h"
#include "Platform/MapKit/MKOverlay.h"

namespace veyra {

class MKShape : public SelfSharingObject, public virtual MKOverlay {
public:
    VEYRA_CLASS()

protected:
    MKShape() = default;
};

} // namespace veyra
