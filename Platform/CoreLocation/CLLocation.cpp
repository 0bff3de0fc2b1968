#include "Platform/CoreLocation/CLLocation.h"

#include "Platform/Foundation/MethodBinding.h"

namespace veyra {

Class CLLocation::classObject() {
    static const Class cls = new ClassObject("CLLocation", NSObject::classObject(),
                                             {bindMethod<&CLLocation::altitude>("altitude"),
                                              bindMethod<&CLLocation::horizontalAccuracy>("horizontalAccuracy"),
                                              bindMethod<&CLLocation::verticalAccuracy>("verticalAccuracy")});
    return cls;
}

CLLocation::CLLocation(CLLocationCoordinate2D coordinate, double altitude, double horizontalAccuracy,
                       double verticalAccuracy)
    : _coordinate(coordinate), _altitude(altitude), _horizontalAccuracy(horizontalAccuracy),
      _verticalAccuracy(verticalAccuracy) {}

} // namespace veyra
