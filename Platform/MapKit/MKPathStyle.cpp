#include "Platform/MapKit/MKPathStyle.h"

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/UIKit/UIColor.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// A road, in metres on the ground, and the points within which its width stays.
constexpr double roadWidth = 10, narrowestRoad = 2, widestRoad = 24;

double component(double value) {
    return value > 0 ? std::min(value, 1.0) : 0; // NaN is 0
}

} // namespace

std::optional<MKPathStyle::Color> MKPathStyle::Color::of(const std::shared_ptr<UIColor>& color) {
    if (!color || !(color->alpha() > 0)) {
        return std::nullopt;
    }
    return Color{component(color->red()), component(color->green()), component(color->blue()),
                 component(color->alpha())};
}

void MKPathStyle::setStroke(const std::shared_ptr<UIColor>& color, double lineWidth) {
    stroke = lineWidth >= 0 ? Color::of(color) : std::nullopt;
    width = stroke ? std::min(lineWidth, maximumWidth) : 0;
}

void MKPathStyle::setDashes(const std::optional<NSArray>& pattern, double phase) {
    dashes.clear();
    dashPhase = 0;
    if (!pattern) {
        return;
    }
    double length = 0;
    for (const id& entry : *pattern) {
        const double dash = entry.isNumber() ? entry.doubleValue() : -1;
        if (!(dash >= 0)) {
            dashes.clear();
            return;
        }
        dashes.push_back(dash);
        length += dash;
    }
    if (dashes.size() % 2 != 0) { // drawn and left out change places every time round
        const std::vector<double> once = dashes;
        dashes.insert(dashes.end(), once.begin(), once.end());
        length *= 2;
    }
    if (!(length > 0) || !std::isfinite(length)) {
        dashes.clear();
        return;
    }
    dashPhase = std::isfinite(phase) ? std::fmod(phase, length) : 0;
    if (dashPhase < 0) {
        dashPhase += length;
    }
}

double MKPathStyle::widthAt(double scale, double latitude) const {
    if (width > 0) {
        return width;
    }
    return std::clamp(roadWidth * MKMapPointsPerMeterAtLatitude(latitude) * scale, narrowestRoad, widestRoad);
}

} // namespace veyra
