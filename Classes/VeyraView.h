// The plug-in view: one for each map element. It owns the map and every registry, and is the scripting object: scripts
// reach the properties and methods that its class tables name, nothing else.
//
// Threads: made, laid out and freed on the main queue, where the map's callbacks arrive too. Script accessors and
// methods run on the web thread; each takes the lock for the access to a field alone and hands changes of the map to
// the main queue. Nothing waits. Reading a key of a script object can run arbitrary script, so the lock is never held
// then.
#pragma once

#include "Classes/VeyraAnnotationRegistry.h"
#include "Platform/Foundation/NSDictionary.h"
#include "Platform/Foundation/NSLock.h"
#include "Platform/Foundation/NSURLConnection.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UILongPressGestureRecognizer.h"
#include "Platform/UIKit/UIView.h"

#include <atomic>
#include <deque>
#include <unordered_map>

namespace veyra {

class VeyraOverlay;
class VeyraRegionSO;
class VeyraLocationCoordinateSO;
class VeyraPointSO;
class VeyraRectSO;
class VeyraUserLocationSO;

inline constexpr const char* VeyraCreatedNotification = "VeyraCreatedNotification";
inline constexpr const char* VeyraDestroyedNotification = "VeyraDestroyedNotification";

class VeyraView final : public UIView, public MKMapViewDelegate, public NSURLConnectionDelegate {
public:
    VEYRA_CLASS()

    // Life. Main queue, but for the start.

    /// Makes a view of 1 × 1 points, keeps the arguments and posts "VeyraCreatedNotification" with them.
    static std::shared_ptr<VeyraView> plugInViewWithArguments(std::shared_ptr<const NSDictionary> arguments);
    ~VeyraView() override;
    /// Starts the view: puts "GeoMap" into the page that the arguments' container names, if there is one. Web thread.
    void webPlugInInitialize();
    /// Stops the view: posts "VeyraDestroyedNotification" and drops the arguments.
    void webPlugInDestroy();
    /// The view itself.
    std::shared_ptr<VeyraView> objectForWebScript();
    /// The view behind the nearest layer above this view's own that belongs to one; null in no layer tree.
    std::shared_ptr<UIView> superview() const override;
    void layoutSubviews() override;

    // Switches of the host, which sets them when it hears of the view's creation.

    bool clientAllowsFileURLLoading() const { return _clientAllowsFileURLLoading; }
    void setClientAllowsFileURLLoading(bool allows) { _clientAllowsFileURLLoading = allows; }
    bool verboseDebugLoggingEnabled() const { return _verboseDebugLoggingEnabled; }
    void setVerboseDebugLoggingEnabled(bool enabled) { _verboseDebugLoggingEnabled = enabled; }
    /// Device pixels a point; 0 until the host sets it.
    double screenScale() const { return _screenScale; }
    void setScreenScale(double scale) { _screenScale = scale; }
    /// Not owned.
    std::shared_ptr<NSObject> delegate() const;
    void setDelegate(const std::shared_ptr<NSObject>& delegate);

    // What scripts may use. Any thread.

    /// The script names of the properties, in order.
    static const std::vector<NSString>& scriptingKeys();
    /// The script names of the methods by selector, in order.
    static const std::vector<std::pair<SEL, NSString>>& scriptSelectors();
    static std::optional<NSString> webScriptNameForKey(const char* key);
    static bool isKeyExcludedFromWebScript(const char* key);
    static std::optional<NSString> webScriptNameForSelector(SEL selector);
    static bool isSelectorExcludedFromWebScript(SEL selector);
    std::vector<NSString> attributeKeys() const override { return scriptingKeys(); }

    // Listener and log. Web thread.

    id listener() const { return jsListener(); }
    void setListener(const id& listener) { setJsListener(listener); }
    id jsListener() const;
    void setJsListener(const id& listener);
    /// Writes "log: " and the message's text form to the log.
    void log(const id& message);

    // Settings. Any thread.

    id mapType() const { return id(internalMapType()); }
    /// Numbers by their 32-bit integer value; anything else is the standard map. Values above 2, and below 0, are
    /// ignored.
    void setMapType(const id& type);
    uint64_t internalMapType() const;
    void setInternalMapType(uint64_t type);
    bool zoomEnabled() const;
    void setZoomEnabled(bool enabled);
    bool scrollEnabled() const;
    void setScrollEnabled(bool enabled);
    bool longPressDropsPin() const;
    void setLongPressDropsPin(bool drops);
    id droppedPinIdentifier() const;
    void setDroppedPinIdentifier(const id& identifier);
    /// The identifier of dropped pins, not their title: pages rely on it.
    id droppedPinTitle() const;
    void setDroppedPinTitle(const id& title);

    // Region and centre. Reads answer from the last change that the map reported; setters hand over to the main queue.

    id region() const;
    void setRegion(const id& region);
    void setRegionAnimated(const id& region, bool animated);
    id centerCoordinate() const;
    void setCenterCoordinate(const id& coordinate);
    void setCenterCoordinateAnimated(const id& coordinate, bool animated);

    /// For native callers: the geometry that reads and conversions answer from. Each read and write is whole.
    MKCoordinateRegion coordinateRegion() const;
    void setCoordinateRegion(const MKCoordinateRegion& region);
    MKMapRect visibleMapRect() const;
    void setVisibleMapRect(const MKMapRect& rect);
    CGSize boundsSize() const;
    void setBoundsSize(CGSize size);

    // Conversions between the map and the screen, from the cached geometry; nil for a refused argument. Web thread.

    /// The five, for calls that come down to numbers.
    static const std::vector<WebNumericMethod>& numericMethods();

    id regionThatFits(const id& region);
    id convertCoordinateToPoint(const id& coordinate);
    id convertPointToCoordinate(const id& point);
    id convertRegionToRect(const id& region);
    id convertRectToRegion(const id& rect);

    // User location. Web thread.

    bool showsUserLocation() const;
    /// Asks the host's web view for permission; a host that cannot be asked has denied it.
    void setShowsUserLocation(bool shows);
    bool userLocationVisible() const;
    /// The last position known; all fields 0 before the first.
    id userLocation() const;
    /// The permission listener's answers: the display is switched as the script asked last, or off. Any thread; any
    /// number of times.
    void allow();
    void deny();
    void denyOnlyThisRequest() { deny(); }
    bool shouldClearCache() const { return true; }

    // Annotations. Web thread.

    void addAnnotation(const id& annotation);
    void addAnnotations(const id& annotations);
    void removeAnnotation(const id& identifier);
    void removeAnnotations(const id& identifiers);
    void selectAnnotationAnimated(const id& identifier, bool animated);
    void deselectAnnotationAnimated(const id& identifier, bool animated);
    id annotations() const;
    id selectedAnnotations() const;

    // Overlays. Web thread.

    void addOverlay(const id& overlay);
    void addOverlays(const id& overlays);
    void removeOverlay(const id& identifier);
    void removeOverlays(const id& identifiers);
    void insertOverlayAtIndex(const id& overlay, const id& index);
    void exchangeOverlayAtIndexWithOverlayAtIndex(const id& first, const id& second);
    void insertOverlayAboveOverlay(const id& overlay, const id& sibling);
    void insertOverlayBelowOverlay(const id& overlay, const id& sibling);
    id overlays() const;

    /// The setter of the properties that scripts can only read.
    void ignoreAssignment(const id&) {}

    // The map's callbacks. Main queue.

    void mapViewWillStartLoadingMap(MKMapView& mapView) override;
    void mapViewDidFinishLoadingMap(MKMapView& mapView) override;
    void mapViewDidFailLoadingMapWithError(MKMapView& mapView, const std::shared_ptr<NSError>& error) override;
    void mapViewRegionWillChangeAnimated(MKMapView& mapView, bool animated) override;
    void mapViewRegionDidChangeAnimated(MKMapView& mapView, bool animated) override;
    std::shared_ptr<MKAnnotationView>
    mapViewViewForAnnotation(MKMapView& mapView, const std::shared_ptr<MKAnnotation>& annotation) override;
    void mapViewDidAddAnnotationViews(MKMapView& mapView,
                                      const std::vector<std::shared_ptr<MKAnnotationView>>& views) override;
    void mapViewDidSelectAnnotationView(MKMapView& mapView, const std::shared_ptr<MKAnnotationView>& view) override;
    void mapViewDidDeselectAnnotationView(MKMapView& mapView, const std::shared_ptr<MKAnnotationView>& view) override;
    void mapViewAnnotationViewCalloutAccessoryControlTapped(MKMapView& mapView,
                                                            const std::shared_ptr<MKAnnotationView>& view,
                                                            const std::shared_ptr<UIView>& control) override;
    void mapViewAnnotationViewDidChangeDragStateFromOldState(MKMapView& mapView,
                                                             const std::shared_ptr<MKAnnotationView>& view,
                                                             MKAnnotationViewDragState state,
                                                             MKAnnotationViewDragState oldState) override;

    // The image connections' callbacks. Main queue.

    void connectionDidReceiveResponse(NSURLConnection& connection, const NSURLResponse& response) override;
    void connectionDidReceiveData(NSURLConnection& connection, std::string_view bytes) override;
    void connectionDidFinishLoading(NSURLConnection& connection) override;
    void connectionDidFailWithError(NSURLConnection& connection, const std::shared_ptr<NSError>& error) override;

    /// Busy while changes are being made in slices, and while images are on their way.
    bool isIdle() const override;
    void mapViewWillStartLocatingUser(MKMapView& mapView) override;
    void mapViewDidStopLocatingUser(MKMapView& mapView) override;
    void mapViewDidUpdateUserLocation(MKMapView& mapView, const std::shared_ptr<MKUserLocation>& userLocation) override;
    void mapViewDidFailToLocateUserWithError(MKMapView& mapView, const std::shared_ptr<NSError>& error) override;
    /// A view for the overlays that scripts have added; none for any other.
    std::shared_ptr<MKOverlayView> mapViewViewForOverlay(MKMapView& mapView,
                                                         const std::shared_ptr<MKOverlay>& overlay) override;
    void mapViewDidAddOverlayViews(MKMapView& mapView,
                                   const std::vector<std::shared_ptr<MKOverlayView>>& views) override;

    // For tests and hosts on the main queue.

    const std::shared_ptr<MKMapView>& mapView() const { return _mapView; }
    std::shared_ptr<const NSDictionary> pluginArguments() const;
    const std::shared_ptr<UILongPressGestureRecognizer>& longPressGestureRecognizer() const {
        return _longPressGestureRecognizer;
    }
    const std::shared_ptr<UIButton>& infoLightButton() const { return _infoLightButton; }
    const std::shared_ptr<UIButton>& detailDisclosureButton() const { return _detailDisclosureButton; }
    /// Views of the process that are not freed yet. Any thread.
    static size_t liveViews();

private:
    friend class UIView;
    VeyraView();
    void initWithFrame(const CGRect& frame) override;

    void sendEvent(const NSString& name, NSArray arguments = {});
    /// The caller's name in messages: the script name of the selector; nil for one that scripts do not call by name.
    static id callerName(SEL selector);
    void setRegionFrom(const id& region, SEL selector,
                       const std::function<void(MKMapView&, const MKCoordinateRegion&)>&);
    void setCenterFrom(const id& coordinate, SEL selector,
                       const std::function<void(MKMapView&, CLLocationCoordinate2D)>&);
    void updateLongPressGestureRecognizer(bool drops);

    // Conversions: VeyraView+Conversions.cpp
    MKCoordinateRegion fittingRegion(const MKCoordinateRegion& region) const;
    CGPoint pointForCoordinate(const CLLocationCoordinate2D& coordinate) const;
    CLLocationCoordinate2D coordinateForPoint(const CGPoint& point) const;
    CGRect rectForRegion(const MKCoordinateRegion& region) const;
    MKCoordinateRegion regionForRect(const CGRect& rect) const;

    // Annotations: VeyraView+Annotations.cpp, +AnnotationViews.cpp and +AnnotationImages.cpp. Main queue.
    using Records = std::vector<std::shared_ptr<VeyraAnnotationSO>>;
    /// Puts the record on the map and registers it, now or when its image is there; one whose identifier is registered
    /// is dropped.
    void _internalAddAnnotation(const std::shared_ptr<VeyraAnnotationSO>& record);
    void _internalRemoveAnnotation(const id& identifier);
    void putOnMap(const std::shared_ptr<VeyraAnnotationSO>& record);
    /// The record of that identifier, or null: then the verbose log says so.
    std::shared_ptr<VeyraAnnotationSO> registeredAnnotation(const id& identifier, const char* complaint) const;
    std::shared_ptr<MKAnnotationView> imageView(const std::shared_ptr<VeyraAnnotationSO>& record) const;
    void handleLongPress(const UIGestureRecognizer& recognizer);
    /// Holds the record back until its image is there, and starts to load that unless it is under way.
    void deferAnnotation(const std::shared_ptr<VeyraAnnotationSO>& record);
    /// The address that the delegate makes of a page's string, or that the string is; may be null.
    std::shared_ptr<NSURL> URLForImage(const id& string);
    void sendImageFailure(const VeyraAnnotationSO& record, int code, const id& url);
    void imageDecoded(const id& string, const std::shared_ptr<UIImage>& image,
                      const std::shared_ptr<NSURLConnection>& connection);
    Records takeDeferredAnnotations(const id& string);
    void countImageLoads(int change);

    /// Asks the host's web view for permission to locate the user; one that cannot be asked has denied it.
    void askForLocation();
    // What scripts' calls change on the main queue, in the order of the calls: VeyraView+Changes.cpp
    /// A change that may take long: goes on with it until the time `end` and says whether it is complete. Until then it
    /// is called again, what the main queue has to do for others comes in between, and later changes wait.
    using LongChange = std::function<bool(int64_t end)>;
    /// Makes the change when its turn has come; the view lives until then.
    void onMainQueue(Block change);
    void onMainQueueInSlices(LongChange change);
    /// The same with the map.
    void onMap(std::function<void(MKMapView&)> change);
    void makeChanges(int64_t end);
    void idleStateChanged();

    void logVerbose(const char* format, const id& argument) const;

    // Overlays: VeyraView+Overlays.cpp
    using OverlayInsertion = void (MKMapView::*)(const std::shared_ptr<MKOverlay>& overlay,
                                                 const std::shared_ptr<MKOverlay>& sibling);
    /// Puts a new overlay into the registry; false, and a log line, when its identifier is taken. Throws NSException
    /// when it has none.
    bool storeOverlay(const std::shared_ptr<VeyraOverlay>& overlay);
    /// Takes an overlay out of the registry; null, and a log line, when there is none.
    std::shared_ptr<VeyraOverlay> takeOverlay(const id& identifier);
    void insertOverlayNextTo(const id& overlay, const id& sibling, OverlayInsertion insertion);

    // Set once at creation.
    std::shared_ptr<MKMapView> _mapView;
    std::shared_ptr<UIButton> _infoLightButton;
    std::shared_ptr<UIButton> _detailDisclosureButton;
    // Set by the host.
    std::atomic<bool> _clientAllowsFileURLLoading{false};
    std::atomic<bool> _verboseDebugLoggingEnabled{false};
    std::atomic<double> _screenScale{0};
    // Main queue.
    std::shared_ptr<UILongPressGestureRecognizer> _longPressGestureRecognizer;
    std::unordered_map<id, std::shared_ptr<UIImage>> _mapAnnotationImages; // by what pages call them
    std::unordered_map<id, Records> _deferredAnnotations;                  // by the image that they wait for
    std::unordered_map<id, std::string> _downloadsInProgress;              // what has come of each image
    std::unordered_map<const NSURLConnection*, id> _URLsByConnection;      // entries stay when connections go
    std::vector<std::shared_ptr<NSURLConnection>> _imageDownloadConnections;
    int _imageLoads = 0;             // loading or being decoded
    std::deque<LongChange> _changes; // the one under way and those that wait behind it

    mutable NSLock _lock;
    std::weak_ptr<NSObject> _delegate VEYRA_GUARDED_BY(_lock);
    std::shared_ptr<const NSDictionary> _pluginArguments VEYRA_GUARDED_BY(_lock);
    id _jsListener VEYRA_GUARDED_BY(_lock);
    MKCoordinateRegion _region VEYRA_GUARDED_BY(_lock){};
    MKMapRect _visibleMapRect VEYRA_GUARDED_BY(_lock){};
    CGSize _boundsSize VEYRA_GUARDED_BY(_lock){};
    bool _showsUserLocation VEYRA_GUARDED_BY(_lock) = false;
    std::shared_ptr<MKUserLocation> _userLocation VEYRA_GUARDED_BY(_lock);
    bool _userLocationVisible VEYRA_GUARDED_BY(_lock) = false;
    uint64_t _mapType VEYRA_GUARDED_BY(_lock) = 0;
    bool _zoomEnabled VEYRA_GUARDED_BY(_lock) = true;
    bool _scrollEnabled VEYRA_GUARDED_BY(_lock) = true;
    bool _longPressDropsPin VEYRA_GUARDED_BY(_lock) = false;
    id _droppedPinTitle VEYRA_GUARDED_BY(_lock);
    id _droppedPinIdentifier VEYRA_GUARDED_BY(_lock);
    std::unordered_map<id, std::shared_ptr<VeyraOverlay>> _overlaysById VEYRA_GUARDED_BY(_lock);
    VeyraAnnotationRegistry _mapAnnotations VEYRA_GUARDED_BY(_lock);
    NSArray _selectedMapAnnotations VEYRA_GUARDED_BY(_lock);
};

} // namespace veyra
