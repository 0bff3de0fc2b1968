// The options that say where maps get their tiles from: --sources, or --tiles with what belongs to it.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace veyra {

class TileOptions {
public:
    /// Adds the options; the application's options end before this object.
    explicit TileOptions(CLI::App& app);
    TileOptions(const TileOptions&) = delete;
    TileOptions& operator=(const TileOptions&) = delete;

    /// After parsing: a setting of VEYRA_SOURCES, in which paths are absolute, or "" when nothing was asked for. Throws
    /// CLI::ValidationError when it makes no sense.
    std::string setting() const;

private:
    std::string settingOfTiles() const;

    std::string _file, _tiles, _attribution;
    int _tileSize = 0; // 0: the usual one
};

} // namespace veyra
