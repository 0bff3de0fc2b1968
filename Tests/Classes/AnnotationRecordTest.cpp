// What a page's annotation object becomes.
#include "Classes/VeyraAnnotationSO.h"
#include "Classes/VeyraConstants.h"
#include "Platform/Foundation/NSException.h"
#include "Tests/Classes/ViewFixture.h"

#include <cmath>

namespace veyra {

class AnnotationRecord : public MapFixture {
protected:
    std::shared_ptr<VeyraAnnotationSO> record(const std::string& object) {
        return VeyraAnnotationSO::initWithWebScriptObject(*native("(" + object + ")").object());
    }
    /// A record whose object has the three required keys and these.
    std::shared_ptr<VeyraAnnotationSO> recordWith(const std::string& keys) {
        return record("{ latitude: 1, longitude: 2, identifier: 'a', " + keys + " }");
    }
    /// What the record's making raises for such an object.
    std::string raised(const std::string& keys) {
        try {
            recordWith(keys);
        } catch (const NSException& exception) {
            return exception.reason().utf8();
        }
        return "nothing";
    }
};

TEST_F(AnnotationRecord, OfTheRequiredKeysAloneIsARedPinThatFallsAndStaysWithoutACallout) {
    const auto made = record("{ latitude: 48.2, longitude: 16.4, identifier: 'vienna' }");
    EXPECT_EQ(degrees(made->coordinate()), degrees({48.2, 16.4}));
    EXPECT_EQ(made->identifier().string()->utf8(), "vienna");
    EXPECT_TRUE(made->title().isNil());
    EXPECT_TRUE(made->subtitle().isNil());
    EXPECT_TRUE(made->imageURLString().isNil());
    EXPECT_EQ(made->centerOffset(), (CGPoint{0, 0}));
    EXPECT_FALSE(made->hasLeftCalloutButton());
    EXPECT_FALSE(made->hasRightCalloutButton());
    EXPECT_EQ(made->pinColor(), 0u);
    EXPECT_TRUE(made->animatesDrop());
    EXPECT_FALSE(made->draggable());
}

TEST_F(AnnotationRecord, HasEveryKeyUnderItsField) {
    const auto made = record(
        "{ latitude: -1.5, longitude: 200, identifier: 'i', title: 't', subtitle: 's', imageURL: 'u', xOffset: 3, "
        "yOffset: -4, hasLeftCalloutButton: true, hasRightCalloutButton: true, pinColor: 'green', "
        "pinAnimatesDrop: false, draggable: true }");
    EXPECT_EQ(degrees(made->coordinate()), degrees({-1.5, 200}));
    EXPECT_EQ(made->title().string()->utf8(), "t");
    EXPECT_EQ(made->subtitle().string()->utf8(), "s");
    EXPECT_EQ(made->imageURLString().string()->utf8(), "u");
    EXPECT_EQ(made->centerOffset(), (CGPoint{3, -4}));
    EXPECT_TRUE(made->hasLeftCalloutButton());
    EXPECT_TRUE(made->hasRightCalloutButton());
    EXPECT_EQ(made->pinColor(), 1u);
    EXPECT_FALSE(made->animatesDrop());
    EXPECT_TRUE(made->draggable());
}

TEST_F(AnnotationRecord, ReadsEachKeyOnceInTheOrderOfTheFormat) {
    run("reads = []; spy = new Proxy({ latitude: 1, longitude: 2, identifier: 'a' }, { get(target, key) { "
        "reads.push(key); return target[key] } }); 0");
    record("spy");
    EXPECT_EQ(run("reads.join()"),
              "latitude,longitude,identifier,title,subtitle,imageURL,xOffset,yOffset,hasLeftCalloutButton,"
              "hasRightCalloutButton,pinColor,pinAnimatesDrop,draggable");
}

TEST_F(AnnotationRecord, ThePagesKeysAreThePublishedConstants) {
    const std::pair<NSString, const char*> names[] = {
        {kOstrelAnnotationLatitude, "latitude"},
        {kOstrelAnnotationLongitude, "longitude"},
        {kOstrelAnnotationIdentifier, "identifier"},
        {kOstrelAnnotationTitle, "title"},
        {kOstrelAnnotationSubtitle, "subtitle"},
        {kOstrelAnnotationImageURL, "imageURL"},
        {kOstrelAnnotationXOffset, "xOffset"},
        {kOstrelAnnotationYOffset, "yOffset"},
        {kOstrelAnnotationHasLeftCallout, "hasLeftCalloutButton"},
        {kOstrelAnnotationHasRightCallout, "hasRightCalloutButton"},
        {kOstrelAnnotationPinColor, "pinColor"},
        {kOstrelAnnotationPinAnimatesDrop, "pinAnimatesDrop"},
        {kOstrelAnnotationIsDraggable, "draggable"},
    };
    for (const auto& [constant, name] : names)
        EXPECT_EQ(constant.utf8(), name);
}

TEST_F(AnnotationRecord, FallsUnlessThePageSaysNo) {
    EXPECT_TRUE(recordWith("title: 'x'")->animatesDrop());
    EXPECT_TRUE(recordWith("pinAnimatesDrop: undefined")->animatesDrop());
    EXPECT_TRUE(recordWith("pinAnimatesDrop: null")->animatesDrop());
    EXPECT_TRUE(recordWith("pinAnimatesDrop: true")->animatesDrop());
    EXPECT_TRUE(recordWith("pinAnimatesDrop: 'yes'")->animatesDrop());
    EXPECT_FALSE(recordWith("pinAnimatesDrop: false")->animatesDrop());
    EXPECT_FALSE(recordWith("pinAnimatesDrop: 0")->animatesDrop());
    EXPECT_FALSE(recordWith("pinAnimatesDrop: 'no'")->animatesDrop());
}

TEST_F(AnnotationRecord, TheColoursAreExactWordsAndEveryOtherWordIsRed) {
    EXPECT_EQ(recordWith("pinColor: 'green'")->pinColor(), 1u);
    EXPECT_EQ(recordWith("pinColor: 'purple'")->pinColor(), 2u);
    for (const char* word :
         {"'red'", "''", "'Green'", "'Purple'", "'PURPLE'", "' green'", "'blue'", "2", "true", "null"})
        EXPECT_EQ(recordWith(std::string("pinColor: ") + word)->pinColor(), 0u) << word;
}

TEST_F(AnnotationRecord, OffsetsAreOfSinglePrecisionAndCoordinatesOfDouble) {
    const auto made = recordWith("xOffset: 0.1, yOffset: '2.7'");
    EXPECT_EQ(made->centerOffset().x, static_cast<double>(0.1f));
    EXPECT_NE(made->centerOffset().x, 0.1);
    EXPECT_EQ(made->centerOffset().y, static_cast<double>(2.7f));
    EXPECT_EQ(record("{ latitude: 0.1, longitude: '0.2', identifier: 'a' }")->coordinate().latitude, 0.1);
    EXPECT_EQ(record("{ latitude: 0.1, longitude: '0.2', identifier: 'a' }")->coordinate().longitude, 0.2);
}

TEST_F(AnnotationRecord, NumbersFlagsAndTextsConvert) {
    const auto made =
        recordWith("xOffset: ' 12px', yOffset: true, hasLeftCalloutButton: 1, hasRightCalloutButton: 'Yes', "
                   "draggable: '0'");
    EXPECT_EQ(made->centerOffset(), (CGPoint{12, 1}));
    EXPECT_TRUE(made->hasLeftCalloutButton());
    EXPECT_TRUE(made->hasRightCalloutButton());
    EXPECT_FALSE(made->draggable());
    EXPECT_TRUE(std::isnan(record("{ latitude: NaN, longitude: Infinity, identifier: 'a' }")->coordinate().latitude));
    EXPECT_EQ(record("{ latitude: 'north', longitude: 1e9, identifier: 'a' }")->coordinate().latitude, 0);
    EXPECT_EQ(record("{ latitude: 'north', longitude: 1e9, identifier: 'a' }")->coordinate().longitude, 1e9);
}

TEST_F(AnnotationRecord, AnythingCanBeATitleAndIsKeptAsItIs) {
    EXPECT_EQ(recordWith("title: ''")->title().string()->utf8(), "");
    EXPECT_EQ(recordWith("title: 5")->title().doubleValue(), 5);
    EXPECT_TRUE(recordWith("title: false")->title().isBoolean());
    EXPECT_TRUE(recordWith("subtitle: {}")->subtitle().isObject());
    EXPECT_EQ(recordWith("imageURL: 5")->imageURLString().doubleValue(), 5);
    EXPECT_TRUE(recordWith("title: null, subtitle: undefined, imageURL: Symbol()")->title().isNil());
    EXPECT_TRUE(recordWith("title: null, subtitle: undefined, imageURL: Symbol()")->subtitle().isNil());
    EXPECT_TRUE(recordWith("title: null, subtitle: undefined, imageURL: Symbol()")->imageURLString().isNil());
}

TEST_F(AnnotationRecord, KeepsStringsUnitForUnit) {
    const auto made = recordWith("title: 'a\\ud800b\\0', subtitle: '\\u{1f5fa}'");
    EXPECT_EQ(made->title().string()->units(), std::u16string_view(u"a\xd800"
                                                                   u"b\0",
                                                                   4));
    EXPECT_EQ(made->subtitle().string()->units(), u"\U0001f5fa");
}

TEST_F(AnnotationRecord, AValueWithoutTheConversionIsRaised) {
    EXPECT_EQ(raised("xOffset: {}"), "-[WebScriptObject floatValue]: unrecognized selector sent to instance");
    EXPECT_EQ(raised("draggable: []"), "-[WebScriptObject boolValue]: unrecognized selector sent to instance");
    EXPECT_EQ(raised("pinColor: {}"), "-[WebScriptObject isEqualToString:]: unrecognized selector sent to instance");
    EXPECT_EQ(raised("pinColor: 'red'"), "nothing");
}

TEST_F(AnnotationRecord, OfALongPressIsPurpleDraggableAndShownAtOnce) {
    const auto made = VeyraAnnotationSO::initDroppedPinAtCoordinateTitleIdentifier({1, 2}, id("Here"), id("dropped"));
    EXPECT_EQ(degrees(made->coordinate()), degrees({1, 2}));
    EXPECT_EQ(made->title().string()->utf8(), "Here");
    EXPECT_EQ(made->identifier().string()->utf8(), "dropped");
    EXPECT_EQ(made->pinColor(), 2u);
    EXPECT_TRUE(made->draggable());
    EXPECT_FALSE(made->animatesDrop());
    EXPECT_TRUE(made->subtitle().isNil());
    EXPECT_TRUE(made->imageURLString().isNil());
    EXPECT_EQ(made->centerOffset(), (CGPoint{0, 0}));
    EXPECT_FALSE(made->hasLeftCalloutButton());
    EXPECT_FALSE(made->hasRightCalloutButton());
}

TEST_F(AnnotationRecord, EveryFieldCanBeSet) {
    VeyraAnnotationSO made;
    made.setCoordinate({3, 4});
    made.setIdentifier(id("i"));
    made.setTitle(id("t"));
    made.setSubtitle(id("s"));
    made.setImageURLString(id("u"));
    made.setCenterOffset({5, 6});
    made.setHasLeftCalloutButton(true);
    made.setHasRightCalloutButton(true);
    made.setPinColor(7);
    made.setAnimatesDrop(true);
    made.setDraggable(true);
    EXPECT_EQ(degrees(made.coordinate()), degrees({3, 4}));
    EXPECT_EQ(made.identifier(), id("i"));
    EXPECT_EQ(made.title(), id("t"));
    EXPECT_EQ(made.subtitle(), id("s"));
    EXPECT_EQ(made.imageURLString(), id("u"));
    EXPECT_EQ(made.centerOffset(), (CGPoint{5, 6}));
    EXPECT_TRUE(made.hasLeftCalloutButton() && made.hasRightCalloutButton() && made.animatesDrop() && made.draggable());
    EXPECT_EQ(made.pinColor(), 7u);
}

} // namespace veyra
