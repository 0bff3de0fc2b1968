// Whether what surrounds a view is light or dark, so that the view can suit it.
#pragma once

namespace veyra {

enum UIUserInterfaceStyle : unsigned {
    UIUserInterfaceStyleUnspecified = 0, ///< as light
    UIUserInterfaceStyleLight = 1,
    UIUserInterfaceStyleDark = 2,
};

} // namespace veyra
