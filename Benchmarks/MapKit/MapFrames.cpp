// Milliseconds of the map's frames at 1024 x 768 points: the first complete picture, a frame of a pan, a frame of a
// zoom. The argument is the display's scale.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKLabelArt.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKPages.h"
#include "Platform/MapKit/MKTileLoader.h"
#include "Platform/UIKit/UIWindow.h"

#include <benchmark/benchmark.h>

namespace {

using namespace veyra;

struct Scene {
    explicit Scene(double scale) : window(UIWindow::make()), map(UIView::make<MKMapView>({{0, 0}, {1, 1}})) {
        map->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
        window->setSize({1, 1}, scale);
        window->addSubview(map);
    }
    void settle() {
        while (!window->isIdle()) {
            if (window->needsFrame()) {
                window->drawFrame(now += 1.0 / 60);
            } else {
                g_main_context_iteration(nullptr, TRUE);
            }
        }
    }
    std::shared_ptr<UIWindow> window;
    std::shared_ptr<MKMapView> map;
    double now = 0;
};

const MKCoordinateRegion world{{20, 0}, {100, 360}};
const MKCoordinateRegion europe{{46.5, 9}, {1, 90}};
const MKCoordinateRegion alps{{46.5, 9}, {1, 5.6}};

void firstFrame(benchmark::State& state, const MKCoordinateRegion& region, MKMapType mapType) {
    const double scale = static_cast<double>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        MKTileLoader::shared().emptyCache();
        state.ResumeTiming();
        Scene scene(scale);
        scene.map->setMapType(mapType);
        scene.map->setRegion(region);
        scene.window->setSize({1024, 768}, scale);
        scene.settle();
    }
}
#define FIRST_FRAME(name, region, mapType)                                                                             \
    BENCHMARK_CAPTURE(firstFrame, name, region, mapType)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()
FIRST_FRAME(world, world, MKMapTypeStandard);
FIRST_FRAME(europe, europe, MKMapTypeStandard);
FIRST_FRAME(alps, alps, MKMapTypeStandard);
FIRST_FRAME(worldHybrid, world, MKMapTypeHybrid);
FIRST_FRAME(europeHybrid, europe, MKMapTypeHybrid);
FIRST_FRAME(alpsHybrid, alps, MKMapTypeHybrid);

// Where the names of a large part of the world go, and their pictures, for the first time.
void firstNames(benchmark::State& state) {
    for (auto _ : state) {
        MKLabelLayout layout(builtInNames());
        for (size_t i = 0; i < 400; ++i) {
            benchmark::DoNotOptimize(layout.settled(i));
        }
    }
}
BENCHMARK(firstNames)->Unit(benchmark::kMillisecond);

void drawNames(benchmark::State& state) {
    MKLabelLayout& layout = MKLabelLayout::shared(builtInNames());
    double scale = static_cast<double>(state.range(0));
    for (auto _ : state) {
        scale += 1e-6; // another picture
        for (size_t i = 0; i < 100; ++i) {
            MKLabelArtCache& cache = MKLabelArtCache::shared();
            benchmark::DoNotOptimize(
                cache.draw({.names = &builtInNames(), .index = i, .scale = scale}, layout.settled(i)));
            cache.trim(cache.useCount());
        }
    }
}
BENCHMARK(drawNames)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

// A map with a finger on it.
struct TouchedScene : Scene {
    explicit TouchedScene(double scale) : Scene(scale) {
        map->setRegion(europe);
        window->setSize({1024, 768}, scale);
        settle();
        touch(UITouchPhase::Began);
    }
    /// Moves the finger to the right and draws the frame.
    void moveBy(double points) {
        _at.x += points;
        touch(UITouchPhase::Moved);
        benchmark::DoNotOptimize(window->drawFrame(now += 1.0 / 60));
    }

private:
    void touch(UITouchPhase phase) {
        window->sendEvent(UITouchEvent{1, UITouchType::IndirectPointer, phase, _at, now});
    }

    CGPoint _at{300, 300};
};

// A finger that moves to and fro by 8 points a frame over tiles that are held.
void panFrame(benchmark::State& state) {
    TouchedScene scene(static_cast<double>(state.range(0)));
    int step = 0;
    for (auto _ : state) {
        scene.moveBy((step++ / 8) % 2 == 0 ? 8 : -8);
        g_main_context_iteration(nullptr, FALSE);
    }
}
BENCHMARK(panFrame)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

// The first frame of a finger that moves a map whose tiles have been packed meanwhile.
void panFrameAfterRest(benchmark::State& state) {
    MKTileLoader::shared().emptyCache();
    TouchedScene scene(static_cast<double>(state.range(0)));
    double step = 8;
    for (auto _ : state) {
        state.PauseTiming();
        while (MKPages::heldBytes() > 0) {
            g_main_context_iteration(nullptr, TRUE);
        }
        state.ResumeTiming();
        scene.moveBy(step = -step);
    }
}
BENCHMARK(panFrameAfterRest)->Arg(1)->Arg(2)->Iterations(4)->Unit(benchmark::kMillisecond);

// The wheel turned to and fro.
void zoomFrame(benchmark::State& state) {
    const double scale = static_cast<double>(state.range(0));
    Scene scene(scale);
    scene.map->setRegion(europe);
    scene.window->setSize({1024, 768}, scale);
    scene.settle();
    int step = 0;
    for (auto _ : state) {
        const double delta = (step++ / 16) % 2 == 0 ? -20 : 20;
        scene.window->sendEvent(UIScrollEvent{
            .location = {500, 400}, .deltaX = 0, .deltaY = delta, .pinches = false, .timestamp = scene.now});
        benchmark::DoNotOptimize(scene.window->drawFrame(scene.now += 1.0 / 60));
        g_main_context_iteration(nullptr, FALSE);
    }
}
BENCHMARK(zoomFrame)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setMainQueue(new DispatchQueue(g_main_context_default(), "main"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
