// A node of the layer tree. Every view has one and is its delegate; the tree of layers follows the tree of views, and
// hosts may hang a view's layer under layers of their own. A layer owns its sublayers. Main queue only.
#pragma once

#include "Platform/Foundation/SelfSharingObject.h"

namespace veyra {

class CALayer : public SelfSharingObject {
public:
    VEYRA_CLASS()

    /// The layer above, or null.
    std::shared_ptr<CALayer> superlayer() const { return _superlayer.lock(); }
    const std::vector<std::shared_ptr<CALayer>>& sublayers() const { return _sublayers; }
    /// Appends the layer; it leaves its former superlayer first. Adding a layer under itself is ignored.
    void addSublayer(const std::shared_ptr<CALayer>& layer);
    /// The same, at `index` among the sublayers (counted without the layer itself); beyond the end appends.
    void insertSublayerAtIndex(const std::shared_ptr<CALayer>& layer, size_t index);
    void removeFromSuperlayer();

    /// Not owned; for a view's layer the view.
    std::shared_ptr<NSObject> delegate() const { return _delegate.lock(); }
    void setDelegate(const std::shared_ptr<NSObject>& delegate) { _delegate = delegate; }

private:
    std::weak_ptr<CALayer> _superlayer;
    std::vector<std::shared_ptr<CALayer>> _sublayers;
    std::weak_ptr<NSObject> _delegate;
};

} // namespace veyra
