// Threads that draw tiles. One set a process, made with the first tile and never destroyed; every method may be called
// on any thread and none waits for a drawing.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSLock.h"
#include "Platform/MapKit/ImageTiles/MKTileImages.h"
#include "Platform/MapKit/MKTile.h"

#include <condition_variable>
#include <deque>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

namespace veyra {

/// One tile to draw.
struct MKTileJob {
    MKTileKey key;
    std::shared_ptr<const MKTileSource> source;
    MKTileImages images{}; ///< of a source that puts tiles together from images
};

/// What became of a job: the tile, or why there is none, or both when the tile stands in for what cannot be had.
struct MKTileResult {
    MKTileKey key;
    std::shared_ptr<const MKTile> tile;
    std::string failure;
    bool mayPass = false; ///< the failure may pass
    int distance = 0;     ///< MKTileImages::distance of what the tile was drawn from
};

class MKTileWorkers {
public:
    using Completion = std::function<void(MKTileResult result)>;

    /// Starts `count` threads; `completion` is called on them, and must not throw.
    MKTileWorkers(unsigned count, Completion completion);
    /// The threads never end.
    ~MKTileWorkers() = delete;

    /// Replaces the jobs that no thread has begun; the first ones are drawn first. A job that is under way, or whose
    /// result has not been taken in by `acknowledge`, is left out.
    void setJobs(std::vector<MKTileJob> jobs) VEYRA_EXCLUDES(_mutex);
    /// Does something once no tile waits to be drawn. It must not throw.
    void doWhenIdle(Block work) VEYRA_EXCLUDES(_mutex);
    /// Has each thread give back to the system what drawing has left free in its part of the heap.
    void giveHeapBack() VEYRA_EXCLUDES(_mutex);
    /// The result of that job has been taken in; the tile may be asked for again.
    void acknowledge(const MKTileKey& key) VEYRA_EXCLUDES(_mutex);

private:
    void run();
    void draw(const MKTileJob& job);
    /// `heapsGivenBack` is the count of a thread.
    std::variant<MKTileJob, Block> takeWork(uint64_t& heapsGivenBack) VEYRA_EXCLUDES(_mutex);

    const Completion _completion;
    NSLock _mutex;
    std::condition_variable_any _workCame;
    std::vector<MKTileJob> _jobs VEYRA_GUARDED_BY(_mutex);            // the next one last
    std::unordered_set<MKTileKey> _underWay VEYRA_GUARDED_BY(_mutex); // begun and not acknowledged
    std::deque<Block> _whenIdle VEYRA_GUARDED_BY(_mutex);
    uint64_t _heapsWantedBack VEYRA_GUARDED_BY(_mutex) = 0; // how many times
};

} // namespace veyra
