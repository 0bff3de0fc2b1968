// Where names go on the map, and when.
#include "Platform/MapKit/MKLabelLayer.h"

#include "Platform/MapKit/MKGeometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace veyra {

namespace {

constexpr double plenty = 1000; // seconds

double scaleOf(double zoom) {
    return 256 * std::exp2(zoom) / MKWorldSide;
}

MKTileScene sceneAt(double x, double y, double zoom, double deviceScale = 1) {
    MKTileScene scene;
    scene.viewSize = {800, 600};
    scene.camera = MKCamera{{x, y}, scaleOf(zoom)}.clamped(scene.viewSize);
    scene.deviceScale = deviceScale;
    return scene;
}

class MKLabels : public testing::Test {
protected:
    MKLabels() { MKLabelWriter::setFontFamily("DejaVu Sans"); }

    double uniform(double low, double high) { return std::uniform_real_distribution(low, high)(_random); }
    /// Somewhere on the map, more often where there are many names.
    MKTileScene randomScene(double deviceScale = 1) {
        const BasemapName& name = names.all()[_random() % names.all().size()];
        const double zoom = uniform(1.7, 9);
        const double near = 400 / scaleOf(zoom);
        return sceneAt(name.x + uniform(-near, near), name.y + uniform(-near, near), zoom, deviceScale);
    }
    std::vector<MKPlacedLabel> labelsIn(const MKTileScene& scene) { return _layer.labelsIn(names, scene, plenty); }
    std::set<size_t> shownIn(const MKTileScene& scene) {
        std::set<size_t> shown;
        for (const MKPlacedLabel& label : labelsIn(scene)) {
            shown.insert(label.index);
        }
        return shown;
    }
    size_t find(std::string_view text, BasemapNameKind kind) const {
        for (size_t i = 0; i < names.all().size(); ++i) {
            if (names.text(names.all()[i]) == text && names.all()[i].kind == kind) {
                return i;
            }
        }
        ADD_FAILURE() << text << " is missing";
        return 0;
    }

    const BasemapNames& names = builtInNames();

private:
    std::mt19937 _random{7};
    MKLabelLayer _layer;
};

// What a label covers in the view, in points.
std::vector<CGRect> coveredBy(const MKPlacedLabel& label, double deviceScale) {
    const double x = label.x / deviceScale, y = label.y / deviceScale;
    std::vector<CGRect> rects = {{{x + label.text.left, y + label.text.top},
                                  {label.text.right - label.text.left, label.text.bottom - label.text.top}}};
    if (label.markRadius > 0) {
        rects.push_back({{x - label.markRadius, y - label.markRadius}, {2 * label.markRadius, 2 * label.markRadius}});
    }
    return rects;
}

bool overlap(const CGRect& a, const CGRect& b) {
    return a.origin.x < b.origin.x + b.size.width && b.origin.x < a.origin.x + a.size.width &&
           a.origin.y < b.origin.y + b.size.height && b.origin.y < a.origin.y + a.size.height;
}

} // namespace

TEST_F(MKLabels, NeverCoverOneAnother) {
    size_t shown = 0;
    for (int round = 0; round < 150; ++round) {
        const double deviceScale = round % 3 == 0 ? 2 : 1;
        const MKTileScene scene = randomScene(deviceScale);
        const std::vector<MKPlacedLabel> labels = labelsIn(scene);
        shown += labels.size();
        for (size_t i = 0; i < labels.size(); ++i) {
            for (size_t k = i + 1; k < labels.size(); ++k) {
                for (const CGRect& a : coveredBy(labels[i], deviceScale)) {
                    for (const CGRect& b : coveredBy(labels[k], deviceScale)) {
                        ASSERT_FALSE(overlap(a, b)) << names.text(names.all()[labels[i].index]) << " and "
                                                    << names.text(names.all()[labels[k].index]);
                    }
                }
            }
        }
    }
    EXPECT_GT(shown, 3000u);
}

TEST_F(MKLabels, MoveWithTheMapByTheSameWholePixelsAndNeitherComeNorGo) {
    for (int round = 0; round < 100; ++round) {
        const MKTileScene scene = randomScene();
        MKTileScene moved = scene;
        moved.camera = scene.camera.movedBy(uniform(-200, 200), uniform(-150, 150)).clamped(scene.viewSize);
        const MKPixelView from(scene.camera, scene.viewSize, 1), to(moved.camera, scene.viewSize, 1);
        const auto dx = static_cast<int>(from.left - to.left), dy = static_cast<int>(from.top - to.top);
        const std::vector<MKPlacedLabel> before = labelsIn(scene), after = labelsIn(moved);
        for (const MKPlacedLabel& label : before) {
            if (label.x + dx < 0 || label.x + dx > 800 || label.y + dy < 0 || label.y + dy > 600) {
                continue;
            }
            const bool isThere = std::any_of(after.begin(), after.end(), [&](const MKPlacedLabel& other) {
                return other.index == label.index && other.x == label.x + dx && other.y == label.y + dy &&
                       other.text.left == label.text.left && other.text.top == label.text.top;
            });
            EXPECT_TRUE(isThere) << names.text(names.all()[label.index]);
        }
    }
}

TEST_F(MKLabels, AreLeftOutWhereTheyWouldReachIntoWhatIsKeptClearAndNowhereElse) {
    const std::vector<CGRect> areas = {{{6, 570}, {126, 24}}, {{700, 578}, {94, 16}}};
    MKLabelLayer layer;
    layer.setKeptClear(areas);
    size_t leftOut = 0;
    for (int round = 0; round < 150; ++round) {
        const double deviceScale = round % 3 == 0 ? 2 : 1;
        const MKTileScene scene = randomScene(deviceScale);
        std::set<std::pair<size_t, int>> shown; // and where, of the copies of the world
        for (const MKPlacedLabel& label : layer.labelsIn(names, scene, plenty)) {
            shown.insert({label.index, label.x});
        }
        for (const MKPlacedLabel& label : labelsIn(scene)) {
            const bool isShown = shown.contains({label.index, label.x});
            bool meets = false, isNear = false;
            for (const CGRect& covered : coveredBy(label, deviceScale)) {
                for (const CGRect& area : areas) {
                    meets |= overlap(covered, area);
                    isNear |= overlap(
                        covered, {{area.origin.x - 4, area.origin.y - 4}, {area.size.width + 8, area.size.height + 8}});
                }
            }
            EXPECT_FALSE(meets && isShown) << names.text(names.all()[label.index]);
            EXPECT_TRUE(isNear || isShown) << names.text(names.all()[label.index]);
            leftOut += meets;
        }
    }
    EXPECT_GT(leftOut, 30u);
}

TEST_F(MKLabels, MakeRoomForLargeCitiesAndCapitals) {
    MKLabelLayout& layout = MKLabelLayout::shared(names);
    for (const char* const city : {"Tokyo", "London", "Warsaw", "Vienna", "Kabul", "Rio de Janeiro"}) {
        const size_t index = find(city, BasemapNameKind::City);
        EXPECT_LT(layout.settled(index).firstZoom, names.all()[index].minimumZoom + 1) << city;
    }
}

TEST_F(MKLabels, OnlyComeWhileTheMapGrowsUntilTheirLandHasOutgrownThem) {
    for (int round = 0; round < 40; ++round) {
        MKTileScene scene = randomScene();
        const MKMapPoint center = scene.camera.center;
        std::set<size_t> before;
        for (double zoom = 2; zoom < 9; zoom += 0.173) {
            scene.camera = MKCamera{center, scaleOf(zoom)};
            const std::set<size_t> now = shownIn(scene);
            for (const size_t index : before) {
                const BasemapName& name = names.all()[index];
                const bool isInView = std::abs(name.x - center.x) * scaleOf(zoom) < 400 &&
                                      std::abs(name.y - center.y) * scaleOf(zoom) < 300;
                if (isInView && zoom <= name.maximumZoom) {
                    EXPECT_TRUE(now.contains(index)) << names.text(name) << " at " << zoom;
                }
            }
            before = now;
        }
    }
}

TEST_F(MKLabels, AreTheSameInWhateverOrderTheyAreAskedFor) {
    MKLabelLayout forth(names), back(names);
    const size_t count = std::min<size_t>(names.all().size(), 1500);
    for (size_t i = 0; i < count; ++i) {
        forth.settled(i);
        back.settled(count - 1 - i);
    }
    for (size_t i = 0; i < count; ++i) {
        EXPECT_EQ(forth.settled(i).firstZoom, back.settled(i).firstZoom) << i;
        EXPECT_EQ(forth.settled(i).text[1].left, back.settled(i).text[1].left) << i;
    }
}

TEST_F(MKLabels, ShowWhatMattersFirst) {
    MKLabelLayout& layout = MKLabelLayout::shared(names);
    const auto firstZoom = [&](std::string_view text, BasemapNameKind kind) {
        return layout.settled(find(text, kind)).firstZoom;
    };
    EXPECT_LT(firstZoom("China", BasemapNameKind::Country), 1.5);
    EXPECT_LT(firstZoom("Germany", BasemapNameKind::Country), 2);
    EXPECT_LT(firstZoom("Sweden", BasemapNameKind::Country), 2);
    EXPECT_LT(firstZoom("DR Congo", BasemapNameKind::Country), 2);
    EXPECT_LT(firstZoom("Tokyo", BasemapNameKind::City), 3.5);
    EXPECT_LT(firstZoom("Paris", BasemapNameKind::City), firstZoom("Lyon", BasemapNameKind::City));
    EXPECT_LT(firstZoom("Germany", BasemapNameKind::Country), firstZoom("Luxembourg", BasemapNameKind::Country));
    EXPECT_GT(firstZoom("Luxembourg", BasemapNameKind::Country), 4);
}

TEST_F(MKLabels, AppearOnBothSidesOfTheAntimeridian) {
    const MKTileScene scene = sceneAt(0, MKMapPointForCoordinate({-17.5, 180}).y, 5);
    const size_t suva = find("Suva", BasemapNameKind::City); // 178.4 east
    const std::vector<MKPlacedLabel> labels = labelsIn(scene);
    const auto found =
        std::find_if(labels.begin(), labels.end(), [&](const MKPlacedLabel& label) { return label.index == suva; });
    ASSERT_NE(found, labels.end());
    EXPECT_NEAR(found->x, 400 - (MKWorldSide - names.all()[suva].x) * scaleOf(5), 1);
}

TEST_F(MKLabels, ThatNobodyHasTimeForComeLater) {
    const BasemapName& name = names.all()[3000];
    const MKTileScene scene = sceneAt(name.x, name.y, 7);
    MKLabelLayer layer;
    // A copy of the names has a layout of its own, in which nothing is settled yet.
    static const BasemapNames copy = names;
    EXPECT_TRUE(layer.labelsIn(copy, scene, -1).empty());
    EXPECT_FALSE(layer.isComplete());
    EXPECT_FALSE(layer.labelsIn(copy, scene, plenty).empty());
    EXPECT_TRUE(layer.isComplete());
    EXPECT_EQ(layer.labelsIn(copy, scene, -1).size(), labelsIn(scene).size());
    EXPECT_TRUE(layer.isComplete());
}

} // namespace veyra
