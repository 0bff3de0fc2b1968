// Gets tiles for all maps of the process: from the cache that they share, or from the workers. Main queue only; never
// destroyed. Clients are not owned: each takes itself out before it goes.
#pragma once

#include "Platform/MapKit/MKTileCache.h"
#include "Platform/MapKit/MKTileWorkers.h"

namespace veyra {

/// A tile that a map wants; lower ranks are drawn first.
struct MKWantedTile {
    MKTileKey key;
    double rank;
};

class MKTileLoaderClient {
public:
    virtual ~MKTileLoaderClient() = default;
    /// A tile was drawn, for this map or another one.
    virtual void tileLoaded(const std::shared_ptr<const MKTile>& tile) = 0;
    virtual void tileFailed(const MKTileKey& key, const std::string& reason) = 0;
};

class MKTileLoader {
public:
    /// Bytes of drawn tiles that are kept for all maps together.
    static constexpr size_t cacheBytes = size_t{64} << 20;

    static MKTileLoader& shared();

    std::shared_ptr<const MKTile> cachedTile(const MKTileKey& key) { return _cache.find(key); }
    /// Replaces what the client wants of the source; what it wanted before and no thread has begun is cancelled. The
    /// tiles are not in the cache.
    void setWantedTiles(MKTileLoaderClient* client, const std::shared_ptr<const MKTileSource>& source,
                        std::vector<MKWantedTile> tiles);
    void removeClient(MKTileLoaderClient* client);
    /// For measuring without a warm cache.
    void emptyCache() { _cache.removeAll(); }

private:
    struct Wishes {
        MKTileLoaderClient* client;
        std::shared_ptr<const MKTileSource> source;
        std::vector<MKWantedTile> tiles;
    };
    MKTileLoader();
    void submitJobs();
    void take(const MKTileResult& result);

    MKTileCache _cache;
    std::vector<Wishes> _wishes;
    MKTileWorkers& _workers;
};

} // namespace veyra
