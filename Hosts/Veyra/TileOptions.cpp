#include "Hosts/Veyra/TileOptions.h"

#include "Hosts/Common/TileSources.h"
#include "Platform/MapKit/ImageTiles/MKTileAddress.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace veyra {

namespace {

constexpr const char* group = "Tiles";

std::string absolutePath(const std::string& path) {
    return std::filesystem::absolute(path).lexically_normal().string();
}

} // namespace

TileOptions::TileOptions(CLI::App& app) {
    CLI::Option* sources = app.add_option("--sources", _file, "where maps get their tiles from, described in a file");
    sources->type_name("F.json")->group(group);
    CLI::Option* tiles =
        app.add_option("--tiles", _tiles, "tiles of the standard map: an address with {z}/{x}/{y}, or a file");
    tiles->type_name("URL|F.mbtiles")->excludes(sources)->group(group);
    CLI::Option* size = app.add_option("--tile-size", _tileSize, "pixels a side of such a tile (256)");
    size->type_name("N")->needs(tiles)->check(CLI::Range(64, 2048))->group(group);
    CLI::Option* attribution = app.add_option("--attribution", _attribution, "whose tiles they are, shown on the map");
    attribution->type_name("TEXT")->needs(tiles)->group(group);
}

std::string TileOptions::setting() const {
    if (_file.empty())
        return _tiles.empty() ? "" : settingOfTiles();
    const std::string file = absolutePath(_file);
    try {
        readTileSourcesSetting(file);
    } catch (const TileSourcesError& error) {
        throw CLI::ValidationError("--sources", error.what());
    }
    return file;
}

std::string TileOptions::settingOfTiles() const {
    nlohmann::json standard;
    if (_tiles.find("://") != std::string::npos) {
        try {
            standard["url"] = MKTileAddress(_tiles).pattern();
        } catch (const MKTileAddressError& error) {
            throw CLI::ValidationError("--tiles", error.what());
        }
    } else {
        const std::string file = absolutePath(_tiles);
        if (!std::filesystem::is_regular_file(file))
            throw CLI::ValidationError("--tiles", "there is no file " + file);
        standard["mbtiles"] = file;
    }
    if (_tileSize > 0)
        standard["tileSize"] = _tileSize;
    if (!_attribution.empty())
        standard["attribution"] = _attribution;
    return nlohmann::json{{"standard", standard}}.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace veyra
