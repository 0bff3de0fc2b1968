// Elements that are read ahead in compiled script: native code must not be able to tell, nor must the page.
#include "Platform/WebKit/ScriptElementReader.h"

#include "Tests/Platform/WebKit/BridgeFixture.h"

#include <stdexcept>

namespace veyra {

namespace {

const ScriptKeySequence& sequence() {
    using enum ScriptKeyValue;
    static const auto* const keys =
        new ScriptKeySequence{{{"a", Present}, {"b", String}, {"a", Convertible}, {"c", Any}, {"d", Any}}};
    return *keys;
}

} // namespace

class ScriptElements : public Bridge {
protected:
    ScriptElements() {
        class_replaceMethod(
            WebScriptObject::classObject(),
            "valueForUndefinedKey:", [](NSObject&, std::span<const id>) { return id(); }, "@@:@");
        run("reads = []; spy = object => new Proxy(object, { get(target, key) { reads.push(key); return target[key] } "
            "}); 0");
    }
    ~ScriptElements() override { // absent keys raise again, as other tests expect
        class_replaceMethod(WebScriptObject::classObject(),
                            "valueForUndefinedKey:", NSObject::classObject()->implementation("valueForUndefinedKey:"),
                            "@@:@");
    }
    /// Visits the elements of the script array; `keys` of each that is a script object are read, in that order.
    std::string visit(const std::string& array, const std::vector<NSString>& keys) {
        const auto list = object(array);
        std::string seen;
        visitScriptElements(*list, static_cast<uint64_t>(list->valueForKey("length").doubleValue()), sequence(),
                            [&](const id& element) {
                                seen += seen.empty() ? "" : " | ";
                                if (!element.as<WebScriptObject>()) {
                                    seen += element.description().utf8();
                                    return;
                                }
                                for (const NSString& key : keys)
                                    seen += element.valueForKey(key).description().utf8() + " ";
                            });
        return seen;
    }
    const std::vector<NSString> all{"a", "b", "a", "c", "d"};
};

TEST_F(ScriptElements, HaveTheValuesOfTheirKeys) {
    EXPECT_EQ(
        visit("[{ a: 1, b: 'x', c: true, d: 'y' }, { a: 'p', b: '', c: false, d: {} }, { a: 0.5, b: 'z', c: null }]",
              all),
        "1 x 1 1 y  | p  p 0 WebScriptObject  | 0.5 z 0.5 (null) (null) ");
}

TEST_F(ScriptElements, ThatAreNoScriptObjectsAreWhatTheyAre) {
    EXPECT_EQ(visit("[5, 'text', null, undefined, true, Symbol()]", all),
              "5 | text | (null) | undefined | 1 | undefined");
}

TEST_F(ScriptElements, AreReadOnceForEachKeyOfTheSequenceInItsOrder) {
    visit("[spy({ a: 1, b: 'x' })]", all);
    EXPECT_EQ(run("reads.join()"), "a,b,a,c,d");
}

TEST_F(ScriptElements, AreReadOnlyAsFarAsTheirValuesAreExpected) {
    visit("[spy({}), spy({ a: null }), spy({ a: {} }), spy({ a: 1n }), spy({ a: 1, b: 2 })]", {});
    EXPECT_EQ(run("reads.join()"), "a,a,a,a,a,b");
}

TEST_F(ScriptElements, AreReadOneByOneAfterAnUnexpectedValue) {
    EXPECT_EQ(visit("[spy({ a: 1, b: 2, c: 3, d: 4 })]", all), "1 2 1 3 4 ");
    EXPECT_EQ(run("reads.join()"), "a,b,a,c,d");
}

TEST_F(ScriptElements, AnswerOtherKeysToo) {
    EXPECT_EQ(visit("[{ a: 1, b: 'x', c: 3, d: 4, e: 5 }]", {"e", "b", "a", "c"}), "5 x 1 3 ");
}

TEST_F(ScriptElements, AGetterThatThrowsIsReportedAndItsKeyIsUndefined) {
    EXPECT_EQ(visit("[{ get a() { throw 'no a' } }, { a: 1, b: 'x', get c() { throw 'no c' }, d: 4 }]", all),
              "(null) (null) (null) (null) (null)  | 1 x 1 (null) 4 ");
    EXPECT_EQ(run("errors.join()"), "no a,no a,no c") << "the key comes twice";
}

TEST_F(ScriptElements, AnElementThatCannotBeReadIsUndefined) {
    EXPECT_EQ(visit("({ length: 2, get 0() { throw 'no element' }, 1: 5 })", all), "undefined | 5");
    EXPECT_EQ(run("errors.join()"), "no element");
}

TEST_F(ScriptElements, KeepTheirStringsUnitForUnit) {
    const auto list = object("[{ a: 'a\\ud800', b: '\\0' }]");
    visitScriptElements(*list, 1, sequence(), [&](const id& element) {
        EXPECT_EQ(element.valueForKey("a").string()->units(), std::u16string_view(u"a\xd800", 2));
        EXPECT_EQ(element.valueForKey("b").string()->units(), std::u16string_view(u"\0", 1));
    });
}

TEST_F(ScriptElements, ThatAreKeptOutliveTheirVisitAndOthersCostNothing) {
    std::vector<id> kept;
    const auto list = object("Array.from({ length: 1000 }, (_, i) => ({ a: i, b: 'x' }))");
    visitScriptElements(*list, 1000, sequence(), [&](const id& element) {
        if (kept.size() < 10)
            kept.push_back(element);
    });
    run("0");
    collect();
    for (size_t i = 0; i < kept.size(); ++i)
        EXPECT_EQ(kept[i].valueForKey("a").doubleValue(), static_cast<double>(i));
}

TEST_F(ScriptElements, MayBeWalkedWithinAWalk) {
    std::string seen;
    const auto inner = object("[{ a: 7, b: 'inner' }]");
    const auto list = object("[{ a: 1, b: 'x', c: 2, d: 3 }, { a: 4, b: 'y', c: 5, d: 6 }]");
    visitScriptElements(*list, 2, sequence(), [&](const id& element) {
        seen += element.valueForKey("a").description().utf8() + " ";
        visitScriptElements(*inner, 1, sequence(),
                            [&](const id& other) { seen += other.valueForKey("a").description().utf8() + " "; });
        seen += element.valueForKey("b").description().utf8() + " ";
        seen += element.valueForKey("a").description().utf8() + " ";
        seen += element.valueForKey("c").description().utf8() + " ";
    });
    EXPECT_EQ(seen, "1 7 x 1 2 4 7 y 4 5 ");
}

TEST_F(ScriptElements, AWalkEndsWithItsPage) {
    int visits = 0;
    const auto list = object("Array.from({ length: 10 }, (_, i) => ({ a: i, b: 'x' }))");
    visitScriptElements(*list, 10, sequence(), [&](const id& element) {
        if (++visits == 3)
            context->invalidate();
        EXPECT_EQ(element.valueForKey("a").isNil(), visits == 3);
    });
    EXPECT_EQ(visits, 3);
}

TEST_F(ScriptElements, WhatAVisitThrowsEndsTheWalkAndIsThrownOn) {
    int visits = 0;
    const auto list = object("[{}, {}, {}]");
    EXPECT_THROW(visitScriptElements(*list, 3, sequence(),
                                     [&](const id&) {
                                         if (++visits == 2)
                                             throw std::runtime_error("enough");
                                     }),
                 std::runtime_error);
    EXPECT_EQ(visits, 2);
}

TEST_F(ScriptElements, ReplacedBuiltInsDoNotMatter) {
    run("Array.prototype[Symbol.iterator] = null; Object.prototype.get = () => 1; Function.prototype.call = null; "
        "Object.defineProperty(Object.prototype, '0', { set() { throw 'written' }, configurable: true }); 0");
    EXPECT_EQ(visit("[{ a: 1, b: 'x', c: 2, d: 3 }]", all), "1 x 1 2 3 ");
    EXPECT_EQ(run("errors.length"), "0");
}

} // namespace veyra
