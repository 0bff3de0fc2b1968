// What a map answers about annotations: its container does the work.
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKMapView.h"

namespace veyra {

void MKMapView::addAnnotation(const std::shared_ptr<MKAnnotation>& annotation) {
    _annotationContainer->add({annotation});
}

void MKMapView::addAnnotations(const std::vector<std::shared_ptr<MKAnnotation>>& annotations) {
    _annotationContainer->add(annotations);
}

void MKMapView::setAwaitsMoreAnnotations(bool awaits) {
    _annotationContainer->setAwaitsMore(awaits);
}

void MKMapView::removeAnnotation(const std::shared_ptr<MKAnnotation>& annotation) {
    _annotationContainer->remove({annotation});
}

void MKMapView::removeAnnotations(const std::vector<std::shared_ptr<MKAnnotation>>& annotations) {
    _annotationContainer->remove(annotations);
}

std::vector<std::shared_ptr<MKAnnotation>> MKMapView::annotations() const {
    return _annotationContainer->annotations();
}

void MKMapView::annotationCoordinateDidChange(const std::shared_ptr<MKAnnotation>& annotation) {
    _annotationContainer->coordinateDidChange(annotation);
}

std::shared_ptr<MKAnnotationView> MKMapView::viewForAnnotation(const std::shared_ptr<MKAnnotation>& annotation) const {
    return _annotationContainer->viewForAnnotation(annotation);
}

std::shared_ptr<MKAnnotationView> MKMapView::dequeueReusableAnnotationViewWithIdentifier(const NSString& identifier) {
    return _annotationContainer->dequeueReusableView(identifier);
}

void MKMapView::selectAnnotationAnimated(const std::shared_ptr<MKAnnotation>& annotation, bool animated) {
    _annotationContainer->select(annotation, animated);
}

void MKMapView::deselectAnnotationAnimated(const std::shared_ptr<MKAnnotation>& annotation, bool animated) {
    _annotationContainer->deselect(annotation, animated);
}

std::vector<std::shared_ptr<MKAnnotation>> MKMapView::selectedAnnotations() const {
    return _annotationContainer->selectedAnnotations();
}

CLLocationCoordinate2D MKMapView::convertPointToCoordinateFromView(CGPoint point,
                                                                   const std::shared_ptr<UIView>& view) const {
    if (!hasLayout()) {
        return _regionBeforeLayout.center;
    }
    if (view && view.get() != this) {
        point = convertPointFromWindow(view->convertPointToWindow(point));
    }
    CLLocationCoordinate2D coordinate = MKCoordinateForMapPoint(_camera.mapPointAt(point, _viewSize));
    coordinate.longitude = std::remainder(coordinate.longitude, 360);
    return coordinate;
}

CGPoint MKMapView::convertCoordinateToPointToView(CLLocationCoordinate2D coordinate,
                                                  const std::shared_ptr<UIView>& view) const {
    const CGPoint point =
        hasLayout() ? _camera.pointFor(MKMapPointForCoordinate(coordinate), _viewSize) : bounds().center();
    return view && view.get() != this ? view->convertPointFromWindow(convertPointToWindow(point)) : point;
}

} // namespace veyra
