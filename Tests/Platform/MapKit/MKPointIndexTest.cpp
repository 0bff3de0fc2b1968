// The index finds exactly the points in a rectangle, however they lie.
#include "Platform/MapKit/MKAnnotationStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace veyra {

namespace {

std::vector<uint32_t> found(const MKPointIndex& index, const MKMapRect& rect) {
    std::vector<uint32_t> numbers;
    index.search(rect, [&](uint32_t number) { numbers.push_back(number); });
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

class Marker final : public MKAnnotation {
public:
    explicit Marker(CLLocationCoordinate2D place) : _place(place) {}
    CLLocationCoordinate2D coordinate() const override { return _place; }
    void setCoordinate(CLLocationCoordinate2D place) override { _place = place; }

private:
    CLLocationCoordinate2D _place;
};

} // namespace

TEST(MKPointIndex, FindsThePointsOfARectangle) {
    std::mt19937 random(5);
    // Even ones, crowded ones, and many at one place.
    std::vector<MKMapPoint> points;
    for (int i = 0; i < 3000; ++i) {
        points.push_back({random() % 268435456 * 1.0, random() % 268435456 * 1.0});
        points.push_back({1e8 + random() % 1000, 1e8 + random() % 1000});
        points.push_back({MKWorldSide, MKWorldSide});
    }
    MKPointIndex index;
    for (size_t i = 0; i < points.size(); ++i) {
        index.insert(static_cast<uint32_t>(i), points[i]);
    }
    std::vector<bool> isThere(points.size(), true);
    const auto check = [&] {
        for (const MKMapRect& rect :
             {MKMapRectWorld, MKMapRectMake(0, 0, 1e8, 2e8), MKMapRectMake(1e8 + 100, 1e8 + 50, 300, 300),
              MKMapRectMake(MKWorldSide, MKWorldSide, 0, 0), MKMapRectMake(5, 5, 10, 10)}) {
            std::vector<uint32_t> expected;
            for (size_t i = 0; i < points.size(); ++i) {
                if (isThere[i] && points[i].x >= rect.origin.x && points[i].x <= MKMapRectGetMaxX(rect) &&
                    points[i].y >= rect.origin.y && points[i].y <= MKMapRectGetMaxY(rect)) {
                    expected.push_back(static_cast<uint32_t>(i));
                }
            }
            EXPECT_EQ(found(index, rect), expected);
        }
    };
    check();
    for (size_t i = 0; i < points.size(); i += 2) {
        index.remove(static_cast<uint32_t>(i));
        isThere[i] = false;
    }
    check();
    for (size_t i = 0; i < points.size(); ++i) {
        if (isThere[i]) {
            index.remove(static_cast<uint32_t>(i));
        }
    }
    EXPECT_TRUE(found(index, MKMapRectWorld).empty());
    index.insert(3, {1, 1});
    EXPECT_EQ(found(index, MKMapRectWorld), std::vector<uint32_t>{3});
}

TEST(MKAnnotationStore, FindsAcrossTheAntimeridianOnAnyCopyOfTheWorld) {
    MKAnnotationStore store;
    const uint32_t east = store.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(0, 179)));
    const uint32_t west = store.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(0, -179)));
    store.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(0, 0)));
    const double degree = MKWorldSide / 360;
    for (const double copy : {-1.0, 0.0, 1.0, 5.0}) {
        const MKMapRect rect = MKMapRectMake(copy * MKWorldSide - 2 * degree, MKWorldSide / 2 - 10, 4 * degree, 20);
        auto numbers = store.numbersIn(rect);
        std::sort(numbers.begin(), numbers.end());
        EXPECT_EQ(numbers, (std::vector<uint32_t>{east, west}));
        EXPECT_TRUE(MKAnnotationStore::isIn(rect, store.pointOf(east)));
        EXPECT_TRUE(MKAnnotationStore::isIn(rect, store.pointOf(west)));
    }
    EXPECT_EQ(store.numbersIn(MKMapRectMake(-3 * MKWorldSide, 0, 4 * MKWorldSide, MKWorldSide)).size(), 3U);
}

TEST(MKAnnotationStore, GivesNumbersOutAgain) {
    MKAnnotationStore store;
    const auto a = std::make_shared<Marker>(CLLocationCoordinate2DMake(0, 0));
    const uint32_t number = store.add(a);
    EXPECT_EQ(store.add(a), MKAnnotationStore::none);
    store.remove(number);
    EXPECT_EQ(store.find(a.get()), MKAnnotationStore::none);
    EXPECT_EQ(store.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(1, 1))), number);
    EXPECT_EQ(store.size(), 1U);
}

TEST(MKAnnotationStore, KnowsAnAnnotationThatOtherStoresHaveToo) {
    MKAnnotationStore first, second;
    const auto a = std::make_shared<Marker>(CLLocationCoordinate2DMake(0, 0));
    const auto b = std::make_shared<Marker>(CLLocationCoordinate2DMake(1, 1));
    ASSERT_EQ(first.add(a), 0U);
    ASSERT_EQ(first.add(b), 1U);
    // Under other numbers, and one of them under the same.
    ASSERT_EQ(second.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(2, 2))), 0U);
    ASSERT_EQ(second.add(b), 1U);
    ASSERT_EQ(second.add(a), 2U);
    for (const auto& known : {a, b}) {
        EXPECT_EQ(first.add(known), MKAnnotationStore::none);
        EXPECT_EQ(second.add(known), MKAnnotationStore::none);
    }
    first.remove(first.find(a.get()));
    second.remove(second.find(b.get()));
    EXPECT_EQ(first.find(a.get()), MKAnnotationStore::none);
    EXPECT_EQ(first.find(b.get()), 1U);
    EXPECT_EQ(second.find(a.get()), 2U);
    EXPECT_EQ(second.find(b.get()), MKAnnotationStore::none);
    EXPECT_EQ(second.add(b), 1U);
    EXPECT_EQ(first.add(a), 0U);
    second.remove(second.find(a.get()));
    EXPECT_EQ(second.find(a.get()), MKAnnotationStore::none);
    EXPECT_EQ(first.find(a.get()), 0U);
    EXPECT_EQ(first.size(), 2U);
    EXPECT_EQ(second.size(), 2U);
}

TEST(MKAnnotationStore, TakesAnAnnotationOfAStoreThatHasGone) {
    const auto a = std::make_shared<Marker>(CLLocationCoordinate2DMake(0, 0));
    MKAnnotationStore().add(a);
    MKAnnotationStore store;
    const uint32_t other = store.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(1, 1)));
    const uint32_t number = store.add(a);
    EXPECT_NE(number, other);
    EXPECT_EQ(store.find(a.get()), number);
    store.remove(number);
    EXPECT_EQ(store.find(a.get()), MKAnnotationStore::none);
}

TEST(MKAnnotationStore, KeepsLiftsApart) {
    MKAnnotationStore store;
    for (int i = 0; i < 1000; ++i) {
        store.add(std::make_shared<Marker>(CLLocationCoordinate2DMake(0, i / 10.0)));
    }
    store.setLift(3, 1.5F);
    store.setLift(999, 20);
    store.setLift(3, 2.5F);
    for (uint32_t number = 0; number < 1000; ++number) {
        EXPECT_EQ(store.liftOf(number), number == 3 ? 2.5F : number == 999 ? 20 : 0) << number;
    }
    store.setLift(999, 0);
    EXPECT_EQ(store.liftOf(999), 0);
    EXPECT_EQ(store.liftOf(3), 2.5F);
    store.setLift(3, 0);
    EXPECT_EQ(store.liftOf(3), 0);
    store.setLift(500, 1);
    EXPECT_EQ(store.liftOf(500), 1);
}

} // namespace veyra
