#include "Platform/Foundation/MethodBinding.h"

#include "Tests/Platform/Foundation/Raised.h"

#include <gtest/gtest.h>

namespace veyra {
namespace {

class Place : public NSObject {
public:
    VEYRA_CLASS()
    double latitude() const { return _latitude; }
    void setLatitude(double value) { _latitude = value; }
    void forget() { _latitude = -1; }

private:
    double _latitude = 48.2;
};

Class Place::classObject() {
    static const Class cls =
        new ClassObject("Place", NSObject::classObject(),
                        {bindMethod<&Place::latitude>("latitude"), bindMethod<&Place::setLatitude>("setLatitude:"),
                         bindMethod<&Place::forget>("forget")});
    return cls;
}

/// A class of its own, so that what a test does to it stays with it.
class LenientPlace final : public Place {
public:
    VEYRA_CLASS()
};

Class LenientPlace::classObject() {
    static const Class cls = new ClassObject("LenientPlace", Place::classObject(), {});
    return cls;
}

TEST(NSObject, KnowsItsClass) {
    const auto place = std::make_shared<LenientPlace>();
    EXPECT_EQ(place->isa(), LenientPlace::classObject());
    EXPECT_TRUE(place->isKindOfClass(Place::classObject()));
    EXPECT_TRUE(place->isKindOfClass(NSObject::classObject()));
    EXPECT_FALSE(std::make_shared<Place>()->isKindOfClass(LenientPlace::classObject()));
    EXPECT_EQ(NSClassFromString("NSObject"), NSObject::classObject());
}

TEST(NSObject, IsFoundByClassNameBeforeThereIsAnObject) {
    const Class cls = NSClassFromString("LenientPlace");
    EXPECT_NE(cls, nullptr);
    EXPECT_EQ(cls, LenientPlace::classObject());
}

TEST(NSObject, ReadsAndWritesKeysThroughItsMethods) {
    Place place;
    EXPECT_EQ(place.valueForKey("latitude"), id(48.2));
    place.setValueForKey("-12.5", "latitude");
    EXPECT_EQ(place.valueForKey("latitude"), id(-12.5));
}

TEST(NSObject, RaisesForAnUndefinedKey) {
    Place place;
    EXPECT_EQ(
        raisedBy([&] { place.valueForKey("foo"); }),
        "NSUnknownKeyException: [<Place> valueForUndefinedKey:]: this class is not key value coding-compliant for "
        "the key foo.");
    EXPECT_EQ(
        raisedBy([&] { place.setValueForKey(1, "foo"); }),
        "NSUnknownKeyException: [<Place> setValue:forUndefinedKey:]: this class is not key value coding-compliant "
        "for the key foo.");
}

TEST(NSObject, TakesNoMethodForAKeyThatIsNoGetter) {
    Place place;
    const std::string undefined = "NSUnknownKeyException: [<Place> valueForUndefinedKey:]: this class is not key value "
                                  "coding-compliant for the key ";
    EXPECT_EQ(raisedBy([&] { place.valueForKey("setLatitude:"); }), undefined + "setLatitude:.");
    EXPECT_EQ(raisedBy([&] { place.valueForKey("valueForUndefinedKey:"); }), undefined + "valueForUndefinedKey:.");
    EXPECT_EQ(raisedBy([&] { place.valueForKey("forget"); }), undefined + "forget.");
    EXPECT_EQ(raisedBy([&] { place.valueForKey(""); }), undefined + ".");
    EXPECT_EQ(place.latitude(), 48.2);
    EXPECT_NE(raisedBy([&] { place.setValueForKey(1, "latitude:"); }), "nothing");
    EXPECT_NE(raisedBy([&] { place.setValueForKey(1, ""); }), "nothing");
}

TEST(NSObject, InternsNoKeyThatItIsAskedFor) {
    Place place;
    EXPECT_NE(raisedBy([&] { place.valueForKey("a key out of a page"); }), "nothing");
    EXPECT_FALSE(SEL::find("a key out of a page").has_value());
}

TEST(NSObject, LetsASubclassAnswerUndefinedKeysThroughAReplacedMethod) {
    LenientPlace lenient;
    class_replaceMethod(
        NSClassFromString("LenientPlace"),
        "valueForUndefinedKey:", [](NSObject&, std::span<const id> arguments) { return id(NSArray{arguments[0]}); },
        "@@:@");
    EXPECT_EQ(lenient.valueForKey("foo"), id(NSArray{"foo"}));
    EXPECT_EQ(lenient.valueForUndefinedKey("bar"), id(NSArray{"bar"}));
    EXPECT_EQ(lenient.valueForKey("latitude"), id(48.2));
    Place place;
    EXPECT_NE(raisedBy([&] { place.valueForKey("foo"); }), "nothing");
}

TEST(NSObject, PerformsSelectors) {
    Place place;
    const id latitude = 7;
    EXPECT_TRUE(place.performSelector("setLatitude:", {&latitude, 1}).isNil());
    EXPECT_EQ(place.performSelector("latitude"), id(7));
}

TEST(NSObject, RaisesForASelectorItDoesNotKnow) {
    Place place;
    EXPECT_EQ(raisedBy([&] { place.performSelector("fly"); }),
              "NSInvalidArgumentException: -[Place fly]: unrecognized selector sent to instance");
    EXPECT_EQ(raisedBy([&] { place.performSelector("setLatitude:"); }),
              "NSInvalidArgumentException: -[Place setLatitude:]: unrecognized selector sent to instance");
}

TEST(NSObject, EqualsItselfAndIsCalledByItsClass) {
    const Place a;
    const Place b;
    EXPECT_TRUE(a.isEqual(a));
    EXPECT_FALSE(a.isEqual(b));
    EXPECT_EQ(a.description(), NSString("Place"));
    EXPECT_TRUE(a.attributeKeys().empty());
}

} // namespace
} // namespace veyra
