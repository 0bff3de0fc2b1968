// Gets images for all maps of the process: from memory, from this machine, or from others, of which none is asked for
// more than six at once. Main queue only; never destroyed.
//
// What is wanted is said anew each time anything changes, between `beginWanting` and `endWanting`; what was wanted
// before and is so no more is cancelled. A request that fails and may do better is made again a little later, up to
// three times; an image that has failed is not asked for again for a while, which grows with every failure.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/ImageTiles/MKImageSet.h"
#include "Platform/MapKit/MKByteCache.h"

#include <functional>
#include <unordered_map>

namespace veyra {

/// What is known of an image that is wanted.
struct MKImageStatus {
    enum class State { Pending, Ready, Absent, Failed };
    State state = State::Pending;
    std::shared_ptr<const MKTileImage> image; ///< when Ready
    double freshUntil = 0;                    ///< when Ready; seconds since 1970
    std::string failure;                      ///< when Failed
    bool mayPass = false;                     ///< when Failed
};

class MKImageLoader {
public:
    /// Bytes of decoded images that are kept for all maps together.
    static constexpr size_t cacheBytes = size_t{32} << 20;
    static constexpr unsigned maximumRequestsToAHost = 6;
    static constexpr int maximumAttempts = 3;

    static MKImageLoader& shared();

    /// `handler` is called, later, when what is known of a wanted image has changed.
    void setChangeHandler(std::function<void()> handler) { _changed = std::move(handler); }
    void beginWanting();
    /// Wants an image of the set, and tells what is known of it. Lower ranks are got first; the lowest counts.
    const MKImageStatus& want(const MKImageKey& key, const std::shared_ptr<const MKImageSet>& set, double rank);
    void endWanting();
    /// An image that is there, wanted or not, or null.
    std::shared_ptr<const MKTileImage> imageAtHand(const MKImageKey& key);
    /// For measuring and tests: forgets images and failures.
    void forgetAll();
    /// Bytes of images that are kept, wanted ones included.
    size_t byteSize() const;

private:
    /// An image in the cache.
    struct Kept {
        std::shared_ptr<const MKTileImage> image;
        double freshUntil;
        size_t byteSize() const { return image->byteSize(); }
    };
    /// A wanted image.
    struct Entry {
        enum class Step { Waiting, Looking, WaitingForHost, Loading, Resting, Settled };
        std::shared_ptr<const MKImageSet> set;
        double rank = 0;
        unsigned wish = 0; ///< number of the wanting that it occurred in last
        Step step = Step::Waiting;
        std::string host;
        int attempts = 0;
        std::shared_ptr<MKImageRequest> request;
        DispatchTimer rest;
        MKImageStatus status;
    };
    /// Why an image was not there when it was asked for.
    struct Failure {
        MKImageStatus status;
        double until = 0; ///< monotonic seconds
        int count = 0;
    };

    MKImageLoader() : _kept(cacheBytes) {}
    void settleFromMemory(const MKImageKey& key, Entry& entry);
    void startRequests();
    void begin(const MKImageKey& key, Entry& entry);
    void ended(const MKImageKey& key, MKImageResult result);
    void failed(const MKImageKey& key, Entry& entry, const MKImageResult& result);
    /// Keeps in mind that there is no image, for so many seconds and longer the more often.
    void remember(const MKImageKey& key, const MKImageStatus& status, double rest);
    void settle(Entry& entry, MKImageStatus status);
    void noteChange();

    std::function<void()> _changed;
    bool _changeIsQueued = false;
    unsigned _wish = 0;
    std::unordered_map<MKImageKey, Entry> _entries;
    MKByteCache<MKImageKey, Kept> _kept;
    std::unordered_map<MKImageKey, Failure> _failures;
    std::unordered_map<std::string, unsigned> _hostFailures; // in a row
};

} // namespace veyra
