#include "Platform/MapKit/ImageTiles/MKTileArchive.h"

#include "Tests/Platform/MapKit/ImageTiles/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veyra {

namespace {

class MKTileArchiveTest : public testing::Test {
protected:
    /// Runs statements on a new or existing file.
    std::string write(const std::string& name, const std::string& statements) {
        const std::string path = folder / name;
        sqlite3* database = nullptr;
        sqlite3_open(path.c_str(), &database);
        char* problem = nullptr;
        EXPECT_EQ(sqlite3_exec(database, statements.c_str(), nullptr, nullptr, &problem), SQLITE_OK) << problem;
        sqlite3_free(problem);
        sqlite3_close(database);
        return path;
    }

    static std::string problemOf(const std::string& path) {
        try {
            MKTileArchive(path).contents();
            return "";
        } catch (const MKTileArchiveError& error) {
            return error.what();
        }
    }

    /// While it lives, nothing can be written in the folder, not even by a test that runs as root.
    class ReadOnly {
    public:
        explicit ReadOnly(const std::string& folder) : _folder(folder) {
            chmod(_folder.c_str(), 0555);
            if (_user == 0) {
                EXPECT_EQ(seteuid(nobody), 0);
            }
        }
        ReadOnly(const ReadOnly&) = delete;
        ReadOnly& operator=(const ReadOnly&) = delete;
        ~ReadOnly() {
            EXPECT_EQ(seteuid(_user), 0);
            chmod(_folder.c_str(), 0755);
        }

    private:
        static constexpr uid_t nobody = 65534;
        const std::string _folder;
        const uid_t _user = geteuid();
    };

    static constexpr const char* tables =
        "CREATE TABLE metadata (name text, value text);"
        "CREATE TABLE tiles (zoom_level integer, tile_column integer, tile_row integer, tile_data blob);";
    TemporaryFolder folder;
};

} // namespace

TEST_F(MKTileArchiveTest, RowsAreCountedFromTheNorth) {
    MKTileArchive archive(write("a.mbtiles", std::string(tables) + "INSERT INTO tiles VALUES (1, 0, 0, 'south'),"
                                                                   "(1, 0, 1, 'north'), (3, 7, 7, 'corner')"));
    EXPECT_EQ(archive.read(1, 0, 0), "north");
    EXPECT_EQ(archive.read(1, 0, 1), "south");
    EXPECT_EQ(archive.read(3, 7, 0), "corner");
    EXPECT_EQ(archive.read(2, 0, 0), std::nullopt);
    EXPECT_EQ(archive.contents().minimumZoom, 1);
    EXPECT_EQ(archive.contents().maximumZoom, 3);
}

TEST_F(MKTileArchiveTest, TheAttributionIsTheTextOfAPieceOfAPage) {
    MKTileArchive archive(
        write("a.mbtiles", std::string(tables) +
                               "INSERT INTO tiles VALUES (0, 0, 0, 'x');"
                               "INSERT INTO metadata VALUES ('attribution', "
                               "'&copy; <a href=\"https://example.org/a?b\" target=x>Some &amp; others</a>')"));
    EXPECT_EQ(archive.contents().attribution.text, "© Some & others");
    EXPECT_EQ(archive.contents().attribution.url, "https://example.org/a?b");
}

TEST_F(MKTileArchiveTest, AnAttributionLeadsToWebAddressesOnly) {
    MKTileArchive archive(write("a.mbtiles", std::string(tables) + "INSERT INTO tiles VALUES (0, 0, 0, 'x');"
                                                                   "INSERT INTO metadata VALUES ('attribution', "
                                                                   "'<a href=\"javascript:alert(1)\">click</a>')"));
    EXPECT_EQ(archive.contents().attribution.text, "click");
    EXPECT_EQ(archive.contents().attribution.url, "");
}

TEST_F(MKTileArchiveTest, AFileOfJournalsIsReadInAReadOnlyFolder) {
    const std::string path = write("100% a?b#c.mbtiles", std::string("PRAGMA journal_mode = WAL;") + tables +
                                                             "INSERT INTO tiles VALUES (0, 0, 0, 'x')");
    const ReadOnly readOnly(folder.path());
    ASSERT_FALSE(std::ofstream(folder / "new").is_open());
    MKTileArchive archive(path);
    EXPECT_EQ(archive.read(0, 0, 0), "x");
}

TEST_F(MKTileArchiveTest, AJournalThatCannotBeReadIsSaid) {
    const std::string path = write("a.mbtiles", std::string("PRAGMA journal_mode = WAL;") + tables +
                                                    "INSERT INTO tiles VALUES (0, 0, 0, 'x')");
    std::ofstream(path + "-wal") << "what a program wrote last";
    const ReadOnly readOnly(folder.path());
    MKTileArchive archive(path);
    for (int round = 0; round < 2; ++round) {
        try {
            archive.contents();
            FAIL() << "it was read without its journal";
        } catch (const MKTileArchiveError& error) {
            EXPECT_EQ(error.what(), path + ": it has a journal, which cannot be read in a folder that is read-only");
        }
    }
}

TEST_F(MKTileArchiveTest, AFileThatIsNotThereIsNamed) {
    EXPECT_EQ(problemOf(folder / "none.mbtiles"), (folder / "none.mbtiles") + ": unable to open database file");
}

TEST_F(MKTileArchiveTest, AnEmptyFileAndOneOfOtherThingsAreRefused) {
    std::ofstream(folder / "empty.mbtiles");
    EXPECT_EQ(problemOf(folder / "empty.mbtiles"), (folder / "empty.mbtiles") + ": no such table: tiles");
    std::ofstream(folder / "text.mbtiles") << std::string(5000, 't');
    EXPECT_EQ(problemOf(folder / "text.mbtiles"), (folder / "text.mbtiles") + ": file is not a database");
    EXPECT_EQ(problemOf(write("other.mbtiles", "CREATE TABLE other (a)")),
              (folder / "other.mbtiles") + ": no such table: tiles");
}

TEST_F(MKTileArchiveTest, AnArchiveWithoutTilesOrWithVectorTilesIsRefused) {
    EXPECT_EQ(problemOf(write("none.mbtiles", tables)), (folder / "none.mbtiles") + ": it holds no tiles");
    EXPECT_EQ(problemOf(write("vector.mbtiles", std::string(tables) + "INSERT INTO tiles VALUES (0, 0, 0, 'x');"
                                                                      "INSERT INTO metadata VALUES ('format', 'pbf')")),
              (folder / "vector.mbtiles") + ": its tiles are vector data, not images");
}

TEST_F(MKTileArchiveTest, DamageInTheMiddleIsReportedAndNotFatal) {
    std::string statements = std::string(tables) + "CREATE INDEX i ON tiles (zoom_level, tile_column, tile_row);";
    for (int i = 0; i < 200; ++i) {
        statements += "INSERT INTO tiles VALUES (8, " + std::to_string(i) + ", 0, zeroblob(900));";
    }
    const std::string path = write("damaged.mbtiles", statements);
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(8192);
    file << std::string(40000, '\x5a');
    file.close();
    MKTileArchive archive(path);
    int problems = 0;
    for (int i = 0; i < 200; ++i) {
        try {
            archive.read(8, i, 255);
        } catch (const MKTileArchiveError&) {
            ++problems;
        }
    }
    EXPECT_GT(problems, 0);
}

TEST_F(MKTileArchiveTest, TablesMayBeViews) {
    MKTileArchive archive(write("a.mbtiles", "CREATE TABLE metadata (name text, value text);"
                                             "CREATE TABLE map (zoom_level, tile_column, tile_row, tile_id);"
                                             "CREATE TABLE images (tile_id, tile_data);"
                                             "INSERT INTO map VALUES (2, 1, 1, 'a'), (2, 2, 1, 'a');"
                                             "INSERT INTO images VALUES ('a', 'sea');"
                                             "CREATE VIEW tiles AS SELECT zoom_level, tile_column, tile_row, tile_data "
                                             "FROM map JOIN images ON images.tile_id = map.tile_id"));
    EXPECT_EQ(archive.read(2, 1, 2), "sea");
    EXPECT_EQ(archive.read(2, 2, 2), "sea");
    EXPECT_EQ(archive.contents().minimumZoom, 2);
}

TEST_F(MKTileArchiveTest, AViewWithoutEndIsGivenUp) {
    const std::string path = write(
        "a.mbtiles", "CREATE TABLE metadata (name text, value text);"
                     "CREATE VIEW tiles AS WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n) "
                     "SELECT 0 AS zoom_level, i AS tile_column, -i AS tile_row, 'x' AS tile_data FROM n WHERE i < 0");
    EXPECT_EQ(problemOf(path), path + ": it takes too long to find a tile; there may be no index");
}

TEST_F(MKTileArchiveTest, ValuesOfOtherTypesAreTakenAsBytes) {
    MKTileArchive archive(write("a.mbtiles", std::string(tables) + "INSERT INTO tiles VALUES (0, 0, 0, NULL),"
                                                                   "(1, 0, 0, 12.5), (1, 1, 0, ''),"
                                                                   "('two', 0, 0, 'x'), (2, 'x', NULL, 'x')"));
    EXPECT_EQ(archive.read(0, 0, 0), "");
    EXPECT_EQ(archive.read(1, 0, 1), "12.5");
    EXPECT_EQ(archive.read(1, 1, 1), "");
    EXPECT_EQ(archive.read(2, 0, 0), std::nullopt);
    EXPECT_EQ(archive.contents().minimumZoom, 0);
}

TEST_F(MKTileArchiveTest, AHugeValueTakesNoMemory) {
    const std::string path =
        write("a.mbtiles", "CREATE TABLE metadata (name text, value text);"
                           "CREATE VIEW tiles AS SELECT 0 AS zoom_level, 0 AS tile_column, 0 AS tile_row, "
                           "zeroblob(900000000) AS tile_data");
    try {
        MKTileArchive(path).read(0, 0, 0);
        FAIL();
    } catch (const MKTileArchiveError& error) {
        EXPECT_EQ(error.what(), path + ": string or blob too big");
    }
}

TEST_F(MKTileArchiveTest, ALongOrBrokenAttributionIsCutOffAndMended) {
    MKTileArchive archive(write("a.mbtiles", std::string(tables) +
                                                 "INSERT INTO tiles VALUES (0, 0, 0, 'x');"
                                                 "INSERT INTO metadata SELECT 'attribution', "
                                                 "CAST(x'ff' AS text) || replace(hex(zeroblob(2000000)), '0', '&')"));
    EXPECT_EQ(archive.contents().attribution.text, "\ufffd" + std::string(999, '&'));
}

TEST_F(MKTileArchiveTest, AnArchiveIsNeverWritten) {
    const std::string path = write("a.mbtiles", std::string(tables) + "INSERT INTO tiles VALUES (0, 0, 0, 'x')");
    const auto before = std::filesystem::last_write_time(path);
    MKTileArchive archive(path);
    EXPECT_EQ(archive.read(0, 0, 0), "x");
    EXPECT_EQ(std::filesystem::last_write_time(path), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

} // namespace veyra
