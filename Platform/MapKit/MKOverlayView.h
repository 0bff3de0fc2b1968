// The look of an overlay on a map, made by the map's delegate when the overlay comes into sight. The map does not put
// it among its subviews: it takes the view's figure when the delegate hands the view over, and draws that. Main queue
// only; owned by the map while its overlay is on it.
#pragma once

#include "Platform/MapKit/MKOverlay.h"
#include "Platform/UIKit/UIView.h"

namespace veyra {

class MKOverlayFigure;

class MKOverlayView : public UIView {
public:
    VEYRA_CLASS()
    /// A view that draws nothing, for an overlay (not null).
    static std::shared_ptr<MKOverlayView> initWithOverlay(const std::shared_ptr<MKOverlay>& overlay);

    const std::shared_ptr<MKOverlay>& overlay() const { return _overlay; }
    /// What is drawn for the view as it is now; null for nothing.
    virtual std::shared_ptr<const MKOverlayFigure> figure() const { return nullptr; }

protected:
    friend class UIView;
    MKOverlayView() = default;

    /// Makes a view of class T for the overlay.
    template <class T, class Overlay>
    static std::shared_ptr<T> makeFor(const std::shared_ptr<Overlay>& overlay) {
        auto view = UIView::make<T>({});
        view->_overlay = overlay;
        return view;
    }

private:
    std::shared_ptr<MKOverlay> _overlay;
};

} // namespace veyra
