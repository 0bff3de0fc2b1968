// An immutable dictionary from strings to values. Any thread.
#pragma once

#include "Platform/Foundation/NSObject.h"

#include <unordered_map>

namespace veyra {

class NSDictionary final : public NSObject {
public:
    VEYRA_CLASS()
    using Map = std::unordered_map<NSString, id>;

    explicit NSDictionary(Map entries) : _entries(std::move(entries)) {}
    /// The value of the key, or nil.
    id objectForKey(const NSString& key) const;
    const Map& entries() const { return _entries; }
    id valueForKey(const NSString& key) override { return objectForKey(key); }

private:
    const Map _entries;
};

} // namespace veyra
