#include "Platform/MapKit/MKByteCache.h"

#include <gtest/gtest.h>

namespace veyra {

namespace {

struct Value {
    size_t size;
    size_t byteSize() const { return size; }
};

} // namespace

TEST(MKByteCache, LetsTheLeastRecentlyUsedGo) {
    MKByteCache<int, Value> cache(30);
    for (int key = 1; key <= 3; ++key) {
        cache.insert(key, std::make_shared<const Value>(Value{10}));
    }
    EXPECT_NE(cache.find(1), nullptr);
    cache.insert(4, std::make_shared<const Value>(Value{10}));
    EXPECT_EQ(cache.find(2), nullptr);
    EXPECT_NE(cache.find(1), nullptr);
    EXPECT_EQ(cache.byteSize(), 30u);
}

TEST(MKByteCache, HoldsMoreOfWhatHasBecomeSmaller) {
    MKByteCache<int, Value> cache(30);
    std::vector<std::shared_ptr<Value>> values;
    for (int key = 0; key < 3; ++key) {
        values.push_back(std::make_shared<Value>(Value{10}));
        cache.insert(key, values.back());
    }
    values[0]->size = values[1]->size = 2;
    cache.sizeChanged(0);
    cache.sizeChanged(1);
    EXPECT_EQ(cache.byteSize(), 14u);
    cache.insert(3, std::make_shared<const Value>(Value{16}));
    EXPECT_NE(cache.find(0), nullptr);
    EXPECT_EQ(cache.byteSize(), 30u);
}

TEST(MKByteCache, LetsOthersGoForWhatHasBecomeLarger) {
    MKByteCache<int, Value> cache(30);
    const auto growing = std::make_shared<Value>(Value{2});
    cache.insert(1, std::make_shared<const Value>(Value{20}));
    cache.insert(2, growing);
    growing->size = 12;
    EXPECT_EQ(cache.byteSize(), 22u);
    cache.sizeChanged(2);
    EXPECT_EQ(cache.find(1), nullptr);
    EXPECT_EQ(cache.byteSize(), 12u);
    cache.remove(2);
    EXPECT_EQ(cache.byteSize(), 0u);
}

TEST(MKByteCache, CountsAValueAsItWasCountedWhenItGoes) {
    MKByteCache<int, Value> cache(30);
    const auto value = std::make_shared<Value>(Value{10});
    cache.insert(1, value);
    value->size = 1;
    cache.sizeChanged(2); // of another one, that is not there
    cache.remove(1);
    EXPECT_EQ(cache.byteSize(), 0u);
}

} // namespace veyra
