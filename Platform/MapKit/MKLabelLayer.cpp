#include "Platform/MapKit/MKLabelLayer.h"

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKLabelArt.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace veyra {

namespace {

constexpr double zoomZeroSide = 256; // points

class Stopwatch {
public:
    explicit Stopwatch(double seconds)
        : _end(std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds)) {}
    bool hasRunOut() const { return std::chrono::steady_clock::now() >= _end; }

private:
    const std::chrono::time_point<std::chrono::steady_clock, std::chrono::duration<double>> _end;
};

double zoomOf(const MKTileScene& scene) {
    return std::log2(scene.camera.scale * MKWorldSide / zoomZeroSide);
}

// Between a name and what it keeps out of, in points: the halo, and a little.
constexpr double clearance = 3;

bool meet(const PixelRect& a, const PixelRect& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

} // namespace

std::vector<MKPlacedLabel> MKLabelLayer::labelsIn(const BasemapNames& names, const MKTileScene& scene, double seconds) {
    const Stopwatch watch(seconds);
    MKLabelLayout& layout = MKLabelLayout::shared(names);
    const MKPixelView view(scene.camera, scene.viewSize, scene.deviceScale);
    const double zoom = zoomOf(scene);
    const size_t step = MKLabelStepAt(zoom);
    const double margin = MKLabelLayout::farthest * scene.deviceScale;
    _isComplete = true;
    std::vector<MKPlacedLabel> placed;
    for (int copy = view.firstCopy(-margin); copy <= view.lastCopy(view.width + margin); ++copy) {
        const double worldLeft = view.worldLeft(copy);
        const auto across = [&](double x) { return std::clamp((x - worldLeft) / view.scale, 0.0, MKWorldSide); };
        const auto down = [&](double y) { return (y + view.top) / view.scale; };
        for (const size_t index : layout.namesIn(across(-margin), down(-margin), across(view.width + margin),
                                                 down(view.height + margin), zoom)) {
            if (!layout.isSettled(index) && watch.hasRunOut()) {
                _isComplete = false;
                continue;
            }
            const MKSettledLabel& label = layout.settled(index);
            if (label.isShownAt(zoom)) {
                const BasemapName& name = names.all()[index];
                const MKPlacedLabel found{index,
                                          static_cast<int>(std::lround(worldLeft + std::round(name.x * view.scale))),
                                          static_cast<int>(std::lround(std::round(name.y * view.scale) - view.top)),
                                          label.text[step], label.markRadius[step]};
                if (isClear(found, scene.deviceScale)) {
                    placed.push_back(found);
                }
            }
        }
    }
    return placed;
}

bool MKLabelLayer::isClear(const MKPlacedLabel& label, double deviceScale) const {
    const double x = label.x / deviceScale, y = label.y / deviceScale, radius = label.markRadius;
    const auto isClearOf = [&](const CGRect& area, const MKLabelBox& box) {
        return x + box.left - clearance >= area.origin.x + area.size.width ||
               x + box.right + clearance <= area.origin.x ||
               y + box.top - clearance >= area.origin.y + area.size.height ||
               y + box.bottom + clearance <= area.origin.y;
    };
    return std::all_of(_keptClear.begin(), _keptClear.end(), [&](const CGRect& area) {
        return isClearOf(area, label.text) && (radius == 0 || isClearOf(area, {-radius, -radius, radius, radius}));
    });
}

void MKLabelLayer::draw(const UIGraphicsContext& context, const BasemapNames& names, const MKTileScene& scene,
                        double seconds) {
    const Stopwatch watch(seconds);
    MKLabelLayout& layout = MKLabelLayout::shared(names);
    MKLabelArtCache& cache = MKLabelArtCache::shared();
    const uint64_t usesBefore = cache.useCount();
    const size_t step = MKLabelStepAt(zoomOf(scene));
    const int originX = static_cast<int>(std::lround(context.origin.x * context.scale));
    const int originY = static_cast<int>(std::lround(context.origin.y * context.scale));
    const PixelRect clip{context.clip.x - originX, context.clip.y - originY, context.clip.width, context.clip.height};
    cairo_identity_matrix(context.cairo);
    cairo_set_operator(context.cairo, CAIRO_OPERATOR_OVER);
    for (const MKPlacedLabel& label : labelsIn(names, scene, seconds)) {
        // Most of what lies around the view is cheaply told to be too far off.
        const auto reach = static_cast<int>(MKLabelLayout::farthest * scene.deviceScale);
        if (!meet(clip, {label.x - reach, label.y - reach, 2 * reach, 2 * reach})) {
            continue;
        }
        const MKLabelArtKey key{&names,
                                label.index,
                                step,
                                scene.mapType == MKMapTypeStandard ? MKMapTypeStandard : MKMapTypeHybrid,
                                scene.mapType == MKMapTypeStandard ? scene.style : UIUserInterfaceStyleLight,
                                scene.deviceScale};
        const MKLabelArt* art = cache.find(key);
        if (art == nullptr) {
            if (watch.hasRunOut()) {
                _isComplete = false;
                continue;
            }
            art = cache.draw(key, layout.settled(label.index));
        }
        const PixelRect rect = art->placedAt(label.x, label.y);
        if (meet(clip, rect)) {
            cairo_set_source_surface(context.cairo, art->surface(), originX + rect.x, originY + rect.y);
            cairo_pattern_set_filter(cairo_get_source(context.cairo), CAIRO_FILTER_NEAREST);
            cairo_paint(context.cairo);
        }
    }
    cache.trim(usesBefore);
}

} // namespace veyra
