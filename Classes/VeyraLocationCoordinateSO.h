// A place on the map.
// A plain value that scripts see with all its fields; not shared between threads while it is written.
#pragma once

#include "Platform/CoreLocation/CLLocation.h"
#include "Platform/Foundation/NSObject.h"

namespace veyra {

class VeyraLocationCoordinateSO final : public NSObject {
public:
    VEYRA_CLASS()

    /// Scripts see every key under its own name.
    static bool isKeyExcludedFromWebScript(const char*) { return false; }
    std::vector<NSString> attributeKeys() const override;

    double latitude() const { return _latitude; } ///< degrees
    void setLatitude(double latitude) { _latitude = latitude; }
    double longitude() const { return _longitude; } ///< degrees
    void setLongitude(double longitude) { _longitude = longitude; }

    static std::shared_ptr<VeyraLocationCoordinateSO> withCoordinate(CLLocationCoordinate2D coordinate);
    /// Reads what `description` writes; see VeyraRegionSO::initWithJSON.
    static std::shared_ptr<VeyraLocationCoordinateSO> initWithJSON(const NSString& json);
    /// {'latitude':%f,'longitude':%f}
    NSString description() const override;
    /// True when every field differs by less than `tolerance` (degrees); never true for a NaN.
    bool equalsCoordinateWithTolerance(const VeyraLocationCoordinateSO& other, double tolerance) const;

private:
    double _latitude = 0;
    double _longitude = 0;
};

} // namespace veyra
