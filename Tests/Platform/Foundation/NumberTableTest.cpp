// A table of numbers beside the library's own map, and the array whose elements stay where they are.
#include "Platform/Foundation/NumberTable.h"
#include "Platform/Foundation/BlockArray.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <unordered_map>

namespace veyra {

namespace {

/// Hashes that fall together, and others.
size_t hashOf(uint32_t key) {
    return key % 3 == 0 ? key % 7 : std::hash<std::string>()(std::to_string(key));
}

} // namespace

TEST(NumberTable, FindsWhatIsThereAndNothingElse) {
    std::mt19937 random(3);
    NumberTable table;
    std::unordered_map<uint32_t, uint32_t> numbers; // by key
    std::unordered_map<uint32_t, uint32_t> keys;    // by number
    const auto find = [&](uint32_t key) {
        return table.find(hashOf(key), [&](uint32_t number) { return keys.at(number) == key; });
    };
    uint32_t next = 0;
    for (int step = 0; step < 60000; ++step) {
        const bool grows = step % 20000 < 12000;
        const auto key = static_cast<uint32_t>(random() % 3000);
        const auto known = numbers.find(key);
        ASSERT_EQ(find(key), known == numbers.end() ? NumberTable::none : known->second);
        if (known == numbers.end() && grows) {
            keys[next] = key;
            numbers[key] = next;
            table.insert(hashOf(key), next++);
        } else if (known != numbers.end() && random() % 4 == 0) {
            keys[next] = key;
            table.replace(hashOf(key), std::exchange(known->second, next), next);
            ++next;
        } else if (known != numbers.end() && !grows) {
            table.remove(hashOf(key), known->second);
            numbers.erase(known);
        }
        ASSERT_EQ(table.size(), numbers.size());
    }
    for (uint32_t key = 0; key < 3000; ++key)
        EXPECT_EQ(find(key), numbers.contains(key) ? numbers[key] : NumberTable::none);
}

TEST(NumberTable, OfNothingFindsNothing) {
    NumberTable table;
    EXPECT_EQ(table.find(5, [](uint32_t) { return true; }), NumberTable::none);
    table.insert(5, 0);
    table.remove(5, 0);
    EXPECT_EQ(table.find(5, [](uint32_t) { return true; }), NumberTable::none);
}

TEST(BlockArray, KeepsItsElementsInTheirPlaces) {
    BlockArray<std::string> array;
    array.resize(1);
    array[0] = "first";
    const std::string* const first = &array[0];
    array.resize(3000);
    array.back() = "last";
    EXPECT_EQ(first, &array[0]);
    EXPECT_EQ(array[0], "first");
    EXPECT_EQ(array[2999], "last");
    array.resize(2999);
    array.resize(3000);
    EXPECT_EQ(array[2999], "") << "an element that was taken away comes back as a new one";
    array.clear();
    EXPECT_TRUE(array.empty());
}

TEST(BlockArray, GivesUpWhatItsElementsHold) {
    const auto value = std::make_shared<int>(1);
    BlockArray<std::shared_ptr<int>> array;
    array.resize(1000);
    for (size_t i = 0; i < array.size(); ++i)
        array[i] = value;
    array.resize(300);
    EXPECT_EQ(value.use_count(), 301);
    array.clear();
    EXPECT_EQ(value.use_count(), 1);
}

} // namespace veyra
