// Which tiles a view needs, asks for and keeps.
#include "Platform/MapKit/MKTileLayer.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// What is asked for first: what is seen, then the overview behind it, where a movement leads, and what lies around.
constexpr double rankVisible = 0;
constexpr double rankOverview = 1e6;
constexpr double rankDestination = 2e6;
constexpr double rankMargin = 3e6;

// Device pixels around the view for which tiles are got ahead: a part of the view, and so many at most.
constexpr int widestMargin = MKTileKey::side / 2, viewsInMargin = 4;
// Tiles of scales so many times finer than the view's cover too little to be worth keeping.
constexpr double finestScaleOfUse = 8;
// Zoom levels that the scale changes by from frame to frame, above which tiles of half steps would be gone again soon
// after they have come, and below which they are got again.
constexpr double fastZoom = 0.03, slowZoom = 0.015;
// The overview: the whole world in one tile.
constexpr double overviewScale = MKTileKey::side / MKWorldSide;

PixelRect wholeOf(const MKPixelView& view) {
    return {0, 0, view.width, view.height};
}

PixelRect withMargin(const MKPixelView& view) {
    const int margin = std::min(std::max(view.width, view.height) / viewsInMargin, widestMargin);
    return {-margin, -margin, view.width + 2 * margin, view.height + 2 * margin};
}

} // namespace

MKTileLayer::MKTileLayer(std::shared_ptr<const MKTileSource> source, std::function<void(const CGRect&)> arrived,
                         std::function<void(const std::string&, bool)> failed)
    : _source(std::move(source)), _arrived(std::move(arrived)), _failedCallback(std::move(failed)) {}

MKTileLayer::~MKTileLayer() {
    if (_scene) {
        MKTileLoader::shared().removeClient(this);
    }
}

void MKTileLayer::setSource(std::shared_ptr<const MKTileSource> source) {
    _source = std::move(source);
    _failed.clear();
    _isStale = true;
    _showsWorldAlone = false;
}

void MKTileLayer::forgetFailures() {
    _isStale |= !_failed.empty();
    _failed.clear();
}

MKTileKey MKTileLayer::keyFor(double scale, int32_t column, int32_t row) const {
    return {_source->identifier(), _scene->mapType, scale, _scene->deviceScale, column, row, shownStyle()};
}

// What is said of the tiles that are there holds until those that are missing have come: names do not come and go with
// every move.
bool MKTileLayer::showsWorldAlone() {
    if (!isWaiting()) {
        const double scale = neededScale();
        const auto tiles = tilesInArea(scale, _view, wholeOf(_view));
        _showsWorldAlone = std::all_of(tiles.begin(), tiles.end(), [&](const MKPlacedTile& placed) {
            const auto held = _held.find(keyFor(scale, placed.column, placed.row));
            return held != _held.end() && held->second->quality().isWorldAlone;
        });
    }
    return _showsWorldAlone;
}

UIUserInterfaceStyle MKTileLayer::shownStyle() const {
    const bool isDark = _scene->style == UIUserInterfaceStyleDark && _source->hasDarkPicture();
    return isDark ? UIUserInterfaceStyleDark : UIUserInterfaceStyleLight;
}

double MKTileLayer::neededScale() const {
    if (!_scene->scaleIsChanging) {
        return _view.scale;
    }
    const double steps = _zoomsFast ? 1 : 2; // a level
    return std::exp2(std::round(steps * std::log2(_view.scale)) / steps);
}

void MKTileLayer::followZoom(double scaleBefore) {
    const double levels = scaleBefore > 0 ? std::abs(std::log2(_view.scale / scaleBefore)) : 0;
    if (!_scene->scaleIsChanging) {
        _zoomsFast = false;
    } else if (levels > 0) {
        _zoomsFast = levels > (_zoomsFast ? slowZoom : fastZoom);
    }
}

void MKTileLayer::setScene(const MKTileScene& scene) {
    if (!_isStale && _scene == scene) {
        return;
    }
    _isStale = false;
    _scene = scene;
    const double scaleBefore = _view.scale;
    _view = MKPixelView(scene.camera, scene.viewSize, scene.deviceScale);
    followZoom(scaleBefore);
    _wanted.clear();
    _failedInScene = false;
    _missing = want(neededScale(), _view, wholeOf(_view), rankVisible);
    wantOverview();
    if (scene.destination) {
        const MKPixelView view(*scene.destination, scene.viewSize, scene.deviceScale);
        want(view.scale, view, wholeOf(view), rankDestination);
    } else if (!scene.scaleIsChanging) {
        want(_view.scale, _view, withMargin(_view), rankMargin);
    }
    forgetUseless();
    MKTileLoader::shared().setWantedTiles(this, _source, _wanted);
}

bool MKTileLayer::isHeld(const MKTileKey& key) {
    const auto held = _held.find(key);
    if (held != _held.end() && held->second->quality().isFinal) {
        return true;
    }
    auto cached = MKTileLoader::shared().cachedTile(key);
    if (!cached) {
        return false;
    }
    _held.insert_or_assign(key, std::move(cached));
    return true;
}

size_t MKTileLayer::want(double scale, const MKPixelView& view, const PixelRect& area, double rank) {
    size_t missing = 0;
    for (const MKPlacedTile& placed : tilesInArea(scale, view, area)) {
        const MKTileKey key = keyFor(scale, placed.column, placed.row);
        if (isHeld(key)) {
            continue;
        }
        if (_failed.contains(key)) {
            _failedInScene |= rank == rankVisible;
            continue;
        }
        const double dx = placed.rect.x + placed.rect.width / 2.0 - view.width / 2.0;
        const double dy = placed.rect.y + placed.rect.height / 2.0 - view.height / 2.0;
        _wanted.push_back({key, rank + std::min(std::hypot(dx, dy), rankOverview / 2)});
        ++missing;
    }
    return missing;
}

void MKTileLayer::wantOverview() {
    const int32_t columns = tileColumns(overviewScale);
    for (int32_t row = 0; row < columns; ++row) {
        for (int32_t column = 0; column < columns; ++column) {
            const MKTileKey key = keyFor(overviewScale, column, row);
            if (!isHeld(key) && !_failed.contains(key)) {
                _wanted.push_back({key, rankOverview});
            }
        }
    }
}

bool MKTileLayer::isOverview(const MKTileKey& key) const {
    return key.scale == overviewScale && key.source == _source->identifier() && key.mapType == _scene->mapType &&
           key.style == shownStyle() && key.deviceScale == _scene->deviceScale;
}

bool MKTileLayer::needs(const MKTileKey& key) const {
    return key == keyFor(neededScale(), key.column, key.row);
}

void MKTileLayer::forgetUseless() {
    // What may be drawn under tiles that are missing, or is ready for the next moves, is kept; with nothing missing at
    // rest only the needed scale is of use.
    const bool othersHelp = _missing > 0 || _failedInScene || _scene->scaleIsChanging || _scene->destination;
    const double destinationScale = _scene->destination ? _scene->destination->scale * _scene->deviceScale : 0;
    std::erase_if(_held, [&](const auto& entry) {
        const MKTileKey& key = entry.first;
        if (isOverview(key) || key == keyFor(destinationScale, key.column, key.row)) {
            return false;
        }
        const bool isOfUse = needs(key) || (othersHelp && key.scale < _view.scale * finestScaleOfUse);
        return !isOfUse || placesOfTile(key, _view, withMargin(_view)).empty();
    });
}

void MKTileLayer::tileLoaded(const std::shared_ptr<const MKTile>& tile) {
    const MKTileKey& key = tile->key();
    const auto wanted =
        std::find_if(_wanted.begin(), _wanted.end(), [&](const MKWantedTile& entry) { return entry.key == key; });
    if (wanted == _wanted.end()) {
        return;
    }
    const double rank = wanted->rank;
    _held.insert_or_assign(key, tile);
    if (tile->quality().isFinal) {
        _isStale = true;
        _wanted.erase(wanted);
        if (rank < rankOverview) {
            --_missing;
        }
    }
    if (rank < rankDestination) {
        reportArrival(key);
    }
}

void MKTileLayer::reportArrival(const MKTileKey& key) {
    const double scale = _scene->deviceScale;
    for (const MKPlacedTile& placed : placesOfTile(key, _view, wholeOf(_view))) {
        _arrived(
            {{placed.rect.x / scale, placed.rect.y / scale}, {placed.rect.width / scale, placed.rect.height / scale}});
    }
}

void MKTileLayer::tileFailed(const MKTileResult& result) {
    const auto wanted = std::find_if(_wanted.begin(), _wanted.end(),
                                     [&](const MKWantedTile& entry) { return entry.key == result.key; });
    if (wanted == _wanted.end()) {
        return;
    }
    const bool isNeeded = wanted->rank < rankOverview;
    _isStale = true;
    _wanted.erase(wanted);
    _failed.insert(result.key);
    if (result.tile) {
        _held.insert_or_assign(result.key, result.tile);
        reportArrival(result.key);
    }
    if (isNeeded) {
        --_missing;
        _failedInScene = true;
        _failedCallback(result.failure, result.mayPass);
    }
}

} // namespace veyra
