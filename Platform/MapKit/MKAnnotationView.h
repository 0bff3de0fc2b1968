// How one annotation looks on a map, and what the user may do with it. Main queue only. Owned by the map while the
// annotation is in view, by the map's reuse queue afterwards, and by whoever keeps it.
//
// There may be a hundred thousand of these at a time: a view is a small record, not a member of a tree of views. The
// map draws the views' sprites in one pass and finds the view under a touch itself.
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/MapKit/MKAnnotation.h"
#include "Platform/UIKit/UIImage.h"
#include "Platform/UIKit/UIView.h"

namespace veyra {

class MKAnnotationView;
class MKSprite;
class MKSpriteCache;

/// The stages of a drag, with the platform's numbers.
enum MKAnnotationViewDragState : uint8_t {
    MKAnnotationViewDragStateNone = 0,
    MKAnnotationViewDragStateStarting = 1,  ///< the view is being lifted
    MKAnnotationViewDragStateDragging = 2,  ///< the view follows the finger
    MKAnnotationViewDragStateCanceling = 3, ///< the view goes back
    MKAnnotationViewDragStateEnding = 4,    ///< the view is set down; its annotation has the new coordinate
};

/// What a view tells the map that shows it.
class MKAnnotationViewObserver {
public:
    virtual void annotationViewWillChangeLook(MKAnnotationView& view) = 0;
    virtual void annotationViewDidChangeLook(MKAnnotationView& view) = 0;
    virtual void annotationViewDidChangeCallout(MKAnnotationView& view) = 0;
    virtual CGRect frameOfAnnotationView(const MKAnnotationView& view) const = 0;

protected:
    ~MKAnnotationViewObserver() = default;
};

class MKAnnotationView : public NSObject {
protected:
    /// Who may make views: these classes alone.
    struct Maker {
        explicit Maker() = default;
    };

public:
    VEYRA_CLASS()
    MKAnnotationView(Maker, const std::shared_ptr<MKAnnotation>& annotation,
                     const std::optional<NSString>& reuseIdentifier);

    /// A view for the annotation; views with a reuse identifier go to the map's reuse queue when they leave it.
    static std::shared_ptr<MKAnnotationView>
    initWithAnnotationReuseIdentifier(const std::shared_ptr<MKAnnotation>& annotation,
                                      const std::optional<NSString>& reuseIdentifier);

    const std::shared_ptr<MKAnnotation>& annotation() const { return _annotation; }
    void setAnnotation(const std::shared_ptr<MKAnnotation>& annotation);
    std::optional<NSString> reuseIdentifier() const {
        return _hasReuseIdentifier ? std::optional(_reuseIdentifier) : std::nullopt;
    }
    /// Called when the view is taken out of the reuse queue. An override calls the base.
    virtual void prepareForReuse() {}

    /// Null for none. The view is as large as its image.
    const std::shared_ptr<UIImage>& image() const { return extras().image; }
    void setImage(const std::shared_ptr<UIImage>& image);
    /// Where the view's middle lies from the coordinate, and the callout's tip from the middle of the view's upper
    /// edge: points, right and down; default 0. One that is not finite counts as 0.
    CGPoint centerOffset() const { return extras().centerOffset; }
    void setCenterOffset(CGPoint offset);
    CGPoint calloutOffset() const { return extras().calloutOffset; }
    void setCalloutOffset(CGPoint offset);
    /// The view's extent around its coordinate, in points: the frame that it has when the coordinate is the origin.
    virtual CGRect extent() const;

    /// A view that is not enabled takes no touches and no focus. Default true.
    bool isEnabled() const { return _enabled; }
    void setEnabled(bool enabled);
    /// Set by the map.
    bool isSelected() const { return _selected; }
    /// Whether the view shows a callout while it is selected, given that its annotation has a title. Default false.
    bool canShowCallout() const { return _canShowCallout; }
    void setCanShowCallout(bool can);
    /// What the callout shows beside its text; null for none. Taps on a UIButton are reported by the map, which takes
    /// its tap handler.
    const std::shared_ptr<UIView>& leftCalloutAccessoryView() const { return extras().leftCalloutAccessoryView; }
    void setLeftCalloutAccessoryView(const std::shared_ptr<UIView>& view);
    const std::shared_ptr<UIView>& rightCalloutAccessoryView() const { return extras().rightCalloutAccessoryView; }
    void setRightCalloutAccessoryView(const std::shared_ptr<UIView>& view);

    /// Whether the user may move the annotation. Default false. Withdrawn in a drag, it cancels the drag.
    bool isDraggable() const { return _draggable; }
    void setDraggable(bool draggable);
    MKAnnotationViewDragState dragState() const { return _dragState; }
    /// Called by the map with every stage.
    virtual void setDragStateAnimated(MKAnnotationViewDragState state, bool animated);

    /// Where the view is in its map, in the map's points, on the copy of the world nearest to the middle; empty when
    /// the view is on no map.
    CGRect frame() const;

protected:
    /// What is drawn for the view at the cache's scale; null for nothing. It stays until the view's look or the cache's
    /// scale changes, or the view leaves its map.
    virtual const MKSprite* sprite(MKSpriteCache& cache);
    void willChangeLook();
    void didChangeLook();

private:
    friend class MKAnnotationContainerView;
    void didChangeCallout();
    void forgetSprite();
    void leaveMap();

    /// What most pins do without.
    struct Extras {
        std::shared_ptr<UIImage> image;
        CGPoint centerOffset, calloutOffset;
        std::shared_ptr<UIView> leftCalloutAccessoryView, rightCalloutAccessoryView;
        std::shared_ptr<const MKSprite> imageSprite; // for the map that shows the view
    };
    static const Extras noExtras;
    const Extras& extras() const { return _extras ? *_extras : noExtras; }
    Extras& changedExtras();

    std::shared_ptr<MKAnnotation> _annotation;
    NSString _reuseIdentifier;
    std::unique_ptr<Extras> _extras;
    MKAnnotationViewObserver* _observer = nullptr; // the map that shows the view

    bool _hasReuseIdentifier;
    bool _enabled = true;
    bool _selected = false;
    bool _canShowCallout = false;
    bool _draggable = false;
    MKAnnotationViewDragState _dragState = MKAnnotationViewDragStateNone;
};

} // namespace veyra
