#include "Platform/MapKit/MKShape.h"

namespace veyra {

Class MKShape::classObject() {
    static auto* const cls = new ClassObject("MKShape", NSObject::classObject(), {});
    return cls;
}

} // namespace veyra
