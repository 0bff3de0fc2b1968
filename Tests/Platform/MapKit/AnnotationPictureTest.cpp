// Annotations as they are expected to look, picture by picture, on a map of one colour.
#include "Tests/Platform/MapKit/AnnotationFixture.h"
#include "Tests/Support/Picture.h"

#include "Platform/CoreLocation/CLLocation.h"
#include "Platform/MapKit/MKLabelWriter.h"
#include "Platform/MapKit/MKUserLocation.h"
#include "Platform/UIKit/UIButton.h"

namespace veyra {

namespace {

/// A quiet ground, as annotations usually stand on one.
class GroundSource final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override {
        return std::make_shared<const MKTile>(key, MKTileColor{0xe8e4d8});
    }
    MKTileColor backgroundColor(MKMapType) const override { return 0xe8e4d8; }
};

class AnnotationPictures : public AnnotationTest {
protected:
    AnnotationPictures() {
        map->setTileSource(std::make_shared<GroundSource>());
        MKLabelWriter::setFontFamily("DejaVu Sans");
    }

    std::shared_ptr<TestAnnotation> addPin(CLLocationCoordinate2D place, uint64_t color = 0) {
        auto pin = add("pin", place);
        std::dynamic_pointer_cast<MKPinAnnotationView>(map->viewForAnnotation(pin))->setPinColor(color);
        return pin;
    }
    void expectPicture(const std::string& name) {
        settle();
        EXPECT_TRUE(looksLike(name, window->surface()));
    }
    void expectCalloutAt(CGPoint place, const std::string& name) {
        showAround({0, 0}, {360, 240}, 1);
        const auto pin = add("pin", map->convertPointToCoordinateFromView(place, nullptr));
        pin->titleText = id(NSString("Golden Gate Bridge"));
        pin->subtitleText = id(NSString("San Francisco, California"));
        const auto view = map->viewForAnnotation(pin);
        view->setLeftCalloutAccessoryView(UIButton::buttonWithType(UIButtonTypeInfoLight));
        view->setRightCalloutAccessoryView(UIButton::buttonWithType(UIButtonTypeDetailDisclosure));
        map->selectAnnotationAnimated(pin, false);
        expectPicture(name);
    }
};

} // namespace

TEST_F(AnnotationPictures, PinsAtScale1) {
    showAround({0, 0}, {160, 80}, 1);
    for (unsigned color = 0; color < 3; ++color) {
        addPin({-2, -4.0 + 4 * color}, color);
    }
    expectPicture("pins");
}

TEST_F(AnnotationPictures, PinsAtScale2) {
    showAround({0, 0}, {160, 80}, 2);
    for (unsigned color = 0; color < 3; ++color) {
        addPin({-2, -4.0 + 4 * color}, color);
    }
    expectPicture("pins-scale-2");
}

TEST_F(AnnotationPictures, PinsAtAFractionalScale) {
    showAround({0, 0}, {160, 80}, 1.5);
    for (unsigned color = 0; color < 3; ++color) {
        addPin({-2, -4.0 + 4 * color}, color);
    }
    expectPicture("pins-scale-1.5");
}

TEST_F(AnnotationPictures, SouthernPinsAreInFront) {
    showAround({0, 0}, {160, 120}, 2);
    for (int i = 0; i < 40; ++i) {
        addPin({(i * 7 % 11) - 6.0, (i * 5 % 13) - 6.0}, static_cast<unsigned>(i % 3));
    }
    expectPicture("crowd-of-pins");
}

TEST_F(AnnotationPictures, TheUsersLocationWithItsAccuracy) {
    showAround({48, 16}, {240, 160}, 2);
    map->setRegion({{48, 16}, {0.01, 0.012}});
    const auto location = std::make_shared<MKUserLocation>();
    location->setLocation(std::make_shared<CLLocation>(CLLocationCoordinate2DMake(48, 16), 0, 220, -1));
    delegate->makeView = [](MKMapView&, const auto&) { return nullptr; };
    map->addAnnotation(location);
    expectPicture("user-location");
}

TEST_F(AnnotationPictures, ImagesWithOffsets) {
    showAround({0, 0}, {160, 120}, 2);
    // A flag, whose foot the offset puts on the coordinate, and the coordinate's own mark.
    UIImage::Pixels pixels(size_t{32} * 48);
    for (size_t y = 0; y < 48; ++y) {
        for (size_t x = 0; x < 32; ++x) {
            const bool pole = x < 4, cloth = x >= 4 && y < 24 && x - 4 < 28;
            pixels[y * 32 + x] = pole ? 0xff404040 : cloth ? ((x / 7 + y / 6) % 2 ? 0xff101010 : 0xfff8f8f8) : 0;
        }
    }
    const auto flag = UIImage::imageWithPixels(32, 48, pixels, 2);
    const auto mark = makeImage(6, 6, 0xffd02020, 2);
    delegate->makeView = [&](MKMapView&, const std::shared_ptr<MKAnnotation>& annotation) {
        auto view = MKAnnotationView::initWithAnnotationReuseIdentifier(annotation, std::nullopt);
        const bool isFlag = std::dynamic_pointer_cast<TestAnnotation>(annotation)->name == "flag";
        view->setImage(isFlag ? flag : mark);
        view->setCenterOffset(isFlag ? CGPoint{7, -12} : CGPoint{});
        return view;
    };
    for (const double longitude : {-4.0, 0.0, 4.0}) {
        add("flag", {0.001, longitude});
        add("mark", {0, longitude});
    }
    expectPicture("images-with-offsets");
}

TEST_F(AnnotationPictures, TheFocusOfTheKeyboard) {
    showAround({0, 0}, {160, 80}, 2);
    for (unsigned color = 0; color < 3; ++color) {
        addPin({-2, -4.0 + 4 * color}, color);
    }
    settle();
    UIKeyEvent tab;
    tab.key = "Tab";
    window->sendEvent(tab);
    window->sendEvent(tab);
    expectPicture("focused-pin");
}

TEST_F(AnnotationPictures, ACalloutInTheMiddle) {
    expectCalloutAt({180, 160}, "callout");
}

TEST_F(AnnotationPictures, ACalloutAtTheLeftEdge) {
    expectCalloutAt({30, 160}, "callout-left");
}

TEST_F(AnnotationPictures, ACalloutAtTheRightEdge) {
    expectCalloutAt({330, 160}, "callout-right");
}

TEST_F(AnnotationPictures, ACalloutAtTheUpperEdge) {
    expectCalloutAt({180, 50}, "callout-top");
}

TEST_F(AnnotationPictures, ACalloutAtTheLowerEdge) {
    expectCalloutAt({180, 236}, "callout-bottom");
}

TEST_F(AnnotationPictures, ACalloutWithTextThatDoesNotFit) {
    showAround({0, 0}, {360, 160}, 2);
    const auto pin = addPin({-6, 0}, 1);
    pin->titleText = id(NSString("Llanfairpwllgwyngyllgogerychwyrndrobwllllantysiliogogogoch"));
    map->viewForAnnotation(pin)->setRightCalloutAccessoryView(UIButton::buttonWithType(UIButtonTypeDetailDisclosure));
    map->selectAnnotationAnimated(pin, false);
    expectPicture("callout-ellipsis");
}

} // namespace veyra
