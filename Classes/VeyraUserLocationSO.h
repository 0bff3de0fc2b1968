// Where the user is.
// A plain value that scripts see with all its fields; not shared between threads while it is written.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

class VeyraUserLocationSO final : public NSObject {
public:
    VEYRA_CLASS()

    /// Scripts see every key under its own name.
    static bool isKeyExcludedFromWebScript(const char*) { return false; }
    std::vector<NSString> attributeKeys() const override;

    double latitude() const { return _latitude; } ///< degrees
    void setLatitude(double latitude) { _latitude = latitude; }
    double longitude() const { return _longitude; } ///< degrees
    void setLongitude(double longitude) { _longitude = longitude; }
    double altitude() const { return _altitude; } ///< metres
    void setAltitude(double altitude) { _altitude = altitude; }
    double horizontalAccuracy() const { return _horizontalAccuracy; } ///< metres
    void setHorizontalAccuracy(double horizontalAccuracy) { _horizontalAccuracy = horizontalAccuracy; }
    double verticalAccuracy() const { return _verticalAccuracy; } ///< metres
    void setVerticalAccuracy(double verticalAccuracy) { _verticalAccuracy = verticalAccuracy; }

private:
    double _latitude = 0;
    double _longitude = 0;
    double _altitude = 0;
    double _horizontalAccuracy = 0;
    double _verticalAccuracy = 0;
};

} // namespace veyra
