// Elements that are read ahead in compiled script: native code must not be able to tell, nor must the page.
#include "Platform/WebKit/ScriptElementReader.h"

#include "Tests/Platform/WebKit/BridgeFixture.h"

#include <stdexcept>

namespace veyra {

namespace {

const ScriptKeySequence& sequence(bool isAll = false) {
    using enum ScriptKeyValue;
    const std::vector<ScriptKeySequence::Key> keys{
        {"a", Present}, {"b", String}, {"a", Convertible}, {"c", Any}, {"d", Any}};
    static const auto* const some = new ScriptKeySequence{keys};
    static const auto* const all = new ScriptKeySequence{keys, true};
    return isAll ? *all : *some;
}

// The engine stops threads for a collection in a way that the thread sanitizer does not see through.
#if defined(__has_feature)
constexpr bool isThreadSanitized = __has_feature(thread_sanitizer);
#else
constexpr bool isThreadSanitized = false;
#endif

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
    std::string visit(const std::string& array, const std::vector<NSString>& keys, bool isAll = false) {
        const auto list = object(array);
        std::string seen;
        visitScriptElements(*list, static_cast<uint64_t>(list->valueForKey("length").doubleValue()), sequence(isAll),
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
    void define(const char* name, JSObjectCallAsFunctionCallback function) {
        JSStringRef text = JSStringCreateWithUTF8CString(name);
        JSObjectSetProperty(global, JSContextGetGlobalObject(global), text,
                            JSObjectMakeFunctionWithCallback(global, text, function), kJSPropertyAttributeNone,
                            nullptr);
        JSStringRelease(text);
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

// Elements of simple values wait for each other; nobody may see a difference.
TEST_F(ScriptElements, ThatComeManyAtATimeAreThoseThatComeSingly) {
    run(R"(
        seed = 1;
        below = n => (seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0) % n;
        simple = () => [below(100), below(7) / 8, -1e300, NaN, 'x' + below(10), 'same', '', 'Z\u00fcrich', '\u6771' + below(3),
                        'a\ud800', 'y'.repeat(999), true, false][below(13)];
        any = () => [simple, simple, simple, () => null, () => undefined, () => ({}), () => [1], () => Symbol('s'), () => 5n,
                     () => 'z'.repeat(1001), () => function () {}][below(11)]();
        element = () => {
            const kind = below(40);
            if (kind === 0)
                return [undefined, null, 7, 'text', [], Math.max][below(6)];
            if (kind === 1)
                return { a: any(), b: any(), c: any(), d: any() };
            if (kind === 2)
                return spy({ a: 1, b: 'x', get c() { throw 'no c' }, get d() { return reads.length } });
            const made = { a: simple(), b: 'b' + below(1000) };
            if (below(2))
                made.c = any();
            if (below(2))
                made.d = simple();
            return made;
        };
        list = Array.from({ length: 5000 }, element);
        0)");
    const std::string singly = visit("list", all);
    const std::string readsOfThem = run("reads.splice(0).join() + errors.splice(0).join()");
    EXPECT_GT(singly.size(), 50000u);
    EXPECT_EQ(visit("list", all, true), singly);
    EXPECT_EQ(run("reads.splice(0).join() + errors.splice(0).join()"), readsOfThem);
}

TEST_F(ScriptElements, AGetterMayWalkOverOthersWhileSomeWait) {
    static std::function<void()> walkWithin;
    std::string inner;
    walkWithin = [&] { inner = visit("[{ a: 8, b: 'inner' }, { a: 9, b: 'of two' }]", all, true); };
    const auto walk = [](JSContextRef script, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
        walkWithin();
        return JSValueMakeNumber(script, 3);
    };
    define("walk", walk);
    EXPECT_EQ(visit("[{ a: 1, b: 'x', d: 'first' }, { a: 2, b: 'y', get c() { return walk() } }, { a: 4, b: 'z' }]",
                    all, true),
              "1 x 1 (null) first  | 2 y 2 3 (null)  | 4 z 4 (null) (null) ");
    EXPECT_EQ(inner, "8 inner 8 (null) (null)  | 9 of two 9 (null) (null) ");
}

TEST_F(ScriptElements, ThatWaitEndWithTheirPageAndWithWhatAVisitThrows) {
    int visits = 0;
    const auto list = object("Array.from({ length: 600 }, (_, i) => ({ a: i, b: 'x' }))");
    EXPECT_THROW(visitScriptElements(*list, 600, sequence(true),
                                     [&](const id&) {
                                         if (++visits == 300)
                                             throw std::runtime_error("enough");
                                     }),
                 std::runtime_error);
    EXPECT_EQ(visits, 300);
    std::vector<id> kept;
    visits = 0;
    visitScriptElements(*list, 600, sequence(true), [&](const id& element) {
        kept.push_back(element);
        if (++visits == 400)
            context->invalidate();
        EXPECT_EQ(element.valueForKey("a").doubleValue(), visits - 1) << "it has been read";
    });
    EXPECT_EQ(visits, 400);
    for (const id& element : kept)
        EXPECT_TRUE(element.valueForKey("a").isNil());
}

TEST_F(ScriptElements, ThatWaitCameBeforeWhatEndsTheirPage) {
    static std::function<void()> endPage;
    endPage = [&] { context->invalidate(); };
    const auto end = [](JSContextRef script, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
        endPage();
        return JSValueMakeNumber(script, 3);
    };
    define("end", end);
    for (const char* getter : {"get b()", "get d()"}) {
        EXPECT_EQ(visit(std::string("[{ a: 1, b: 'x' }, { a: 2, b: 'y', ") + getter + " { return end() } }, { a: 3 }]",
                        all, true),
                  "1 x 1 (null) (null) ")
            << getter;
        context = ScriptContext::of(global);
    }
}

TEST_F(ScriptElements, ThatDoNotComeToWaitLeaveNoText) {
    const auto list = object("Array(600000).fill({ a: 'p'.repeat(1000), b: 'q'.repeat(1000), c: 'r'.repeat(1000), "
                             "d: {} })"); // together longer than any string
    const uint64_t count = isThreadSanitized ? 1000 : 600000;
    const uint64_t queued = webThread().queuedBlocks();
    uint64_t visits = 0;
    visitScriptElements(*list, count, sequence(true), [&](const id& element) {
        for (size_t i = 0; i < all.size() && visits < 1000; ++i) // the object is kept for as long as it takes
            EXPECT_FALSE(element.valueForKey(all[i]).isNil());
        ++visits;
    });
    EXPECT_EQ(visits, count);
    EXPECT_EQ(run("errors.length"), "0");
    EXPECT_LE(webThread().queuedBlocks(), queued + 2);
}

TEST_F(ScriptElements, ASingleObjectIsReadLikeAnElement) {
    const auto single =
        object("spy({ a: 1, get b() { throw 'no b' }, get c() { reads.push('inside c'); return 'y' }, d: [] })");
    std::string seen;
    visitScriptObject(*single, sequence(), [&](const id& element) {
        EXPECT_EQ(element.as<WebScriptObject>(), single);
        for (const NSString& key : all)
            seen += element.valueForKey(key).description().utf8() + " ";
    });
    EXPECT_EQ(seen, "1 (null) 1 y WebScriptObject ");
    EXPECT_EQ(run("reads.join()"), "a,b,a,c,inside c,d");
    EXPECT_EQ(run("errors.join()"), "no b");
    EXPECT_THROW(visitScriptObject(*single, sequence(), [](const id&) { throw std::runtime_error("enough"); }),
                 std::runtime_error);
}

TEST_F(ScriptElements, ASingleObjectIsVisitedOnceWithoutItsPageToo) {
    int visits = 0;
    const auto single = object("({ a: 1, b: 'x' })");
    const auto visitor = [&](const id& element) {
        ++visits;
        context->invalidate();
        EXPECT_TRUE(element.valueForKey("a").isNil());
    };
    visitScriptObject(*single, sequence(), visitor);
    EXPECT_EQ(visits, 1);
    visitScriptObject(*single, sequence(), visitor);
    EXPECT_EQ(visits, 2);
}

TEST_F(ScriptElements, SingleObjectsMayBeReadWhileAnotherOneIs) {
    std::string seen;
    const auto read = [&](const char* text, const std::function<void()>& within) {
        const auto single = object(text);
        visitScriptObject(*single, sequence(), [&](const id& element) {
            for (const NSString& key : std::vector<NSString>{"a", "b"})
                seen += element.valueForKey(key).description().utf8() + " ";
            within();
            for (const NSString& key : std::vector<NSString>{"a", "c", "d"})
                seen += element.valueForKey(key).description().utf8() + " ";
        });
    };
    static std::function<void()> readWithin;
    readWithin = [&] { read("({ a: 7, b: 'u', c: 8, d: 9 })", [] {}); };
    define("readWithin", [](JSContextRef script, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
        readWithin();
        return JSValueMakeNumber(script, 2);
    });
    read("({ a: 1, b: 'x', get c() { return readWithin() }, d: 3 })",
         [&] { read("({ a: 4, b: 'y', c: 5, d: 6 })", [] {}); });
    EXPECT_EQ(seen, "7 u 7 8 9 1 x 4 y 4 5 6 1 2 3 ");
}

TEST_F(ScriptElements, ReplacedBuiltInsDoNotMatter) {
    run("Array.prototype[Symbol.iterator] = null; Object.prototype.get = () => 1; Function.prototype.call = null; "
        "Object.defineProperty(Object.prototype, '0', { set() { throw 'written' }, configurable: true }); 0");
    EXPECT_EQ(visit("[{ a: 1, b: 'x', c: 2, d: 3 }]", all), "1 x 1 2 3 ");
    EXPECT_EQ(visit("[{ a: 1, b: 'x', c: 2, d: 3 }, { a: 'p', b: 'y' }]", all, true),
              "1 x 1 2 3  | p y p (null) (null) ");
    const auto single = object("({ a: 4, b: 'y' })");
    visitScriptObject(*single, sequence(), [&](const id& element) {
        EXPECT_EQ(element.as<WebScriptObject>(), single);
        EXPECT_EQ(element.valueForKey("a").doubleValue(), 4);
        EXPECT_EQ(element.valueForKey("b"), id("y"));
    });
    EXPECT_EQ(run("errors.length"), "0");
}

} // namespace veyra
