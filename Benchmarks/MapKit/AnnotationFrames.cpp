// Milliseconds of a map of 1024 x 768 points with pins all over what it shows: adding them until they are drawn, a
// frame of a pan, a frame of a zoom, a frame in which they fall, and the bytes that one takes. The argument is the
// number of pins. "distant" has a million more pins on the map, out of view.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKPinAnnotationView.h"
#include "Platform/MapKit/MKTile.h"
#include "Platform/UIKit/UIWindow.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <random>

namespace {

using namespace veyra;

class Pin final : public MKAnnotation {
public:
    explicit Pin(CLLocationCoordinate2D place) : _place(place) {}
    CLLocationCoordinate2D coordinate() const override { return _place; }
    void setCoordinate(CLLocationCoordinate2D place) override { _place = place; }

private:
    CLLocationCoordinate2D _place;
};

/// Ground that costs next to nothing.
class PlainSource final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override {
        return std::make_shared<const MKTile>(key, MKTileColor{0xe8e4d8});
    }
    MKTileColor backgroundColor(MKMapType) const override { return 0xe8e4d8; }
};

class Delegate final : public MKMapViewDelegate {
public:
    std::shared_ptr<MKAnnotationView> mapViewViewForAnnotation(MKMapView& map,
                                                               const std::shared_ptr<MKAnnotation>& pin) override {
        static const NSString identifier("pin");
        auto view =
            std::dynamic_pointer_cast<MKPinAnnotationView>(map.dequeueReusableAnnotationViewWithIdentifier(identifier));
        if (!view) {
            view = MKPinAnnotationView::initWithAnnotationReuseIdentifier(pin, identifier);
        }
        view->setPinColor(_count++ % 3);
        view->setAnimatesDrop(drops);
        return view;
    }
    bool drops = false;

private:
    uint64_t _count = 0;
};

using Pins = std::vector<std::shared_ptr<MKAnnotation>>;

/// Pins spread evenly, not on a grid, over 40 x 30 degrees around (0, 0), or over what lies around that.
Pins makePins(int64_t count, bool distant = false) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> latitude(-14.5, 14.5), longitude(-20, 20);
    Pins pins;
    pins.reserve(static_cast<size_t>(count));
    for (int64_t i = 0; i < count; ++i) {
        const double far = distant ? 90 : 0;
        pins.push_back(std::make_shared<Pin>(CLLocationCoordinate2DMake(latitude(random), longitude(random) + far)));
    }
    return pins;
}

struct PinScene {
    PinScene() : window(UIWindow::make()), map(UIView::make<MKMapView>({{0, 0}, {1, 1}})) {
        map->setTileSource(std::make_shared<PlainSource>());
        map->setDelegate(delegate);
        map->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
        map->setRegion({{0, 0}, {0.1, 40}});
        window->setSize({1, 1}, 1);
        window->addSubview(map);
        window->setSize({1024, 768}, 1);
        settle();
    }
    void frame() {
        window->drawFrame(now += 1.0 / 60);
        g_main_context_iteration(nullptr, FALSE);
    }
    void settle() {
        while (!window->isIdle()) {
            if (window->needsFrame()) {
                window->drawFrame(now += 1.0 / 60);
            }
            g_main_context_iteration(nullptr, FALSE);
        }
    }
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<UIWindow> window;
    std::shared_ptr<MKMapView> map;
    double now = 0;
};

/// The scene with pins in view; `distant` adds a million out of view.
struct FilledScene : PinScene {
    FilledScene(int64_t count, bool distant) {
        map->addAnnotations(makePins(count));
        if (distant) {
            map->addAnnotations(makePins(1000000, true));
        }
        settle();
    }
};

void addPins(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        {
            PinScene scene;
            const Pins pins = makePins(state.range(0));
            state.ResumeTiming();
            for (const auto& pin : pins) {
                scene.map->addAnnotation(pin);
            }
            scene.settle();
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}
BENCHMARK(addPins)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Not with the time of the ground alone: see `panFrame` and `zoomFrame` of no pins.
void panPins(benchmark::State& state, bool distant) {
    FilledScene scene(state.range(0), distant);
    // A finger's drag is on the ground, which pins may cover: the centre is moved as a script does it.
    int step = 0;
    double longitude = 0;
    for (auto _ : state) {
        longitude += (step++ / 30) % 2 == 0 ? 0.3 : -0.3;
        scene.map->setCenterCoordinate({0, longitude});
        scene.frame();
    }
}
BENCHMARK_CAPTURE(panPins, inView, false)
    ->Arg(0)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(panPins, distant, true)->Arg(1000)->Unit(benchmark::kMillisecond);

void zoomPins(benchmark::State& state, bool distant) {
    FilledScene scene(state.range(0), distant);
    int step = 0;
    for (auto _ : state) {
        const double delta = (step++ / 16) % 2 == 0 ? -4 : 4;
        scene.window->sendEvent(UIScrollEvent{
            .location = {500, 400}, .deltaX = 0, .deltaY = delta, .pinches = false, .timestamp = scene.now});
        scene.frame();
    }
}
BENCHMARK_CAPTURE(zoomPins, inView, false)
    ->Arg(0)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(zoomPins, distant, true)->Arg(1000)->Unit(benchmark::kMillisecond);

void dropPins(benchmark::State& state) {
    PinScene scene;
    scene.delegate->drops = true;
    for (auto _ : state) {
        if (scene.window->isIdle()) {
            state.PauseTiming();
            scene.map->removeAnnotations(scene.map->annotations());
            scene.settle();
            scene.map->addAnnotations(makePins(state.range(0)));
            state.ResumeTiming();
        }
        scene.frame();
    }
}
BENCHMARK(dropPins)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Bytes of a pin beside the page's own record of it: in view with its view, or out of view.
void pinMemory(benchmark::State& state, bool distant) {
    double bytes = 0;
    for (auto _ : state) {
        PinScene scene;
        const Pins pins = makePins(state.range(0), distant);
        const size_t before = heapInUse();
        scene.map->addAnnotations(pins);
        scene.settle();
        bytes = static_cast<double>(heapInUse() - before) / static_cast<double>(pins.size());
    }
    state.counters["bytes"] = bytes;
}
BENCHMARK_CAPTURE(pinMemory, inView, false)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pinMemory, distant, true)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
