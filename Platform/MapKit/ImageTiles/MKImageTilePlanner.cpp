#include "Platform/MapKit/ImageTiles/MKImageTilePlanner.h"

#include <algorithm>

namespace veyra {

namespace {

// An image so many zooms coarser shows nothing of a place.
constexpr int mostLevelsCoarser = 8;

} // namespace

MKImageTilePlanner::MKImageTilePlanner(MKImageLoader& loader, const MKTileSource& source, const MKTileKey& key,
                                       double rank)
    : _loader(loader), _set(source.imageSet(key.mapType)), _rank(rank) {
    for (const MKImageKey& place : source.imagesFor(key)) {
        add(place);
    }
}

const MKImageStatus& MKImageTilePlanner::want(MKImageKey& key) {
    for (;;) {
        const MKImageStatus& status = _loader.want(key, _set, _rank);
        if (status.state != MKImageStatus::State::Absent || key.zoom <= _set->minimumZoom()) {
            return status;
        }
        key = key.parent();
    }
}

void MKImageTilePlanner::add(const MKImageKey& place) {
    MKImageKey key = place;
    const MKImageStatus& status = want(key);
    switch (status.state) {
    case MKImageStatus::State::Ready:
        _images.pieces.push_back({place, key, status.image});
        _images.freshUntil = std::min(_images.freshUntil, status.freshUntil);
        return;
    case MKImageStatus::State::Absent:
        _images.coversAll = false;
        return;
    case MKImageStatus::State::Failed:
        _images.mayPass = status.mayPass && (_images.failure.empty() || _images.mayPass);
        _images.failure = status.failure;
        addCoarser(place, key, false);
        return;
    case MKImageStatus::State::Pending:
        _images.isWaiting = true;
        addCoarser(place, key, true);
        return;
    }
}

void MKImageTilePlanner::addCoarser(const MKImageKey& place, MKImageKey key, bool isWaiting) {
    for (int level = 1; level <= mostLevelsCoarser && key.zoom > 0; ++level) {
        key = key.parent();
        if (auto image = _loader.imageAtHand(key)) {
            _images.pieces.push_back({place, key, std::move(image)});
            if (isWaiting) {
                _images.coarseness = std::max(_images.coarseness, place.zoom - key.zoom);
            }
            return;
        }
    }
    _images.coversAll = false;
}

} // namespace veyra
