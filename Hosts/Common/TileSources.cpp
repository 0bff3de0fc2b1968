#include "Hosts/Common/TileSources.h"

#include "Platform/Foundation/NSLog.h"
#include "Platform/MapKit/ImageTiles/MKArchiveImageSet.h"
#include "Platform/MapKit/ImageTiles/MKImageTileSource.h"
#include "Platform/MapKit/ImageTiles/MKWebImageSet.h"
#include "Platform/MapKit/MKBasemapSource.h"

#include <glib.h>
#include <glib/gstdio.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace veyra {

namespace {

using nlohmann::json;

constexpr int smallestTile = 64, largestTile = 2048; // pixels
constexpr int longestDescription = 1 << 20;          // bytes
constexpr const char* settings[] = {"url",         "mbtiles",     "subdomains",  "tileSize",
                                    "minimumZoom", "maximumZoom", "attribution", "attributionURL"};

bool isWebAddress(const std::string& text) {
    return text.starts_with("http://") || text.starts_with("https://");
}

/// Reads what is said of one map type. Messages begin with the place.
class SetReader {
public:
    SetReader(const json& object, std::string place, const std::string& folder)
        : _object(object), _place(std::move(place)), _folder(folder) {}

    std::shared_ptr<const MKImageSet> read() const {
        if (!_object.is_object()) {
            fail("", "is no object");
        }
        for (const auto& [key, value] : _object.items()) {
            if (std::find(std::begin(settings), std::end(settings), key) == std::end(settings)) {
                fail(key, "is no setting");
            }
        }
        if (_object.contains("url") == _object.contains("mbtiles")) {
            fail("", "needs either \"url\" or \"mbtiles\"");
        }
        return _object.contains("url") ? readWebSet() : readArchive();
    }

private:
    [[noreturn]] void fail(const std::string& key, const std::string& problem) const {
        throw TileSourcesError(_place + (key.empty() ? "" : "." + key) + ": " + problem);
    }

    std::optional<std::string> text(const char* key) const {
        const auto found = _object.find(key);
        if (found == _object.end()) {
            return std::nullopt;
        }
        if (!found->is_string()) {
            fail(key, "is no string");
        }
        return found->get<std::string>();
    }

    std::optional<int> number(const char* key, int least, int most) const {
        const auto found = _object.find(key);
        if (found == _object.end()) {
            return std::nullopt;
        }
        const bool isWhole = found->is_number_integer();
        if (!isWhole || found->get<int64_t>() < least || found->get<int64_t>() > most) {
            fail(key, "is no whole number from " + std::to_string(least) + " to " + std::to_string(most));
        }
        return found->get<int>();
    }

    MKImageSetProperties properties(int defaultMaximumZoom) const {
        MKImageSetProperties properties;
        properties.tileSize = number("tileSize", smallestTile, largestTile).value_or(properties.tileSize);
        properties.minimumZoom = number("minimumZoom", 0, MKImageSet::largestZoom).value_or(0);
        properties.maximumZoom = number("maximumZoom", properties.minimumZoom, MKImageSet::largestZoom)
                                     .value_or(std::max(defaultMaximumZoom, properties.minimumZoom));
        properties.attribution.text = text("attribution").value_or("");
        properties.attribution.url = text("attributionURL").value_or("");
        if (!properties.attribution.url.empty() && !isWebAddress(properties.attribution.url)) {
            fail("attributionURL", "is no http or https address");
        }
        return properties;
    }

    std::shared_ptr<const MKImageSet> readWebSet() const {
        const std::string subdomains = text("subdomains").value_or("abc");
        std::vector<std::string> names;
        for (const char name : subdomains) {
            names.emplace_back(1, name);
        }
        try {
            return std::make_shared<MKWebImageSet>(MKTileAddress(*text("url"), std::move(names)),
                                                   properties(MKImageSetProperties().maximumZoom));
        } catch (const MKTileAddressError& error) {
            fail("url", error.what());
        }
    }

    std::shared_ptr<const MKImageSet> readArchive() const {
        gchar* const resolved = g_canonicalize_filename(text("mbtiles")->c_str(), _folder.c_str());
        const std::string path = resolved;
        g_free(resolved);
        if (!g_file_test(path.c_str(), G_FILE_TEST_IS_REGULAR)) {
            fail("mbtiles", "there is no file " + path);
        }
        return std::make_shared<MKArchiveImageSet>(path, properties(MKImageSet::largestZoom));
    }

    const json& _object;
    const std::string _place;
    const std::string& _folder;
};

json parse(const std::string& text, const std::string& name) {
    try {
        return json::parse(text);
    } catch (const json::parse_error& error) {
        const auto end =
            text.begin() + static_cast<ptrdiff_t>(std::min(error.byte > 0 ? error.byte - 1 : 0, text.size()));
        const auto line = 1 + std::count(text.begin(), end, '\n');
        const auto lineStart = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
        throw TileSourcesError(name + ":" + std::to_string(line) + ":" + std::to_string(end - lineStart + 1) +
                               ": this is no JSON");
    } catch (const json::out_of_range& error) {
        // The library says which number, between quotes, but not where.
        const std::string problem = error.what();
        const size_t start = std::min(problem.find('\''), problem.size());
        throw TileSourcesError(name + ": the number " + problem.substr(start) + " is too large");
    }
}

MKMapType mapTypeNamed(const std::string& key, const std::string& name) {
    if (key == "standard") {
        return MKMapTypeStandard;
    }
    if (key == "satellite") {
        return MKMapTypeSatellite;
    }
    if (key == "hybrid") {
        return MKMapTypeHybrid;
    }
    throw TileSourcesError(name + ": " + key + ": is no map type; there are standard, satellite and hybrid");
}

} // namespace

std::shared_ptr<const MKTileSource> readTileSources(const std::string& text, const std::string& name,
                                                    const std::string& folder) {
    const json sources = parse(text, name);
    if (!sources.is_object() || sources.empty()) {
        throw TileSourcesError(name + ": there is no object with a map type in it");
    }
    MKImageTileSource::Sets sets;
    for (const auto& [key, value] : sources.items()) {
        const MKMapType mapType = mapTypeNamed(key, name);
        sets[mapType] = SetReader(value, name + ": " + key, folder).read();
    }
    return std::make_shared<MKImageTileSource>(std::move(sets), MKBasemapSource::shared());
}

std::shared_ptr<const MKTileSource> readTileSourcesSetting(const std::string& setting) {
    gchar* const current = g_get_current_dir();
    const std::string folder = current;
    g_free(current);
    if (setting.starts_with("{")) {
        return readTileSources(setting, TileSourcesVariable, folder);
    }
    GStatBuf status;
    if (g_stat(setting.c_str(), &status) == 0 && (!S_ISREG(status.st_mode) || status.st_size > longestDescription)) {
        throw TileSourcesError(setting + ": this is no file of at most " + std::to_string(longestDescription) +
                               " bytes");
    }
    gchar* bytes = nullptr;
    gsize length = 0;
    GError* error = nullptr;
    if (!g_file_get_contents(setting.c_str(), &bytes, &length, &error)) {
        const std::string problem = error->message;
        g_error_free(error);
        throw TileSourcesError(problem);
    }
    const std::string text(bytes, length);
    g_free(bytes);
    gchar* const fileFolder = g_path_get_dirname(setting.c_str());
    gchar* const absolute = g_canonicalize_filename(fileFolder, folder.c_str());
    const std::string start = absolute;
    g_free(absolute);
    g_free(fileFolder);
    return readTileSources(text, setting, start);
}

std::shared_ptr<const MKTileSource> tileSourceOfEnvironment() {
    const char* const setting = g_getenv(TileSourcesVariable);
    if (!setting || !*setting) {
        return nullptr;
    }
    try {
        return readTileSourcesSetting(setting);
    } catch (const TileSourcesError& error) {
        NSLog("The built-in world is shown instead of other tiles: %s", {error.what()});
        return nullptr;
    }
}

} // namespace veyra
