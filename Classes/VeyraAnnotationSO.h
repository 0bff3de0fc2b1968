// One annotation that a page asked for: a pin, or an image from an address. Scripts never see it; they name it by its
// identifier. Shared by the map, the registry and, while it waits for its image, the list of those that wait.
// Made on the script's thread or on the main queue, used on the main queue only.
#pragma once

#include "Platform/MapKit/MKAnnotation.h"
#include "Platform/UIKit/CGGeometry.h"

#include <algorithm>

namespace veyra {

class VeyraAnnotationSO final : public MKAnnotation {
public:
    VEYRA_CLASS()

    /// Reads the keys of a script object that has been checked, each once and in the order of the format. A value that
    /// has no conversion throws NSException. Web thread; reading runs arbitrary script.
    static std::shared_ptr<VeyraAnnotationSO> initWithWebScriptObject(NSObject& object);
    /// The pin of a long press: purple, draggable, shown at once.
    static std::shared_ptr<VeyraAnnotationSO>
    initDroppedPinAtCoordinateTitleIdentifier(CLLocationCoordinate2D coordinate, const id& title, const id& identifier);

    /// Degrees, in no particular range.
    CLLocationCoordinate2D coordinate() const override { return _coordinate; }
    void setCoordinate(CLLocationCoordinate2D coordinate) override { _coordinate = coordinate; }
    const id& identifier() const { return _identifier; }
    void setIdentifier(const id& identifier) { _identifier = identifier; }
    /// The callout's lines, as the page gave them: what is no string too. Without a title there is no callout.
    id title() const override { return _title; }
    void setTitle(const id& title) { _title = title; }
    id subtitle() const override { return extras().subtitle; }
    void setSubtitle(const id& subtitle);
    /// As the page gave it; nil for a pin.
    const id& imageURLString() const { return extras().imageURLString; }
    void setImageURLString(const id& string);
    /// Of an image from the coordinate, in points, right and down.
    CGPoint centerOffset() const { return extras().centerOffset; }
    void setCenterOffset(CGPoint offset);
    bool hasLeftCalloutButton() const { return _hasLeftCalloutButton; }
    void setHasLeftCalloutButton(bool has) { _hasLeftCalloutButton = has; }
    bool hasRightCalloutButton() const { return _hasRightCalloutButton; }
    void setHasRightCalloutButton(bool has) { _hasRightCalloutButton = has; }
    /// 0 red, 1 green, 2 purple; others up to 255 are kept, and are red.
    uint64_t pinColor() const { return _pinColor; }
    void setPinColor(uint64_t color) { _pinColor = static_cast<uint8_t>(std::min<uint64_t>(color, UINT8_MAX)); }
    /// Whether the pin falls onto the map.
    bool animatesDrop() const { return _animatesDrop; }
    void setAnimatesDrop(bool animates) { _animatesDrop = animates; }
    bool draggable() const { return _draggable; }
    void setDraggable(bool draggable) { _draggable = draggable; }

private:
    /// What most pins do without: there may be a million.
    struct Extras {
        id subtitle;
        id imageURLString;
        CGPoint centerOffset;
    };
    const Extras& extras() const;
    Extras& changedExtras();

    // First what fits into the space that the base's members leave.
    uint8_t _pinColor = 0;
    bool _hasLeftCalloutButton : 1 = false;
    bool _hasRightCalloutButton : 1 = false;
    bool _animatesDrop : 1 = false;
    bool _draggable : 1 = false;
    CLLocationCoordinate2D _coordinate{};
    id _identifier;
    id _title;
    std::unique_ptr<Extras> _extras;
};

} // namespace veyra
