#include "Platform/MapKit/MKBasemapStyle.h"

namespace veyra {

namespace {

constexpr MKBasemapStyle standard{.sea = 0xa9cfe6,
                                  .land = 0xf5f2ea,
                                  .lake = 0xa9cfe6,
                                  .coast = 0x7fb0cf,
                                  .lakeShore = 0x8fbad6,
                                  .border = 0xa496b4,
                                  .coastWidth = 0.6,
                                  .lakeShoreWidth = 0.5,
                                  .borderWidth = 0.8};

// The colours of the planet from above, plain.
constexpr MKBasemapStyle satellite{.sea = 0x1c3a59,
                                   .land = 0x66704f,
                                   .lake = 0x1c3a59,
                                   .coast = 0x3c5568,
                                   .lakeShore = 0x3c5568,
                                   .border = 0x7b8363,
                                   .coastWidth = 0.6,
                                   .lakeShoreWidth = 0.5,
                                   .borderWidth = 0.5};

// The same with borders that are meant to be read.
constexpr MKBasemapStyle hybrid{.sea = satellite.sea,
                                .land = satellite.land,
                                .lake = satellite.lake,
                                .coast = satellite.coast,
                                .lakeShore = satellite.lakeShore,
                                .border = 0xe9e2b8,
                                .coastWidth = 0.6,
                                .lakeShoreWidth = 0.5,
                                .borderWidth = 0.9};

} // namespace

const MKBasemapStyle& MKBasemapStyle::forMapType(MKMapType mapType) {
    switch (mapType) {
    case MKMapTypeSatellite:
        return satellite;
    case MKMapTypeHybrid:
        return hybrid;
    case MKMapTypeStandard:
        break;
    }
    return standard;
}

} // namespace veyra
