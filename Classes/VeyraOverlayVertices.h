// The vertices of polylines and polygons from a script's flat list of latitudes and longitudes.
#pragma once

#include "Platform/Foundation/id.h"
#include "Platform/MapKit/MKVertexList.h"

#include <optional>

namespace veyra {

/// Reads the "coordinates" of an overlay's script object: latitude, longitude, latitude and so on, in degrees. A
/// "length" that is no number gives no vertices. Nothing when the object is refused, which has been reported as a
/// script exception beginning with `caller`. Throws NSException for an element that is no number and does not convert
/// to one, std::bad_alloc when there are more vertices than there is memory for; memory is taken as they come, whatever
/// "length" says. Web thread; **reading the keys can run arbitrary script**.
std::optional<MKVertexList> VerticesFromWebScriptObject(const id& object, const char* caller);

} // namespace veyra
