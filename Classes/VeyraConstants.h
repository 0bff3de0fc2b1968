// Every name that scripts and the plug-in share, and the numbers of the page's "GeoMap" object. Strings are made once
// and live for ever; any thread.
#pragma once

#include "Platform/Foundation/NSString.h"

#include <cstdint>

namespace veyra {

// Properties of the map element.
extern const NSString& kVeyraEventsListener;       // "listener"
extern const NSString& kVeyraType;                 // "mapType"
extern const NSString& kVeyraRegion;               // "region"
extern const NSString& kVeyraCenterCoordinate;     // "centerCoordinate"
extern const NSString& kVeyraShowsUserLocation;    // "showsUserLocation"
extern const NSString& kVeyraUserLocationVisible;  // "userLocationVisible"
extern const NSString& kVeyraUserLocation;         // "userLocation"
extern const NSString& kVeyraZoomEnabled;          // "zoomEnabled"
extern const NSString& kVeyraScrollEnabled;        // "scrollEnabled"
extern const NSString& kVeyraLongPressDropsPin;    // "longPressDropsPin"
extern const NSString& kVeyraDroppedPinTitle;      // "droppedPinTitle"
extern const NSString& kVeyraDroppedPinIdentifier; // "droppedPinIdentifier"
extern const NSString& kVeyraAnnotations;          // "annotations"
extern const NSString& kVeyraSelectedAnnotations;  // "selectedAnnotations"
extern const NSString& kVeyraOverlays;             // "overlays"

// Methods of the map element.
extern const NSString& kVeyraSetRegion;                 // "setRegion"
extern const NSString& kVeyraRegionThatFits;            // "regionThatFits"
extern const NSString& kVeyraSetCenterCoordinate;       // "setCenterCoordinate"
extern const NSString& kVeyraConvertCoordinateToPoint;  // "convertCoordinateToPoint"
extern const NSString& kVeyraConvertPointToCoordinate;  // "convertPointToCoordinate"
extern const NSString& kVeyraConvertRegionToRect;       // "convertRegionToRect"
extern const NSString& kVeyraConvertRectToRegion;       // "convertRectToRegion"
extern const NSString& kVeyraAddAnnotation;             // "addAnnotation"
extern const NSString& kVeyraAddAnnotations;            // "addAnnotations"
extern const NSString& kVeyraRemoveAnnotation;          // "removeAnnotation"
extern const NSString& kVeyraRemoveAnnotations;         // "removeAnnotations"
extern const NSString& kVeyraSelectAnnotation;          // "selectAnnotation"
extern const NSString& kVeyraDeselectAnnotation;        // "deselectAnnotation"
extern const NSString& kVeyraAddOverlay;                // "addOverlay"
extern const NSString& kVeyraAddOverlays;               // "addOverlays"
extern const NSString& kVeyraRemoveOverlay;             // "removeOverlay"
extern const NSString& kVeyraRemoveOverlays;            // "removeOverlays"
extern const NSString& kVeyraInsertOverlayAtIndex;      // "insertOverlayAtIndex"
extern const NSString& kVeyraExchangeOverlays;          // "exchangeOverlays"
extern const NSString& kVeyraInsertOverlayAboveOverlay; // "insertOverlayAboveOverlay"
extern const NSString& kVeyraInsertOverlayBelowOverlay; // "insertOverlayBelowOverlay"

// Events: methods of the listener, with their arguments.
extern const NSString& kVeyraWillStartLoadingMap;                // "mapWillStartLoadingMap": no arguments
extern const NSString& kVeyraDidFinishLoadingMap;                // "mapDidFinishLoadingMap": no arguments
extern const NSString& kVeyraDidFailLoadingMap;                  // "mapDidFailLoadingMap": no arguments
extern const NSString& kVeyraRegionWillChange;                   // "mapRegionWillChange": no arguments
extern const NSString& kVeyraRegionDidChange;                    // "mapRegionDidChange": the new region
extern const NSString& kVeyraWillStartUpdatingUserLocation;      // "mapWillStartUpdatingUserLocation": no arguments
extern const NSString& kVeyraDidUpdateUserLocation;              // "mapDidUpdateUserLocation": the user location
extern const NSString& kVeyraDidStopUpdatingUserLocation;        // "mapDidStopUpdatingUserLocation": no arguments
extern const NSString& kVeyraUpdateUserLocationFailed;           // "mapUpdateUserLocationFailed": an error number
extern const NSString& kVeyraFailedRetrievingImageForAnnotation; // "mapFailedRetrievingImageForAnnotation": identifier,
                                                                 // error number, address
extern const NSString& kVeyraDidAddViewsForAnnotations;    // "mapDidAddViewsForAnnotations": one array of identifiers
extern const NSString& kVeyraDidSelectAnnotation;          // "mapDidSelectAnnotation": identifier
extern const NSString& kVeyraDidDeselectAnnotation;        // "mapDidDeselectAnnotation": identifier
extern const NSString& kVeyraAnnotationLeftCalloutTapped;  // "mapAnnotationLeftCalloutTapped": identifier
extern const NSString& kVeyraAnnotationRightCalloutTapped; // "mapAnnotationRightCalloutTapped": identifier
extern const NSString& kVeyraAnnotationDidFinishDrag;      // "mapAnnotationDidFinishDrag": identifier, new coordinate
extern const NSString& kVeyraDidAddOverlays; // "mapDidAddOverlays": the identifiers, each an argument of its own

// Keys of script objects, by record and field.
extern const NSString& kOstrelPointX;                         // "x"
extern const NSString& kOstrelPointY;                         // "y"
extern const NSString& kOstrelRectX;                          // "x"
extern const NSString& kOstrelRectY;                          // "y"
extern const NSString& kOstrelRectWidth;                      // "width"
extern const NSString& kOstrelRectHeight;                     // "height"
extern const NSString& kOstrelRegionLatitude;                 // "latitude"
extern const NSString& kOstrelRegionLongitude;                // "longitude"
extern const NSString& kOstrelRegionLatitudeDelta;            // "latitudeDelta"
extern const NSString& kOstrelRegionLongitudeDelta;           // "longitudeDelta"
extern const NSString& kOstrelUserLocationLatitude;           // "latitude"
extern const NSString& kOstrelUserLocationLongitude;          // "longitude"
extern const NSString& kOstrelUserLocationAltitude;           // "altitude"
extern const NSString& kOstrelUserLocationHorizontalAccuracy; // "horizontalAccuracy"
extern const NSString& kOstrelUserLocationVerticalAccuracy;   // "verticalAccuracy"
extern const NSString& kOstrelCoordinateLatitude;             // "latitude"
extern const NSString& kOstrelCoordinateLongitude;            // "longitude"
extern const NSString& kOstrelAnnotationLatitude;             // "latitude"
extern const NSString& kOstrelAnnotationLongitude;            // "longitude"
extern const NSString& kOstrelAnnotationIdentifier;           // "identifier"
extern const NSString& kOstrelAnnotationTitle;                // "title"
extern const NSString& kOstrelAnnotationSubtitle;             // "subtitle"
extern const NSString& kOstrelAnnotationImageURL;             // "imageURL"
extern const NSString& kOstrelAnnotationXOffset;              // "xOffset"
extern const NSString& kOstrelAnnotationYOffset;              // "yOffset"
extern const NSString& kOstrelAnnotationHasLeftCallout;       // "hasLeftCalloutButton"
extern const NSString& kOstrelAnnotationHasRightCallout;      // "hasRightCalloutButton"
extern const NSString& kOstrelAnnotationPinColor;             // "pinColor"
extern const NSString& kOstrelAnnotationPinAnimatesDrop;      // "pinAnimatesDrop"
extern const NSString& kOstrelAnnotationIsDraggable;          // "draggable"
extern const NSString& kOstrelOverlayType;                    // "type"
extern const NSString& kOstrelOverlayId;                      // "id"
extern const NSString& kOstrelOverlayLatitude;                // "latitude"
extern const NSString& kOstrelOverlayLongitude;               // "longitude"
extern const NSString& kOstrelOverlayRadius;                  // "radius"
extern const NSString& kOstrelOverlayCoordinates;             // "coordinates"
extern const NSString& kOstrelOverlayStrokeColor;             // "strokeColor"
extern const NSString& kOstrelOverlayStrokeOpacity;           // "strokeOpacity"
extern const NSString& kOstrelOverlayFillColor;               // "fillColor"
extern const NSString& kOstrelOverlayFillOpacity;             // "fillOpacity"
extern const NSString& kOstrelOverlayLineWidth;               // "lineWidth"
extern const NSString& kOstrelOverlayLineJoin;                // "lineJoin"
extern const NSString& kOstrelOverlayLineCap;                 // "lineCap"
extern const NSString& kOstrelOverlayMiterLimit;              // "miterLimit"
extern const NSString& kOstrelOverlayLineDashPhase;           // "lineDashPhase"
extern const NSString& kOstrelOverlayLineDashPattern;         // "lineDashPattern"

/// The identifier by which events name the map's own user-location annotation.
extern const NSString& kVeyraUserLocationAnnotationIdentifier; // "mapUserLocationAnnotationIdentifier"

// The numbers that the page's "GeoMap" object carries under the same names.
inline constexpr int32_t kVeyraTypeStandard = 0;
inline constexpr int32_t kVeyraTypeSatellite = 1;
inline constexpr int32_t kVeyraTypeHybrid = 2;
inline constexpr int32_t kVeyraUserLocationUnusableError = 0; ///< locating failed
inline constexpr int32_t kVeyraUserLocationDeniedError = -1;  ///< permission was denied
inline constexpr int32_t kVeyraAnnotationURIInvalid = -1000;  ///< no connection could be made for an image address

} // namespace veyra
