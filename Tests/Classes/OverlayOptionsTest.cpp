// The drawing options of overlays: what scripts get for which keys, the colours, and the way to the view.
#include "Classes/UIColor+VeyraExtras.h"
#include "Platform/Foundation/NSException.h"
#include "Tests/Classes/OverlayFixture.h"

#include <random>
#include <string>

namespace veyra {

namespace {

class OverlayOptions : public OverlayFixture {
protected:
    std::shared_ptr<VeyraOverlayPathOptions> options(const std::string& keys = "") {
        const id object = native("({" + keys + "})");
        return PathOptionsFromWebScriptObject(*object.as<WebScriptObject>());
    }
    std::string reason(const std::string& keys) {
        try {
            options(keys);
        } catch (const NSException& raised) {
            return raised.name() + ": " + raised.reason().utf8();
        }
        return "nothing raised";
    }
};

/// Red, green, blue and alpha.
std::vector<double> components(const std::shared_ptr<UIColor>& color) {
    return color ? std::vector<double>{color->red(), color->green(), color->blue(), color->alpha()}
                 : std::vector<double>{};
}

std::vector<double> parsed(const char* text, double alpha = 1) {
    return components(_veyra_colorWithHexStringAlpha(id(text), alpha));
}

using Components = std::vector<double>;

} // namespace

TEST_F(OverlayOptions, AFreshRecordHasNoColoursAndZeros) {
    const VeyraOverlayPathOptions fresh;
    EXPECT_EQ(fresh.strokeColor(), nullptr);
    EXPECT_EQ(fresh.fillColor(), nullptr);
    EXPECT_EQ(fresh.lineWidth(), 0);
    EXPECT_EQ(fresh.lineJoin(), 0);
    EXPECT_EQ(fresh.lineCap(), 0);
    EXPECT_EQ(fresh.miterLimit(), 0);
    EXPECT_EQ(fresh.lineDashPhase(), 0);
    EXPECT_FALSE(fresh.lineDashPattern());
}

TEST_F(OverlayOptions, AnObjectWithoutDrawingKeysGetsTheDefaults) {
    const auto made = added("{ type: 'circle', id: 'a', latitude: 0, longitude: 0, radius: 1 }")->pathOptions();
    EXPECT_EQ(components(made->strokeColor()), (Components{0, 0, 0, 1}));
    EXPECT_EQ(made->fillColor(), nullptr);
    EXPECT_EQ(made->lineWidth(), 0.0);
    EXPECT_EQ(made->lineJoin(), kCGLineJoinRound);
    EXPECT_EQ(made->lineCap(), kCGLineCapRound);
    EXPECT_EQ(made->miterLimit(), 10.0);
    EXPECT_EQ(made->lineDashPhase(), 0.0);
    EXPECT_FALSE(made->lineDashPattern());
}

TEST_F(OverlayOptions, StrokeOpacityWithoutAColourIsBlackAtThatOpacity) {
    EXPECT_EQ(components(options("strokeOpacity: 0.25")->strokeColor()), (Components{0, 0, 0, 0.25}));
}

TEST_F(OverlayOptions, FillOpacityWithoutAColourIsNoFill) {
    EXPECT_EQ(options("fillOpacity: 0.25")->fillColor(), nullptr);
}

TEST_F(OverlayOptions, AColourAndItsOpacityMakeOneColour) {
    const auto made = options("strokeColor: '00ff00', strokeOpacity: 0.5, fillColor: '0000ff', fillOpacity: 0.25");
    EXPECT_EQ(components(made->strokeColor()), (Components{0, 1, 0, 0.5}));
    EXPECT_EQ(components(made->fillColor()), (Components{0, 0, 1, 0.25}));
    EXPECT_EQ(components(options("fillColor: '0000ff'")->fillColor()), (Components{0, 0, 1, 1}));
}

TEST_F(OverlayOptions, OpacitiesAreNotClamped) {
    EXPECT_EQ(options("strokeOpacity: 2")->strokeColor()->alpha(), 2);
    EXPECT_EQ(options("strokeColor: 'ff0000', strokeOpacity: -1")->strokeColor()->alpha(), -1);
}

TEST_F(OverlayOptions, NumbersAreTakenInSinglePrecision) {
    const auto made = options("lineWidth: 2.1, miterLimit: 3.3, lineDashPhase: 0.7, strokeOpacity: 0.3");
    EXPECT_EQ(made->lineWidth(), static_cast<double>(2.1f));
    EXPECT_EQ(made->miterLimit(), static_cast<double>(3.3f));
    EXPECT_EQ(made->lineDashPhase(), static_cast<double>(0.7f));
    EXPECT_EQ(made->strokeColor()->alpha(), static_cast<double>(0.3f));
}

TEST_F(OverlayOptions, NumericStringsAndBooleansAreNumbers) {
    const auto made = options("lineWidth: ' 4.5pt', miterLimit: true, lineDashPhase: 'none'");
    EXPECT_EQ(made->lineWidth(), 4.5);
    EXPECT_EQ(made->miterLimit(), 1);
    EXPECT_EQ(made->lineDashPhase(), 0);
}

TEST_F(OverlayOptions, NullIsAsGoodAsAbsent) {
    const auto made = options("strokeColor: null, fillColor: null, lineWidth: null, miterLimit: null, lineJoin: null, "
                              "lineCap: null, lineDashPattern: null");
    EXPECT_EQ(components(made->strokeColor()), (Components{0, 0, 0, 1}));
    EXPECT_EQ(made->fillColor(), nullptr);
    EXPECT_EQ(made->miterLimit(), 10.0);
    EXPECT_EQ(made->lineJoin(), kCGLineJoinRound);
    EXPECT_FALSE(made->lineDashPattern());
}

TEST_F(OverlayOptions, JoinsAndCapsAreWordsAndAnyOtherIsRound) {
    EXPECT_EQ(options("lineJoin: 'miter'")->lineJoin(), kCGLineJoinMiter);
    EXPECT_EQ(options("lineJoin: 'bevel'")->lineJoin(), kCGLineJoinBevel);
    EXPECT_EQ(options("lineCap: 'butt'")->lineCap(), kCGLineCapButt);
    EXPECT_EQ(options("lineCap: 'square'")->lineCap(), kCGLineCapSquare);
    for (const char* other : {"'Miter'", "'round'", "''", "5", "false"}) {
        EXPECT_EQ(options(std::string("lineJoin: ") + other)->lineJoin(), kCGLineJoinRound) << other;
        EXPECT_EQ(options(std::string("lineCap: ") + other)->lineCap(), kCGLineCapRound) << other;
    }
}

TEST_F(OverlayOptions, ADashPatternIsKeptAsItComes) {
    EXPECT_EQ(options("lineDashPattern: [4, 2]")->lineDashPattern(), (NSArray{id(4), id(2)}));
    EXPECT_EQ(options("lineDashPattern: ['4', null, true]")->lineDashPattern(), (NSArray{id("4"), id(), id(true)}));
    EXPECT_EQ(options("lineDashPattern: [1, , 3]")->lineDashPattern(), (NSArray{id(1), id(WebUndefined{}), id(3)}));
    EXPECT_EQ(options("lineDashPattern: { length: 1.9, 0: 7 }")->lineDashPattern(), NSArray{id(7)});
}

TEST_F(OverlayOptions, ADashPatternWithoutALengthThatIsANumberIsEmptyNotNone) {
    for (const char* pattern : {"[]", "{ length: '2', 0: 1, 1: 2 }", "{}", "{ length: null }", "new Map()"}) {
        const auto made = options(std::string("lineDashPattern: ") + pattern)->lineDashPattern();
        ASSERT_TRUE(made) << pattern;
        EXPECT_TRUE(made->empty()) << pattern;
    }
}

TEST_F(OverlayOptions, ADashPatternOfAFalseHugeLengthIsAnErrorAndTakesNoMemory) {
    EXPECT_EQ(run("map.addOverlay({ type: 'polyline', id: 'a', coordinates: [], lineDashPattern: { length: 4e9 } })"),
              "threw: Error: Out of memory");
    EXPECT_EQ(registered(), "");
}

TEST_F(OverlayOptions, KeysAreReadInTheirOrder) {
    native("globalThis.reads = []; globalThis.noting = new Proxy({ fillColor: '000000', strokeColor: '000000', "
           "lineDashPattern: [1] }, { get(target, key) { reads.push(key); return target[key]; } }); undefined");
    PathOptionsFromWebScriptObject(*native("noting").as<WebScriptObject>());
    EXPECT_EQ(run("reads.join(' ')"), "strokeColor strokeOpacity fillColor fillOpacity lineWidth lineJoin lineCap "
                                      "miterLimit lineDashPhase lineDashPattern");
}

TEST_F(OverlayOptions, ValuesWithoutTheConversionThatIsNeededRaise) {
    EXPECT_EQ(reason("lineWidth: {}"),
              "NSInvalidArgumentException: -[WebScriptObject floatValue]: unrecognized selector sent to instance");
    EXPECT_EQ(reason("strokeOpacity: []"),
              "NSInvalidArgumentException: -[WebScriptObject floatValue]: unrecognized selector sent to instance");
    EXPECT_EQ(
        reason("lineJoin: {}"),
        "NSInvalidArgumentException: -[WebScriptObject isEqualToString:]: unrecognized selector sent to instance");
    EXPECT_EQ(
        reason("lineCap: []"),
        "NSInvalidArgumentException: -[WebScriptObject isEqualToString:]: unrecognized selector sent to instance");
    EXPECT_EQ(reason("strokeColor: 0xff0000"),
              "NSInvalidArgumentException: -[NSNumber substringWithRange:]: unrecognized selector sent to instance");
    EXPECT_EQ(reason("fillColor: {}"), "NSInvalidArgumentException: -[WebScriptObject substringWithRange:]: "
                                       "unrecognized selector sent to instance");
}

TEST_F(OverlayOptions, AColourOfFewerThanSixCharactersRaisesAtItsFirstMissingPair) {
    const std::string range = "NSRangeException: -[NSString substringWithRange:]: Range ";
    EXPECT_EQ(reason("strokeColor: 'f00'"), range + "{2, 2} out of bounds; string length 3");
    EXPECT_EQ(reason("fillColor: 'ff000'"), range + "{4, 2} out of bounds; string length 5");
    EXPECT_EQ(reason("fillColor: ''"), range + "{0, 2} out of bounds; string length 0");
}

TEST_F(OverlayOptions, ABadColourIsAnErrorAndTheOverlayIsNotRegistered) {
    EXPECT_EQ(run("map.addOverlay({ type: 'polyline', id: 'a', coordinates: [], strokeColor: 'red' })"),
              "threw: Error: -[NSString substringWithRange:]: Range {2, 2} out of bounds; string length 3");
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(order(), "");
}

TEST_F(OverlayOptions, HexadecimalColours) {
    EXPECT_EQ(parsed("FF8000"), (Components{1, 128 / 255.0, 0, 1}));
    EXPECT_EQ(parsed("ff8000"), parsed("FF8000"));
    EXPECT_EQ(parsed("ff8000cc"), parsed("FF8000"));
    EXPECT_EQ(parsed("0A0b0C", 0.5), (Components{10 / 255.0, 11 / 255.0, 12 / 255.0, 0.5}));
}

TEST_F(OverlayOptions, PairsThatAreNotTwoDigitsAreReadAsFarAsTheyGo) {
    EXPECT_EQ(parsed("a- f 5"), (Components{10 / 255.0, 15 / 255.0, 5 / 255.0, 1}));
    EXPECT_EQ(parsed("#ff0000"), (Components{0, 240 / 255.0, 0, 1})); // #f, f0 and 00
}

TEST_F(OverlayOptions, EveryStringOfSixUnitsIsAColourOfItsThreePairs) {
    std::mt19937 random(13);
    const std::u16string units = u"0123456789abcdefABCDEFgxX# \t-+.\u00e9\xd800\xdc00";
    const auto valueOf = [](std::u16string pair) {
        if (pair[0] == u' ' || pair[0] == u'\t')
            pair.erase(0, 1);
        int value = 0;
        for (const char16_t unit : pair) {
            const bool isDigit =
                (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
            if (!isDigit)
                break;
            value = value * 16 + (unit <= u'9' ? unit - u'0' : (unit & 7) + 9);
        }
        return value / 255.0;
    };
    for (int turn = 0; turn < 20000; ++turn) {
        std::u16string text(6 + turn % 4, u' ');
        for (char16_t& unit : text)
            unit = units[std::uniform_int_distribution<size_t>(0, units.size() - 1)(random)];
        const auto color = _veyra_colorWithHexStringAlpha(id(NSString(std::u16string_view(text))), 0.5);
        ASSERT_EQ(components(color),
                  (Components{valueOf(text.substr(0, 2)), valueOf(text.substr(2, 2)), valueOf(text.substr(4, 2)), 0.5}))
            << turn;
    }
}

TEST_F(OverlayOptions, APairThatIsNoNumberIsZero) {
    EXPECT_EQ(parsed("zz ##xx"), (Components{0, 0, 0, 1}));
}

TEST_F(OverlayOptions, ReachTheViewAllEight) {
    const auto overlay = added("{ type: 'polyline', id: 'a', coordinates: [0, 0, 1, 1], strokeColor: 'ff0000', "
                               "fillColor: '00ff00', lineWidth: 3, lineJoin: 'bevel', lineCap: 'square', "
                               "miterLimit: 4, lineDashPhase: 5, lineDashPattern: [6, '7'] }");
    onMain([&] {
        const auto view = overlay->overlayView();
        EXPECT_EQ(components(view->strokeColor()), (Components{1, 0, 0, 1}));
        EXPECT_EQ(components(view->fillColor()), (Components{0, 1, 0, 1}));
        EXPECT_EQ(view->lineWidth(), 3);
        EXPECT_EQ(view->lineJoin(), kCGLineJoinBevel);
        EXPECT_EQ(view->lineCap(), kCGLineCapSquare);
        EXPECT_EQ(view->miterLimit(), 4);
        EXPECT_EQ(view->lineDashPhase(), 5);
        EXPECT_EQ(view->lineDashPattern(), (NSArray{id(6), id("7")}));
    });
}

TEST_F(OverlayOptions, NoneReachesTheViewAsNone) {
    const auto overlay = added("{ type: 'polygon', id: 'a', coordinates: [] }");
    onMain([&] {
        const auto view = overlay->overlayView();
        EXPECT_EQ(view->fillColor(), nullptr);
        EXPECT_FALSE(view->lineDashPattern());
    });
}

} // namespace veyra
