// Overlays as they are expected to look, picture by picture.
#include "Tests/Platform/MapKit/OverlayFixture.h"
#include "Tests/Support/Picture.h"

#include <numbers>

namespace veyra {

namespace {

class OverlayPicture : public OverlayTest {
protected:
    /// 256 × 256 points around 0, 0: a degree is about 16 of them.
    void showDegrees(double span = 16, double scale = 1) {
        show({256, 256}, scale);
        map->setRegion({{0, 0}, {span, span}});
        settle();
    }
    void expectPicture(const std::string& name) {
        settle();
        EXPECT_TRUE(looksLike("overlays-" + name, window->surface()));
    }
    static std::vector<CLLocationCoordinate2D> zigzag(double latitude) {
        return {
            {latitude - 1.5, -6}, {latitude + 1.5, -3}, {latitude - 1.5, 0}, {latitude + 1.5, 1}, {latitude - 1.5, 6}};
    }
    /// The same zigzag in each look, from north to south.
    void expectZigzags(const std::string& name, const std::vector<std::function<void(MKPolylineView&)>>& looks) {
        showDegrees();
        const double distance = 14.0 / static_cast<double>(looks.size());
        double latitude = 7 - distance / 2;
        for (const auto& look : looks) {
            const auto made = line(zigzag(latitude));
            made.view->setLineWidth(14);
            look(*made.view);
            map->addOverlay(made.overlay);
            latitude -= distance;
        }
        expectPicture(name);
    }
};

NSArray numbers(const std::vector<double>& values) {
    return NSArray(values.begin(), values.end());
}

std::vector<CLLocationCoordinate2D> star(CLLocationCoordinate2D center, double radius) {
    std::vector<CLLocationCoordinate2D> corners;
    for (int i = 0; i < 5; ++i) {
        const double angle = 2 * i * 2 * std::numbers::pi / 5;
        corners.push_back({center.latitude + radius * std::cos(angle), center.longitude + radius * std::sin(angle)});
    }
    return corners;
}

} // namespace

TEST_F(OverlayPicture, Joins) {
    expectZigzags("joins", {[](auto& view) { view.setLineJoin(kCGLineJoinMiter); },
                            [](auto& view) { view.setLineJoin(kCGLineJoinRound); },
                            [](auto& view) { view.setLineJoin(kCGLineJoinBevel); }});
}

TEST_F(OverlayPicture, MiterLimits) {
    expectZigzags("miter-limits",
                  {[](auto& view) { view.setMiterLimit(10); }, [](auto& view) { view.setMiterLimit(1.6); },
                   [](auto& view) { view.setMiterLimit(1); }});
}

TEST_F(OverlayPicture, Caps) {
    expectZigzags("caps", {[](auto& view) { view.setLineCap(kCGLineCapButt); },
                           [](auto& view) { view.setLineCap(kCGLineCapRound); },
                           [](auto& view) { view.setLineCap(kCGLineCapSquare); }});
}

TEST_F(OverlayPicture, Dashes) {
    const auto dashed = [](std::vector<double> pattern, double phase, CGLineCap cap) {
        return [=](MKPolylineView& view) {
            view.setLineWidth(6);
            view.setLineCap(cap);
            view.setLineDashPattern(numbers(pattern));
            view.setLineDashPhase(phase);
        };
    };
    expectZigzags("dashes", {dashed({18, 12}, 0, kCGLineCapButt), dashed({18, 12}, 15, kCGLineCapButt),
                             dashed({18, 12, 4}, 0, kCGLineCapButt), dashed({0, 10}, 0, kCGLineCapRound),
                             dashed({12, 16}, 0, kCGLineCapSquare)});
}

TEST_F(OverlayPicture, EvenOddFillUnderItsLine) {
    showDegrees();
    const auto made = area(star({0, 0}, 6.5));
    made.view->setFillColor(color(0x2060c0));
    made.view->setLineWidth(8);
    made.view->setStrokeColor(color(0xffc000, 0.6));
    map->addOverlay(made.overlay);
    expectPicture("even-odd-fill");
}

TEST_F(OverlayPicture, TranslucentLinesDoNotShowThroughThemselves) {
    showDegrees();
    const auto made = line(star({0, 0}, 6.5));
    made.view->setLineWidth(16);
    made.view->setStrokeColor(color(0x2060c0, 0.5));
    made.view->setFillColor(color(0x00ff00)); // a line is not filled
    map->addOverlay(made.overlay);
    expectPicture("translucent-line");
}

TEST_F(OverlayPicture, CirclesAndTheirDashesAtScale2) {
    showDegrees(16, 2);
    const auto outer = disc({0, 0}, 600e3);
    outer.view->setLineDashPattern(numbers({20, 8}));
    outer.view->setFillColor(color(0x2060c0, 0.25));
    const auto inner = disc({2, 2}, 150e3);
    inner.view->setFillColor(color(0xffc000));
    inner.view->setLineWidth(1);
    map->addOverlays({outer.overlay, inner.overlay});
    expectPicture("circles-scale-2");
}

TEST_F(OverlayPicture, EachOrderingOperation) {
    showDegrees();
    const auto place = [&](double north, double west) {
        std::vector<Overlay> made;
        for (const uint32_t rgb : {0xe04040U, 0x40a040U, 0x4060e0U}) {
            const double shift = static_cast<double>(made.size()) * 1.2;
            made.push_back(square({north - shift, west + shift}, 3, color(rgb)).overlay);
        }
        return made;
    };
    // Nine groups of squares, red, green and blue from north-west to south-east; each is put in order in another way.
    std::vector<std::vector<Overlay>> groups;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            groups.push_back(place(7.6 - 5.2 * row, -7.6 + 5.2 * column));
        }
    }
    const auto position = [&](const Overlay& overlay) {
        const auto all = map->overlays();
        return static_cast<uint64_t>(std::find(all.begin(), all.end(), overlay) - all.begin());
    };
    map->addOverlays(groups[0]); // red, green, blue
    for (const Overlay& overlay : groups[1]) {
        map->insertOverlayAtIndex(overlay, 0); // blue, green, red
    }
    map->addOverlays(groups[2]);
    map->exchangeOverlayAtIndexWithOverlayAtIndex(position(groups[2][0]), position(groups[2][2])); // blue, green, red
    map->addOverlay(groups[3][0]);
    map->addOverlay(groups[3][1]);
    map->insertOverlayAboveOverlay(groups[3][2], groups[3][0]); // red, blue, green
    map->addOverlay(groups[4][0]);
    map->addOverlay(groups[4][1]);
    map->insertOverlayBelowOverlay(groups[4][2], groups[4][0]); // blue, red, green
    map->addOverlays(groups[5]);
    map->removeOverlay(groups[5][1]); // red, blue
    map->addOverlays(groups[6]);
    map->removeOverlays({groups[6][0], groups[6][2]}); // green
    map->addOverlays(groups[7]);
    map->removeOverlay(groups[7][0]);
    map->addOverlay(groups[7][0]);                                                            // green, blue, red
    map->addOverlays({groups[8][2], groups[8][2], groups[8][1], groups[8][0], groups[8][2]}); // blue, green, red
    expectPicture("ordering");
}

TEST_F(OverlayPicture, AcrossTheAntimeridianOnTheWholeWorld) {
    show({512, 512});
    const auto route = line({{50, 140}, {55, 170}, {55, 190}, {45, 215}, {20, 235}});
    const auto zone = area({{-10, 160}, {-10, 200}, {-40, 200}, {-40, 160}});
    zone.view->setFillColor(color(0x8040c0, 0.4));
    const auto ring = disc({0, 180}, 1500e3);
    ring.view->setStrokeColor(color(0x202020));
    const auto beyond = line({{-88, -200}, {-60, -120}, {-89, 0}, {-60, 120}, {-90, 200}}); // past the pole's limit
    beyond.view->setStrokeColor(color(0x0060ff));
    map->addOverlays({route.overlay, zone.overlay, ring.overlay, beyond.overlay});
    expectPicture("antimeridian-world");
}

TEST_F(OverlayPicture, AcrossTheAntimeridianClose) {
    show({512, 512});
    map->setRegion({{-17.4, 179.6}, {5, 5}});
    const auto track = line({{-18, 177}, {-16.5, 179}, {-17.5, 180.5}, {-16, 182}});
    const auto fromTheEast = area({{-18, -180.6}, {-17.2, -179.2}, {-18.4, -178.9}});
    fromTheEast.view->setFillColor(color(0x8040c0, 0.4));
    map->addOverlays({track.overlay, fromTheEast.overlay});
    expectPicture("antimeridian-close");
}

TEST_F(OverlayPicture, RoadWidth) {
    show({256, 256});
    const auto road = line({{-0.01, -0.01}, {0.01, 0.01}});
    road.view->setLineWidth(0);
    map->addOverlay(road.overlay);
    map->setRegion({{0, 0}, {0.002, 0.002}});
    expectPicture("road-width-close");
    map->setRegion({{0, 0}, {0.04, 0.04}});
    expectPicture("road-width-far");
}

} // namespace veyra
