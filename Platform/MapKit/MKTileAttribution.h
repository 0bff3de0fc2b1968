// Whose data a map shows. A plain value; any thread.
#pragma once

#include <string>

namespace veyra {

struct MKTileAttribution {
    std::string text; ///< "" for none
    std::string url;  ///< where it leads, http or https, or ""
    friend bool operator==(const MKTileAttribution&, const MKTileAttribution&) = default;
};

} // namespace veyra
