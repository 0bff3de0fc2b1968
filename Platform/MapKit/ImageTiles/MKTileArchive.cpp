#include "Platform/MapKit/ImageTiles/MKTileArchive.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <sqlite3.h>

namespace veyra {

namespace {

struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

// What an archive may ask of the machine, whatever its tables, which may be views, are made of: bytes of one value, and
// steps of SQLite's machine for one question. A look into a table of a billion tiles takes some hundred steps.
constexpr int longestValue = 16 << 20;
constexpr int stepsBetweenLooks = 100000;
constexpr int mostLooks = 300;

// Bytes of an attribution that are shown at most.
constexpr size_t longestAttribution = 1000;

/// Attributions in archives are often pieces of a page: the text of it, and where its first link leads.
MKTileAttribution attributionIn(std::string text) {
    text.resize(std::min(text.size(), longestAttribution));
    gchar* const valid = g_utf8_make_valid(text.c_str(), -1);
    text = valid;
    g_free(valid);
    MKTileAttribution attribution;
    bool isMarkup = false;
    for (const char c : text) {
        isMarkup |= c == '<';
        if (!isMarkup) {
            attribution.text += c;
        }
        isMarkup &= c != '>';
    }
    for (const auto& [name, character] :
         {std::pair{"&copy;", "\u00a9"}, {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}}) {
        for (size_t at = attribution.text.find(name); at != std::string::npos;
             at = attribution.text.find(name, at + 1)) {
            attribution.text.replace(at, std::string(name).size(), character);
        }
    }
    if (const size_t link = text.find("href="); link != std::string::npos && link + 6 < text.size()) {
        const size_t start = link + 6;
        const std::string url = text.substr(start, text.find(text[link + 5], start) - start);
        if (url.starts_with("http://") || url.starts_with("https://")) {
            attribution.url = url;
        }
    }
    return attribution;
}

} // namespace

MKTileArchive::~MKTileArchive() {
    sqlite3_finalize(_select);
    sqlite3_close(_database);
}

void MKTileArchive::fail(const std::string& problem) const {
    throw MKTileArchiveError(_path + ": " + problem);
}

void MKTileArchive::failWithError() {
    fail(sqlite3_errcode(_database) == SQLITE_INTERRUPT ? "it takes too long to find a tile; there may be no index"
                                                        : sqlite3_errmsg(_database));
}

sqlite3_stmt* MKTileArchive::prepare(const char* text) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(_database, text, -1, &statement, nullptr) != SQLITE_OK) {
        failWithError();
    }
    return statement;
}

std::string MKTileArchive::metadata(const char* name) {
    const Statement statement(prepare("SELECT value FROM metadata WHERE name = ?"));
    sqlite3_bind_text(statement.get(), 1, name, -1, SQLITE_STATIC);
    const int status = sqlite3_step(statement.get());
    if (status != SQLITE_ROW && status != SQLITE_DONE) {
        failWithError();
    }
    if (status == SQLITE_DONE) {
        return "";
    }
    const auto* const value = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
    return value ? value : "";
}

void MKTileArchive::open() {
    _looks = 0;
    if (_contents) {
        return;
    }
    if (!_database) {
        openDatabase(_path, 0);
        openWithoutJournalIfNeeded();
    }
    readContents();
}

void MKTileArchive::openDatabase(const std::string& name, int flags) {
    const int status =
        sqlite3_open_v2(name.c_str(), &_database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | flags, nullptr);
    if (status != SQLITE_OK) {
        const std::string problem = _database ? sqlite3_errmsg(_database) : sqlite3_errstr(status);
        closeDatabase();
        fail(problem);
    }
    sqlite3_busy_timeout(_database, 1000); // milliseconds; another program may write
    sqlite3_limit(_database, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_db_config(_database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_progress_handler(
        _database, stepsBetweenLooks,
        [](void* looks) { return static_cast<int>(++*static_cast<int*>(looks) > mostLooks); }, &_looks);
}

// A file that was written with a journal beside it (WAL) is read with one too, which cannot be made in a folder that
// is read-only. When there is none to read, the file is all there is.
void MKTileArchive::openWithoutJournalIfNeeded() {
    const int status = sqlite3_exec(_database, "SELECT 1 FROM sqlite_master LIMIT 1", nullptr, nullptr, nullptr);
    if (status != SQLITE_CANTOPEN && status != SQLITE_READONLY) {
        return;
    }
    closeDatabase();
    std::error_code noSuchFile;
    if (const auto size = std::filesystem::file_size(_path + "-wal", noSuchFile); !noSuchFile && size > 0) {
        fail("it has a journal, which cannot be read in a folder that is read-only");
    }
    gchar* const escaped = g_uri_escape_string(_path.c_str(), "/", FALSE);
    const std::string address = std::string("file:") + escaped + "?immutable=1";
    g_free(escaped);
    openDatabase(address, SQLITE_OPEN_URI);
}

void MKTileArchive::closeDatabase() {
    sqlite3_close(_database);
    _database = nullptr;
}

void MKTileArchive::readContents() {
    Contents contents;
    // Each by itself is found at an end of the index; both at once would be looked for among all tiles.
    const Statement zooms(prepare("SELECT (SELECT min(zoom_level) FROM tiles), (SELECT max(zoom_level) FROM tiles)"));
    if (sqlite3_step(zooms.get()) != SQLITE_ROW) {
        failWithError();
    }
    if (sqlite3_column_type(zooms.get(), 0) == SQLITE_NULL) {
        fail("it holds no tiles");
    }
    if (const std::string format = metadata("format"); format == "pbf" || format == "mvt") {
        fail("its tiles are vector data, not images");
    }
    // What the file's metadata say is wrong where tiles were added later.
    contents.minimumZoom = std::clamp(sqlite3_column_int(zooms.get(), 0), 0, MKTileArchive::largestZoom);
    contents.maximumZoom = std::clamp(sqlite3_column_int(zooms.get(), 1), 0, MKTileArchive::largestZoom);
    contents.attribution = attributionIn(metadata("attribution"));
    if (!_select) {
        _select = prepare("SELECT tile_data FROM tiles WHERE zoom_level = ? AND tile_column = ? AND tile_row = ?");
    }
    _contents = contents;
}

MKTileArchive::Contents MKTileArchive::contents() {
    const NSLockGuard guard(_lock);
    open();
    return *_contents;
}

std::optional<std::string> MKTileArchive::read(int zoom, int column, int row) {
    const NSLockGuard guard(_lock);
    open();
    sqlite3_reset(_select);
    sqlite3_bind_int(_select, 1, zoom);
    sqlite3_bind_int(_select, 2, column);
    sqlite3_bind_int64(_select, 3, (int64_t{1} << zoom) - 1 - row);
    const int status = sqlite3_step(_select);
    if (status == SQLITE_DONE) {
        return std::nullopt;
    }
    if (status != SQLITE_ROW) {
        failWithError(); // the next question resets this one
    }
    const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(_select, 0));
    std::string image(bytes ? bytes : "", static_cast<size_t>(sqlite3_column_bytes(_select, 0)));
    sqlite3_reset(_select);
    return image;
}

} // namespace veyra
