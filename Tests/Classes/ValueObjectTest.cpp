// The five value objects, as native code and as scripts see them.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraPointSO.h"
#include "Classes/VeyraRectSO.h"
#include "Classes/VeyraRegionSO.h"
#include "Classes/VeyraUserLocationSO.h"
#include "Platform/Foundation/NSException.h"
#include "Tests/Classes/ViewFixture.h"

#include <cmath>
#include <limits>

namespace veyra {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> keysOf(const NSObject& object) {
    std::vector<std::string> keys;
    for (const NSString& key : object.attributeKeys())
        keys.push_back(key.utf8());
    return keys;
}

using Names = std::vector<std::string>;

std::shared_ptr<VeyraRegionSO> region(double latitude, double longitude, double latitudeDelta, double longitudeDelta) {
    return VeyraRegionSO::withRegion({{latitude, longitude}, {latitudeDelta, longitudeDelta}});
}

std::shared_ptr<VeyraLocationCoordinateSO> coordinate(double latitude, double longitude) {
    return VeyraLocationCoordinateSO::withCoordinate({latitude, longitude});
}

void expectFields(const VeyraRegionSO& object, double latitude, double longitude, double latitudeDelta,
                  double longitudeDelta) {
    EXPECT_EQ(object.latitude(), latitude);
    EXPECT_EQ(object.longitude(), longitude);
    EXPECT_EQ(object.latitudeDelta(), latitudeDelta);
    EXPECT_EQ(object.longitudeDelta(), longitudeDelta);
}

} // namespace

TEST(ValueObjectClass, AttributeKeysAreInTheOrderOfDeclaration) {
    EXPECT_EQ(keysOf(VeyraPointSO()), (Names{"x", "y"}));
    EXPECT_EQ(keysOf(VeyraRectSO()), (Names{"x", "y", "width", "height"}));
    EXPECT_EQ(keysOf(VeyraRegionSO()), (Names{"latitude", "longitude", "latitudeDelta", "longitudeDelta"}));
    EXPECT_EQ(keysOf(VeyraUserLocationSO()),
              (Names{"latitude", "longitude", "altitude", "horizontalAccuracy", "verticalAccuracy"}));
    EXPECT_EQ(keysOf(VeyraLocationCoordinateSO()), (Names{"latitude", "longitude"}));
}

TEST(ValueObjectClass, NoKeyIsExcludedNotEvenAnUnknownOne) {
    for (const char* key : {"x", "latitude", "unknown", ""}) {
        EXPECT_FALSE(VeyraPointSO::isKeyExcludedFromWebScript(key));
        EXPECT_FALSE(VeyraRectSO::isKeyExcludedFromWebScript(key));
        EXPECT_FALSE(VeyraRegionSO::isKeyExcludedFromWebScript(key));
        EXPECT_FALSE(VeyraUserLocationSO::isKeyExcludedFromWebScript(key));
        EXPECT_FALSE(VeyraLocationCoordinateSO::isKeyExcludedFromWebScript(key));
    }
}

TEST(ValueObjectClass, KeyConstantsHaveTheirTexts) {
    const std::pair<const NSString&, const char*> constants[] = {
        {kOstrelPointX, "x"},
        {kOstrelPointY, "y"},
        {kOstrelRectX, "x"},
        {kOstrelRectY, "y"},
        {kOstrelRectWidth, "width"},
        {kOstrelRectHeight, "height"},
        {kOstrelRegionLatitude, "latitude"},
        {kOstrelRegionLongitude, "longitude"},
        {kOstrelRegionLatitudeDelta, "latitudeDelta"},
        {kOstrelRegionLongitudeDelta, "longitudeDelta"},
        {kOstrelUserLocationLatitude, "latitude"},
        {kOstrelUserLocationLongitude, "longitude"},
        {kOstrelUserLocationAltitude, "altitude"},
        {kOstrelUserLocationHorizontalAccuracy, "horizontalAccuracy"},
        {kOstrelUserLocationVerticalAccuracy, "verticalAccuracy"},
        {kOstrelCoordinateLatitude, "latitude"},
        {kOstrelCoordinateLongitude, "longitude"},
    };
    for (const auto& [constant, text] : constants)
        EXPECT_EQ(constant.utf8(), text);
}

TEST(ValueObjectClass, EveryFieldIsZeroAtFirstAndIsReadAndWrittenByItsKey) {
    const std::shared_ptr<NSObject> objects[] = {
        std::make_shared<VeyraPointSO>(), std::make_shared<VeyraRectSO>(), std::make_shared<VeyraRegionSO>(),
        std::make_shared<VeyraUserLocationSO>(), std::make_shared<VeyraLocationCoordinateSO>()};
    for (const auto& object : objects) {
        double value = 0.1;
        for (const NSString& key : object->attributeKeys()) {
            EXPECT_EQ(object->valueForKey(key).doubleValue(), 0) << key.utf8();
            object->setValueForKey(id(value += 1), key);
        }
        value = 0.1;
        for (const NSString& key : object->attributeKeys())
            EXPECT_EQ(object->valueForKey(key).doubleValue(), value += 1) << key.utf8();
    }
}

TEST(ValueObjectClass, RegionsAndCoordinatesDescribeThemselvesWithSingleQuotesAndNoSpaces) {
    EXPECT_EQ(region(1, 2, 3, 4)->description().utf8(),
              "{'latitude':1.000000,'longitude':2.000000,'latitudeDelta':3.000000,'longitudeDelta':4.000000}");
    EXPECT_EQ(coordinate(-1.5, 1e9)->description().utf8(), "{'latitude':-1.500000,'longitude':1000000000.000000}");
}

TEST(ValueObjectClass, TheOthersDescribeThemselvesByTheirClass) {
    EXPECT_EQ(VeyraPointSO().description().utf8(), "VeyraPointSO");
    EXPECT_EQ(VeyraRectSO().description().utf8(), "VeyraRectSO");
    EXPECT_EQ(VeyraUserLocationSO().description().utf8(), "VeyraUserLocationSO");
}

TEST(ValueObjectClass, ADescriptionReadsBackInSinglePrecision) {
    const auto text = NSString("{'latitude':37.123456789,'longitude':-122.25,'latitudeDelta':0.5,'longitudeDelta':1}");
    expectFields(*VeyraRegionSO::initWithJSON(text), 37.12345504760742, -122.25, 0.5, 1);
    const auto read = VeyraRegionSO::initWithJSON(region(37.123456789, 2, 3, 4)->description());
    expectFields(*read, static_cast<double>(37.123457f), 2, 3, 4); // the description has six decimals
    const auto place = VeyraLocationCoordinateSO::initWithJSON(coordinate(37.5, -1.25)->description());
    EXPECT_EQ(place->latitude(), 37.5);
    EXPECT_EQ(place->longitude(), -1.25);
}

TEST(ValueObjectClass, TextThatIsNoJSONObjectLeavesTheFieldsZero) {
    for (const char* text : {"", "no JSON", "{'latitude':", "5", "'latitude'", "null"}) {
        expectFields(*VeyraRegionSO::initWithJSON(text), 0, 0, 0, 0);
        EXPECT_EQ(VeyraLocationCoordinateSO::initWithJSON(text)->latitude(), 0);
    }
}

TEST(ValueObjectClass, AbsentKeysOfJSONLeaveTheirFieldsZeroAndNumericStringsConvert) {
    expectFields(*VeyraRegionSO::initWithJSON("{\"latitude\": '12.5x', 'longitudeDelta': true}"), 12.5, 0, 0, 1);
    EXPECT_EQ(VeyraLocationCoordinateSO::initWithJSON("{'longitude': 'none'}")->longitude(), 0);
}

TEST(ValueObjectClass, AJSONValueWithoutAConversionRaises) {
    for (const char* text : {"{'latitude': null}", "{'latitude': []}", "{'latitude': {}}"}) {
        EXPECT_THROW(VeyraRegionSO::initWithJSON(text), NSException);
        EXPECT_THROW(VeyraLocationCoordinateSO::initWithJSON(text), NSException);
    }
}

TEST(ValueObjectClass, RegionsAreEqualWhenEveryFieldDiffersByLessThanTheTolerance) {
    const auto a = region(1, 2, 3, 4);
    EXPECT_TRUE(a->equalsRegionWithTolerance(*region(1.25, 1.75, 3.25, 3.75), 0.5));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*region(1.5, 2, 3, 4), 0.5)) << "a difference equal to the tolerance";
    EXPECT_FALSE(a->equalsRegionWithTolerance(*region(1, 1.5, 3, 4), 0.5));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*region(1, 2, 3.5, 4), 0.5));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*region(1, 2, 3, 4.5), 0.5));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*a, 0));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*a, -1));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*a, nan));
    EXPECT_FALSE(a->equalsRegionWithTolerance(*region(1, nan, 3, 4), 100));
}

TEST(ValueObjectClass, CoordinatesAreEqualWhenBothFieldsDifferByLessThanTheTolerance) {
    const auto a = coordinate(1, 2);
    EXPECT_TRUE(a->equalsCoordinateWithTolerance(*coordinate(0.75, 2.25), 0.5));
    EXPECT_FALSE(a->equalsCoordinateWithTolerance(*coordinate(0.5, 2), 0.5));
    EXPECT_FALSE(a->equalsCoordinateWithTolerance(*coordinate(1, 2.5), 0.5));
    EXPECT_FALSE(a->equalsCoordinateWithTolerance(*a, 0));
    EXPECT_FALSE(a->equalsCoordinateWithTolerance(*coordinate(nan, 2), 100));
}

// As scripts see them.

class ValueObject : public ShownMapFixture {
protected:
    /// The region that a script object reads as.
    MKCoordinateRegion read(const std::string& script) {
        return VeyraRegionSO::MKCoordinateRegionWithWebScriptObject(*native(script).object());
    }
    void expectRead(const std::string& script, double latitude, double longitude, double latitudeDelta,
                    double longitudeDelta) {
        const auto result = read(script);
        EXPECT_EQ(result.center.latitude, latitude) << script;
        EXPECT_EQ(result.center.longitude, longitude) << script;
        EXPECT_EQ(result.span.latitudeDelta, latitudeDelta) << script;
        EXPECT_EQ(result.span.longitudeDelta, longitudeDelta) << script;
    }
};

TEST_F(ValueObject, RegionsOfScriptsAreClamped) {
    expectRead("({ latitude: 95, longitude: -200, latitudeDelta: -3, longitudeDelta: 400 })", 90, -180, 0, 360);
    expectRead("({ latitude: -95, longitude: 200, latitudeDelta: 181, longitudeDelta: -1 })", -90, 180, 180, 0);
    expectRead("({ latitude: 90, longitude: -180, latitudeDelta: 180, longitudeDelta: 360 })", 90, -180, 180, 360);
    expectRead("({ latitude: -Infinity, longitude: Infinity, latitudeDelta: Infinity, longitudeDelta: -Infinity })",
               -90, 180, 180, 0);
}

TEST_F(ValueObject, ANaNInARegionBecomesTheUpperBound) {
    expectRead("({ latitude: NaN, longitude: NaN, latitudeDelta: NaN, longitudeDelta: NaN })", 90, 180, 180, 360);
}

TEST_F(ValueObject, StringsBooleansAndOtherValuesInARegionConvertLeniently) {
    expectRead("({ latitude: ' 12.5 north', longitude: 'east', latitudeDelta: true, longitudeDelta: '1e3' })", 12.5, 0,
               1, 360);
    expectRead("({ latitude: {}, longitude: [5], latitudeDelta: () => 1, longitudeDelta: map.region })", 0, 0, 0, 0);
}

TEST_F(ValueObject, TheKeysOfARegionAreReadOnceSpansFirst) {
    evaluate("reads = []; proxy = new Proxy({}, { get(target, key) { reads.push(key); return 1 } })");
    expectRead("proxy", 1, 1, 1, 1);
    EXPECT_EQ(run("reads.join()"), "latitudeDelta,longitudeDelta,latitude,longitude");
}

TEST_F(ValueObject, AttributesAreOwnEnumerableAndWritable) {
    EXPECT_EQ(run("JSON.stringify(map.userLocation)"),
              R"({"latitude":0,"longitude":0,"altitude":0,"horizontalAccuracy":0,"verticalAccuracy":0})");
    run("p = map.convertCoordinateToPoint({ latitude: 0, longitude: 0 }); p.x = 160; p.y = 240");
    EXPECT_EQ(run("JSON.stringify(p)"), R"({"x":160,"y":240})");
    EXPECT_EQ(run("JSON.stringify({ ...p, z: 1 })"), R"({"x":160,"y":240,"z":1})");
    EXPECT_EQ(run("names = []; for (const name in p) names.push(name); names.join()"), "x,y");
    EXPECT_EQ(run("Object.entries(map.centerCoordinate).length"), "2");
    EXPECT_EQ(run("p.x = 5.5; p.x + ' ' + p.y"), "5.5 240");
    EXPECT_EQ(run("JSON.stringify(Object.getOwnPropertyDescriptor(p, 'y'))"),
              R"({"value":240,"writable":true,"enumerable":true,"configurable":true})");
    EXPECT_EQ(run("Object.keys(map.convertRegionToRect(map.region)).join()"), "x,y,width,height");
}

TEST_F(ValueObject, StringGivesTheNativeDescription) {
    EXPECT_EQ(run("c = map.centerCoordinate; c.latitude = 1; c.longitude = 2; String(c)"),
              "{'latitude':1.000000,'longitude':2.000000}");
    EXPECT_EQ(run("`${map.convertCoordinateToPoint(c)}`"), "VeyraPointSO");
    EXPECT_EQ(run("'' + map.userLocation"), "VeyraUserLocationSO");
}

TEST_F(ValueObject, WrittenFieldsReachTheMap) {
    run("r = map.region; Object.assign(r, { latitude: 10, longitude: 20, latitudeDelta: 5, longitudeDelta: 5 }); "
        "map.setRegion(r)");
    runMain();
    EXPECT_NEAR(mapView().region().center.latitude, 10, 1e-9);
    EXPECT_NEAR(mapView().region().center.longitude, 20, 1e-9);
}

TEST_F(ValueObject, AValueObjectOfAnotherKindIsRefusedAndItsCopyIsNot) {
    EXPECT_EQ(run("map.setCenterCoordinate(map.region)"),
              "threw: Error: Invalid object passed to 'setCenterCoordinate'");
    EXPECT_EQ(run("map.setCenterCoordinate({ ...map.region })"), "undefined");
    EXPECT_EQ(run("map.setCenterCoordinate(Object.create(map.region))"), "undefined");
}

} // namespace veyra
