// Views that have left the map, waiting under their reuse identifiers to be given out again. Owned by the map's
// annotations; main queue only.
#pragma once

#include "Platform/MapKit/MKAnnotationView.h"

#include <unordered_map>
#include <vector>

namespace veyra {

class MKReuseQueue {
public:
    /// Views beyond that many are let go.
    static constexpr size_t capacity = 10000;

    /// Takes a view that has an identifier.
    void add(std::shared_ptr<MKAnnotationView> view);
    /// The view that was added last under the identifier, or null.
    std::shared_ptr<MKAnnotationView> take(const NSString& identifier);

private:
    std::unordered_map<NSString, std::vector<std::shared_ptr<MKAnnotationView>>> _views;
    size_t _count = 0;
};

} // namespace veyra
