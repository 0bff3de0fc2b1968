// The names on the map.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/MapKit/MKLabelLayer.h"
#include "Platform/MapKit/MKMapView.h"

#include <exception>

namespace veyra {

namespace {

// What a frame may spend on names that were not drawn before, in seconds: little while the map moves, so that it moves
// smoothly. What is left over is drawn in the frames to come.
constexpr double secondsWhileMoving = 0.002;
constexpr double secondsAtRest = 0.02;

} // namespace

void MKMapView::drawLabels(const UIGraphicsContext& context) {
    const MKTileScene& scene = *_tiles->scene();
    if (_labelsFailed) {
        _labels->drawNone();
        return;
    }
    try {
        const BasemapNames* names = _tiles->source().names(scene.mapType);
        if (names == nullptr && _tiles->showsWorldAlone()) {
            names = _tiles->source().namesOfWorldAlone(scene.mapType);
        }
        if (names == nullptr) {
            _labels->drawNone();
            return;
        }
        _labels->setKeptClear(furnitureAreas());
        const bool isMoving = _changing || _scaleKeepsChanging;
        _labels->draw(context, *names, scene, isMoving ? secondsWhileMoving : secondsAtRest);
    } catch (const std::exception& error) {
        _labelsFailed = true;
        NSLog("MKMapView: the names on the map cannot be drawn: %s", {error.what()});
    }
    if (!_labels->isComplete()) {
        dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this()] {
            if (const auto self = std::static_pointer_cast<MKMapView>(weak.lock())) {
                self->setNeedsDisplay();
            }
        });
    }
}

} // namespace veyra
