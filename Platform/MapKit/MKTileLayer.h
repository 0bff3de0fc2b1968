// The picture of the world under everything else in a map view, put together from tiles. Main queue only; owned by its
// map view.
//
// A map that rests, or moves at its scale, is drawn from tiles of its exact scale, pixel for pixel. While the scale
// changes, tiles of the nearest half zoom step, or of the nearest whole one when it changes fast, are drawn scaled.
// Until a tile has come, what is held of other scales is shown in its place: there is always the whole world at a low
// zoom.
#pragma once

#include "Platform/MapKit/MKTileGrid.h"
#include "Platform/MapKit/MKTileLoader.h"
#include "Platform/UIKit/UIView.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace veyra {

/// What a map view shows at the moment.
struct MKTileScene {
    MKCamera camera;
    CGSize viewSize;
    double deviceScale = 1;
    MKMapType mapType = MKMapTypeStandard;
    UIUserInterfaceStyle style = UIUserInterfaceStyleLight;
    bool scaleIsChanging = false;
    std::optional<MKCamera> destination; ///< where a movement leads
    friend bool operator==(const MKTileScene&, const MKTileScene&) = default;
};

class MKTileLayer final : private MKTileLoaderClient {
public:
    /// `arrived` is called with an area of the view (points) whose picture has become better; `failed` with the reason
    /// when a tile that the scene needs cannot be had, and whether that may pass.
    MKTileLayer(std::shared_ptr<const MKTileSource> source, std::function<void(const CGRect&)> arrived,
                std::function<void(const std::string&, bool)> failed);
    ~MKTileLayer() override;

    /// Takes another source; what the former one has drawn stays until it is replaced. Failures are forgotten.
    void setSource(std::shared_ptr<const MKTileSource> source);
    const MKTileSource& source() const { return *_source; }
    /// Says what is shown from now on and asks for the tiles that it lacks, nearest to the middle first.
    void setScene(const MKTileScene& scene);
    /// Draws the scene, inside the context's clip.
    void draw(const UIGraphicsContext& context) const;

    /// What was shown last; nothing before the first time.
    const std::optional<MKTileScene>& scene() const { return _scene; }

    /// True while the scene lacks tiles that may still come.
    bool isWaiting() const { return _missing > 0; }
    /// True when, as far as all was there the last time, the source had nothing of the scene, and the world is shown in
    /// its place.
    bool showsWorldAlone();
    /// Lets failed tiles be asked for again with the next scene.
    void forgetFailures();

private:
    class Painter;
    void tileLoaded(const std::shared_ptr<const MKTile>& tile) override;
    void tileFailed(const MKTileResult& result) override;
    void reportArrival(const MKTileKey& key);

    MKTileKey keyFor(double scale, int32_t column, int32_t row) const;
    /// The scale of the tiles that the scene needs, in device pixels a map point.
    double neededScale() const;
    /// Finds out whether the scale changes fast.
    void followZoom(double scaleBefore);
    /// Wants the tiles of a scale in an area that are neither held nor failed; returns how many those are.
    size_t want(double scale, const MKPixelView& view, const PixelRect& area, double rank);
    void wantOverview();
    /// True when the tile itself, not what stands in for it, is held or in the cache, from which it is taken.
    bool isHeld(const MKTileKey& key);
    void forgetUseless();
    UIUserInterfaceStyle shownStyle() const;
    bool isOverview(const MKTileKey& key) const;
    bool needs(const MKTileKey& key) const;

    std::shared_ptr<const MKTileSource> _source;
    const std::function<void(const CGRect&)> _arrived;
    const std::function<void(const std::string&, bool)> _failedCallback;

    std::optional<MKTileScene> _scene;
    MKPixelView _view;
    std::unordered_map<MKTileKey, std::shared_ptr<const MKTile>> _held;
    std::unordered_set<MKTileKey> _failed;
    std::vector<MKWantedTile> _wanted;
    size_t _missing = 0;
    bool _zoomsFast = false;
    bool _failedInScene = false;
    bool _showsWorldAlone = false;
    bool _isStale = true; // something has changed since the scene was set
};

} // namespace veyra
