// The picture of the overlays between the base map and the annotations. Main queue only; owned by its map view.
//
// The overlays are drawn into an image somewhat larger than the view, on a thread of their own, and the map's frames
// lay that image over the base map: moved while the map is moved, scaled while it is zoomed. A new one is drawn when
// the view comes near the image's edge, when the figures have changed, and when the scale rests; while the scale
// changes, as often as it costs little. A map at rest shows the exact picture.
#pragma once

#include "Platform/MapKit/MKOverlayImage.h"
#include "Platform/UIKit/UIView.h"

#include <functional>

namespace veyra {

class MKOverlayLayer {
public:
    /// `changed` is called with an area of the view (points) in which the overlays look different now; `drawn` when a
    /// drawing has come to its end, so that the answer of `isWaiting` may be another one.
    MKOverlayLayer(std::function<void(const CGRect&)> changed, std::function<void()> drawn);
    MKOverlayLayer(const MKOverlayLayer&) = delete;
    MKOverlayLayer& operator=(const MKOverlayLayer&) = delete;
    ~MKOverlayLayer();

    /// What is drawn from now on, in order. Figures without anything to see are left out.
    void setFigures(MKOverlayFigures figures);
    /// Says what the view shows from now on.
    void setScene(const MKCamera& camera, CGSize viewSize, double deviceScale, bool scaleIsChanging);
    /// Draws what there is for the scene, inside the context's clip.
    void draw(const UIGraphicsContext& context) const;

    /// True while the exact picture of the scene is still to come.
    bool isWaiting() const;

private:
    bool isShown() const { return _view.scale > 0; }
    bool isExact() const;
    /// True when a picture is of the view's scale and covers the view.
    bool covers(const MKOverlayImage& image) const;
    bool isNearEdge() const;
    bool isGoodEnough() const;
    /// Has a picture drawn when one is needed and none is being drawn.
    void update();
    void draw(const MKOverlayScene& scene);
    void take(std::shared_ptr<const MKOverlayImage> image, double seconds);
    void reportChanges(const MKOverlayImage* image);
    /// Where a part of an image lies in the view now, in pixels, rounded outwards.
    PixelRect placeOf(const PixelRect& part, const MKOverlayImage& image) const;
    /// The shift in pixels between an image, scaled to the view, and the view.
    MKPixelPoint offsetOf(const MKOverlayImage& image) const;

    const std::function<void(const CGRect&)> _changed;
    const std::function<void()> _drawn;
    const std::shared_ptr<MKOverlayLayer*> _self; // held weakly by drawings under way

    std::shared_ptr<const MKOverlayFigures> _figures;
    MKPixelView _view;
    double _deviceScale = 1;
    bool _scaleIsChanging = false;

    std::shared_ptr<const MKOverlayImage> _image;
    std::shared_ptr<MKDrawingTicket> _ticket; // of the drawing under way
    bool _wasAbandoned = false;               // the last drawing: the next one may take its time
    bool _hasFailed = false;                  // no picture of this scene can be had
    double _lastDrawing = 0;                  // seconds that the last picture took
};

} // namespace veyra
