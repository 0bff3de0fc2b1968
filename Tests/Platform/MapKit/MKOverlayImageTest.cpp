// Pictures of overlays that are made from former pictures, and pictures of random, also senseless, shapes and styles,
// with fixed seeds.
#include "Platform/MapKit/MKOverlayImage.h"
#include "Platform/MapKit/MKCircleView.h"
#include "Platform/MapKit/MKPolygonView.h"
#include "Platform/MapKit/MKPolylineView.h"
#include "Tests/Platform/UIKit/MainQueueFixture.h"

#include <cmath>
#include <limits>
#include <random>

namespace veyra {

namespace {

class MKOverlayImageTest : public MainQueueFixture {}; // views are made on the main queue

constexpr double infinity = std::numeric_limits<double>::infinity();

class Maker {
public:
    explicit Maker(unsigned seed) : _random(seed) {}

    size_t below(size_t bound) { return std::uniform_int_distribution<size_t>(0, bound - 1)(_random); }
    double between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(_random); }
    /// A number of any size and kind.
    double any() {
        static constexpr double odd[] = {0, -0.0, 1e-300, 1e308, -1e308, infinity, -infinity, NAN, 5e-324, -1, 1e9};
        switch (below(4)) {
        case 0:
            return odd[below(std::size(odd))];
        case 1:
            return between(-1, 1) * std::pow(10, between(-20, 20));
        default:
            return between(-200, 200);
        }
    }

    /// A figure somewhere around 0, 0 with a look that makes sense.
    std::shared_ptr<const MKOverlayFigure> sensible() {
        const auto number = [&](double low, double high) { return between(low, high); };
        return make(number, 1 + below(40));
    }
    /// A figure of which any number may be anything.
    std::shared_ptr<const MKOverlayFigure> senseless() {
        const bool isWild = below(2) == 0;
        const auto number = [&](double low, double high) {
            return isWild || below(8) == 0 ? any() : between(low, high);
        };
        return make(number, below(4) == 0 ? below(6000) : below(20));
    }

private:
    template <class Number>
    std::shared_ptr<const MKOverlayFigure> make(Number number, size_t count) {
        const double north = between(-40, 40), west = between(-180, 180), size = below(5) == 0 ? 400 : 20;
        std::vector<CLLocationCoordinate2D> coordinates(count);
        for (auto& coordinate : coordinates) {
            coordinate = {number(north - size, north + size), number(west - size, west + size)};
        }
        switch (below(3)) {
        case 0:
            return styled(*MKPolylineView::initWithPolyline(MKPolyline::polylineWithCoordinates(coordinates)), number);
        case 1:
            return styled(*MKPolygonView::initWithPolygon(MKPolygon::polygonWithCoordinates(coordinates)), number);
        default:
            return styled(*MKCircleView::initWithCircle(MKCircle::circleWithCenterCoordinateRadius(
                              {number(-80, 80), number(-180, 180)}, number(1e3, 3e6))),
                          number);
        }
    }

    template <class Number>
    std::shared_ptr<const MKOverlayFigure> styled(MKOverlayPathView& view, Number number) {
        const auto color = [&] {
            return UIColor::initWithRedGreenBlueAlpha(number(0, 1), number(0, 1), number(0, 1), number(0.2, 1));
        };
        view.setStrokeColor(below(5) == 0 ? nullptr : color());
        view.setFillColor(below(2) == 0 ? nullptr : color());
        view.setLineWidth(number(0, 8));
        view.setLineJoin(static_cast<CGLineJoin>(below(3)));
        view.setLineCap(static_cast<CGLineCap>(below(3)));
        view.setMiterLimit(number(1, 10));
        view.setLineDashPhase(number(0, 100));
        if (below(3) == 0) {
            NSArray dashes;
            for (size_t i = below(5); i > 0; --i) {
                dashes.push_back(id(number(0, 20)));
            }
            view.setLineDashPattern(dashes);
        }
        return view.figure();
    }

    std::mt19937 _random;
};

MKOverlayScene scene(MKOverlayFigures figures, CLLocationCoordinate2D center, double pointsAMapPoint,
                     double deviceScale = 1) {
    std::erase_if(figures, [](const auto& figure) { return !figure->isVisible(); });
    MKPixelView view;
    view.scale = pointsAMapPoint * deviceScale;
    view.width = 300;
    view.height = 200;
    const MKMapPoint middle = MKMapPointForCoordinate(center);
    view.left = std::round(middle.x * view.scale) - view.width / 2;
    view.top = std::round(middle.y * view.scale) - view.height / 2;
    return {view, deviceScale, std::make_shared<const MKOverlayFigures>(std::move(figures))};
}

std::shared_ptr<const MKOverlayImage> drawn(const MKOverlayScene& scene, const MKOverlayImage* former = nullptr) {
    MKDrawingTicket ticket;
    return MKOverlayImage::draw(scene, former, ticket);
}

/// The pixel of the picture; 0 outside of what it holds.
uint32_t pixelAt(const MKOverlayImage& image, int x, int y) {
    const PixelRect& content = image.content();
    if (!content.contains({x, y, 1, 1})) {
        return 0;
    }
    cairo_surface_t* const surface = image.surface();
    const unsigned char* const row =
        cairo_image_surface_get_data(surface) + (y - content.y) * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<const uint32_t*>(row)[x - content.x];
}

/// How many pixels of two pictures, the second one's corner at (dx, dy) of the first, differ by more than a rounding,
/// where both are, outside of some areas.
int differences(const MKOverlayImage& one, const MKOverlayImage& other, int dx = 0, int dy = 0,
                const std::vector<PixelRect>& besides = {}) {
    constexpr int rounding = 20; // one of the 15 rows in which the drawing library samples a pixel
    int count = 0;
    for (int y = 0; y < one.scene().view.height; ++y) {
        for (int x = 0; x < one.scene().view.width; ++x) {
            const PixelRect there{x - dx, y - dy, 1, 1};
            const auto isIn = [&](const PixelRect& area) { return area.contains({x, y, 1, 1}); };
            if (!PixelRect{0, 0, other.scene().view.width, other.scene().view.height}.contains(there) ||
                std::any_of(besides.begin(), besides.end(), isIn)) {
                continue;
            }
            const uint32_t a = pixelAt(one, x, y), b = pixelAt(other, there.x, there.y);
            int largest = 0;
            for (const int shift : {0, 8, 16, 24}) {
                largest = std::max(largest,
                                   std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)));
            }
            count += largest > rounding;
        }
    }
    return count;
}

constexpr double wholeWorld = 256 / MKWorldSide;

} // namespace

TEST_F(MKOverlayImageTest, MadeFromAFormerOneLooksLikeOneDrawnAnew) {
    Maker maker(41);
    int madeFromFormer = 0;
    for (int turn = 0; turn < 60; ++turn) {
        MKOverlayFigures figures;
        for (size_t i = maker.below(30); i > 0; --i) {
            figures.push_back(maker.sensible());
        }
        const double scale = wholeWorld * std::pow(2, maker.between(0, 5));
        CLLocationCoordinate2D center{maker.between(-30, 30), maker.between(-180, 180)};
        auto former = drawn(scene(figures, center, scale));
        for (int change = 0; change < 6; ++change) {
            const size_t at = maker.below(figures.size() + 1), other = maker.below(figures.size() + 1);
            switch (maker.below(4)) {
            case 0:
                figures.insert(figures.begin() + static_cast<ptrdiff_t>(at), maker.sensible());
                break;
            case 1:
                if (at < figures.size()) {
                    figures.erase(figures.begin() + static_cast<ptrdiff_t>(at));
                }
                break;
            case 2:
                if (at < figures.size() && other < figures.size()) {
                    std::swap(figures[at], figures[other]);
                }
                break;
            default:
                center.longitude += maker.between(-10, 10) / scale / MKWorldSide;
                center.latitude += maker.between(-3, 3) / scale / MKWorldSide;
            }
            const MKOverlayScene now = scene(figures, center, scale);
            const auto made = drawn(now, former.get()), anew = drawn(now);
            ASSERT_LE(differences(*made, *anew), 12) << turn << ", " << change;
            if (made->isMadeFrom(*former)) {
                ++madeFromFormer;
                const auto dx = static_cast<int>(former->scene().view.left - now.view.left);
                const auto dy = static_cast<int>(former->scene().view.top - now.view.top);
                ASSERT_LE(differences(*made, *former, dx, dy, made->changes()), 12) << turn << ", " << change;
            }
            former = made;
        }
    }
    EXPECT_GT(madeFromFormer, 100);
}

TEST_F(MKOverlayImageTest, OfManyShapesOnlyWhereOneHasChangedIsDrawn) {
    Maker maker(5);
    MKOverlayFigures figures;
    const auto square = [&](double latitude, double longitude) {
        const CLLocationCoordinate2D corners[] = {
            {latitude, longitude}, {latitude, longitude + 2}, {latitude - 2, longitude + 2}, {latitude - 2, longitude}};
        const auto view = MKPolygonView::initWithPolygon(MKPolygon::polygonWithCoordinates(corners));
        view->setFillColor(UIColor::colorWithWhiteAlpha(0, 0.5));
        return view->figure();
    };
    for (int i = 0; i < 2000; ++i) {
        figures.push_back(square(maker.between(-50, 50), maker.between(-100, 100)));
    }
    const auto former = drawn(scene(figures, {0, 0}, wholeWorld));
    figures[1000] = square(10, 10);
    const auto made = drawn(scene(figures, {0, 0}, wholeWorld), former.get());
    ASSERT_TRUE(made->isMadeFrom(*former));
    int64_t changed = 0;
    for (const PixelRect& area : made->changes()) {
        changed += area.area();
    }
    EXPECT_GT(changed, 0);
    EXPECT_LT(changed, 2000); // of 60,000
}

// Much to draw is drawn in bands at the same time; a strip that is lower than these is drawn in one go.
TEST_F(MKOverlayImageTest, WhatIsDrawnInBandsLooksLikeItDrawnStripByStrip) {
    Maker maker(19);
    for (int turn = 0; turn < 4; ++turn) {
        MKOverlayFigures figures;
        for (size_t i = 0; i < 10; ++i) {
            figures.push_back(maker.sensible());
        }
        std::vector<CLLocationCoordinate2D> track;
        for (int i = 0; i < 20000; ++i) {
            track.push_back({20 * std::sin(i / 3000.0) + maker.between(-0.5, 0.5), -60 + i * 0.006});
        }
        const auto line = MKPolylineView::initWithPolyline(MKPolyline::polylineWithCoordinates(track));
        line->setStrokeColor(UIColor::colorWithWhiteAlpha(0, 0.5));
        line->setLineWidth(turn);
        line->setLineJoin(turn % 2 == 0 ? kCGLineJoinRound : kCGLineJoinMiter);
        figures.push_back(line->figure());
        const MKOverlayScene whole = scene(figures, {0, 0}, wholeWorld * 4);
        const auto image = drawn(whole);
        for (int top = 0; top < whole.view.height; top += 50) {
            MKOverlayScene strip = whole;
            strip.view.top += top;
            strip.view.height = 50;
            ASSERT_LE(differences(*image, *drawn(strip), 0, top), 3) << turn << ", " << top;
        }
    }
}

TEST_F(MKOverlayImageTest, RandomShapesAndLooksAreDrawnOrNotAndThatIsAll) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Maker maker(seed);
        MKOverlayFigures figures;
        for (size_t i = 0; i < 25; ++i) {
            figures.push_back(maker.senseless());
        }
        const double zoom = maker.between(0, 28);
        const MKOverlayScene first = scene(figures, {maker.between(-85, 85), maker.between(-540, 540)},
                                           wholeWorld * std::pow(2, zoom), maker.below(2) == 0 ? 1 : 2);
        const auto former = drawn(first);
        std::swap(figures[maker.below(25)], figures[maker.below(25)]);
        figures.erase(figures.begin() + static_cast<ptrdiff_t>(maker.below(25)));
        MKOverlayScene second = first;
        second.figures = scene(figures, {0, 0}, 1).figures;
        second.view.left += maker.between(-1, 1) < 0 ? 37 : 0;
        const auto made = drawn(second, former.get());
        ASSERT_TRUE(PixelRect({0, 0, 300, 200}).contains(made->content()) || made->content().isEmpty()) << seed;
    }
}

} // namespace veyra
