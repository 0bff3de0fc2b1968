// Milliseconds of overlays on a map of 1024 x 768 points: from the coordinates of a line to its first picture, a frame
// of a pan, a frame of a zoom; and the memory that they take. The time is that of the main queue; the processor time,
// of all threads, is the column CPU. The argument is the number of vertices, or of polygons.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKPolygonView.h"
#include "Platform/MapKit/MKPolylineView.h"
#include "Platform/UIKit/UIWindow.h"

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <random>

namespace {

using namespace veyra;

class Views final : public MKMapViewDelegate {
public:
    std::shared_ptr<MKOverlayView> mapViewViewForOverlay(MKMapView&,
                                                         const std::shared_ptr<MKOverlay>& overlay) override {
        if (const auto line = std::dynamic_pointer_cast<MKPolyline>(overlay)) {
            return styled(MKPolylineView::initWithPolyline(line));
        }
        const auto view = styled(MKPolygonView::initWithPolygon(std::dynamic_pointer_cast<MKPolygon>(overlay)));
        view->setFillColor(UIColor::initWithRedGreenBlueAlpha(1, 0.7, 0, 0.4));
        return view;
    }
    double width = 3;
    std::optional<NSArray> dashes;

private:
    template <class View>
    std::shared_ptr<View> styled(std::shared_ptr<View> view) {
        view->setStrokeColor(UIColor::initWithRedGreenBlueAlpha(0.1, 0.3, 0.8, 1));
        view->setLineWidth(width);
        view->setLineJoin(kCGLineJoinRound);
        view->setLineCap(kCGLineCapRound);
        view->setLineDashPattern(dashes);
        return view;
    }
};

struct Scene {
    Scene()
        : window(UIWindow::make()), map(UIView::make<MKMapView>({{0, 0}, {1, 1}})), views(std::make_shared<Views>()) {
        map->setDelegate(views);
        map->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
        window->setSize({1, 1}, 1);
        window->addSubview(map);
        map->setRegion({{46.5, 9}, {1, 40}});
        window->setSize({1024, 768}, 1);
        settle();
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
    std::shared_ptr<Views> views;
    double now = 0;
};

// A track through Europe: steady headings that turn now and then, a few hundred metres of noise.
std::vector<CLLocationCoordinate2D> track(size_t count) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.0005), turn(0, 0.6);
    std::vector<CLLocationCoordinate2D> coordinates;
    coordinates.reserve(count);
    const double step = 400.0 / static_cast<double>(count); // degrees; 400 in all
    double latitude = 46.5, longitude = 9, heading = 1;
    for (size_t i = 0; i < count; ++i) {
        heading += turn(random) * std::sqrt(step);
        latitude += step * std::sin(heading);
        longitude += step * std::cos(heading);
        if (latitude < 36 || latitude > 57 || longitude < -10 || longitude > 28) {
            heading = std::atan2(46.5 - latitude, 9 - longitude);
        }
        coordinates.push_back({latitude + noise(random), longitude + noise(random)});
    }
    return coordinates;
}

std::vector<std::shared_ptr<MKOverlay>> polygons(size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> latitude(36, 56), longitude(-10, 28);
    std::vector<std::shared_ptr<MKOverlay>> made;
    for (size_t i = 0; i < count; ++i) {
        std::vector<CLLocationCoordinate2D> corners;
        const double middle = latitude(random), across = longitude(random);
        for (int corner = 0; corner < 12; ++corner) {
            const double angle = corner * 0.5236;
            corners.push_back({middle + 0.2 * std::sin(angle), across + 0.3 * std::cos(angle)});
        }
        made.push_back(MKPolygon::polygonWithCoordinates(corners));
    }
    return made;
}

void untilDrawn(benchmark::State& state) {
    const auto coordinates = track(static_cast<size_t>(state.range(0)));
    Scene scene;
    for (auto _ : state) {
        const auto line = MKPolyline::polylineWithCoordinates(coordinates);
        scene.map->addOverlay(line);
        scene.settle();
        state.PauseTiming();
        scene.map->removeOverlay(line);
        scene.settle();
        state.ResumeTiming();
    }
}
BENCHMARK(untilDrawn)
    ->Arg(200000)
    ->Arg(1000000)
    ->Arg(10000000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

void bytesAVertex(benchmark::State& state) {
    const auto coordinates = track(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        const auto line = MKPolyline::polylineWithCoordinates(coordinates);
        const size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.counters["bytes"] = static_cast<double>(after - before) / static_cast<double>(coordinates.size());
    }
}
BENCHMARK(bytesAVertex)->Arg(200000)->Arg(1000000)->Unit(benchmark::kMillisecond);

/// A finger that moves to and fro, 8 points a frame and 60 frames a second.
void pan(benchmark::State& state, Scene& scene) {
    CGPoint at{512, 384};
    scene.window->sendEvent(UITouchEvent{1, UITouchType::IndirectPointer, UITouchPhase::Began, at, scene.now});
    int step = 0;
    for (auto _ : state) {
        at.x += (step++ / 60) % 2 == 0 ? 8 : -8;
        scene.window->sendEvent(UITouchEvent{1, UITouchType::IndirectPointer, UITouchPhase::Moved, at, scene.now});
        benchmark::DoNotOptimize(scene.window->drawFrame(scene.now += 1.0 / 60));
        state.PauseTiming();
        for (int i = 0; i < 4; ++i) {
            g_usleep(3000);
            while (g_main_context_iteration(nullptr, FALSE)) {
            }
        }
        state.ResumeTiming();
    }
}

/// The wheel turned to and fro.
void zoom(benchmark::State& state, Scene& scene) {
    int step = 0;
    for (auto _ : state) {
        const double delta = (step++ / 30) % 2 == 0 ? -20 : 20;
        scene.window->sendEvent(UIScrollEvent{
            .location = {500, 400}, .deltaX = 0, .deltaY = delta, .pinches = false, .timestamp = scene.now});
        benchmark::DoNotOptimize(scene.window->drawFrame(scene.now += 1.0 / 60));
        state.PauseTiming();
        for (int i = 0; i < 4; ++i) {
            g_usleep(3000);
            while (g_main_context_iteration(nullptr, FALSE)) {
            }
        }
        state.ResumeTiming();
    }
}

void lineFrames(benchmark::State& state, void (*move)(benchmark::State&, Scene&), bool isDashed) {
    Scene scene;
    if (isDashed) {
        scene.views->dashes = NSArray{id(8), id(6)};
    }
    if (state.range(0) > 0) {
        scene.map->addOverlay(MKPolyline::polylineWithCoordinates(track(static_cast<size_t>(state.range(0)))));
    }
    scene.settle();
    move(state, scene);
}
BENCHMARK_CAPTURE(lineFrames, pan, pan, false)
    ->Arg(0)
    ->Arg(200000)
    ->Arg(1000000)
    ->Arg(10000000)
    ->Iterations(240)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(lineFrames, panDashed, pan, true)
    ->Arg(1000000)
    ->Iterations(240)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(lineFrames, zoom, zoom, false)
    ->Arg(0)
    ->Arg(200000)
    ->Arg(1000000)
    ->Arg(10000000)
    ->Iterations(240)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

void polygonFrames(benchmark::State& state, void (*move)(benchmark::State&, Scene&)) {
    Scene scene;
    scene.map->addOverlays(polygons(static_cast<size_t>(state.range(0))));
    scene.settle();
    move(state, scene);
}
BENCHMARK_CAPTURE(polygonFrames, pan, pan)
    ->Arg(2000)
    ->Iterations(240)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(polygonFrames, zoom, zoom)
    ->Arg(2000)
    ->Iterations(240)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

void polygonsUntilDrawn(benchmark::State& state) {
    Scene scene;
    for (auto _ : state) {
        const auto made = polygons(static_cast<size_t>(state.range(0)));
        scene.map->addOverlays(made);
        scene.settle();
        state.PauseTiming();
        scene.map->removeOverlays(made);
        scene.settle();
        state.ResumeTiming();
    }
}
BENCHMARK(polygonsUntilDrawn)->Arg(2000)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

/// One of the polygons is taken away and another one put at its place, until that is drawn.
void changePolygon(benchmark::State& state) {
    Scene scene;
    auto made = polygons(static_cast<size_t>(state.range(0)));
    scene.map->addOverlays(made);
    scene.settle();
    const auto spare = polygons(2 * made.size());
    size_t turn = 0;
    for (auto _ : state) {
        const size_t place = ++turn % made.size();
        const auto& other = made[place] == spare[place] ? spare[made.size() + place] : spare[place];
        scene.map->removeOverlay(made[place]);
        scene.map->insertOverlayAtIndex(other, place);
        made[place] = other;
        scene.settle();
    }
}
BENCHMARK(changePolygon)->Arg(2000)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

/// Two of the polygons change places in the drawing order, until that is drawn.
void exchangePolygons(benchmark::State& state) {
    Scene scene;
    scene.map->addOverlays(polygons(static_cast<size_t>(state.range(0))));
    scene.settle();
    uint64_t turn = 0;
    for (auto _ : state) {
        ++turn;
        scene.map->exchangeOverlayAtIndexWithOverlayAtIndex(turn % 2000, turn * 7 % 2000);
        scene.settle();
    }
}
BENCHMARK(exchangePolygons)->Arg(2000)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

/// A line of some hundred vertices that grows, beside a long one, until each new vertex is drawn.
void growLine(benchmark::State& state) {
    Scene scene;
    scene.map->addOverlay(MKPolyline::polylineWithCoordinates(track(static_cast<size_t>(state.range(0)))));
    const auto whole = track(1000000);
    const std::span<const CLLocationCoordinate2D> all(whole);
    std::shared_ptr<MKPolyline> growing;
    size_t count = 2;
    for (auto _ : state) {
        if (growing) {
            scene.map->removeOverlay(growing);
        }
        count = count == 500 ? 2 : count + 1;
        growing = MKPolyline::polylineWithCoordinates(all.subspan(0, count));
        scene.map->addOverlay(growing);
        scene.settle();
    }
}
BENCHMARK(growLine)->Arg(0)->Arg(200000)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

} // namespace

int main(int argc, char** argv) {
    setMainQueue(new DispatchQueue(g_main_context_default(), "main"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
