// Which thread does what: the main queue runs on a thread of its own here.
#include "Tests/Classes/ViewFixture.h"

#include <atomic>
#include <thread>

namespace veyra {

using Threads = ShownMapFixture;

TEST_F(Threads, TheLastReleaseOnAnotherThreadFreesTheViewOnTheMainQueue) {
    std::shared_ptr<VeyraView> other;
    onMain([&] { other = VeyraView::plugInViewWithArguments(arguments()); });
    EXPECT_EQ(VeyraView::liveViews(), 2u);
    std::thread([&] { other = nullptr; }).join();
    EXPECT_EQ(VeyraView::liveViews(), 2u);
    runMain();
    EXPECT_EQ(VeyraView::liveViews(), 1u);
}

TEST_F(Threads, AListenersLastReleaseMayComeOnAnotherThread) {
    run("map.listener = { mark: 1 }");
    std::thread([&] { view().setJsListener(id()); }).join();
    collectGarbage();
    EXPECT_EQ(run("map.listener === null"), "true");
}

TEST_F(Threads, ScriptsReadAndWriteWhileTheMainQueueReports) {
    std::atomic<bool> done = false;
    // This thread is the web thread throughout, the other one the main queue.
    std::thread mainThread([&] {
        GMainContext* const loop = dispatch_get_main_queue().context();
        g_main_context_acquire(loop);
        for (int i = 0; i < 500 || !done; ++i) {
            g_main_context_iteration(loop, FALSE);
            view().mapViewRegionDidChangeAnimated(mapView(), false);
            if (i % 100 == 0)
                instance().window()->setSize({300.0 + i % 7, 200}, 1);
        }
        while (g_main_context_iteration(loop, FALSE)) {
        }
        g_main_context_release(loop);
    });
    run("count = 0; map.listener = { mapRegionDidChange(region) { ++count } }");
    const std::string result = run(R"(
        for (let i = 0; i < 1000; ++i) {
            map.mapType = i % 3;
            map.zoomEnabled = i % 2;
            map.longPressDropsPin = i % 5 === 0;
            map.droppedPinTitle = 'title ' + i;
            map.setRegion({ latitude: i % 80, longitude: i % 170, latitudeDelta: 5, longitudeDelta: 5 });
            map.centerCoordinate = map.convertPointToCoordinate({ x: i, y: i });
            map.regionThatFits(map.region);
            map.convertRegionToRect(map.region);
            map.removeAnnotation('none');
        }
        'done')");
    done = true;
    mainThread.join();
    EXPECT_EQ(result, "done");
    settle();
    EXPECT_GE(std::stoi(run("count")), 1);
}

} // namespace veyra
