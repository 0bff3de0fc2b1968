// The ordered list of overlays and its rules about indexes, against a plain vector.
#include "Platform/MapKit/MKOverlayList.h"
#include "Platform/MapKit/MKPolyline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace veyra {

namespace {

using Overlay = std::shared_ptr<MKOverlay>;

Overlay make() {
    const CLLocationCoordinate2D coordinates[] = {{0, 0}, {1, 1}};
    return MKPolyline::polylineWithCoordinates(coordinates);
}

/// The same list, written down as simply as can be.
struct Model {
    std::vector<Overlay> order;

    bool has(const Overlay& overlay) const { return std::find(order.begin(), order.end(), overlay) != order.end(); }
    bool insertAt(size_t index, const Overlay& overlay) {
        if (has(overlay)) {
            return false;
        }
        order.insert(order.begin() + static_cast<ptrdiff_t>(std::min(index, order.size())), overlay);
        return true;
    }
    bool insertNextTo(const Overlay& sibling, size_t offset, const Overlay& overlay) {
        const auto found = std::find(order.begin(), order.end(), sibling);
        return insertAt(found == order.end() ? SIZE_MAX : static_cast<size_t>(found - order.begin()) + offset, overlay);
    }
    bool remove(const Overlay& overlay) { return std::erase(order, overlay) > 0; }
    bool exchange(size_t first, size_t second) {
        if (first >= order.size() || second >= order.size()) {
            return false;
        }
        std::swap(order[first], order[second]);
        return true;
    }
};

} // namespace

TEST(MKOverlayList, InsertingBeyondTheEndAppends) {
    MKOverlayList list;
    const Overlay a = make(), b = make(), c = make();
    EXPECT_TRUE(list.insertAt(5, a));
    EXPECT_TRUE(list.insertAt(UINT64_MAX, b));
    EXPECT_TRUE(list.insertAt(0, c));
    EXPECT_EQ(list.overlays(), (std::vector<Overlay>{c, a, b}));
}

TEST(MKOverlayList, InsertingNextToAnUnknownSiblingAppends) {
    MKOverlayList list;
    const Overlay a = make(), b = make(), c = make(), stranger = make();
    list.append(a);
    EXPECT_TRUE(list.insertBelow(stranger.get(), b));
    EXPECT_TRUE(list.insertAbove(nullptr, c));
    EXPECT_EQ(list.overlays(), (std::vector<Overlay>{a, b, c}));
}

TEST(MKOverlayList, AnOverlayIsOnTheListOnce) {
    MKOverlayList list;
    const Overlay a = make(), b = make();
    list.append(a);
    list.append(b);
    EXPECT_FALSE(list.append(a));
    EXPECT_FALSE(list.insertAt(0, b));
    EXPECT_FALSE(list.insertAbove(b.get(), a));
    EXPECT_FALSE(list.insertBelow(a.get(), a));
    EXPECT_FALSE(list.append(nullptr));
    EXPECT_EQ(list.overlays(), (std::vector<Overlay>{a, b}));
}

TEST(MKOverlayList, ExchangingWithAnIndexBeyondTheEndChangesNothing) {
    MKOverlayList list;
    const Overlay a = make(), b = make();
    list.append(a);
    list.append(b);
    EXPECT_FALSE(list.exchange(0, 5));
    EXPECT_FALSE(list.exchange(2, 1));
    EXPECT_EQ(list.overlays(), (std::vector<Overlay>{a, b}));
    EXPECT_TRUE(list.exchange(0, 1));
    EXPECT_TRUE(list.exchange(1, 1));
    EXPECT_EQ(list.overlays(), (std::vector<Overlay>{b, a}));
    EXPECT_TRUE(list.remove(*a)); // found where it is now
    EXPECT_EQ(list.overlays(), (std::vector<Overlay>{b}));
}

TEST(MKOverlayList, RemovingAnUnknownOneChangesNothing) {
    MKOverlayList list;
    const Overlay a = make(), stranger = make();
    list.append(a);
    EXPECT_FALSE(list.remove(*stranger));
    EXPECT_EQ(list.size(), 1u);
}

TEST(MKOverlayList, FollowsAModelThroughTenThousandRandomOperations) {
    std::mt19937 random(11);
    const auto below = [&](size_t bound) { return std::uniform_int_distribution<size_t>(0, bound - 1)(random); };
    std::vector<Overlay> all(12);
    std::generate(all.begin(), all.end(), make);
    MKOverlayList list;
    Model model;
    for (int i = 0; i < 10000; ++i) {
        const Overlay& overlay = all[below(all.size())];
        const Overlay& sibling = all[below(all.size())];
        const size_t first = below(14), second = below(14);
        switch (below(6)) {
        case 0:
            EXPECT_EQ(list.append(overlay), model.insertAt(SIZE_MAX, overlay));
            break;
        case 1:
            EXPECT_EQ(list.insertAt(first, overlay), model.insertAt(first, overlay));
            break;
        case 2:
            EXPECT_EQ(list.insertAbove(sibling.get(), overlay), model.insertNextTo(sibling, 1, overlay));
            break;
        case 3:
            EXPECT_EQ(list.insertBelow(sibling.get(), overlay), model.insertNextTo(sibling, 0, overlay));
            break;
        case 4:
            EXPECT_EQ(list.remove(*overlay), model.remove(overlay));
            break;
        default:
            EXPECT_EQ(list.exchange(first, second), model.exchange(first, second));
        }
        ASSERT_EQ(list.overlays(), model.order) << "after " << i;
    }
}

TEST(MKOverlayList, AsksForEachOverlayOnceWhenItMeetsTheRectangle) {
    MKOverlayList list;
    const CLLocationCoordinate2D here[] = {{1, 1}, {2, 2}}, there[] = {{40, 40}, {41, 41}};
    const Overlay near = MKPolyline::polylineWithCoordinates(here), far = MKPolyline::polylineWithCoordinates(there);
    list.append(near);
    list.append(far);
    const MKMapRect around = MKMapRectForCoordinateRegion({{0, 0}, {10, 10}});
    EXPECT_TRUE(list.hasMeeting(around));
    EXPECT_EQ(list.takeMeeting(around), (std::vector<Overlay>{near}));
    EXPECT_FALSE(list.hasMeeting(around));
    EXPECT_TRUE(list.takeMeeting(around).empty());
    EXPECT_EQ(list.takeMeeting(MKMapRectWorld), (std::vector<Overlay>{far}));
    list.remove(*near);
    list.append(near);
    EXPECT_EQ(list.takeMeeting(around), (std::vector<Overlay>{near}));
}

TEST(MKOverlayList, MeetsOnEveryCopyOfTheWorld) {
    const MKMapRect around180 = MKMapRectForCoordinateRegion({{0, 180}, {10, 10}});
    for (const double longitude : {-180.0, -183.0, 178.0, 183.0, 540.0, -900.0, 36000.0 + 180}) {
        MKOverlayList list;
        const CLLocationCoordinate2D coordinates[] = {{1, longitude}, {2, longitude + 1}};
        list.append(MKPolyline::polylineWithCoordinates(coordinates));
        EXPECT_TRUE(list.hasMeeting(around180)) << longitude;
    }
    for (const double longitude : {0.0, 170.0, -170.0, 360.0}) {
        MKOverlayList list;
        const CLLocationCoordinate2D coordinates[] = {{1, longitude}, {2, longitude + 1}};
        list.append(MKPolyline::polylineWithCoordinates(coordinates));
        EXPECT_FALSE(list.hasMeeting(around180)) << longitude;
    }
}

TEST(MKOverlayList, LinesWithoutHeightOrWidthMeetWhatTheyLieIn) {
    const MKMapRect around = MKMapRectForCoordinateRegion({{0, 0}, {10, 10}});
    const CLLocationCoordinate2D shapes[][2] = {{{0, -50}, {0, 50}}, {{-50, 1}, {50, 1}}, {{1, 1}, {1, 1}}};
    for (const auto& shape : shapes) {
        MKOverlayList list;
        list.append(MKPolyline::polylineWithCoordinates(shape));
        EXPECT_TRUE(list.hasMeeting(around));
    }
}

TEST(MKOverlayList, AShapeWithoutPlacesMeetsNothing) {
    MKOverlayList list;
    list.append(MKPolyline::polylineWithCoordinates({}));
    EXPECT_FALSE(list.hasMeeting(MKMapRectWorld));
}

} // namespace veyra
