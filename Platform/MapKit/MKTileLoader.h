// Gets tiles for all maps of the process: from the cache that they share, or from the workers, which get those of a
// source of images once the images are there; until then they draw what stands in. Main queue only; never destroyed.
// Clients are not owned: each takes itself out before it goes.
#pragma once

#include "Platform/MapKit/MKByteCache.h"
#include "Platform/MapKit/MKTilePacker.h"
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
    /// A tile was drawn, for this map or another one. One that is not final is followed by another, or by a failure.
    virtual void tileLoaded(const std::shared_ptr<const MKTile>& tile) = 0;
    /// A tile cannot be had; what stands in for it, if anything, is in the result.
    virtual void tileFailed(const MKTileResult& result) = 0;
};

class MKTileLoader {
public:
    /// Bytes of drawn tiles that are kept for all maps together.
    static constexpr size_t cacheBytes = size_t{64} << 20;
    /// Seconds without a new tile after which what drawing them has left behind is given back: after their pictures.
    static constexpr double rest = MKTilePacker::rest + 1;

    static MKTileLoader& shared();

    /// The tile, or null.
    std::shared_ptr<const MKTile> cachedTile(const MKTileKey& key);
    /// The picture of a tile that is about to be drawn and has one. Throws std::bad_alloc.
    MKTilePicture::Surface surfaceOf(const std::shared_ptr<const MKTile>& tile);
    /// Replaces what the client wants of the source; what it wanted before and no thread has begun is cancelled. The
    /// tiles are not in the cache.
    void setWantedTiles(MKTileLoaderClient* client, const std::shared_ptr<const MKTileSource>& source,
                        std::vector<MKWantedTile> tiles);
    void removeClient(MKTileLoaderClient* client);
    /// For measuring without a warm cache.
    void emptyCache();
    /// Bytes of drawn tiles in the cache.
    size_t cachedBytes() const { return _cache.byteSize(); }

private:
    struct Wishes {
        MKTileLoaderClient* client;
        std::shared_ptr<const MKTileSource> source;
        std::vector<MKWantedTile> tiles;
    };
    MKTileLoader();
    void submitJobs();
    /// Wants the images of the job's tile. False while there is nothing new to draw it from.
    bool prepare(MKTileJob& job, double rank);
    void forgetStandIns(const std::unordered_set<MKTileKey>& wanted);
    void take(const MKTileResult& result);
    void takeStandIn(const MKTileResult& result);
    void tell(const MKTileResult& result);
    /// Gives back, once no tile has been wanted, come or been unpacked for a while, what drawing has left behind.
    void restAfterAWhile();

    MKByteCache<MKTileKey, MKTile> _cache;
    std::unordered_map<MKTileKey, int> _standIns; // how far those that were drawn are from the tiles
    std::vector<Wishes> _wishes;
    MKTileWorkers& _workers;
    MKTilePacker _packer;
    std::unordered_set<std::shared_ptr<const MKTileSource>> _sourcesAtWork;
    DispatchTimer _restTimer;
};

} // namespace veyra
