// A point of the map on the screen.
// A plain value that scripts see with all its fields; not shared between threads while it is written.
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/UIKit/CGGeometry.h"

namespace veyra {

class VeyraPointSO final : public NSObject {
public:
    VEYRA_CLASS()

    /// Scripts see every key under its own name.
    static bool isKeyExcludedFromWebScript(const char*) { return false; }
    std::vector<NSString> attributeKeys() const override;

    double x() const { return _x; } ///< points from the map's left edge
    void setX(double x) { _x = x; }
    double y() const { return _y; } ///< points from its top edge
    void setY(double y) { _y = y; }

    static std::shared_ptr<VeyraPointSO> withPoint(CGPoint point);

private:
    double _x = 0;
    double _y = 0;
};

} // namespace veyra
