#include "Platform/Foundation/MethodBinding.h"

#include "Platform/Foundation/NSDictionary.h"
#include "Tests/Platform/Foundation/Raised.h"

#include <gtest/gtest.h>

namespace veyra {
namespace {

class Gauge : public NSObject {
public:
    VEYRA_CLASS()

    void setAny(id value) { any = std::move(value); }
    void setReference(const id& value) { any = value; }
    void setFlag(bool value) { any = value; }
    void setNumber(double value) { any = value; }
    void setSingle(float value) { any = value; }
    void setCount(uint64_t value) { any = value; }
    void setAll(double first, bool second, const id& third) { any = NSArray{first, second, third}; }
    void touch() const { ++touches; }

    id anyValue() { return any; }
    NSString text() { return "text"; }
    bool flag() { return true; }
    double number() { return 2.5; }
    std::shared_ptr<NSDictionary> dictionary() { return std::make_shared<NSDictionary>(NSDictionary::Map{}); }
    NSArray array() { return {1, "a"}; }

    id constAny() const { return any; }
    const NSString& constText() const { return stored; }
    bool constFlag() const { return false; }
    double constNumber() const { return -1; }
    uint64_t constCount() const { return 3; }
    std::shared_ptr<NSDictionary> constNothing() const { return nullptr; }
    NSArray constArray() const { return {}; }
    double sum(double a, double b) const { return a + b; }

    id any;
    NSString stored = "stored";
    mutable int touches = 0;
};

Class Gauge::classObject() {
    static const Class cls = new ClassObject("Gauge", NSObject::classObject(),
                                             {bindMethod<&Gauge::setAny>("setAny:"),
                                              bindMethod<&Gauge::setReference>("setReference:"),
                                              bindMethod<&Gauge::setFlag>("setFlag:"),
                                              bindMethod<&Gauge::setNumber>("setNumber:"),
                                              bindMethod<&Gauge::setSingle>("setSingle:"),
                                              bindMethod<&Gauge::setCount>("setCount:"),
                                              bindMethod<&Gauge::setAll>("setFirst:second:third:"),
                                              bindMethod<&Gauge::touch>("touch"),
                                              bindMethod<&Gauge::anyValue>("anyValue"),
                                              bindMethod<&Gauge::text>("text"),
                                              bindMethod<&Gauge::flag>("flag"),
                                              bindMethod<&Gauge::number>("number"),
                                              bindMethod<&Gauge::dictionary>("dictionary"),
                                              bindMethod<&Gauge::array>("array"),
                                              bindMethod<&Gauge::constAny>("constAny"),
                                              bindMethod<&Gauge::constText>("constText"),
                                              bindMethod<&Gauge::constFlag>("constFlag"),
                                              bindMethod<&Gauge::constNumber>("constNumber"),
                                              bindMethod<&Gauge::constCount>("constCount"),
                                              bindMethod<&Gauge::constNothing>("constNothing"),
                                              bindMethod<&Gauge::constArray>("constArray"),
                                              bindMethod<&Gauge::sum>("sum:with:")});
    return cls;
}

id perform(Gauge& gauge, SEL selector, const NSArray& arguments = {}) {
    return gauge.performSelector(selector, arguments);
}

std::string typesOf(SEL selector) {
    return Gauge::classObject()->method(selector)->types;
}

TEST(MethodBinding, HandsValuesThroughUnchanged) {
    Gauge gauge;
    perform(gauge, "setAny:", {"a"});
    EXPECT_EQ(gauge.any, id("a"));
    perform(gauge, "setReference:", {WebUndefined{}});
    EXPECT_TRUE(gauge.any.isUndefined());
}

TEST(MethodBinding, ConvertsArgumentsByThePlatformsRules) {
    Gauge gauge;
    perform(gauge, "setFlag:", {"yes"});
    EXPECT_TRUE(gauge.any.isBoolean());
    EXPECT_EQ(gauge.any, id(true));
    perform(gauge, "setNumber:", {" 2.5x"});
    EXPECT_EQ(gauge.any, id(2.5));
    perform(gauge, "setSingle:", {0.1});
    EXPECT_EQ(gauge.any, id(static_cast<double>(0.1F)));
    perform(gauge, "setCount:", {3.9});
    EXPECT_EQ(gauge.any, id(3));
    perform(gauge, "setNumber:", {nullptr});
    EXPECT_EQ(gauge.any, id(0));
    perform(gauge, "setFirst:second:third:", {"1", 0, "last"});
    EXPECT_EQ(gauge.any, id(NSArray{1, false, "last"}));
}

TEST(MethodBinding, RaisesForArgumentsWithoutTheConversion) {
    Gauge gauge;
    EXPECT_EQ(raisedBy([&] { perform(gauge, "setNumber:", {WebUndefined{}}); }),
              "NSInvalidArgumentException: -[WebUndefined doubleValue]: unrecognized selector sent to instance");
    EXPECT_EQ(raisedBy([&] { perform(gauge, "setCount:", {"3"}); }),
              "NSInvalidArgumentException: -[NSString unsignedIntegerValue]: unrecognized selector sent to instance");
    EXPECT_TRUE(gauge.any.isNil());
}

TEST(MethodBinding, TurnsResultsIntoValues) {
    Gauge gauge;
    gauge.any = "kept";
    EXPECT_EQ(perform(gauge, "anyValue"), id("kept"));
    EXPECT_EQ(perform(gauge, "text"), id("text"));
    EXPECT_TRUE(perform(gauge, "flag").isBoolean());
    EXPECT_EQ(perform(gauge, "number"), id(2.5));
    EXPECT_NE(perform(gauge, "dictionary").as<NSDictionary>(), nullptr);
    EXPECT_EQ(perform(gauge, "array"), id(NSArray{1, "a"}));
    EXPECT_TRUE(perform(gauge, "touch").isNil());
    EXPECT_EQ(gauge.touches, 1);
}

TEST(MethodBinding, BindsConstMembers) {
    Gauge gauge;
    gauge.any = "kept";
    EXPECT_EQ(perform(gauge, "constAny"), id("kept"));
    EXPECT_EQ(perform(gauge, "constText"), id("stored"));
    EXPECT_EQ(perform(gauge, "constFlag"), id(false));
    EXPECT_EQ(perform(gauge, "constNumber"), id(-1));
    EXPECT_EQ(perform(gauge, "constCount"), id(3));
    EXPECT_TRUE(perform(gauge, "constNothing").isNil());
    EXPECT_EQ(perform(gauge, "constArray"), id(NSArray()));
    EXPECT_EQ(perform(gauge, "sum:with:", {1, "2"}), id(3));
}

TEST(MethodBinding, EncodesTypes) {
    EXPECT_EQ(typesOf("setAny:"), "v@:@");
    EXPECT_EQ(typesOf("setReference:"), "v@:@");
    EXPECT_EQ(typesOf("setFlag:"), "v@:c");
    EXPECT_EQ(typesOf("setCount:"), "v@:Q");
    EXPECT_EQ(typesOf("setSingle:"), "v@:d");
    EXPECT_EQ(typesOf("setFirst:second:third:"), "v@:dc@");
    EXPECT_EQ(typesOf("constText"), "@@:");
    EXPECT_EQ(typesOf("constCount"), "Q@:");
    EXPECT_EQ(typesOf("sum:with:"), "d@:dd");
    EXPECT_EQ(typesOf("flag"), "c@:");
}

} // namespace
} // namespace veyra
