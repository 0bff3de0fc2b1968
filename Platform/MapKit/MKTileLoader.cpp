#include "Platform/MapKit/MKTileLoader.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/ImageTiles/MKImageTilePlanner.h"
#include "Platform/MapKit/MKHeap.h"

#include <algorithm>
#include <thread>
#include <tuple>

namespace veyra {

namespace {

// As many as there are processors, within reason.
unsigned workerCount() {
    return std::clamp(std::thread::hardware_concurrency(), 2u, 4u);
}

} // namespace

MKTileLoader& MKTileLoader::shared() {
    static auto* const loader = new MKTileLoader;
    return *loader;
}

MKTileLoader::MKTileLoader()
    : _cache(cacheBytes),
      _workers(*new MKTileWorkers(workerCount(),
                                  [this](MKTileResult result) {
                                      dispatch_async(dispatch_get_main_queue(),
                                                     [this, result = std::move(result)] { take(result); });
                                  })),
      _packer(_workers, [this](const MKTile& tile) { _cache.sizeChanged(tile.key()); }) {
    MKImageLoader::shared().setChangeHandler([this] { submitJobs(); });
}

std::shared_ptr<const MKTile> MKTileLoader::cachedTile(const MKTileKey& key) {
    auto tile = _cache.find(key);
    if (tile && tile->quality().freshUntil < static_cast<double>(g_get_real_time()) / 1e6) {
        _cache.remove(key);
        return nullptr;
    }
    return tile;
}

void MKTileLoader::emptyCache() {
    _cache.removeAll();
    MKImageLoader::shared().forgetAll();
}

void MKTileLoader::setWantedTiles(MKTileLoaderClient* client, const std::shared_ptr<const MKTileSource>& source,
                                  std::vector<MKWantedTile> tiles) {
    const auto found =
        std::find_if(_wishes.begin(), _wishes.end(), [&](const Wishes& wishes) { return wishes.client == client; });
    if (found == _wishes.end()) {
        _wishes.push_back({client, source, std::move(tiles)});
    } else {
        found->source = source;
        found->tiles = std::move(tiles);
    }
    submitJobs();
}

void MKTileLoader::removeClient(MKTileLoaderClient* client) {
    std::erase_if(_wishes, [&](const Wishes& wishes) { return wishes.client == client; });
    submitJobs();
}

void MKTileLoader::submitJobs() {
    std::vector<std::pair<double, MKTileJob>> ranked;
    std::unordered_set<MKTileKey> seen;
    for (const Wishes& wishes : _wishes) {
        for (const MKWantedTile& tile : wishes.tiles) {
            ranked.push_back({tile.rank, {tile.key, wishes.source}});
        }
    }
    std::sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) {
        return std::tie(a.first, a.second.key.row, a.second.key.column) <
               std::tie(b.first, b.second.key.row, b.second.key.column);
    });
    if (!ranked.empty()) {
        restAfterAWhile();
    }
    std::vector<MKTileJob> jobs, standIns;
    MKImageLoader::shared().beginWanting();
    for (auto& [rank, job] : ranked) {
        _sourcesAtWork.insert(job.source);
        if (seen.insert(job.key).second && prepare(job, rank)) {
            (job.images.isWaiting ? standIns : jobs).push_back(std::move(job));
        }
    }
    MKImageLoader::shared().endWanting();
    forgetStandIns(seen);
    jobs.insert(jobs.end(), std::make_move_iterator(standIns.begin()), std::make_move_iterator(standIns.end()));
    _workers.setJobs(std::move(jobs));
}

bool MKTileLoader::prepare(MKTileJob& job, double rank) {
    if (!job.source->imageSet(job.key.mapType)) {
        return true;
    }
    job.images = MKImageTilePlanner(MKImageLoader::shared(), *job.source, job.key, rank).images();
    if (!job.images.isWaiting) {
        return true;
    }
    const auto drawn = _standIns.find(job.key);
    return job.images.coversAll && (drawn == _standIns.end() || job.images.distance() < drawn->second);
}

void MKTileLoader::forgetStandIns(const std::unordered_set<MKTileKey>& wanted) {
    std::erase_if(_standIns, [&](const auto& entry) { return !wanted.contains(entry.first); });
}

MKTilePicture::Surface MKTileLoader::surfaceOf(const std::shared_ptr<const MKTile>& tile) {
    const bool isUnpacked = tile->picture()->hasPixels();
    auto surface = tile->picture()->surface();
    _packer.use(tile);
    if (!isUnpacked) {
        _cache.sizeChanged(tile->key());
        restAfterAWhile();
    }
    return surface;
}

void MKTileLoader::take(const MKTileResult& result) {
    if (result.tile) {
        _packer.use(result.tile);
    }
    restAfterAWhile();
    if (result.tile && result.failure.empty() && !result.tile->quality().isFinal) {
        takeStandIn(result);
        return;
    }
    if (result.tile && result.failure.empty()) {
        _cache.insert(result.key, result.tile);
    }
    for (Wishes& wishes : _wishes) {
        std::erase_if(wishes.tiles, [&](const MKWantedTile& tile) { return tile.key == result.key; });
    }
    _workers.acknowledge(result.key);
    tell(result);
}

void MKTileLoader::restAfterAWhile() {
    _restTimer.start(dispatch_get_main_queue(), rest, [this] {
        _workers.doWhenIdle([this, sources = std::exchange(_sourcesAtWork, {})] {
            for (const auto& source : sources) {
                source->rest();
            }
            _workers.giveHeapBack();
        });
        giveHeapOfThreadBack(); // of the names
    });
}

void MKTileLoader::takeStandIn(const MKTileResult& result) {
    _standIns[result.key] = result.distance;
    _workers.acknowledge(result.key);
    tell(result);
    // Meanwhile the images that it lacked may have come.
    submitJobs();
}

void MKTileLoader::tell(const MKTileResult& result) {
    // A client may take itself or others out while it is told.
    std::vector<MKTileLoaderClient*> clients;
    for (const Wishes& wishes : _wishes) {
        clients.push_back(wishes.client);
    }
    for (MKTileLoaderClient* client : clients) {
        const bool isStillThere =
            std::any_of(_wishes.begin(), _wishes.end(), [&](const Wishes& wishes) { return wishes.client == client; });
        if (isStillThere && result.failure.empty()) {
            client->tileLoaded(result.tile);
        } else if (isStillThere) {
            client->tileFailed(result);
        }
    }
}

} // namespace veyra
