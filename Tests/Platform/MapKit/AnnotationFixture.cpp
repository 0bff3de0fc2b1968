#include "Tests/Platform/MapKit/AnnotationFixture.h"

namespace veyra {

std::string nameOf(const MKAnnotationView& view) {
    const auto annotation = std::dynamic_pointer_cast<TestAnnotation>(view.annotation());
    return annotation ? annotation->name : "?";
}

void AnnotationDelegate::note(const std::string& call) {
    calls.push_back(call);
    if (const auto handler = onCall) {
        handler(call);
    }
}

std::shared_ptr<MKAnnotationView>
AnnotationDelegate::mapViewViewForAnnotation(MKMapView& map, const std::shared_ptr<MKAnnotation>& annotation) {
    const auto named = std::dynamic_pointer_cast<TestAnnotation>(annotation);
    note("view " + (named ? named->name : "?"));
    if (makeView) {
        return makeView(map, annotation);
    }
    auto view = std::dynamic_pointer_cast<MKPinAnnotationView>(map.dequeueReusableAnnotationViewWithIdentifier("pin"));
    if (!view) {
        view = MKPinAnnotationView::initWithAnnotationReuseIdentifier(annotation, "pin");
    }
    view->setAnnotation(annotation);
    view->setCanShowCallout(true);
    return view;
}

void AnnotationDelegate::mapViewDidAddAnnotationViews(MKMapView&,
                                                      const std::vector<std::shared_ptr<MKAnnotationView>>& views) {
    std::string call = "added";
    for (const auto& view : views) {
        call += " " + nameOf(*view);
    }
    note(call);
}

void AnnotationDelegate::mapViewDidSelectAnnotationView(MKMapView&, const std::shared_ptr<MKAnnotationView>& view) {
    note("selected " + nameOf(*view));
}

void AnnotationDelegate::mapViewDidDeselectAnnotationView(MKMapView&, const std::shared_ptr<MKAnnotationView>& view) {
    note("deselected " + nameOf(*view));
}

void AnnotationDelegate::mapViewAnnotationViewCalloutAccessoryControlTapped(
    MKMapView&, const std::shared_ptr<MKAnnotationView>& view, const std::shared_ptr<UIView>& control) {
    tappedControl = control;
    note("tapped " + nameOf(*view));
}

void AnnotationDelegate::mapViewAnnotationViewDidChangeDragStateFromOldState(
    MKMapView&, const std::shared_ptr<MKAnnotationView>& view, MKAnnotationViewDragState state,
    MKAnnotationViewDragState oldState) {
    note("drag " + nameOf(*view) + " " + std::to_string(state) + "<" + std::to_string(oldState));
}

AnnotationTest::AnnotationTest() : delegate(std::make_shared<AnnotationDelegate>()) {
    map->setDelegate(delegate);
}

std::shared_ptr<TestAnnotation> AnnotationTest::annotation(const std::string& name,
                                                           CLLocationCoordinate2D place) const {
    auto made = std::make_shared<TestAnnotation>(name, place);
    made->titleText = id(NSString(std::string_view("Title of " + name)));
    return made;
}

std::shared_ptr<TestAnnotation> AnnotationTest::add(const std::string& name, CLLocationCoordinate2D place) {
    auto made = annotation(name, place);
    map->addAnnotation(made);
    return made;
}

std::vector<std::string> AnnotationTest::takeCalls() {
    return std::exchange(delegate->calls, {});
}

void AnnotationTest::showAround(CLLocationCoordinate2D center, CGSize size, double scale) {
    window->setSize(size, scale);
    const double degrees = size.width / 10;
    map->setRegion({center, {0.001, degrees}});
    settle();
    delegate->calls.clear();
    delegate->regionChanges = 0;
}

CGPoint AnnotationTest::pointOf(const std::shared_ptr<TestAnnotation>& annotation) const {
    return map->convertCoordinateToPointToView(annotation->position, nullptr);
}

void AnnotationTest::tap(CGPoint at) {
    touch(1, UITouchPhase::Began, at);
    now += 0.05;
    touch(1, UITouchPhase::Ended, at);
    runQueue();
}

std::shared_ptr<UIImage> AnnotationTest::makeImage(int width, int height, uint32_t color, double scale) {
    return UIImage::imageWithPixels(
        width, height, UIImage::Pixels(static_cast<size_t>(width) * static_cast<size_t>(height), color), scale);
}

void AnnotationTest::useImages(const std::shared_ptr<UIImage>& image) {
    delegate->makeView = [image](MKMapView&, const std::shared_ptr<MKAnnotation>& annotation) {
        auto view = MKAnnotationView::initWithAnnotationReuseIdentifier(annotation, "image");
        view->setImage(image);
        view->setCanShowCallout(true);
        return view;
    };
}

} // namespace veyra
