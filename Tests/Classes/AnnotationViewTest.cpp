// The views that the plug-in gives to the map, and the events that it makes of the map's reports. The test calls as the
// map does.
#include "Classes/VeyraAnnotationSO.h"
#include "Platform/MapKit/MKPinAnnotationView.h"
#include "Platform/MapKit/MKUserLocation.h"
#include "Tests/Classes/ViewFixture.h"

namespace veyra {

namespace {

/// An annotation that is none of the plug-in's.
class StrangeAnnotation final : public MKAnnotation {
public:
    CLLocationCoordinate2D coordinate() const override { return {0, 0}; }
    void setCoordinate(CLLocationCoordinate2D) override {}
};

} // namespace

class AnnotationView : public ShownMapFixture {
protected:
    AnnotationView() { record(); }

    static std::shared_ptr<VeyraAnnotationSO> named(const char* identifier) {
        auto made = std::make_shared<VeyraAnnotationSO>();
        made->setIdentifier(id(identifier));
        made->setCoordinate({1.5, 2.5});
        return made;
    }
    static std::shared_ptr<MKAnnotationView> viewOf(const std::shared_ptr<MKAnnotation>& annotation) {
        return MKAnnotationView::initWithAnnotationReuseIdentifier(annotation, std::nullopt);
    }
    std::shared_ptr<MKAnnotationView> asked(const std::shared_ptr<MKAnnotation>& annotation) {
        std::shared_ptr<MKAnnotationView> made;
        onMain([&] { made = view().mapViewViewForAnnotation(mapView(), annotation); });
        return made;
    }
    /// The events that the block's callbacks have sent.
    std::string events(const Block& block) {
        onMain(block);
        runWeb();
        return recorded();
    }
    std::string added(const std::vector<std::shared_ptr<MKAnnotation>>& annotations) {
        std::vector<std::shared_ptr<MKAnnotationView>> views;
        for (const auto& annotation : annotations)
            views.push_back(viewOf(annotation));
        return events([&] { view().mapViewDidAddAnnotationViews(mapView(), views); });
    }
    std::string selected() { return run("JSON.stringify(map.selectedAnnotations)"); }
};

TEST_F(AnnotationView, OfAPinHasItsColourItsDropAndItsReuseIdentifier) {
    for (const uint64_t color : {0u, 1u, 2u}) {
        const auto pin = named("a");
        pin->setPinColor(color);
        pin->setAnimatesDrop(color == 1);
        const auto made = std::dynamic_pointer_cast<MKPinAnnotationView>(asked(pin));
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->annotation(), pin);
        EXPECT_EQ(made->reuseIdentifier()->utf8(), "PinAnnotation");
        EXPECT_EQ(made->pinColor(), color);
        EXPECT_EQ(made->animatesDrop(), color == 1);
        EXPECT_FALSE(made->isDraggable());
    }
}

TEST_F(AnnotationView, CanShowACalloutExactlyWhenThereIsATitle) {
    const auto pin = named("a");
    pin->setHasLeftCalloutButton(true);
    EXPECT_FALSE(asked(pin)->canShowCallout());
    pin->setTitle(id(""));
    EXPECT_TRUE(asked(pin)->canShowCallout());
    pin->setTitle(id(5));
    EXPECT_TRUE(asked(pin)->canShowCallout());
}

TEST_F(AnnotationView, HasTheInfoButtonOnTheLeftAndTheDisclosureButtonOnTheRightAsTheRecordSays) {
    const auto pin = named("a");
    pin->setTitle(id("t"));
    EXPECT_EQ(asked(pin)->leftCalloutAccessoryView(), nullptr);
    EXPECT_EQ(asked(pin)->rightCalloutAccessoryView(), nullptr);
    pin->setHasLeftCalloutButton(true);
    pin->setHasRightCalloutButton(true);
    pin->setDraggable(true);
    const auto made = asked(pin);
    EXPECT_EQ(made->leftCalloutAccessoryView(), view().infoLightButton());
    EXPECT_EQ(made->rightCalloutAccessoryView(), view().detailDisclosureButton());
    EXPECT_EQ(view().infoLightButton()->buttonType(), UIButtonTypeInfoLight);
    EXPECT_EQ(view().detailDisclosureButton()->buttonType(), UIButtonTypeDetailDisclosure);
    EXPECT_TRUE(made->isDraggable());
}

TEST_F(AnnotationView, OfAnImageHasItsOffsetAndTheImagesAddressAsReuseIdentifier) {
    const auto image = named("a");
    image->setImageURLString(id("pin.png"));
    image->setCenterOffset({3, -4});
    const auto made = asked(image);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<MKPinAnnotationView>(made), nullptr);
    EXPECT_EQ(made->annotation(), image);
    EXPECT_EQ(made->reuseIdentifier()->utf8(), "pin.png");
    EXPECT_EQ(made->centerOffset(), (CGPoint{3, -4}));
}

TEST_F(AnnotationView, IsTheMapsOwnForTheUserAndForWhatIsNotThePlugIns) {
    EXPECT_EQ(asked(std::make_shared<MKUserLocation>()), nullptr);
    EXPECT_EQ(asked(std::make_shared<StrangeAnnotation>()), nullptr);
}

TEST_F(AnnotationView, AddedViewsAreReportedWithOneArrayOfIdentifiersInTheirOrder) {
    EXPECT_EQ(
        added({named("b"), std::make_shared<MKUserLocation>(), std::make_shared<StrangeAnnotation>(), named("a")}),
        R"(mapDidAddViewsForAnnotations ["b","mapUserLocationAnnotationIdentifier","a"])");
}

TEST_F(AnnotationView, ViewsOfOtherAnnotationsAreNotReported) {
    EXPECT_EQ(added({std::make_shared<StrangeAnnotation>()}), "");
    EXPECT_EQ(added({}), "");
}

TEST_F(AnnotationView, TheDroppedPinsViewIsReportedAsAFinishedDragToo) {
    EXPECT_EQ(added({named("a"), named("dropped-pin-id"), named("b")}),
              "mapDidAddViewsForAnnotations [\"a\",\"dropped-pin-id\",\"b\"]\n"
              R"(mapAnnotationDidFinishDrag "dropped-pin-id" {"latitude":1.5,"longitude":2.5})");
    run("map.droppedPinIdentifier = 'mine'");
    EXPECT_EQ(added({named("dropped-pin-id")}), R"(mapDidAddViewsForAnnotations ["dropped-pin-id"])");
    EXPECT_EQ(added({named("mine")}), "mapDidAddViewsForAnnotations [\"mine\"]\n"
                                      R"(mapAnnotationDidFinishDrag "mine" {"latitude":1.5,"longitude":2.5})");
}

TEST_F(AnnotationView, OfSeveralDroppedPinsTheLastOneIsTheFinishedDrag) {
    const auto last = named("dropped-pin-id");
    last->setCoordinate({7, 8});
    EXPECT_EQ(added({named("dropped-pin-id"), last}),
              "mapDidAddViewsForAnnotations [\"dropped-pin-id\",\"dropped-pin-id\"]\n"
              R"(mapAnnotationDidFinishDrag "dropped-pin-id" {"latitude":7,"longitude":8})");
}

TEST_F(AnnotationView, TappedButtonsAreToldApartByThemselves) {
    const auto pin = viewOf(named("a"));
    const auto tap = [&](const std::shared_ptr<MKAnnotationView>& tapped, const std::shared_ptr<UIView>& control) {
        return events([&] { view().mapViewAnnotationViewCalloutAccessoryControlTapped(mapView(), tapped, control); });
    };
    EXPECT_EQ(tap(pin, view().infoLightButton()), R"(mapAnnotationLeftCalloutTapped "a")");
    EXPECT_EQ(tap(pin, view().detailDisclosureButton()), R"(mapAnnotationRightCalloutTapped "a")");
    EXPECT_EQ(tap(pin, UIButton::buttonWithType(UIButtonTypeInfoLight)), "");
    EXPECT_EQ(tap(pin, nullptr), "");
    EXPECT_EQ(tap(viewOf(std::make_shared<MKUserLocation>()), view().infoLightButton()),
              R"(mapAnnotationLeftCalloutTapped "mapUserLocationAnnotationIdentifier")");
    EXPECT_EQ(tap(viewOf(std::make_shared<StrangeAnnotation>()), view().infoLightButton()), "");
}

TEST_F(AnnotationView, SelectionsAreListedInTheirOrderAndReported) {
    const auto a = viewOf(named("a"));
    const auto user = viewOf(std::make_shared<MKUserLocation>());
    EXPECT_EQ(events([&] { view().mapViewDidSelectAnnotationView(mapView(), user); }),
              R"(mapDidSelectAnnotation "mapUserLocationAnnotationIdentifier")");
    EXPECT_EQ(events([&] { view().mapViewDidSelectAnnotationView(mapView(), a); }), R"(mapDidSelectAnnotation "a")");
    EXPECT_EQ(selected(), R"(["mapUserLocationAnnotationIdentifier","a"])");
    EXPECT_EQ(events([&] { view().mapViewDidDeselectAnnotationView(mapView(), user); }),
              R"(mapDidDeselectAnnotation "mapUserLocationAnnotationIdentifier")");
    EXPECT_EQ(selected(), R"(["a"])");
}

TEST_F(AnnotationView, SelectedTwiceIsListedTwiceAndDeselectedAtOnce) {
    const auto a = viewOf(named("a"));
    const auto b = viewOf(named("b"));
    onMain([&] {
        for (const auto& each : {a, b, a})
            view().mapViewDidSelectAnnotationView(mapView(), each);
    });
    EXPECT_EQ(selected(), R"(["a","b","a"])");
    onMain([&] { view().mapViewDidDeselectAnnotationView(mapView(), a); });
    EXPECT_EQ(selected(), R"(["b"])");
}

TEST_F(AnnotationView, SelectionsOfOtherAnnotationsAreIgnored) {
    const auto strange = viewOf(std::make_shared<StrangeAnnotation>());
    const auto nameless = viewOf(std::make_shared<VeyraAnnotationSO>());
    EXPECT_EQ(events([&] {
                  for (const auto& each : {strange, nameless}) {
                      view().mapViewDidSelectAnnotationView(mapView(), each);
                      view().mapViewDidDeselectAnnotationView(mapView(), each);
                      view().mapViewDidAddAnnotationViews(mapView(), {each});
                  }
              }),
              "");
    EXPECT_EQ(selected(), "[]");
}

TEST_F(AnnotationView, RemovingASelectedAnnotationLeavesItListedUnlessTheMapReportsItsDeselection) {
    onMain([&] { view().mapViewDidSelectAnnotationView(mapView(), viewOf(named("a"))); });
    run("map.removeAnnotation('a')");
    runMain();
    EXPECT_EQ(selected(), R"(["a"])");
}

TEST_F(AnnotationView, ADragIsReportedOnceAtItsEndWithTheNewCoordinate) {
    const auto pin = named("a");
    const auto dragged = viewOf(pin);
    const auto change = [&](MKAnnotationViewDragState state, MKAnnotationViewDragState former) {
        return events(
            [&] { view().mapViewAnnotationViewDidChangeDragStateFromOldState(mapView(), dragged, state, former); });
    };
    EXPECT_EQ(change(MKAnnotationViewDragStateStarting, MKAnnotationViewDragStateNone), "");
    EXPECT_EQ(change(MKAnnotationViewDragStateDragging, MKAnnotationViewDragStateStarting), "");
    pin->setCoordinate({3.25, 4.5});
    EXPECT_EQ(change(MKAnnotationViewDragStateEnding, MKAnnotationViewDragStateDragging),
              R"(mapAnnotationDidFinishDrag "a" {"latitude":3.25,"longitude":4.5})");
    EXPECT_EQ(change(MKAnnotationViewDragStateNone, MKAnnotationViewDragStateEnding), "");
    EXPECT_EQ(dragged->dragState(), MKAnnotationViewDragStateNone) << "the map's own affair";
}

TEST_F(AnnotationView, ACancelledDragIsNotReported) {
    const auto dragged = viewOf(named("a"));
    EXPECT_EQ(events([&] {
                  for (const auto state : {MKAnnotationViewDragStateStarting, MKAnnotationViewDragStateDragging,
                                           MKAnnotationViewDragStateCanceling, MKAnnotationViewDragStateNone})
                      view().mapViewAnnotationViewDidChangeDragStateFromOldState(mapView(), dragged, state,
                                                                                 MKAnnotationViewDragStateNone);
              }),
              "");
}

TEST_F(AnnotationView, DragsOfTheUserAndOfOtherAnnotationsAreNotReported) {
    EXPECT_EQ(events([&] {
                  for (const auto& each :
                       {viewOf(std::make_shared<MKUserLocation>()), viewOf(std::make_shared<StrangeAnnotation>()),
                        viewOf(std::make_shared<VeyraAnnotationSO>())})
                      view().mapViewAnnotationViewDidChangeDragStateFromOldState(
                          mapView(), each, MKAnnotationViewDragStateEnding, MKAnnotationViewDragStateDragging);
              }),
              "");
}

} // namespace veyra
