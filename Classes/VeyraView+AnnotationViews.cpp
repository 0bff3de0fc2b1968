// How annotations look on the map, what the user does with them, and the events that tell the page. Main queue.
#include "Classes/VeyraAnnotationSO.h"
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraView.h"
#include "Platform/MapKit/MKPinAnnotationView.h"
#include "Platform/MapKit/MKUserLocation.h"

namespace veyra {

namespace {

const NSString& pinReuseIdentifier() {
    static const auto* const identifier = new NSString("PinAnnotation");
    return *identifier;
}

/// Null when the view's annotation is another. The view keeps it alive.
const VeyraAnnotationSO* recordOf(const MKAnnotationView& view) {
    return dynamic_cast<const VeyraAnnotationSO*>(view.annotation().get());
}

/// The name of the view's annotation in events; nil for one that has none.
id identifierOf(const MKAnnotationView& view) {
    if (const auto* record = recordOf(view))
        return record->identifier();
    const bool isUser = std::dynamic_pointer_cast<MKUserLocation>(view.annotation()) != nullptr;
    return isUser ? id(kVeyraUserLocationAnnotationIdentifier) : id();
}

id coordinateObject(CLLocationCoordinate2D coordinate) {
    return id(VeyraLocationCoordinateSO::withCoordinate(coordinate));
}

/// A view of the kind that `reuseIdentifier` stands for, out of the map's queue, or null.
std::shared_ptr<MKAnnotationView> reusedView(MKMapView& map, const NSString& reuseIdentifier,
                                             const std::shared_ptr<MKAnnotation>& annotation) {
    auto view = map.dequeueReusableAnnotationViewWithIdentifier(reuseIdentifier);
    if (view)
        view->setAnnotation(annotation);
    return view;
}

std::shared_ptr<MKAnnotationView> pinView(MKMapView& map, const std::shared_ptr<VeyraAnnotationSO>& record) {
    auto view = std::dynamic_pointer_cast<MKPinAnnotationView>(reusedView(map, pinReuseIdentifier(), record));
    if (!view)
        view = MKPinAnnotationView::initWithAnnotationReuseIdentifier(record, pinReuseIdentifier());
    view->setAnimatesDrop(record->animatesDrop());
    view->setPinColor(record->pinColor());
    return view;
}

} // namespace

std::shared_ptr<MKAnnotationView> VeyraView::imageView(const std::shared_ptr<VeyraAnnotationSO>& record) const {
    const id& url = record->imageURLString();
    const NSString reuseIdentifier = url.description();
    // A reused view keeps the image and the offset that it was made with: pages rely on it.
    auto view = reusedView(*_mapView, reuseIdentifier, record);
    if (view)
        return view;
    view = MKAnnotationView::initWithAnnotationReuseIdentifier(record, reuseIdentifier);
    if (const auto found = _mapAnnotationImages.find(url); found != _mapAnnotationImages.end())
        view->setImage(found->second);
    view->setCenterOffset(record->centerOffset());
    return view;
}

std::shared_ptr<MKAnnotationView> VeyraView::mapViewViewForAnnotation(MKMapView& map,
                                                                      const std::shared_ptr<MKAnnotation>& annotation) {
    const auto record = std::dynamic_pointer_cast<VeyraAnnotationSO>(annotation);
    if (!record)
        return nullptr;
    auto view = record->imageURLString().isNil() ? pinView(map, record) : imageView(record);
    view->setCanShowCallout(!record->title().isNil());
    // One pair of buttons serves all: at most one callout is shown.
    view->setLeftCalloutAccessoryView(record->hasLeftCalloutButton() ? _infoLightButton : nullptr);
    view->setRightCalloutAccessoryView(record->hasRightCalloutButton() ? _detailDisclosureButton : nullptr);
    view->setDraggable(record->draggable());
    return view;
}

void VeyraView::mapViewDidAddAnnotationViews(MKMapView&, const std::vector<std::shared_ptr<MKAnnotationView>>& views) {
    const id droppedPin = droppedPinIdentifier();
    NSArray identifiers;
    identifiers.reserve(views.size());
    const VeyraAnnotationSO* dropped = nullptr;
    for (const auto& view : views) {
        const auto* const record = recordOf(*view);
        id identifier = record ? record->identifier() : identifierOf(*view);
        if (identifier.isNil())
            continue;
        if (record && identifier == droppedPin)
            dropped = record;
        identifiers.push_back(std::move(identifier));
    }
    if (identifiers.empty())
        return;
    sendEvent(kVeyraDidAddViewsForAnnotations, {id(std::move(identifiers))});
    if (dropped)
        sendEvent(kVeyraAnnotationDidFinishDrag, {droppedPin, coordinateObject(dropped->coordinate())});
}

void VeyraView::mapViewAnnotationViewCalloutAccessoryControlTapped(MKMapView&,
                                                                   const std::shared_ptr<MKAnnotationView>& view,
                                                                   const std::shared_ptr<UIView>& control) {
    const id identifier = identifierOf(*view);
    if (identifier.isNil())
        return;
    if (control == _infoLightButton)
        sendEvent(kVeyraAnnotationLeftCalloutTapped, {identifier});
    else if (control == _detailDisclosureButton)
        sendEvent(kVeyraAnnotationRightCalloutTapped, {identifier});
}

void VeyraView::mapViewDidSelectAnnotationView(MKMapView&, const std::shared_ptr<MKAnnotationView>& view) {
    const id identifier = identifierOf(*view);
    if (identifier.isNil())
        return;
    {
        const NSLockGuard guard(_lock);
        _selectedMapAnnotations.push_back(identifier);
    }
    sendEvent(kVeyraDidSelectAnnotation, {identifier});
}

void VeyraView::mapViewDidDeselectAnnotationView(MKMapView&, const std::shared_ptr<MKAnnotationView>& view) {
    const id identifier = identifierOf(*view);
    if (identifier.isNil())
        return;
    {
        const NSLockGuard guard(_lock);
        std::erase(_selectedMapAnnotations, identifier);
    }
    sendEvent(kVeyraDidDeselectAnnotation, {identifier});
}

void VeyraView::mapViewAnnotationViewDidChangeDragStateFromOldState(MKMapView&,
                                                                    const std::shared_ptr<MKAnnotationView>& view,
                                                                    MKAnnotationViewDragState state,
                                                                    MKAnnotationViewDragState) {
    if (state != MKAnnotationViewDragStateEnding)
        return;
    const auto* const record = recordOf(*view);
    if (record && !record->identifier().isNil())
        sendEvent(kVeyraAnnotationDidFinishDrag, {record->identifier(), coordinateObject(record->coordinate())});
}

void VeyraView::handleLongPress(const UIGestureRecognizer& recognizer) {
    if (recognizer.state() != UIGestureRecognizerState::Began)
        return;
    id title;
    id identifier;
    {
        const NSLockGuard guard(_lock);
        title = _droppedPinTitle;
        identifier = _droppedPinIdentifier;
    }
    _internalRemoveAnnotation(identifier);
    const CLLocationCoordinate2D coordinate =
        _mapView->convertPointToCoordinateFromView(recognizer.locationInView(), _mapView);
    _internalAddAnnotation(VeyraAnnotationSO::initDroppedPinAtCoordinateTitleIdentifier(coordinate, title, identifier));
}

} // namespace veyra
