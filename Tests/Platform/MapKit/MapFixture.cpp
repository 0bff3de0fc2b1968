#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/Foundation/DispatchQueue.h"

#include <cairo.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace veyra {

Class HostView::classObject() {
    static auto* const cls = new ClassObject("HostView", UIView::classObject(), {});
    return cls;
}

void RecordingDelegate::mapViewDidFailLoadingMapWithError(MKMapView&, const std::shared_ptr<NSError>& error) {
    calls.push_back("didFail " + error->domain().utf8());
}

void RecordingDelegate::mapViewRegionWillChangeAnimated(MKMapView& map, bool animated) {
    calls.push_back(animated ? "will~" : "will");
    if (onWill) {
        onWill(map);
    }
}

void RecordingDelegate::mapViewRegionDidChangeAnimated(MKMapView& map, bool animated) {
    calls.push_back(animated ? "did~" : "did");
    reported.push_back(map.region());
    if (onDid) {
        onDid(map);
    }
}

std::vector<std::string> RecordingDelegate::regionCalls() const {
    std::vector<std::string> found;
    for (const auto& call : calls) {
        if (call == "will" || call == "did" || call == "will~" || call == "did~") {
            found.push_back(call);
        }
    }
    return found;
}

std::vector<std::string> RecordingDelegate::loadingCalls() const {
    std::vector<std::string> found;
    for (const auto& call : calls) {
        if (call.rfind("willStart", 0) == 0 || call.rfind("didF", 0) == 0) {
            found.push_back(call);
        }
    }
    return found;
}

std::shared_ptr<const MKTile> TestSource::drawTile(const MKTileKey& key) const {
    while (blocked) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ++drawn;
    {
        const std::lock_guard guard(_mutex);
        _drawnScales.insert(key.scale);
    }
    if (fails) {
        throw std::runtime_error("no such tile");
    }
    return std::make_shared<const MKTile>(key, MKTileColor{0x00ff00});
}

MapTest::MapTest()
    : source(std::make_shared<TestSource>()), window(UIWindow::make()), host(UIView::make<HostView>({{0, 0}, {1, 1}})),
      map(UIView::make<MKMapView>({{0, 0}, {1, 1}})), delegate(std::make_shared<RecordingDelegate>()) {
    static auto* const queue = new DispatchQueue(g_main_context_default(), "main");
    setMainQueue(queue);
    map->setShowsAttribution(false); // pictures of the map are of the world alone
    map->setTileSource(source);
    map->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    host->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    host->addSubview(map);
    map->setDelegate(delegate);
    window->setSize({1, 1}, 1);
    window->addSubview(host);
}

MapTest::~MapTest() {
    source->blocked = false;
    window.reset();
    host.reset();
    map.reset();
    runQueue();
}

void MapTest::runQueue() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

std::vector<PixelRect> MapTest::frame() {
    now += 1.0 / 60;
    auto damage = window->drawFrame(now);
    runQueue();
    return damage;
}

void MapTest::frames(int count) {
    for (int i = 0; i < count; ++i) {
        frame();
    }
}

void MapTest::settle() {
    const auto start = std::chrono::steady_clock::now();
    while (!window->isIdle()) {
        frame();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        runQueue();
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10))
            << "the map does not come to rest";
    }
}

void MapTest::show(CGSize size, double scale) {
    window->setSize(size, scale);
    settle();
    delegate->calls.clear();
    delegate->reported.clear();
}

uint32_t MapTest::pixelAt(int x, int y) const {
    cairo_surface_t* const surface = window->surface();
    cairo_surface_flush(surface);
    const unsigned char* row = cairo_image_surface_get_data(surface) + cairo_image_surface_get_stride(surface) * y;
    return reinterpret_cast<const uint32_t*>(row)[x] & 0xffffff;
}

std::vector<uint32_t> MapTest::pixels() const {
    std::vector<uint32_t> found;
    for (int y = 0; y < window->pixelHeight(); ++y) {
        for (int x = 0; x < window->pixelWidth(); ++x) {
            found.push_back(pixelAt(x, y));
        }
    }
    return found;
}

uint32_t MapTest::pixelAt(CLLocationCoordinate2D coordinate) const {
    const MKMapRect visible = map->visibleMapRect();
    const MKMapPoint point = MKMapPointForCoordinate(coordinate);
    return pixelAt(static_cast<int>((point.x - visible.origin.x) / visible.size.width * window->pixelWidth()),
                   static_cast<int>((point.y - visible.origin.y) / visible.size.height * window->pixelHeight()));
}

void MapTest::touch(int64_t identifier, UITouchPhase phase, CGPoint at, UITouchType type) {
    window->sendEvent(UITouchEvent{identifier, type, phase, at, now});
}

void MapTest::scroll(CGPoint at, double deltaY, bool pinches) {
    window->sendEvent(
        UIScrollEvent{.location = at, .deltaX = 0, .deltaY = deltaY, .pinches = pinches, .timestamp = now});
}

bool MapTest::key(const std::string& name) {
    UIKeyEvent event;
    event.key = name;
    event.timestamp = now;
    return map->handleKey(event);
}

MKMapPoint MapTest::mapPointAt(CGPoint point) const {
    const MKMapRect visible = map->visibleMapRect();
    const CGSize size = map->bounds().size;
    return {visible.origin.x + point.x / size.width * visible.size.width,
            visible.origin.y + point.y / size.height * visible.size.height};
}

} // namespace veyra
