// A map on white paper whose delegate gives overlays the views that a test has made for them, and writes down what it
// is asked and told.
#pragma once

#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/MapKit/MKCircleView.h"
#include "Platform/MapKit/MKPolygonView.h"
#include "Platform/MapKit/MKPolylineView.h"

#include <map>

namespace veyra {

using Overlay = std::shared_ptr<MKOverlay>;

/// A source whose every tile is white.
class PaperSource final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override {
        return std::make_shared<const MKTile>(key, MKTileColor{0xffffff});
    }
    MKTileColor backgroundColor(MKMapType) const override { return 0xffffff; }
};

class OverlayDelegate final : public MKMapViewDelegate {
public:
    std::shared_ptr<MKOverlayView> mapViewViewForOverlay(MKMapView& map, const Overlay& overlay) override;
    void mapViewDidAddOverlayViews(MKMapView& map, const std::vector<std::shared_ptr<MKOverlayView>>& added) override;

    std::map<const MKOverlay*, std::shared_ptr<MKOverlayView>> views; ///< none: null is returned
    std::vector<Overlay> asked;
    std::vector<std::vector<Overlay>> reported;
    std::function<void(const Overlay&)> onAsked;
};

class OverlayTest : public MapTest {
protected:
    OverlayTest();

    // Each makes an overlay and a view for it, in red without fill and 4 points wide with mitred corners and butt ends,
    // and returns both; it is not on the map yet.
    struct Line {
        std::shared_ptr<MKPolyline> overlay;
        std::shared_ptr<MKPolylineView> view;
    };
    struct Area {
        std::shared_ptr<MKPolygon> overlay;
        std::shared_ptr<MKPolygonView> view;
    };
    struct Disc {
        std::shared_ptr<MKCircle> overlay;
        std::shared_ptr<MKCircleView> view;
    };
    Line line(const std::vector<CLLocationCoordinate2D>& coordinates);
    Area area(const std::vector<CLLocationCoordinate2D>& coordinates);
    Disc disc(CLLocationCoordinate2D center, double radius);
    /// A filled square without a line, `side` degrees wide.
    Area square(CLLocationCoordinate2D northWest, double side, const std::shared_ptr<UIColor>& color);

    /// Every pixel of the window.
    std::vector<uint32_t> pixels() const;

    static std::shared_ptr<UIColor> color(uint32_t rgb, double alpha = 1);
    std::shared_ptr<OverlayDelegate> overlayDelegate;
};

} // namespace veyra
