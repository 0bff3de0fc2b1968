// A part of the map: its centre and its span.
// A plain value that scripts see with all its fields; not shared between threads while it is written.
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/MapKit/MKGeometry.h"

namespace veyra {

class VeyraRegionSO final : public NSObject {
public:
    VEYRA_CLASS()

    /// Scripts see every key under its own name.
    static bool isKeyExcludedFromWebScript(const char*) { return false; }
    std::vector<NSString> attributeKeys() const override;

    double latitude() const { return _latitude; } ///< degrees, centre
    void setLatitude(double latitude) { _latitude = latitude; }
    double longitude() const { return _longitude; } ///< degrees, centre
    void setLongitude(double longitude) { _longitude = longitude; }
    double latitudeDelta() const { return _latitudeDelta; } ///< degrees, from south to north
    void setLatitudeDelta(double latitudeDelta) { _latitudeDelta = latitudeDelta; }
    double longitudeDelta() const { return _longitudeDelta; } ///< degrees, from west to east
    void setLongitudeDelta(double longitudeDelta) { _longitudeDelta = longitudeDelta; }

    static std::shared_ptr<VeyraRegionSO> withRegion(const MKCoordinateRegion& region);
    /// Reads the four keys of an object that has passed validation (the latitude span first, then the longitude span,
    /// the latitude and the longitude) and clamps them: latitude span to [0, 180], longitude span to [0, 360], latitude
    /// to
    /// [-90, 90], longitude to [-180, 180]. A NaN becomes the upper bound; a value without a conversion counts as 0.
    static MKCoordinateRegion MKCoordinateRegionWithWebScriptObject(NSObject& object);

    /// Reads what `description` writes, single or double quotes, in single precision. Text that is no JSON object, or
    /// lacks a key, leaves the fields 0; a value that has no conversion throws NSException.
    static std::shared_ptr<VeyraRegionSO> initWithJSON(const NSString& json);
    /// {'latitude':%f,'longitude':%f,'latitudeDelta':%f,'longitudeDelta':%f}
    NSString description() const override;
    /// True when every field differs by less than `tolerance` (degrees); never true for a NaN.
    bool equalsRegionWithTolerance(const VeyraRegionSO& other, double tolerance) const;

private:
    double _latitude = 0;
    double _longitude = 0;
    double _latitudeDelta = 0;
    double _longitudeDelta = 0;
};

} // namespace veyra
