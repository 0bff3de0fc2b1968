#include "Platform/MapKit/MKBasemapStyle.h"

#include <algorithm>

namespace veyra {

namespace {

// Rivers in one colour: great ones from afar, small ones near by.
constexpr std::array<MKBasemapLine, 4> riversIn(MKTileColor color) {
    return {{{.color = color, .width = 0.55, .finalWidth = 2.2, .leastZoom = 1.6},
             {.color = color, .width = 0.5, .finalWidth = 1.7, .leastZoom = 3.4},
             {.color = color, .width = 0.45, .finalWidth = 1.2, .leastZoom = 4.9},
             {.color = color, .width = 0.45, .finalWidth = 0.9, .leastZoom = 6.4}}};
}

constexpr MKBasemapStyle standard{
    .sea = 0xb4d5e7,
    .land = 0xf6f3ec,
    .lake = 0xb4d5e7,
    .coast = {.color = 0x86b3cd, .width = 0.5, .finalWidth = 0.9},
    .lakeShore = {.color = 0x94bdd4, .width = 0.4, .finalWidth = 0.7},
    .rivers = riversIn(0x9cc6de),
    .states = {.color = 0xc4bcc9, .width = 0.45, .finalWidth = 1, .leastZoom = 3.1},
    .provinces = {.color = 0xcbc4cf, .width = 0.45, .finalWidth = 0.9, .leastZoom = 5.4},
    .borderGlow = {.color = 0xcdbfd6, .width = 1.6, .finalWidth = 6, .leastZoom = 2.6, .opacity = 0.5},
    .border = {.color = 0x9d8cab, .width = 0.5, .finalWidth = 1.4},
    .disputedBorder = {.color = 0x9d8cab, .width = 0.5, .finalWidth = 1.4, .dash = 4, .gap = 3},
};

constexpr MKBasemapStyle dark{
    .sea = 0x141d27,
    .land = 0x2a3038,
    .lake = 0x141d27,
    .coast = {.color = 0x47596a, .width = 0.5, .finalWidth = 0.9},
    .lakeShore = {.color = 0x3b4a58, .width = 0.4, .finalWidth = 0.7},
    .rivers = riversIn(0x35485a),
    .states = {.color = 0x454c56, .width = 0.45, .finalWidth = 1, .leastZoom = 3.1},
    .provinces = {.color = 0x414852, .width = 0.45, .finalWidth = 0.9, .leastZoom = 5.4},
    .borderGlow = {.color = 0x4a4a5a, .width = 1.6, .finalWidth = 6, .leastZoom = 2.6, .opacity = 0.4},
    .border = {.color = 0x76798a, .width = 0.5, .finalWidth = 1.4},
    .disputedBorder = {.color = 0x76798a, .width = 0.5, .finalWidth = 1.4, .dash = 4, .gap = 3},
};

// Land and sea are seen but for a moment, before the picture has come.
constexpr MKBasemapStyle satellite{.showsPicture = true, .sea = 0x0d2c55, .land = 0x5c5a3c, .lake = 0x0d2c55};

constexpr MKBasemapStyle hybrid{
    .showsPicture = true,
    .sea = satellite.sea,
    .land = satellite.land,
    .lake = satellite.lake,
    .states = {.color = 0xf4efe0, .width = 0.4, .finalWidth = 0.9, .leastZoom = 3.1, .opacity = 0.4},
    .provinces = {.color = 0xf4efe0, .width = 0.4, .finalWidth = 0.8, .leastZoom = 5.4, .opacity = 0.3},
    .borderGlow = {.color = 0x1a1408, .width = 1.8, .finalWidth = 3.4, .leastZoom = 1, .opacity = 0.4},
    .border = {.color = 0xfbf3d0, .width = 0.6, .finalWidth = 1.3, .opacity = 0.9},
    .disputedBorder = {.color = 0xfbf3d0, .width = 0.6, .finalWidth = 1.3, .opacity = 0.9, .dash = 4, .gap = 3},
};

} // namespace

double MKBasemapLine::widthAt(double zoom) const {
    if (zoom < leastZoom) {
        return 0;
    }
    const double part = std::clamp((zoom - leastZoom) / (finalZoom - leastZoom), 0.0, 1.0);
    return width + (finalWidth - width) * part;
}

const MKBasemapStyle& MKBasemapStyle::forMapType(MKMapType mapType, UIUserInterfaceStyle style) {
    switch (mapType) {
    case MKMapTypeSatellite:
        return satellite;
    case MKMapTypeHybrid:
        return hybrid;
    case MKMapTypeStandard:
        break;
    }
    return style == UIUserInterfaceStyleDark ? dark : standard;
}

} // namespace veyra
