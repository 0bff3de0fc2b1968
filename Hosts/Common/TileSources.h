// Where a host's maps get their tiles from, as a user says it: a small JSON text. Any thread.
//
//     {"standard": {"url": "https://tiles.example.org/{z}/{x}/{y}.png", "maximumZoom": 19,
//                   "attribution": "© Example", "attributionURL": "https://example.org/about"},
//      "satellite": {"mbtiles": "images.mbtiles"}}
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

namespace veyra {

class MKTileSource;

/// A text that describes no sources. The message names the text and the place in it.
class TileSourcesError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The environment variable with the name of a file, or with the text itself, which begins with a brace.
inline constexpr const char* TileSourcesVariable = "VEYRA_SOURCES";

/// The source that the text describes; map types that do not occur in it are those of the built-in world. `name` is
/// that of the text in messages; relative paths start from `folder`. Throws TileSourcesError.
std::shared_ptr<const MKTileSource> readTileSources(const std::string& text, const std::string& name,
                                                    const std::string& folder);
/// The same for the value of the environment variable. Throws TileSourcesError.
std::shared_ptr<const MKTileSource> readTileSourcesSetting(const std::string& setting);

/// What the environment says; null, for the built-in world, when it says nothing, or makes no sense, which is logged.
std::shared_ptr<const MKTileSource> tileSourceOfEnvironment();

} // namespace veyra
