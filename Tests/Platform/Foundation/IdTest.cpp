#include "Platform/Foundation/id.h"

#include "Platform/Foundation/NSJSONSerialization.h"
#include "Tests/Platform/Foundation/Raised.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <unordered_map>

namespace veyra {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

id nullObject() {
    return std::make_shared<NSNull>();
}

// A pointer is no boolean.
static_assert(!std::is_constructible_v<id, void*>);
static_assert(!std::is_constructible_v<id, NSObject*>);
static_assert(std::is_nothrow_move_constructible_v<id>);
// There may be millions.
static_assert(sizeof(id) == 2 * sizeof(void*));

TEST(Id, KnowsItsKind) {
    EXPECT_TRUE(id().isNil());
    EXPECT_TRUE(id(nullptr).isNil());
    EXPECT_TRUE(id(std::shared_ptr<NSNull>()).isNil());
    EXPECT_FALSE(static_cast<bool>(id()));
    EXPECT_TRUE(id(WebUndefined{}).isUndefined());
    EXPECT_TRUE(static_cast<bool>(id(WebUndefined{})));
    EXPECT_TRUE(id(false).isBoolean());
    EXPECT_TRUE(id(false).isNumber());
    EXPECT_TRUE(id(1).isNumber());
    EXPECT_FALSE(id(1).isBoolean());
    EXPECT_TRUE(id("1").isString());
    EXPECT_TRUE(id(NSArray()).isArray());
    EXPECT_TRUE(nullObject().isObject());
}

TEST(Id, GivesBackWhatIsInside) {
    EXPECT_EQ(*id("text").string(), NSString("text"));
    EXPECT_EQ(id(1).string(), nullptr);
    EXPECT_EQ(id(NSArray{1, 2}).array()->size(), 2U);
    EXPECT_EQ(id("text").array(), nullptr);
    const auto object = std::make_shared<NSNull>();
    EXPECT_EQ(id(object).object(), object);
    EXPECT_EQ(id(object).as<NSNull>(), object);
    EXPECT_EQ(id(object).as<NSDictionary>(), nullptr);
    EXPECT_EQ(id("text").object(), nullptr);
    EXPECT_EQ(id("text").as<NSNull>(), nullptr);
}

TEST(Id, ConvertsNumbersAndBooleans) {
    EXPECT_EQ(id(2.5).doubleValue(), 2.5);
    EXPECT_EQ(id(37.123456789).floatValue(), 37.123456789F);
    EXPECT_EQ(id(true).doubleValue(), 1);
    EXPECT_EQ(id(true).floatValue(), 1);
    EXPECT_EQ(id(true).intValue(), 1);
    EXPECT_EQ(id(false).doubleValue(), 0);
    EXPECT_EQ(id(true).unsignedIntegerValue(), 1U);
    EXPECT_TRUE(id(-0.25).boolValue());
    EXPECT_FALSE(id(-0.0).boolValue());
    EXPECT_FALSE(id(false).boolValue());
    EXPECT_TRUE(std::isnan(id(nan).doubleValue()));
}

TEST(Id, TruncatesAndClampsIntegers) {
    EXPECT_EQ(id(12.9).intValue(), 12);
    EXPECT_EQ(id(-12.9).intValue(), -12);
    EXPECT_EQ(id(1e10).intValue(), 2147483647);
    EXPECT_EQ(id(-1e10).intValue(), -2147483647 - 1);
    EXPECT_EQ(id(infinity).intValue(), 2147483647);
    EXPECT_EQ(id(-infinity).intValue(), -2147483647 - 1);
    EXPECT_EQ(id(nan).intValue(), 0);
}

TEST(Id, TruncatesAndWrapsUnsignedIntegers) {
    EXPECT_EQ(id(3.99).unsignedIntegerValue(), 3U);
    EXPECT_EQ(id(-0.5).unsignedIntegerValue(), 0U);
    EXPECT_EQ(id(-1).unsignedIntegerValue(), UINT64_MAX);
    EXPECT_EQ(id(-2.7).unsignedIntegerValue(), UINT64_MAX - 1);
    EXPECT_EQ(id(0x1p63).unsignedIntegerValue(), uint64_t{1} << 63);
    EXPECT_EQ(id(0x1p64).unsignedIntegerValue(), UINT64_MAX);
    EXPECT_EQ(id(infinity).unsignedIntegerValue(), UINT64_MAX);
    EXPECT_EQ(id(-infinity).unsignedIntegerValue(), uint64_t{1} << 63);
    EXPECT_EQ(id(nan).unsignedIntegerValue(), 0U);
}

TEST(Id, ConvertsStringsByTheirOwnRules) {
    EXPECT_EQ(id(" 12.5km").doubleValue(), 12.5);
    EXPECT_EQ(id("12.5").floatValue(), 12.5F);
    EXPECT_EQ(id("12.9").intValue(), 12);
    EXPECT_TRUE(id("yes").boolValue());
    EXPECT_FALSE(id("no").boolValue());
}

TEST(Id, ConvertsNilToNothing) {
    EXPECT_EQ(id().doubleValue(), 0);
    EXPECT_EQ(id().floatValue(), 0.F);
    EXPECT_EQ(id().intValue(), 0);
    EXPECT_FALSE(id().boolValue());
    EXPECT_EQ(id().unsignedIntegerValue(), 0U);
    EXPECT_FALSE(id().isEqualToString(""));
}

TEST(Id, RaisesForValuesWithoutTheConversion) {
    const auto unrecognized = [](const char* message) {
        return "NSInvalidArgumentException: -[" + std::string(message) + "]: unrecognized selector sent to instance";
    };
    const id undefined = WebUndefined{};
    const id array = NSArray{1};
    EXPECT_EQ(raisedBy([&] { undefined.doubleValue(); }), unrecognized("WebUndefined doubleValue"));
    EXPECT_EQ(raisedBy([&] { undefined.isEqualToString("a"); }), unrecognized("WebUndefined isEqualToString:"));
    EXPECT_EQ(raisedBy([&] { array.floatValue(); }), unrecognized("NSArray floatValue"));
    EXPECT_EQ(raisedBy([&] { array.intValue(); }), unrecognized("NSArray intValue"));
    EXPECT_EQ(raisedBy([&] { nullObject().boolValue(); }), unrecognized("NSNull boolValue"));
    EXPECT_EQ(raisedBy([&] { nullObject().isEqualToString("a"); }), unrecognized("NSNull isEqualToString:"));
    EXPECT_EQ(raisedBy([&] { id("7").unsignedIntegerValue(); }), unrecognized("NSString unsignedIntegerValue"));
    EXPECT_EQ(raisedBy([&] { array.unsignedIntegerValue(); }), unrecognized("NSArray unsignedIntegerValue"));
}

TEST(Id, ComparesWithAString) {
    EXPECT_TRUE(id("miter").isEqualToString("miter"));
    EXPECT_FALSE(id("Miter").isEqualToString("miter"));
    EXPECT_FALSE(id(5).isEqualToString("5"));
    EXPECT_FALSE(id(true).isEqualToString("1"));
}

TEST(Id, LooksUpKeysInObjectsAlone) {
    const id dictionary = std::make_shared<NSDictionary>(NSDictionary::Map{{"latitude", 48.2}});
    EXPECT_EQ(dictionary.valueForKey("latitude"), id(48.2));
    EXPECT_TRUE(dictionary.valueForKey("longitude").isNil());
    EXPECT_TRUE(id().valueForKey("latitude").isNil());
    const auto undefinedKey = [](const char* cls) {
        return "NSUnknownKeyException: [<" + std::string(cls) +
               "> valueForUndefinedKey:]: this class is not key value coding-compliant for the key foo.";
    };
    EXPECT_EQ(raisedBy([] { id(5).valueForKey("foo"); }), undefinedKey("NSNumber"));
    EXPECT_EQ(raisedBy([] { id("text").valueForKey("foo"); }), undefinedKey("NSString"));
    EXPECT_EQ(raisedBy([] { id(NSArray()).valueForKey("foo"); }), undefinedKey("NSArray"));
    EXPECT_EQ(raisedBy([] { id(WebUndefined{}).valueForKey("foo"); }), undefinedKey("WebUndefined"));
    EXPECT_EQ(raisedBy([] { nullObject().valueForKey("foo"); }), undefinedKey("NSNull"));
}

TEST(Id, EqualsByValueAndHashesAlike) {
    const auto same = [](const id& a, const id& b) { return a == b && b == a && a.hash() == b.hash(); };
    EXPECT_TRUE(same(id(), nullptr));
    EXPECT_TRUE(same(WebUndefined{}, WebUndefined{}));
    EXPECT_TRUE(same(1, true));
    EXPECT_TRUE(same(0, false));
    EXPECT_TRUE(same(0.0, -0.0));
    EXPECT_TRUE(same(nan, -nan));
    EXPECT_TRUE(same("a", NSString(u"a")));
    EXPECT_TRUE(same(NSArray{1, "a", nan, nullptr}, NSArray{true, "a", nan, nullptr}));
    const id object = nullObject();
    EXPECT_TRUE(same(object, id(object)));
    EXPECT_TRUE(same(NSArray{object}, NSArray{object}));
}

TEST(Id, TellsDifferentValuesApart) {
    EXPECT_FALSE(id() == id(WebUndefined{}));
    EXPECT_FALSE(id() == id(0));
    EXPECT_FALSE(id() == id(""));
    EXPECT_FALSE(id(1) == id("1"));
    EXPECT_FALSE(id("1") == id(1));
    EXPECT_FALSE(id(2) == id(true));
    EXPECT_FALSE(id("a") == id("A"));
    EXPECT_FALSE(nullObject() == nullObject());
    EXPECT_FALSE(id(NSArray{1, 2}) == id(NSArray{2, 1}));
    EXPECT_FALSE(id(NSArray{1, 2}) == id(NSArray{1}));
    EXPECT_FALSE(id(NSArray()) == id());
}

TEST(Id, CopiesShareWhatTheLastOneReleases) {
    auto object = std::make_shared<NSNull>();
    const std::weak_ptr<NSNull> released = object;
    id first(std::move(object)), second = first;
    EXPECT_EQ(first.object(), second.object());
    id moved = std::move(first);
    EXPECT_EQ(moved.object(), second.object());
    const id array(NSArray{moved});
    const id sameArray = array;
    EXPECT_EQ(array.array(), sameArray.array());
    moved = 1;
    second = id();
    EXPECT_FALSE(released.expired());
    id last = array;
    last = "text";
    EXPECT_EQ(sameArray.array()->front().object(), released.lock());
}

TEST(Id, IsReleasedWithItsArray) {
    auto object = std::make_shared<NSNull>();
    const std::weak_ptr<NSNull> released = object;
    {
        const id array(NSArray{id(std::move(object)), 2});
        const id copy = array;
        EXPECT_FALSE(released.expired());
    }
    EXPECT_TRUE(released.expired());
}

TEST(Id, OfAnObjectThatWasMovedFromHasNone) {
    id object = nullObject(), array(NSArray{1});
    const id taken = std::move(object), takenArray = std::move(array);
    EXPECT_EQ(object.object(), nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(array.array(), nullptr);   // NOLINT(bugprone-use-after-move)
    object = 3;
    EXPECT_EQ(object, id(3));
}

TEST(Id, ServesAsAKey) {
    const id object = nullObject();
    const std::unordered_map<id, int> registry{{"home", 1}, {7, 2}, {nan, 3}, {object, 4}};
    EXPECT_EQ(registry.at("home"), 1);
    EXPECT_EQ(registry.at(7.0), 2);
    EXPECT_EQ(registry.at(nan), 3);
    EXPECT_EQ(registry.at(object), 4);
    EXPECT_FALSE(registry.contains("7"));
    EXPECT_FALSE(registry.contains(nullObject()));
}

} // namespace
} // namespace veyra
