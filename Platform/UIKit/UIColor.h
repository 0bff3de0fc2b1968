// A colour: red, green, blue and alpha. Components are kept as given, outside 0 to 1 too; drawing clamps them.
// Immutable; any thread.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

class UIColor final : public NSObject {
public:
    VEYRA_CLASS()
    UIColor(double red, double green, double blue, double alpha)
        : _red(red), _green(green), _blue(blue), _alpha(alpha) {}

    /// A grey: 0 black, 1 white.
    static std::shared_ptr<UIColor> colorWithWhiteAlpha(double white, double alpha);
    static std::shared_ptr<UIColor> initWithRedGreenBlueAlpha(double red, double green, double blue, double alpha);

    double red() const { return _red; }
    double green() const { return _green; }
    double blue() const { return _blue; }
    double alpha() const { return _alpha; }

    /// Colours are equal when their components are.
    bool isEqual(const NSObject& other) const override;
    size_t hash() const override;

private:
    const double _red, _green, _blue, _alpha;
};

} // namespace veyra
