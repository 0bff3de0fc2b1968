#include "Platform/CoreLocation/CLLocation.h"

#include <gtest/gtest.h>

namespace veyra {
namespace {

TEST(CLLocation, MakesACoordinateOfLatitudeAndLongitude) {
    const CLLocationCoordinate2D coordinate = CLLocationCoordinate2DMake(48.2, -216.4);
    EXPECT_EQ(coordinate.latitude, 48.2);
    EXPECT_EQ(coordinate.longitude, -216.4);
    EXPECT_EQ(CLLocationCoordinate2D().latitude, 0);
    EXPECT_EQ(CLLocationCoordinate2D().longitude, 0);
}

TEST(CLLocation, KeepsWhatItWasMadeOf) {
    const CLLocation location(CLLocationCoordinate2DMake(48.2, 16.4), 171, 12.5, -1);
    EXPECT_EQ(location.coordinate().latitude, 48.2);
    EXPECT_EQ(location.coordinate().longitude, 16.4);
    EXPECT_EQ(location.altitude(), 171);
    EXPECT_EQ(location.horizontalAccuracy(), 12.5);
    EXPECT_EQ(location.verticalAccuracy(), -1);
}

TEST(CLLocation, AnswersKeysAndItsClass) {
    const auto location = std::make_shared<CLLocation>(CLLocationCoordinate2DMake(48.2, 16.4), 171, 12.5, 30);
    EXPECT_EQ(location->valueForKey("altitude"), id(171));
    EXPECT_EQ(location->valueForKey("horizontalAccuracy"), id(12.5));
    EXPECT_EQ(location->valueForKey("verticalAccuracy"), id(30));
    EXPECT_EQ(NSClassFromString("CLLocation"), location->isa());
    EXPECT_TRUE(location->isKindOfClass(NSObject::classObject()));
}

} // namespace
} // namespace veyra
