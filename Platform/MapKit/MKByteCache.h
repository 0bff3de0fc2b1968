// The most recently used values of a kind, bounded in bytes. One thread; values are shared and live on after they have
// left the cache. A value tells its size by `byteSize()`, and who changes that tells the cache.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <unordered_map>
#include <utility>

namespace veyra {

template <class Key, class Value>
class MKByteCache {
public:
    explicit MKByteCache(size_t byteLimit) : _byteLimit(byteLimit) {}

    /// The value, now the most recently used one, or null.
    std::shared_ptr<const Value> find(const Key& key) {
        const auto found = _entries.find(key);
        if (found == _entries.end()) {
            return nullptr;
        }
        _order.splice(_order.begin(), _order, found->second);
        return found->second->value;
    }
    /// Adds or replaces a value; the least recently used ones beyond the limit go, the new one may be among them.
    void insert(const Key& key, const std::shared_ptr<const Value>& value) {
        remove(key);
        _order.push_front({key, value, 0});
        _entries[key] = _order.begin();
        sizeChanged(key);
    }
    /// Says that a value, which need not be there, takes more memory or less than before.
    void sizeChanged(const Key& key) {
        if (const auto found = _entries.find(key); found != _entries.end()) {
            Entry& entry = *found->second;
            _byteSize -= std::exchange(entry.byteSize, entry.value->byteSize());
            _byteSize += entry.byteSize;
        }
        while (_byteSize > _byteLimit) {
            removeEntry(std::prev(_order.end()));
        }
    }
    void remove(const Key& key) {
        if (const auto found = _entries.find(key); found != _entries.end()) {
            removeEntry(found->second);
        }
    }
    void removeAll() {
        _entries.clear();
        _order.clear();
        _byteSize = 0;
    }
    size_t byteSize() const { return _byteSize; }

private:
    struct Entry {
        Key key;
        std::shared_ptr<const Value> value;
        size_t byteSize; // as counted in the whole
    };
    using Order = std::list<Entry>; // most recently used first
    void removeEntry(typename Order::iterator entry) {
        _byteSize -= entry->byteSize;
        _entries.erase(entry->key);
        _order.erase(entry);
    }

    const size_t _byteLimit;
    size_t _byteSize = 0;
    Order _order;
    std::unordered_map<Key, typename Order::iterator> _entries;
};

} // namespace veyra
