// The map: shows a part of the world in its bounds, lets the user move it, and reports to a delegate. Main queue only;
// the superview owns it, the map owns its picture of the world (MKTileLayer), its movement and its recognisers.
//
// A new map shows the whole world. Until its first layout at a size other than the 1 x 1 of its creation it sends and
// draws nothing; what is set before is shown from then on. That first layout, and each later change of size (which
// keeps centre and scale), sends one pair of region callbacks from the map's own layout, which follows its superview's.
#pragma once

#include "Platform/MapKit/MKCamera.h"
#include "Platform/MapKit/MKMapType.h"
#include "Platform/MapKit/MKMapViewDelegate.h"
#include "Platform/UIKit/UIEvent.h"
#include "Platform/UIKit/UIUserInterfaceStyle.h"
#include "Platform/UIKit/UIView.h"

#include <string>
#include <vector>

namespace veyra {

class CLLocationProvider;
class DispatchTimer;
class MKAnnotationContainerView;
class MKAttributionView;
class MKLabelLayer;
class MKMotion;
class MKOverlay;
class MKOverlayLayer;
class MKOverlayList;
class MKScaleBar;
class MKTileLayer;
class MKTileSource;
class UIPanGestureRecognizer;
class UIPinchGestureRecognizer;

class MKMapView : public UIView {
public:
    VEYRA_CLASS()
    ~MKMapView() override;

    std::shared_ptr<MKMapViewDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(const std::shared_ptr<MKMapViewDelegate>& delegate) { _delegate = delegate; }

    /// What the map shows. Before the first layout: what it will be asked to show then.
    MKCoordinateRegion region() const;
    MKMapRect visibleMapRect() const;
    CLLocationCoordinate2D centerCoordinate() const;

    /// Shows a region: the centre is kept, the whole region is visible, the span that is too small for the view is
    /// widened, within the limits of zoom and of the square. A region with a value that is not finite is logged and
    /// ignored.
    void setRegion(const MKCoordinateRegion& region) { setRegionAnimated(region, false); }
    void setRegionAnimated(const MKCoordinateRegion& region, bool animated);
    /// Moves the map at its scale. A coordinate that is not finite is logged and ignored.
    void setCenterCoordinate(CLLocationCoordinate2D coordinate) { setCenterCoordinateAnimated(coordinate, false); }
    void setCenterCoordinateAnimated(CLLocationCoordinate2D coordinate, bool animated);

    /// The region that a map of that type and size would show when asked for `region`; `region` itself for an empty
    /// size or a value that is not finite. Any thread.
    static MKCoordinateRegion regionThatFitsMapTypeViewSizeRegion(MKMapType mapType, CGSize viewSize,
                                                                  const MKCoordinateRegion& region);

    MKMapType mapType() const { return _mapType; }
    void setMapType(MKMapType mapType);

    /// Whether the user may change the scale, and move the map; turning it off stops what the user has set in motion.
    /// Requests are not affected.
    bool isZoomEnabled() const { return _zoomEnabled; }
    void setZoomEnabled(bool enabled);
    bool isScrollEnabled() const { return _scrollEnabled; }
    void setScrollEnabled(bool enabled);

    // Annotations: MKMapView+Annotations.cpp. None that is null is taken.

    /// Puts an annotation on the map; one that is there already is ignored.
    void addAnnotation(const std::shared_ptr<MKAnnotation>& annotation);
    void addAnnotations(const std::vector<std::shared_ptr<MKAnnotation>>& annotations);
    /// While true, more annotations of a batch that is added in parts are coming: they are reported, and drawn unless
    /// they are few, when it is false again.
    void setAwaitsMoreAnnotations(bool awaits);
    /// Takes it off the map; a selected one is reported as deselected first. One that is not there is ignored.
    void removeAnnotation(const std::shared_ptr<MKAnnotation>& annotation);
    void removeAnnotations(const std::vector<std::shared_ptr<MKAnnotation>>& annotations);
    /// In no particular order.
    std::vector<std::shared_ptr<MKAnnotation>> annotations() const;
    /// For an annotation of the map whose coordinate was changed by others than the map: moves its view.
    void annotationCoordinateDidChange(const std::shared_ptr<MKAnnotation>& annotation);
    /// The view that the annotation has now, or null.
    std::shared_ptr<MKAnnotationView> viewForAnnotation(const std::shared_ptr<MKAnnotation>& annotation) const;
    /// A view that has left the map and was made with that identifier, or null. It is the caller's from now on.
    std::shared_ptr<MKAnnotationView> dequeueReusableAnnotationViewWithIdentifier(const NSString& identifier);

    /// Selects the annotation, shows its callout and reports it, after the deselection of the one selected before.
    /// Without effect for an annotation without a view in the visible area or near it, and for the selected one.
    /// Animated, the map moves so that the callout fits.
    void selectAnnotationAnimated(const std::shared_ptr<MKAnnotation>& annotation, bool animated);
    /// Without effect for an annotation that is not selected.
    void deselectAnnotationAnimated(const std::shared_ptr<MKAnnotation>& annotation, bool animated);
    /// The selected annotation, or nothing.
    std::vector<std::shared_ptr<MKAnnotation>> selectedAnnotations() const;

    /// Between coordinates and points of a view; of the map itself when the view is null. Before the first layout the
    /// coordinate of a point is the centre, the point of a coordinate the middle.
    CLLocationCoordinate2D convertPointToCoordinateFromView(CGPoint point, const std::shared_ptr<UIView>& view) const;
    CGPoint convertCoordinateToPointToView(CLLocationCoordinate2D coordinate,
                                           const std::shared_ptr<UIView>& view) const;

    // The user's location: MKMapView+UserLocation.cpp

    /// Whether the map follows the user and shows where the user is. Without a provider, following fails at once.
    /// Switching on once more after a failure tries again.
    bool showsUserLocation() const { return _showsUserLocation; }
    void setShowsUserLocation(bool shows);
    /// Where positions come from; null at first. What was under way with another one goes on with this one.
    void setLocationProvider(std::shared_ptr<CLLocationProvider> provider);
    /// The annotation of the user's location; not null, with the last position known.
    const std::shared_ptr<MKUserLocation>& userLocation() const { return _userLocation; }
    /// True while a position is known and its circle of accuracy meets the visible area.
    bool isUserLocationVisible() const;

    // Overlays, drawn over the base map in the order of their list. An overlay that is null or on the map already is
    // not added again; one that is not on the map is not removed. The delegate is asked for an overlay's view when the
    // bounding rectangle first meets the visible one, and hears of the views that were added once a turn of the main
    // queue.

    /// Back to front.
    std::vector<std::shared_ptr<MKOverlay>> overlays() const;
    void addOverlay(const std::shared_ptr<MKOverlay>& overlay);
    void addOverlays(const std::vector<std::shared_ptr<MKOverlay>>& overlays);
    void removeOverlay(const std::shared_ptr<MKOverlay>& overlay);
    void removeOverlays(const std::vector<std::shared_ptr<MKOverlay>>& overlays);
    /// An index beyond the end appends.
    void insertOverlayAtIndex(const std::shared_ptr<MKOverlay>& overlay, uint64_t index);
    /// Next to a sibling that is null or not on the map appends.
    void insertOverlayAboveOverlay(const std::shared_ptr<MKOverlay>& overlay,
                                   const std::shared_ptr<MKOverlay>& sibling);
    void insertOverlayBelowOverlay(const std::shared_ptr<MKOverlay>& overlay,
                                   const std::shared_ptr<MKOverlay>& sibling);
    /// An index beyond the end is logged and changes nothing.
    void exchangeOverlayAtIndexWithOverlayAtIndex(uint64_t first, uint64_t second);

    /// Where the map's picture comes from; at first the built-in world. Not null.
    void setTileSource(const std::shared_ptr<const MKTileSource>& source);

    /// Whether a scale bar stands at the bottom left; a map that is too small has none.
    bool showsScale() const { return _showsScale; }
    void setShowsScale(bool shows);
    /// Whether the map says whose data it shows. A host that turns this off says so elsewhere.
    bool showsAttribution() const { return _showsAttribution; }
    void setShowsAttribution(bool shows);

    void layoutSubviews() override;
    bool isOpaque() const override { return hasLayout(); }
    void drawRect(const UIGraphicsContext& context) override;
    bool stepAnimations(double timestamp) override;
    bool isIdle() const override;
    bool handleScroll(const UIScrollEvent& event) override;
    bool handleKey(const UIKeyEvent& event) override;

protected:
    friend class UIView;
    MKMapView();
    void initWithFrame(const CGRect& frame) override;

private:
    // Changes of the camera: MKMapView+Region.cpp
    bool hasLayout() const { return !_viewSize.isEmpty(); }
    void layOutAt(CGSize size);
    void changeTo(const MKCamera& target, bool animated, double duration);
    /// Starts a change with its will-change; what was under way ends first. False when the delegate began another one.
    bool beginChange(bool animated);
    /// Ends the change under way, if any, where it is.
    void endChange();
    /// Ends the change under way, if any, where its movement leads.
    void finishChange();
    void startMotion(std::unique_ptr<MKMotion> motion);
    /// Finishes the change when no frame steps its movement for a while.
    void awaitStep();
    void moveCamera(const MKCamera& camera);
    bool canAnimate() const;

    // Gestures: MKMapView+Gestures.cpp
    void addRecognizers();
    void publishInputPolicy();
    void publishInputPolicyToNewWindow();
    void handlePan(UIPanGestureRecognizer& pan);
    void handlePinch(UIPinchGestureRecognizer& pinch);
    void handleZoomTap(const UIGestureRecognizer& tap, double factor);
    bool beginFingerChange();
    /// With the last finger: ends the change, or goes on by inertia.
    void endFingerChange();
    bool zoomByKey(double factor);
    bool panByKey(double directionX, double directionY);
    bool showWorldByKey();
    /// Where the map is, or, while a key's animation runs, where that leads: keys in a row add up.
    MKCamera cameraForKeys() const;
    void changeByKey(const MKCamera& target);

    void startLocating();
    void userLocated(const std::shared_ptr<const CLLocation>& location);
    void userNotLocated(const std::shared_ptr<NSError>& error);
    void removeUserLocation();
    /// True while a position is known and its circle of accuracy meets the rectangle or a copy of it.
    bool isUserLocationIn(const MKMapRect& rect) const;

    // Names: MKMapView+Labels.cpp
    void drawLabels(const UIGraphicsContext& context);

    // Drawing and loading: MKMapView+Drawing.cpp
    void tilesArrivedIn(const CGRect& area);
    void tileFailed(const std::string& reason, bool mayPass);
    void reportLoading();
    /// Notes the scale that is about to be drawn; true while it keeps changing from frame to frame.
    bool followScale();
    void queueReport(std::function<void(MKMapView&, MKMapViewDelegate&)> report);

    // Overlays: MKMapView+Overlays.cpp
    void overlaysChanged(bool changed);
    void askForOverlaysThatCameIntoSight();
    void queueOverlayUpdate();
    void updateOverlays();
    void overlayWorkChanged();

    // What stands on the map: MKMapView+Furniture.cpp
    void addFurniture();
    /// Brings the scale bar and the attribution up to date.
    void layOutFurniture();
    /// For what is about to be drawn on ground of that style.
    void chooseFurnitureInk(UIUserInterfaceStyle style);
    /// What names on the map keep out of, in points.
    std::vector<CGRect> furnitureAreas() const;
    void publishCaption();

    std::weak_ptr<MKMapViewDelegate> _delegate;
    MKMapType _mapType = MKMapTypeStandard;
    bool _zoomEnabled = true;
    bool _scrollEnabled = true;

    MKCamera _camera;
    CGSize _viewSize; // what the map is shown at; empty before the first layout
    CGSize _lastSize; // of the last layout, whether the map could be shown at it or not
    MKCoordinateRegion _regionBeforeLayout;

    // The change under way, between will-change and did-change; at most one.
    bool _changing = false;
    bool _changeAnimated = false;
    bool _changedByFingers = false;
    bool _changedByKey = false;
    unsigned _changeSerial = 0;
    std::unique_ptr<MKMotion> _motion;
    std::unique_ptr<DispatchTimer> _motionTimer;

    // Scales that are set one after the other, as a script does frame by frame, count as a movement.
    double _drawnScale = 0;
    double _scaleChangeTime = -1; // seconds, monotonic; of the last change
    bool _scaleKeepsChanging = false;
    std::unique_ptr<DispatchTimer> _scaleTimer; // runs while the scale keeps changing

    std::shared_ptr<UIPanGestureRecognizer> _panRecognizer;
    std::shared_ptr<UIPinchGestureRecognizer> _pinchRecognizer;
    double _lastPinchTime = 0; // seconds; when two fingers last moved the map
    CGPoint _panVelocity;      // of the drag that has ended while a pinch has not, in points a second
    std::vector<std::shared_ptr<UIGestureRecognizer>> _zoomTapRecognizers;
    std::weak_ptr<UIWindow> _policyWindow; // that knows what the map uses

    friend class MKAnnotationContainerView;
    std::shared_ptr<MKAnnotationContainerView> _annotationContainer; // a subview, from the start

    bool _showsUserLocation = false;
    bool _isLocating = false; // since the start or a position that followed it; not after a failure
    bool _isUserLocationShown = false;
    std::shared_ptr<CLLocationProvider> _locationProvider;
    std::shared_ptr<MKUserLocation> _userLocation;

    bool _showsScale = false;
    bool _showsAttribution = true;
    std::shared_ptr<MKScaleBar> _scaleBar;
    std::shared_ptr<MKAttributionView> _attributionView;

    std::unique_ptr<MKTileLayer> _tiles;
    std::unique_ptr<MKLabelLayer> _labels;
    bool _labelsFailed = false; // the source's names cannot be had, which was logged
    enum class Loading { Nothing, Tiles, Failed };
    Loading _loading = Loading::Nothing; // what the delegate was last told
    unsigned _queuedReports = 0;         // loading callbacks on their way to the delegate

    std::unique_ptr<MKOverlayList> _overlays;
    std::unique_ptr<MKOverlayLayer> _overlayLayer;
    bool _overlayUpdateQueued = false;

    // What a source could not give for a reason that may pass is asked for again after a while.
    std::unique_ptr<DispatchTimer> _retryTimer;
    double _retryRest = 0; // seconds
};

} // namespace veyra
