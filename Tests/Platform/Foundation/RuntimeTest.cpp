#include "Platform/Foundation/NSObject.h"

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <thread>

namespace veyra {
namespace {

id one(NSObject&, std::span<const id>) {
    return 1;
}
id two(NSObject&, std::span<const id>) {
    return 2;
}

Class baseClass() {
    static const Class cls =
        new ClassObject("RuntimeTestBase", NSObject::classObject(), {{"first", "@@:", one}, {"second", "@@:", one}});
    return cls;
}

Class derivedClass() {
    static const Class cls = new ClassObject("RuntimeTestDerived", baseClass(), {{"second", "d@:", two}});
    return cls;
}

TEST(Runtime, InternsSelectors) {
    const std::string name = "setRegion:animated:";
    EXPECT_TRUE(SEL("setRegion:animated:") == SEL(name.c_str()));
    EXPECT_FALSE(SEL("setRegion:animated:") == SEL("setRegion:"));
    EXPECT_EQ(SEL(name.c_str()).name(), name);
    EXPECT_EQ(std::hash<SEL>()(SEL(name.c_str())), SEL("setRegion:animated:").hash());
}

TEST(Runtime, FindsASelectorOnlyWhenThereIsOne) {
    EXPECT_FALSE(SEL::find("a name that nobody declared").has_value());
    EXPECT_FALSE(SEL::find("a name that nobody declared").has_value());
    const SEL selector("a name that somebody declared");
    EXPECT_TRUE(SEL::find("a name that somebody declared") == selector);
}

TEST(Runtime, FindsClassesByName) {
    const Class cls = baseClass();
    EXPECT_EQ(NSClassFromString("RuntimeTestBase"), cls);
    EXPECT_EQ(NSClassFromString("RuntimeTestNone"), nullptr);
    EXPECT_EQ(cls->name(), "RuntimeTestBase");
    EXPECT_EQ(cls->superclass(), NSObject::classObject());
}

TEST(Runtime, KnowsSubclasses) {
    EXPECT_TRUE(derivedClass()->isSubclassOf(derivedClass()));
    EXPECT_TRUE(derivedClass()->isSubclassOf(NSObject::classObject()));
    EXPECT_FALSE(baseClass()->isSubclassOf(derivedClass()));
}

TEST(Runtime, LooksMethodsUpThroughTheAncestors) {
    EXPECT_EQ(derivedClass()->implementation("first"), one);
    EXPECT_EQ(derivedClass()->implementation("second"), two);
    EXPECT_EQ(baseClass()->implementation("second"), one);
    EXPECT_EQ(derivedClass()->implementation("third"), nullptr);
    EXPECT_EQ(derivedClass()->method("second")->types, "d@:");
    EXPECT_FALSE(derivedClass()->method("third").has_value());
}

TEST(Runtime, ListsOnlyTheMethodsOfTheClassItselfInOrder) {
    const std::vector<Method> methods = baseClass()->methods();
    ASSERT_EQ(methods.size(), 2U);
    EXPECT_EQ(methods[0].selector.name(), "first");
    EXPECT_EQ(methods[1].selector.name(), "second");
    EXPECT_EQ(derivedClass()->methods().size(), 1U);
}

TEST(Runtime, ShowsNothingToScriptsUnlessToldTo) {
    EXPECT_EQ(baseClass()->scripting().webScriptNameForKey, nullptr);
    EXPECT_EQ(baseClass()->scripting().isKeyExcludedFromWebScript, nullptr);
    EXPECT_EQ(baseClass()->scripting().webScriptNameForSelector, nullptr);
    EXPECT_EQ(baseClass()->scripting().isSelectorExcludedFromWebScript, nullptr);
}

TEST(Runtime, ReplacesAndAddsMethods) {
    static auto& classes = *new std::deque<ClassObject>; // classes live for ever
    ClassObject* const parent =
        &classes.emplace_back("RuntimeTestParent", nullptr, std::vector<Method>{{"value", "@@:", one}});
    ClassObject* const child = &classes.emplace_back("RuntimeTestChild", parent, std::vector<Method>{});
    EXPECT_EQ(class_replaceMethod(child, "value", two, "@@:"), nullptr); // added over the inherited one
    EXPECT_EQ(child->implementation("value"), two);
    EXPECT_EQ(parent->implementation("value"), one);
    EXPECT_EQ(class_replaceMethod(child, "value", one, "d@:"), two);
    EXPECT_EQ(child->method("value")->types, "d@:");
    EXPECT_EQ(child->methods().size(), 1U);
}

TEST(Runtime, ReplacesNothingInNoClass) {
    EXPECT_EQ(class_replaceMethod(nullptr, "value", one, "@@:"), nullptr);
}

TEST(Runtime, MayBeAskedWhileAMethodIsReplaced) {
    static ClassObject* const cls = new ClassObject("RuntimeTestShared", baseClass(), {{"value", "@@:", one}});
    std::atomic<bool> stop = false;
    std::thread replacing([&] {
        for (int i = 0; i < 2000; ++i)
            class_replaceMethod(cls, "value", i % 2 ? one : two, "@@:");
        stop = true;
    });
    int strange = 0;
    while (!stop) {
        const IMP found = cls->implementation("value");
        if ((found != one && found != two) || cls->implementation("first") != one)
            ++strange;
    }
    replacing.join();
    EXPECT_EQ(strange, 0);
}

} // namespace
} // namespace veyra
