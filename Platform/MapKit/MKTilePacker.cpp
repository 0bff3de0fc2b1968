#include "Platform/MapKit/MKTilePacker.h"

#include <algorithm>

namespace veyra {

namespace {

// What rests a little shorter is packed together with what is due.
constexpr double togetherness = 0.25;

double monotonicSeconds() {
    return static_cast<double>(g_get_monotonic_time()) / 1e6;
}

} // namespace

MKTilePacker::MKTilePacker(MKTileWorkers& workers, std::function<void(const MKTile&)> packed)
    : _workers(workers), _packed(std::move(packed)) {}

void MKTilePacker::use(const std::shared_ptr<const MKTile>& tile) {
    if (!tile->picture() || tile->picture()->packing() == MKTilePicture::Packing::Useless) {
        return;
    }
    _uses[tile].last = monotonicSeconds();
    if (!_timer.isRunning()) {
        _timer.start(dispatch_get_main_queue(), rest, [this] { packRested(); });
    }
}

void MKTilePacker::packRested() {
    const double now = monotonicSeconds();
    double oldest = now;
    for (auto entry = _uses.begin(); entry != _uses.end();) {
        auto& [weak, use] = *entry;
        const auto tile = weak.lock();
        const bool rests = now - use.last > rest - togetherness;
        if (!rests) {
            oldest = std::min(oldest, use.last);
        }
        entry = !tile || (rests && packOrGive(tile, use)) ? _uses.erase(entry) : std::next(entry);
    }
    if (oldest < now) {
        _timer.start(dispatch_get_main_queue(), oldest + rest - now, [this] { packRested(); });
    }
}

bool MKTilePacker::packOrGive(const std::shared_ptr<const MKTile>& tile, Use& use) {
    switch (tile->picture()->packing()) {
    case MKTilePicture::Packing::NotTried:
        if (!std::exchange(use.isGivenToWorkers, true)) {
            giveToWorkers(tile);
        }
        return false;
    case MKTilePicture::Packing::Done:
        tile->picture()->letPixelsGo();
        _packed(*tile);
        return true;
    case MKTilePicture::Packing::Useless:
        return true;
    }
    return true;
}

void MKTilePacker::giveToWorkers(const std::shared_ptr<const MKTile>& tile) {
    _workers.doWhenIdle([this, weak = std::weak_ptr(tile)] {
        if (const auto rested = weak.lock()) {
            rested->picture()->pack();
            dispatch_async(dispatch_get_main_queue(), [this] { packRested(); });
        }
    });
}

} // namespace veyra
