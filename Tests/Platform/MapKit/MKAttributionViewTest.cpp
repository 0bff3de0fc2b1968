#include "Platform/MapKit/MKAttributionView.h"

#include "Platform/MapKit/ImageTiles/MKImageTileSource.h"
#include "Platform/MapKit/ImageTiles/MKWebImageSet.h"
#include "Platform/MapKit/MKBasemapSource.h"
#include "Tests/Platform/MapKit/MapFixture.h"

namespace veyra {

namespace {

/// A source that says whose data it shows.
class AttributedSource final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override {
        return std::make_shared<const MKTile>(key, MKTileColor{0x808080});
    }
    MKTileColor backgroundColor(MKMapType) const override { return 0; }
    MKTileAttribution attribution(MKMapType mapType) const override {
        return mapType == MKMapTypeStandard ? standard : MKTileAttribution{};
    }
    MKTileAttribution standard{"© Somebody", "https://example.org/about"};
};

class MKAttributionViewTest : public MapTest {
protected:
    MKAttributionViewTest() {
        map->setShowsAttribution(true);
        map->setTileSource(attributed);
    }
    const MKAttributionView* view() const {
        for (const auto& subview : map->subviews()) {
            if (const auto* found = dynamic_cast<const MKAttributionView*>(subview.get())) {
                return found;
            }
        }
        return nullptr;
    }
    std::shared_ptr<AttributedSource> attributed = std::make_shared<AttributedSource>();
};

} // namespace

TEST_F(MKAttributionViewTest, StandsAtTheBottomRight) {
    show({400, 300});
    EXPECT_EQ(view()->attribution(), attributed->standard);
    EXPECT_FALSE(view()->isHidden());
    EXPECT_EQ(view()->frame().origin.x + view()->frame().size.width, 394);
    EXPECT_EQ(view()->frame().origin.y + view()->frame().size.height, 294);
    window->setSize({500, 200}, 1);
    settle();
    EXPECT_EQ(view()->frame().origin.x + view()->frame().size.width, 494);
}

TEST_F(MKAttributionViewTest, IsPainted) {
    show({400, 300});
    int dark = 0, light = 0;
    const CGRect frame = view()->frame();
    for (int x = static_cast<int>(frame.origin.x); x < 394; ++x) {
        for (int y = static_cast<int>(frame.origin.y); y < 294; ++y) {
            dark += (pixelAt(x, y) & 255) < 0x70;
            light += (pixelAt(x, y) & 255) > 0xc0;
        }
    }
    EXPECT_GT(dark, 60);
    EXPECT_GT(light, 100);
    map->setMapType(MKMapTypeSatellite);
    settle();
    EXPECT_TRUE(view()->isHidden());
    EXPECT_EQ(pixelAt(390, 285), 0x808080u);
}

TEST_F(MKAttributionViewTest, IsShortenedWhereThereIsNoRoom) {
    attributed->standard.text = std::string(500, 'M');
    map->setShowsScale(true);
    show({300, 200});
    EXPECT_LE(view()->frame().size.width, 300);
    EXPECT_GE(view()->frame().origin.x, 120 + 6) << "the scale bar has its place";
}

TEST_F(MKAttributionViewTest, TheWindowHandsItsTextOn) {
    std::vector<UICaption> captions;
    window->setCaptionHandler([&](const UICaption& caption) { captions.push_back(caption); });
    show({400, 300});
    EXPECT_EQ(captions.back(), (UICaption{"© Somebody", "https://example.org/about", view()->frame()}));
    map->setMapType(MKMapTypeSatellite);
    settle();
    EXPECT_EQ(captions.back().text, "");
    EXPECT_EQ(captions.back().url, "");
    std::vector<UICaption> late;
    map->setMapType(MKMapTypeStandard);
    window->setCaptionHandler([&](const UICaption& caption) { late.push_back(caption); });
    EXPECT_EQ(late.size(), 1u) << "who asks later hears what there is";
}

TEST_F(MKAttributionViewTest, LiesUnderWhatElseIsAddedToTheMap) {
    const auto other = UIView::make<HostView>({{0, 0}, {400, 300}});
    map->addSubview(other);
    show({400, 300});
    EXPECT_EQ(map->subviews().back(), other);
    map->setMapType(MKMapTypeSatellite);
    map->setMapType(MKMapTypeStandard);
    settle();
    EXPECT_EQ(map->subviews().back(), other);
}

TEST_F(MKAttributionViewTest, TheBuiltInWorldSaysWhoseItIs) {
    map->setTileSource(MKBasemapSource::shared());
    show({400, 300});
    EXPECT_EQ(view()->attribution().text, "Natural Earth");
    map->setMapType(MKMapTypeSatellite);
    EXPECT_EQ(view()->attribution().text, "NASA Blue Marble");
    map->setMapType(MKMapTypeHybrid);
    EXPECT_EQ(view()->attribution().text, "NASA Blue Marble, Natural Earth");
}

TEST_F(MKAttributionViewTest, ImagesSayWhoseTheyAreAndTheWorldDoesForTheOtherMapTypes) {
    const auto set = std::make_shared<MKWebImageSet>(MKTileAddress("http://127.0.0.1:9/{z}/{x}/{y}"),
                                                     MKImageSetProperties{.attribution = {"© Images", ""}});
    const MKImageTileSource tiles({{MKMapTypeSatellite, set}}, attributed);
    EXPECT_EQ(tiles.attribution(MKMapTypeSatellite).text, "© Images");
    EXPECT_EQ(tiles.attribution(MKMapTypeStandard).text, "© Somebody");
}

} // namespace veyra
