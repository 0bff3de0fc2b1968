// Large batches: made in parts, so that the main queue is not held, and one to whoever looks at them.
#include "Classes/VeyraAnnotationSO.h"
#include "Tests/Classes/ViewFixture.h"

#include <malloc.h>

#include <set>

namespace veyra {

class AnnotationBatch : public ShownMapFixture {
protected:
    AnnotationBatch() {
        record();
        run("const far = i => ({ latitude: 60, longitude: 100, identifier: 'far' + i });"
            "const near = i => ({ latitude: i % 100 / 50, longitude: i / 10000, identifier: 'near' + i,"
            "                     pinAnimatesDrop: false });"
            "const many = (count, make) => Array.from({ length: count }, (_, i) => make(i))");
    }
    /// Runs the main queue until nothing waits in it, and gives how many annotations the map had in between.
    std::set<size_t> sizesUntilQuiet() {
        std::set<size_t> sizes;
        EXPECT_TRUE(runMainUntil([&] {
            sizes.insert(mapView().annotations().size());
            return dispatch_get_main_queue().waitingBlocks() == 0;
        }));
        return sizes;
    }
    /// How many of the sizes are neither the least nor the greatest.
    static size_t between(const std::set<size_t>& sizes) { return sizes.size() < 2 ? 0 : sizes.size() - 2; }
};

TEST_F(AnnotationBatch, IsAddedInPartsBetweenWhichOthersHaveTheMainQueue) {
    run("map.addAnnotations(many(200000, far))");
    const auto sizes = sizesUntilQuiet();
    EXPECT_GT(between(sizes), 0u);
    EXPECT_EQ(*sizes.rbegin(), 200000u);
}

TEST_F(AnnotationBatch, IsRemovedInPartsToo) {
    run("map.addAnnotations(many(200000, far))");
    settle();
    run("map.removeAnnotations(map.annotations)");
    const auto sizes = sizesUntilQuiet();
    EXPECT_GT(between(sizes), 0u);
    EXPECT_EQ(*sizes.begin(), 0u);
}

TEST_F(AnnotationBatch, LaterCallsOfAnyKindComeAfterIt) {
    run("map.addAnnotations(many(200000, far));"
        "map.addAnnotation({ latitude: 0, longitude: 0, identifier: 'far7', title: 'too late' });"
        "map.setCenterCoordinate({ latitude: 60, longitude: 100 }, false);"
        "map.removeAnnotation('far199999');"
        "map.longPressDropsPin = true;"
        "map.addOverlay({ type: 'circle', id: 'o', latitude: 0, longitude: 0, radius: 5 })");
    bool early = false;
    EXPECT_TRUE(runMainUntil([&] {
        const bool isComplete = mapView().annotations().size() >= 199999;
        const bool hasMoved = mapView().region().center.longitude > 50;
        early = early ||
                (!isComplete && (hasMoved || view().longPressGestureRecognizer() || !mapView().overlays().empty()));
        return dispatch_get_main_queue().waitingBlocks() == 0;
    }));
    EXPECT_FALSE(early);
    settle();
    EXPECT_EQ(run("map.annotations.length"), "199999");
    EXPECT_EQ(run("map.annotations.includes('far199999')"), "false");
    EXPECT_NEAR(mapView().region().center.longitude, 100, 1e-6);
    EXPECT_NE(view().longPressGestureRecognizer(), nullptr);
    EXPECT_EQ(mapView().overlays().size(), 1u);
}

TEST_F(AnnotationBatch, IsReportedByOneEventInItsOrder) {
    run("map.listener = { mapDidAddViewsForAnnotations(added) { events.push(added) } }; 0");
    run("map.addAnnotations(many(30000, near)); map.selectAnnotation('near29999', false)");
    settle();
    EXPECT_EQ(run("events.length"), "1");
    EXPECT_EQ(run("events[0].length"), "30000");
    EXPECT_EQ(run("events[0].every((identifier, i) => identifier === 'near' + i)"), "true");
    EXPECT_EQ(run("map.selectedAnnotations.join()"), "near29999");
}

TEST_F(AnnotationBatch, KeepsItsMapBusyUntilItIsMade) {
    for (const char* call : {"map.addAnnotations(many(200000, far))", "map.removeAnnotations(map.annotations)"}) {
        run(call);
        bool early = false;
        EXPECT_TRUE(runMainUntil([&] {
            const bool isHalfMade = mapView().annotations().size() % 200000 != 0;
            early = early || (isHalfMade && view().isIdle());
            return dispatch_get_main_queue().waitingBlocks() == 0;
        }));
        EXPECT_FALSE(early) << call;
    }
}

TEST_F(AnnotationBatch, OfAnotherMapDoesNotWait) {
    makeMap("other");
    run("map.addAnnotations(many(200000, far)); other.addAnnotation(far(0))");
    size_t first = 0;
    EXPECT_TRUE(runMainUntil([&] {
        if (run("other.annotations.length") == "1" && first == 0)
            first = mapView().annotations().size();
        return dispatch_get_main_queue().waitingBlocks() == 0;
    }));
    EXPECT_GT(first, 0u);
    EXPECT_LT(first, 200000u);
}

TEST_F(AnnotationBatch, GoesOnWhenItsMapIsStoppedAndThenAllIsFreed) {
    run("map.addAnnotations(many(100000, far))");
    EXPECT_TRUE(runMainUntil([&] { return !mapView().annotations().empty(); }));
    instance().stop();
    settle();
    EXPECT_TRUE(runMainUntil([&] { return VeyraView::liveViews() == 0; }));
}

TEST_F(AnnotationBatch, ListenersMayRemoveWhatTheyAreToldOf) {
    run("map.listener = {"
        "  mapDidAddViewsForAnnotations(added) { events.push('added ' + added.length); map.removeAnnotations(added) },"
        "  mapDidSelectAnnotation(identifier) { events.push('selected ' + identifier); "
        "                                       map.removeAnnotation(identifier) },"
        "  mapDidDeselectAnnotation(identifier) { events.push('deselected ' + identifier); "
        "                                         map.addAnnotation(near(5)) } }; 0");
    run("map.addAnnotations(many(1000, near)); map.selectAnnotation('near5', true)");
    for (int turn = 0; turn < 3; ++turn)
        settle();
    // The selection comes before the removal that the report asks for; its own removal deselects and adds anew.
    EXPECT_EQ(recorded(), "added 1000\nselected near5\ndeselected near5\nadded 1");
    EXPECT_EQ(run("map.annotations.length"), "0");
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(AnnotationBatch, AddedAndRemovedOverAndOverLeavesNothing) {
    run("map.listener = null; batch = many(5000, i => ({ ...near(i), title: 'T' + i, subtitle: 'S' })); "
        "names = batch.map(pin => pin.identifier); 0");
    const auto round = [&] {
        run("map.addAnnotations(batch); map.removeAnnotations(names)");
        settle();
    };
    for (int i = 0; i < 5; ++i)
        round();
    collectGarbage();
    const size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 40; ++i)
        round();
    collectGarbage();
    const auto more = static_cast<double>(mallinfo2().uordblks) - static_cast<double>(before);
    EXPECT_LT(more / 200000, 1) << "bytes an annotation that was added and removed";
}
#endif

} // namespace veyra
