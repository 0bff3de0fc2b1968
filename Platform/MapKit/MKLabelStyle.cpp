#include "Platform/MapKit/MKLabelStyle.h"

namespace veyra {

namespace {

using Sizes = std::array<std::array<double, 4>, MKLabelSteps.size()>; // by step and size of the name

constexpr Sizes countrySizes = {{{8.5, 9, 9.5, 10.5}, {9.5, 10.5, 11.5, 12.5}, {10.5, 12, 13.5, 14.5}}};
constexpr Sizes waterSizes = {{{9, 9.5, 10, 10.5}, {9.5, 10.5, 11.5, 13.5}, {10.5, 11.5, 13, 15}}};
constexpr Sizes citySizes = {{{9, 9.5, 10, 10.5}, {9.5, 10, 10.5, 11.5}, {10, 10.5, 12, 13.5}}};

struct Palette {
    MKTileColor country, territory, city, water, halo, waterHalo;
    double haloWidth, haloOpacity;
};

constexpr Palette light{.country = 0x655a70,
                        .territory = 0x7d7486,
                        .city = 0x33363b,
                        .water = 0x4a7fa3,
                        .halo = 0xfbf9f5,
                        .waterHalo = 0xc3deec,
                        .haloWidth = 1.4,
                        .haloOpacity = 0.85};
constexpr Palette dark{.country = 0xa9a9ba,
                       .territory = 0x8d8d9c,
                       .city = 0xd3d6da,
                       .water = 0x5f86a4,
                       .halo = 0x20252c,
                       .waterHalo = 0x141d27,
                       .haloWidth = 1.4,
                       .haloOpacity = 0.85};
constexpr Palette overPicture{.country = 0xfff8e0,
                              .territory = 0xefe8d4,
                              .city = 0xffffff,
                              .water = 0xc9e3f7,
                              .halo = 0x10151c,
                              .waterHalo = 0x0a1f38,
                              .haloWidth = 1.5,
                              .haloOpacity = 0.85}; // on snow the letters are white on white

} // namespace

size_t MKLabelStepAt(double zoom) {
    size_t step = 0;
    while (step + 1 < MKLabelSteps.size() && zoom >= MKLabelSteps[step + 1]) {
        ++step;
    }
    return step;
}

MKLabelFont MKLabelFont::forName(const BasemapName& name, size_t step) {
    const size_t size = name.size;
    switch (name.kind) {
    case BasemapNameKind::Country:
        return {.size = countrySizes[step][size],
                .letterSpacing = 0.6 + 0.4 * static_cast<double>(size * step),
                .isBold = true,
                .isUpperCase = true};
    case BasemapNameKind::Territory:
        return {.size = countrySizes[step][size] - 0.5, .letterSpacing = 0.6, .isUpperCase = true};
    case BasemapNameKind::Ocean:
        return {
            .size = waterSizes[step][3] + 0.5, .letterSpacing = 1 + 0.8 * static_cast<double>(step), .isItalic = true};
    case BasemapNameKind::Sea:
    case BasemapNameKind::Lake:
        return {.size = waterSizes[step][size], .letterSpacing = 0.2, .isItalic = true};
    case BasemapNameKind::City:
        break;
    }
    return {.size = citySizes[step][size], .isBold = name.isCapital && step > 0};
}

MKLabelMark MKLabelMark::forName(const BasemapName& name, size_t step) {
    if (name.kind != BasemapNameKind::City) {
        return {};
    }
    const double radius = 1.6 + 0.2 * name.size + 0.2 * static_cast<double>(step);
    return {.radius = name.isCapital ? radius + 1 : radius, .isCapital = name.isCapital};
}

MKLabelColors MKLabelColors::forName(const BasemapName& name, MKMapType mapType, UIUserInterfaceStyle style) {
    const Palette& palette = mapType != MKMapTypeStandard        ? overPicture
                             : style == UIUserInterfaceStyleDark ? dark
                                                                 : light;
    MKLabelColors colors{
        .text = palette.city, .halo = palette.halo, .haloWidth = palette.haloWidth, .haloOpacity = palette.haloOpacity};
    switch (name.kind) {
    case BasemapNameKind::Country:
        colors.text = palette.country;
        break;
    case BasemapNameKind::Territory:
        colors.text = palette.territory;
        break;
    case BasemapNameKind::Ocean:
    case BasemapNameKind::Sea:
    case BasemapNameKind::Lake:
        colors.text = palette.water;
        colors.halo = palette.waterHalo;
        break;
    case BasemapNameKind::City:
        break;
    }
    return colors;
}

} // namespace veyra
