// A file of tile images in the MBTiles format, opened for reading only. Any thread: one read at a time, the others
// wait; never to be used on the main queue.
#pragma once

#include "Platform/Foundation/NSLock.h"
#include "Platform/MapKit/MKTileAttribution.h"

#include <optional>
#include <stdexcept>
#include <string>

typedef struct sqlite3 sqlite3;
typedef struct sqlite3_stmt sqlite3_stmt;

namespace veyra {

/// A file that is no archive of images, or a damaged one. The message names the file.
class MKTileArchiveError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class MKTileArchive {
public:
    static constexpr int largestZoom = 30;

    /// Opens nothing yet.
    explicit MKTileArchive(std::string path) : _path(std::move(path)) {}
    ~MKTileArchive();
    MKTileArchive(const MKTileArchive&) = delete;
    MKTileArchive& operator=(const MKTileArchive&) = delete;

    struct Contents {
        int minimumZoom = 0, maximumZoom = 0;
        MKTileAttribution attribution;
    };
    /// What is in it. Throws MKTileArchiveError, each time, when it cannot be opened, has no tiles or has tiles that
    /// are no images.
    Contents contents() VEYRA_EXCLUDES(_lock);
    /// The bytes of an image, rows counted from the north, or nothing when there is none. Throws likewise.
    std::optional<std::string> read(int zoom, int column, int row) VEYRA_EXCLUDES(_lock);
    const std::string& path() const { return _path; }

private:
    void open() VEYRA_REQUIRES(_lock);
    void openDatabase(const std::string& name, int flags) VEYRA_REQUIRES(_lock);
    void openWithoutJournalIfNeeded() VEYRA_REQUIRES(_lock);
    void closeDatabase() VEYRA_REQUIRES(_lock);
    void readContents() VEYRA_REQUIRES(_lock);
    std::string metadata(const char* name) VEYRA_REQUIRES(_lock);
    sqlite3_stmt* prepare(const char* text) VEYRA_REQUIRES(_lock);
    [[noreturn]] void fail(const std::string& problem) const;
    [[noreturn]] void failWithError() VEYRA_REQUIRES(_lock);

    const std::string _path;
    NSLock _lock;
    sqlite3* _database VEYRA_GUARDED_BY(_lock) = nullptr;
    sqlite3_stmt* _select VEYRA_GUARDED_BY(_lock) = nullptr;
    std::optional<Contents> _contents VEYRA_GUARDED_BY(_lock);
    int _looks = 0; // at how long the question has taken; by SQLite, under the lock
};

} // namespace veyra
