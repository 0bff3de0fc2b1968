// How long an answer of a server may be used again, by its header fields (HTTP's caching rules for a private cache). A
// plain value; any thread. Times are seconds since 1970.
#pragma once

#include "Platform/Foundation/NSURLResponse.h"

namespace veyra {

struct MKImageFreshness {
    bool mayStore = true;    ///< on disk
    bool mayUseStale = true; ///< when the server cannot be asked
    double freshUntil = 0;   ///< not asked for again before
};

/// The rules for a response that came at `now`. Without any word of the server an answer is fresh for a day, or for a
/// tenth of the time since it last changed, a week at most.
MKImageFreshness freshnessOfResponse(const NSURLResponse& response, double now);

} // namespace veyra
