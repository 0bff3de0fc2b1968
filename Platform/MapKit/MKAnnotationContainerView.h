// All that a map shows of its annotations, above the picture of the world: asks the delegate for views where
// annotations come into view, draws them, finds the one under a touch, selects, drags, and shows the callout. A subview
// of its map, as large as it; main queue only. The map owns it, it owns the annotations' views while they are shown.
//
// The delegate may add, remove and select while it is asked or told: what was looked up before a call is looked up
// again after it.
#pragma once

#include "Platform/MapKit/MKAnnotationStore.h"
#include "Platform/MapKit/MKDropAnimation.h"
#include "Platform/MapKit/MKReuseQueue.h"
#include "Platform/MapKit/MKSpriteCache.h"
#include "Platform/MapKit/MKSpriteLayer.h"
#include "Platform/UIKit/UIEvent.h"

namespace veyra {

class DispatchTimer;
class MKCalloutView;
class MKMapView;
class MKMapViewDelegate;
class MKUserLocationView;
class UIButton;
class UIGestureRecognizer;
class UILongPressGestureRecognizer;
class UITapGestureRecognizer;

class MKAnnotationContainerView final : public UIView, private MKAnnotationViewObserver {
public:
    VEYRA_CLASS()
    ~MKAnnotationContainerView() override;
    /// For the map that it is going to be a subview of.
    static std::shared_ptr<MKAnnotationContainerView> makeForMap(const std::shared_ptr<MKMapView>& map);

    // What the map's own methods of these names do.
    void add(const std::vector<std::shared_ptr<MKAnnotation>>& annotations);
    void setAwaitsMore(bool awaits);
    void remove(const std::vector<std::shared_ptr<MKAnnotation>>& annotations);
    std::vector<std::shared_ptr<MKAnnotation>> annotations() const { return _store.all(); }
    void coordinateDidChange(const std::shared_ptr<MKAnnotation>& annotation);
    std::shared_ptr<MKAnnotationView> viewForAnnotation(const std::shared_ptr<MKAnnotation>& annotation) const;
    std::shared_ptr<MKAnnotationView> dequeueReusableView(const NSString& identifier) {
        return _reuse.take(identifier);
    }
    void select(const std::shared_ptr<MKAnnotation>& annotation, bool animated);
    void deselect(const std::shared_ptr<MKAnnotation>& annotation, bool animated);
    std::vector<std::shared_ptr<MKAnnotation>> selectedAnnotations() const;

    /// The map shows something else from now on.
    void cameraDidChange();
    /// The map has come to rest: views are given, and taken away, at once.
    void bringViewsUpToDate();
    /// A touch went down on the map beside all views.
    void mapTouched();
    /// The map was tapped beside all views.
    void mapTapped();

    std::shared_ptr<UIView> hitTest(CGPoint point) override;
    bool keepsTouches() const override { return true; }
    void drawRect(const UIGraphicsContext& context) override;
    bool stepAnimations(double timestamp) override;
    bool isIdle() const override;
    bool handleKey(const UIKeyEvent& event) override;
    void handleFocus(const UIFocusEvent& event) override;
    void handleAccessibility(const UIAccessibilityEvent& event) override;
    /// Adds the keys that annotations use now.
    void addKeysTo(UIInputPolicy& policy);
    void layoutSubviews() override { placeCallout(); }

protected:
    friend class UIView;
    MKAnnotationContainerView();
    void initWithFrame(const CGRect& frame) override;

private:
    static constexpr uint32_t none = MKAnnotationStore::none;
    /// One of the views that were added and not reported yet.
    struct Attachment {
        uint32_t number, serial;
    };

    std::shared_ptr<MKMapViewDelegate> delegate() const;
    MKAnnotationStore::Entry* entryOf(const MKAnnotationView& view);

    // Views: MKAnnotationContainerView+Views.cpp
    bool isShowingMap() const;
    MKMapRect areaAround(double points, double part) const;
    void updateArea();
    /// True when the annotation is to have a view.
    bool isNear(uint32_t number) const;
    void askForWantedViews(int64_t microseconds);
    /// Asks the delegate for the view of an annotation that has none.
    void askForView(uint32_t number);
    void attach(uint32_t number, const std::shared_ptr<MKAnnotationView>& view);
    void detach(uint32_t number);
    void removeOne(const std::shared_ptr<MKAnnotation>& annotation);
    void scheduleReport();
    void queueReport(int64_t deadline);
    void reportUnlessMoreIsComing(int64_t deadline);
    void reportAddedViews();
    bool isUnreported(uint32_t number) const;
    void startDrops(const std::vector<uint32_t>& numbers);
    void stepDrops(double timestamp);
    void finishDrops();

    // Drawing: MKAnnotationContainerView+Drawing.cpp
    double deviceScale() const;
    bool isInFront(uint32_t number) const;
    MKPlacedSprite placedSprite(uint32_t number, double scale);
    void addToOrder(uint32_t number);
    void updateOrder();
    /// Forgets the sprites of another scale.
    void useScale(double scale);
    void updateSprites();
    /// The look or the place of a view is about to change, or has changed: what it covers must be drawn.
    void damage(uint32_t number);
    void drawInFront(const UIGraphicsContext& context, uint32_t number);
    void drawAccuracy(const UIGraphicsContext& context);
    CGRect pointsOf(const PixelRect& rect) const;
    void annotationViewWillChangeLook(MKAnnotationView& view) override;
    void annotationViewDidChangeLook(MKAnnotationView& view) override;
    void annotationViewDidChangeCallout(MKAnnotationView& view) override;
    CGRect frameOfAnnotationView(const MKAnnotationView& view) const override;

    // Selection: MKAnnotationContainerView+Selection.cpp
    uint32_t numberAt(CGPoint point);
    /// Where a view belongs, in points of the map, on the copy of the world that is nearest to the middle; whether it
    /// is lifted or falls does not count.
    CGRect frameOf(uint32_t number) const;
    bool isOnScreen(uint32_t number) const;
    void select(uint32_t number, bool animated);
    void deselect();
    void showCallout();
    void hideCallout();
    void placeCallout();
    void moveMapToCallout();
    void calloutButtonTapped(const std::shared_ptr<UIView>& button);

    // Dragging: MKAnnotationContainerView+Dragging.cpp
    void addRecognizers();
    void handleDrag(const UIGestureRecognizer& press);
    void beginDrag(uint32_t number, CGPoint at);
    void moveDrag(CGPoint to);
    void endDrag(bool cancelled);
    void setDragState(const std::shared_ptr<MKAnnotationView>& view, MKAnnotationViewDragState state);
    bool isDragging() const { return _dragged != none; }

    // Keyboard: MKAnnotationContainerView+Focus.cpp
    enum class FocusPart { View, LeftButton, RightButton };
    struct Focus {
        uint32_t number = none; // none: the map itself has it
        FocusPart part = FocusPart::View;
    };
    bool canFocus(uint32_t number) const;
    uint32_t focusableAfter(uint32_t number, bool forward);
    std::shared_ptr<UIButton> calloutButton(FocusPart part) const;
    Focus focusAfter(const Focus& focus, bool forward);
    void setFocus(const Focus& focus);
    void checkFocus();
    void publishKeys();
    bool handleTab(bool forward);
    bool handleEscape();
    bool handleActivation(bool isSpace);
    bool handleArrow(const UIKeyEvent& event);
    void drawFocus(const UIGraphicsContext& context);

    // For those who do not see: MKAnnotationContainerView+Accessibility.cpp
    std::string labelOf(uint32_t number) const;
    UIAccessibilityState accessibilityState();

    std::weak_ptr<MKMapView> _map;
    MKAnnotationStore _store;
    MKReuseQueue _reuse;

    // Where annotations have views: somewhat more than is seen. Null before the map shows anything.
    MKMapRect _area = MKMapRectNull;
    std::vector<std::shared_ptr<MKAnnotation>> _wanted; // have come into the area and are not asked for yet
    bool _askingQueued = false;
    std::vector<Attachment> _unreported;
    bool _reportQueued = false;
    bool _awaitsMore = false;   // of a batch
    bool _holdsBackNew = false; // views that are given now are drawn with the last of their batch
    bool _hasHeldBackNew = false;
    bool _isReportHeldBack = false;

    MKDropAnimation _drops;
    std::unique_ptr<DispatchTimer> _dropTimer;

    // The views that are shown from north to south: the latitude in the upper half of each word, the number in the
    // lower.
    std::vector<uint64_t> _order;
    std::vector<uint32_t> _newInOrder;
    bool _orderIsStale = false;
    bool _spritesAreStale = false;
    unsigned _damagesSinceFrame = 0;
    MKSpriteCache _spriteCache;
    MKSpriteLayer _layer;
    std::weak_ptr<MKUserLocationView> _locationView; // of the system, whose circle is drawn

    uint32_t _selected = none;
    std::shared_ptr<MKCalloutView> _callout; // while it is shown
    uint32_t _hit = none;                    // the view that was found under a point last
    uint32_t _pressed = none;                // the view under the touch that began last
    std::shared_ptr<UITapGestureRecognizer> _tapRecognizer;
    std::shared_ptr<UILongPressGestureRecognizer> _dragRecognizer;

    uint32_t _dragged = none;
    CLLocationCoordinate2D _coordinateBeforeDrag;
    CGPoint _dragGrip; // from the finger to the coordinate's point
    bool _dragsByKeys = false;
    CGPoint _keyDragPoint; // where a finger would be

    Focus _focus;
    bool _tabLeaves = false; // the next Tab is the page's
    bool _publishQueued = false;
};

} // namespace veyra
