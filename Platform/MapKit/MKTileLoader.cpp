#include "Platform/MapKit/MKTileLoader.h"

#include "Platform/Foundation/DispatchQueue.h"

#include <algorithm>
#include <tuple>

namespace veyra {

namespace {

constexpr unsigned workerCount = 2;

} // namespace

MKTileLoader& MKTileLoader::shared() {
    static auto* const loader = new MKTileLoader;
    return *loader;
}

MKTileLoader::MKTileLoader()
    : _cache(cacheBytes), _workers(*new MKTileWorkers(workerCount, [this](MKTileResult result) {
          dispatch_async(dispatch_get_main_queue(), [this, result = std::move(result)] { take(result); });
      })) {}

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
    std::vector<MKTileJob> jobs;
    for (auto& [rank, job] : ranked) {
        if (seen.insert(job.key).second) {
            jobs.push_back(std::move(job));
        }
    }
    _workers.setJobs(std::move(jobs));
}

void MKTileLoader::take(const MKTileResult& result) {
    if (result.tile) {
        _cache.insert(result.tile);
    }
    // A client may take itself or others out while it is told.
    std::vector<MKTileLoaderClient*> clients;
    for (Wishes& wishes : _wishes) {
        std::erase_if(wishes.tiles, [&](const MKWantedTile& tile) { return tile.key == result.key; });
        clients.push_back(wishes.client);
    }
    _workers.acknowledge(result.key);
    for (MKTileLoaderClient* client : clients) {
        const bool isStillThere =
            std::any_of(_wishes.begin(), _wishes.end(), [&](const Wishes& wishes) { return wishes.client == client; });
        if (isStillThere && result.tile) {
            client->tileLoaded(result.tile);
        } else if (isStillThere) {
            client->tileFailed(result.key, result.failure);
        }
    }
}

} // namespace veyra
