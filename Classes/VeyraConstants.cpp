#include "Classes/VeyraConstants.h"

namespace veyra {

const NSString& kVeyraEventsListener = *new NSString("listener");
const NSString& kVeyraType = *new NSString("mapType");
const NSString& kVeyraRegion = *new NSString("region");
const NSString& kVeyraCenterCoordinate = *new NSString("centerCoordinate");
const NSString& kVeyraShowsUserLocation = *new NSString("showsUserLocation");
const NSString& kVeyraUserLocationVisible = *new NSString("userLocationVisible");
const NSString& kVeyraUserLocation = *new NSString("userLocation");
const NSString& kVeyraZoomEnabled = *new NSString("zoomEnabled");
const NSString& kVeyraScrollEnabled = *new NSString("scrollEnabled");
const NSString& kVeyraLongPressDropsPin = *new NSString("longPressDropsPin");
const NSString& kVeyraDroppedPinTitle = *new NSString("droppedPinTitle");
const NSString& kVeyraDroppedPinIdentifier = *new NSString("droppedPinIdentifier");
const NSString& kVeyraAnnotations = *new NSString("annotations");
const NSString& kVeyraSelectedAnnotations = *new NSString("selectedAnnotations");
const NSString& kVeyraOverlays = *new NSString("overlays");

const NSString& kVeyraSetRegion = *new NSString("setRegion");
const NSString& kVeyraRegionThatFits = *new NSString("regionThatFits");
const NSString& kVeyraSetCenterCoordinate = *new NSString("setCenterCoordinate");
const NSString& kVeyraConvertCoordinateToPoint = *new NSString("convertCoordinateToPoint");
const NSString& kVeyraConvertPointToCoordinate = *new NSString("convertPointToCoordinate");
const NSString& kVeyraConvertRegionToRect = *new NSString("convertRegionToRect");
const NSString& kVeyraConvertRectToRegion = *new NSString("convertRectToRegion");
const NSString& kVeyraAddAnnotation = *new NSString("addAnnotation");
const NSString& kVeyraAddAnnotations = *new NSString("addAnnotations");
const NSString& kVeyraRemoveAnnotation = *new NSString("removeAnnotation");
const NSString& kVeyraRemoveAnnotations = *new NSString("removeAnnotations");
const NSString& kVeyraSelectAnnotation = *new NSString("selectAnnotation");
const NSString& kVeyraDeselectAnnotation = *new NSString("deselectAnnotation");
const NSString& kVeyraAddOverlay = *new NSString("addOverlay");
const NSString& kVeyraAddOverlays = *new NSString("addOverlays");
const NSString& kVeyraRemoveOverlay = *new NSString("removeOverlay");
const NSString& kVeyraRemoveOverlays = *new NSString("removeOverlays");
const NSString& kVeyraInsertOverlayAtIndex = *new NSString("insertOverlayAtIndex");
const NSString& kVeyraExchangeOverlays = *new NSString("exchangeOverlays");
const NSString& kVeyraInsertOverlayAboveOverlay = *new NSString("insertOverlayAboveOverlay");
const NSString& kVeyraInsertOverlayBelowOverlay = *new NSString("insertOverlayBelowOverlay");

const NSString& kVeyraWillStartLoadingMap = *new NSString("mapWillStartLoadingMap");
const NSString& kVeyraDidFinishLoadingMap = *new NSString("mapDidFinishLoadingMap");
const NSString& kVeyraDidFailLoadingMap = *new NSString("mapDidFailLoadingMap");
const NSString& kVeyraRegionWillChange = *new NSString("mapRegionWillChange");
const NSString& kVeyraRegionDidChange = *new NSString("mapRegionDidChange");
const NSString& kVeyraWillStartUpdatingUserLocation = *new NSString("mapWillStartUpdatingUserLocation");
const NSString& kVeyraDidUpdateUserLocation = *new NSString("mapDidUpdateUserLocation");
const NSString& kVeyraDidStopUpdatingUserLocation = *new NSString("mapDidStopUpdatingUserLocation");
const NSString& kVeyraUpdateUserLocationFailed = *new NSString("mapUpdateUserLocationFailed");
const NSString& kVeyraFailedRetrievingImageForAnnotation = *new NSString("mapFailedRetrievingImageForAnnotation");
const NSString& kVeyraDidAddViewsForAnnotations = *new NSString("mapDidAddViewsForAnnotations");
const NSString& kVeyraDidSelectAnnotation = *new NSString("mapDidSelectAnnotation");
const NSString& kVeyraDidDeselectAnnotation = *new NSString("mapDidDeselectAnnotation");
const NSString& kVeyraAnnotationLeftCalloutTapped = *new NSString("mapAnnotationLeftCalloutTapped");
const NSString& kVeyraAnnotationRightCalloutTapped = *new NSString("mapAnnotationRightCalloutTapped");
const NSString& kVeyraAnnotationDidFinishDrag = *new NSString("mapAnnotationDidFinishDrag");
const NSString& kVeyraDidAddOverlays = *new NSString("mapDidAddOverlays");

const NSString& kOstrelPointX = *new NSString("x");
const NSString& kOstrelPointY = *new NSString("y");
const NSString& kOstrelRectX = *new NSString("x");
const NSString& kOstrelRectY = *new NSString("y");
const NSString& kOstrelRectWidth = *new NSString("width");
const NSString& kOstrelRectHeight = *new NSString("height");
const NSString& kOstrelRegionLatitude = *new NSString("latitude");
const NSString& kOstrelRegionLongitude = *new NSString("longitude");
const NSString& kOstrelRegionLatitudeDelta = *new NSString("latitudeDelta");
const NSString& kOstrelRegionLongitudeDelta = *new NSString("longitudeDelta");
const NSString& kOstrelUserLocationLatitude = *new NSString("latitude");
const NSString& kOstrelUserLocationLongitude = *new NSString("longitude");
const NSString& kOstrelUserLocationAltitude = *new NSString("altitude");
const NSString& kOstrelUserLocationHorizontalAccuracy = *new NSString("horizontalAccuracy");
const NSString& kOstrelUserLocationVerticalAccuracy = *new NSString("verticalAccuracy");
const NSString& kOstrelCoordinateLatitude = *new NSString("latitude");
const NSString& kOstrelCoordinateLongitude = *new NSString("longitude");
const NSString& kOstrelAnnotationLatitude = *new NSString("latitude");
const NSString& kOstrelAnnotationLongitude = *new NSString("longitude");
const NSString& kOstrelAnnotationIdentifier = *new NSString("identifier");
const NSString& kOstrelAnnotationTitle = *new NSString("title");
const NSString& kOstrelAnnotationSubtitle = *new NSString("subtitle");
const NSString& kOstrelAnnotationImageURL = *new NSString("imageURL");
const NSString& kOstrelAnnotationXOffset = *new NSString("xOffset");
const NSString& kOstrelAnnotationYOffset = *new NSString("yOffset");
const NSString& kOstrelAnnotationHasLeftCallout = *new NSString("hasLeftCalloutButton");
const NSString& kOstrelAnnotationHasRightCallout = *new NSString("hasRightCalloutButton");
const NSString& kOstrelAnnotationPinColor = *new NSString("pinColor");
const NSString& kOstrelAnnotationPinAnimatesDrop = *new NSString("pinAnimatesDrop");
const NSString& kOstrelAnnotationIsDraggable = *new NSString("draggable");
const NSString& kOstrelOverlayType = *new NSString("type");
const NSString& kOstrelOverlayId = *new NSString("id");
const NSString& kOstrelOverlayLatitude = *new NSString("latitude");
const NSString& kOstrelOverlayLongitude = *new NSString("longitude");
const NSString& kOstrelOverlayRadius = *new NSString("radius");
const NSString& kOstrelOverlayCoordinates = *new NSString("coordinates");

const NSString& kVeyraUserLocationAnnotationIdentifier = *new NSString("mapUserLocationAnnotationIdentifier");

} // namespace veyra
