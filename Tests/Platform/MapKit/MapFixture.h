// A map in a host view in a window, with a delegate that writes down what it is told, and a clock of its own for
// frames.
#pragma once

#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKTile.h"
#include "Platform/UIKit/UIWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace veyra {

/// The map's superview: stores its size in its layout, as the plug-in view does.
class HostView final : public UIView {
public:
    VEYRA_CLASS()
    void layoutSubviews() override { storedSize = bounds().size; }
    CGSize storedSize;
};

class RecordingDelegate final : public MKMapViewDelegate {
public:
    void mapViewWillStartLoadingMap(MKMapView&) override { calls.push_back("willStart"); }
    void mapViewDidFinishLoadingMap(MKMapView&) override { calls.push_back("didFinish"); }
    void mapViewDidFailLoadingMapWithError(MKMapView&, const std::shared_ptr<NSError>& error) override;
    void mapViewRegionWillChangeAnimated(MKMapView& map, bool animated) override;
    void mapViewRegionDidChangeAnimated(MKMapView& map, bool animated) override;

    /// The region calls as "will", "did", with "~" behind them when animated.
    std::vector<std::string> regionCalls() const;
    /// The loading calls.
    std::vector<std::string> loadingCalls() const;

    std::vector<std::string> calls;
    std::vector<MKCoordinateRegion> reported; ///< at every did-change
    std::function<void(MKMapView&)> onWill, onDid;
};

/// Draws one-coloured tiles at once, or fails, or waits until it is let go on.
class TestSource final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override;
    MKTileColor backgroundColor(MKMapType) const override { return 0x0000ff; }
    std::atomic<bool> fails{false};
    std::atomic<bool> blocked{false};
    mutable std::atomic<int> drawn{0};
    /// Of the tiles drawn so far, in device pixels a map point.
    std::set<double> drawnScales() const {
        const std::lock_guard guard(_mutex);
        return _drawnScales;
    }

private:
    mutable std::mutex _mutex;
    mutable std::set<double> _drawnScales; // guarded by _mutex
};

class MapTest : public ::testing::Test {
protected:
    MapTest();
    ~MapTest() override;

    /// Runs what is queued on the main queue now.
    void runQueue();
    /// One frame, a sixtieth of a second later, and what is queued.
    std::vector<PixelRect> frame();
    void frames(int count);
    /// Frames until the window is idle; fails the test after ten seconds.
    void settle();
    /// Gives the window its size and waits for the first picture; forgets what was reported.
    void show(CGSize size = {400, 300}, double scale = 1);
    uint32_t pixelAt(int x, int y) const;
    uint32_t pixelAt(CLLocationCoordinate2D coordinate) const;
    /// Row by row.
    std::vector<uint32_t> pixels() const;

    void touch(int64_t identifier, UITouchPhase phase, CGPoint at, UITouchType type = UITouchType::Direct);
    void scroll(CGPoint at, double deltaY, bool pinches = false);
    bool key(const std::string& name);
    MKMapPoint mapPointAt(CGPoint point) const;

    double now = 100; ///< seconds, of frames and events
    std::shared_ptr<TestSource> source;
    std::shared_ptr<UIWindow> window;
    std::shared_ptr<HostView> host;
    std::shared_ptr<MKMapView> map;
    std::shared_ptr<RecordingDelegate> delegate;
};

using Calls = std::vector<std::string>;

} // namespace veyra
