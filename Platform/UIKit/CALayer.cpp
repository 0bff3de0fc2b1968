#include "Platform/UIKit/CALayer.h"

#include <algorithm>

namespace veyra {

Class CALayer::classObject() {
    static ClassObject* const cls = new ClassObject("CALayer", NSObject::classObject(), {});
    return cls;
}

void CALayer::addSublayer(const std::shared_ptr<CALayer>& layer) {
    insertSublayerAtIndex(layer, SIZE_MAX);
}

void CALayer::insertSublayerAtIndex(const std::shared_ptr<CALayer>& layer, size_t index) {
    const auto added = layer; // `layer` may be an element of a list that changes here
    if (!added)
        return;
    const auto self = std::static_pointer_cast<CALayer>(shared_from_this());
    for (auto above = self; above; above = above->superlayer())
        if (above == added)
            return;
    added->removeFromSuperlayer();
    added->_superlayer = self;
    _sublayers.insert(_sublayers.begin() + static_cast<ptrdiff_t>(std::min(index, _sublayers.size())), added);
}

void CALayer::removeFromSuperlayer() {
    const auto self = weak_from_this().lock(); // the list may hold the last reference
    const auto above = superlayer();
    _superlayer.reset();
    if (above)
        std::erase_if(above->_sublayers, [this](const auto& sublayer) { return sublayer.get() == this; });
}

} // namespace veyra
