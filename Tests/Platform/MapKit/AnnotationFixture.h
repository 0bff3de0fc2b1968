// A map whose delegate makes annotation views and writes down what it is asked and told.
#pragma once

#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/MapKit/MKPinAnnotationView.h"

namespace veyra {

class TestAnnotation final : public MKAnnotation {
public:
    TestAnnotation(std::string text, CLLocationCoordinate2D place) : name(std::move(text)), position(place) {}
    CLLocationCoordinate2D coordinate() const override { return position; }
    void setCoordinate(CLLocationCoordinate2D coordinate) override { position = coordinate; }
    id title() const override { return titleText; }
    id subtitle() const override { return subtitleText; }

    const std::string name;
    CLLocationCoordinate2D position;
    id titleText, subtitleText;
};

/// Answers pins unless `makeView` says otherwise. Calls: "view a", "added a b", "selected a", "deselected a",
/// "tapped a", "drag a 1<0".
class AnnotationDelegate final : public MKMapViewDelegate {
public:
    std::shared_ptr<MKAnnotationView>
    mapViewViewForAnnotation(MKMapView& map, const std::shared_ptr<MKAnnotation>& annotation) override;
    void mapViewDidAddAnnotationViews(MKMapView& map,
                                      const std::vector<std::shared_ptr<MKAnnotationView>>& views) override;
    void mapViewDidSelectAnnotationView(MKMapView& map, const std::shared_ptr<MKAnnotationView>& view) override;
    void mapViewDidDeselectAnnotationView(MKMapView& map, const std::shared_ptr<MKAnnotationView>& view) override;
    void mapViewAnnotationViewCalloutAccessoryControlTapped(MKMapView& map,
                                                            const std::shared_ptr<MKAnnotationView>& view,
                                                            const std::shared_ptr<UIView>& control) override;
    void mapViewAnnotationViewDidChangeDragStateFromOldState(MKMapView& map,
                                                             const std::shared_ptr<MKAnnotationView>& view,
                                                             MKAnnotationViewDragState state,
                                                             MKAnnotationViewDragState oldState) override;
    void mapViewRegionWillChangeAnimated(MKMapView&, bool) override { ++regionChanges; }

    std::vector<std::string> calls;
    int regionChanges = 0;
    std::shared_ptr<UIView> tappedControl;
    std::function<std::shared_ptr<MKAnnotationView>(MKMapView&, const std::shared_ptr<MKAnnotation>&)> makeView;
    std::function<void(const std::string&)> onCall;

private:
    void note(const std::string& call);
};

class AnnotationTest : public MapTest {
protected:
    AnnotationTest();

    /// An annotation that has a title.
    std::shared_ptr<TestAnnotation> annotation(const std::string& name, CLLocationCoordinate2D place) const;
    /// The same, put on the map.
    std::shared_ptr<TestAnnotation> add(const std::string& name, CLLocationCoordinate2D place);
    std::vector<std::string> calls() const { return delegate->calls; }
    /// What was called since the last time.
    std::vector<std::string> takeCalls();
    /// 400 x 300 points around the coordinate (0, 0), 10 points a degree of longitude.
    void showAround(CLLocationCoordinate2D center = {0, 0}, CGSize size = {400, 300}, double scale = 1);
    CGPoint pointOf(const std::shared_ptr<TestAnnotation>& annotation) const;
    void tap(CGPoint at);
    /// The colour that pictures of `makeImage` have.
    static std::shared_ptr<UIImage> makeImage(int width, int height, uint32_t color, double scale = 1);
    /// Lets the delegate answer plain views with that image.
    void useImages(const std::shared_ptr<UIImage>& image);

    std::shared_ptr<AnnotationDelegate> delegate;
};

/// The name of a view's annotation.
std::string nameOf(const MKAnnotationView& view);

} // namespace veyra
