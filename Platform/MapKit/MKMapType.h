// Which picture of the world a map shows.
#pragma once

namespace veyra {

enum MKMapType : unsigned {
    MKMapTypeStandard = 0,
    MKMapTypeSatellite = 1,
    MKMapTypeHybrid = 2,
};

} // namespace veyra
