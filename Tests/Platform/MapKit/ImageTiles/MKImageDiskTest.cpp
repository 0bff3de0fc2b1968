#include "Platform/MapKit/ImageTiles/MKImageDisk.h"

#include "Tests/Platform/MapKit/ImageTiles/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <unistd.h>
#include <vector>

namespace veyra {

namespace {

namespace fs = std::filesystem;

MKStoredImage imageOfSize(size_t size) {
    MKStoredImage image;
    image.entityTag = "\"tag\"";
    image.lastModified = "Tue, 14 Nov 2023 22:13:20 GMT";
    image.freshUntil = 1700000000;
    image.mayUseStale = false;
    image.bytes.assign(size, '\n');
    return image;
}

int64_t bytesIn(const std::string& folder) {
    int64_t bytes = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        bytes += static_cast<int64_t>(entry.file_size());
    }
    return bytes;
}

class MKImageDiskTest : public testing::Test {
protected:
    const TemporaryFolder temporary;
    const std::string folder = temporary / "made/on/demand";
};

} // namespace

TEST_F(MKImageDiskTest, GivesBackWhatWasStored) {
    MKImageDisk disk(folder);
    MKStoredImage image = imageOfSize(0);
    image.bytes = std::string("\0any\nbytes\xff", 11);
    disk.insert("http://a/1", image);
    const auto found = MKImageDisk(folder).find("http://a/1");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->bytes, image.bytes);
    EXPECT_EQ(found->entityTag, image.entityTag);
    EXPECT_EQ(found->lastModified, image.lastModified);
    EXPECT_EQ(found->freshUntil, image.freshUntil);
    EXPECT_FALSE(found->mayUseStale);
    EXPECT_FALSE(disk.find("http://a/2"));
    disk.remove("http://a/1");
    EXPECT_FALSE(disk.find("http://a/1"));
}

TEST_F(MKImageDiskTest, StaysWithinItsBytesHoweverMuchIsStored) {
    MKImageDisk disk(folder, 100000);
    for (int i = 0; i < 60; ++i) {
        disk.insert("http://a/" + std::to_string(i), imageOfSize(5000));
        EXPECT_LE(bytesIn(folder), 100000);
    }
    EXPECT_GT(bytesIn(folder), 50000);
    EXPECT_TRUE(disk.find("http://a/59"));
    EXPECT_FALSE(disk.find("http://a/0"));
}

TEST_F(MKImageDiskTest, WhatWasUsedLastStays) {
    MKImageDisk disk(folder, 30000);
    disk.insert("http://a/used", imageOfSize(5000));
    for (int i = 0; i < 20; ++i) {
        disk.insert("http://a/" + std::to_string(i), imageOfSize(5000));
        g_usleep(15000); // the clock of files is coarse
        ASSERT_TRUE(disk.find("http://a/used")) << i;
    }
}

TEST_F(MKImageDiskTest, WhatAnotherProcessStoredCountsToo) {
    MKImageDisk disk(folder, 40000);
    for (int i = 0; i < 7; ++i) {
        MKImageDisk(folder, 1 << 20).insert("http://other/" + std::to_string(i), imageOfSize(5000));
    }
    for (int i = 0; i < 3; ++i) {
        disk.insert("http://a/" + std::to_string(i), imageOfSize(5000));
    }
    EXPECT_LE(bytesIn(folder), 40000);
}

TEST_F(MKImageDiskTest, ProcessesThatStoreTogetherStayNearTheLimit) {
    constexpr int64_t limit = 200000;
    std::vector<std::unique_ptr<MKImageDisk>> disks;
    for (int i = 0; i < 4; ++i) {
        disks.push_back(std::make_unique<MKImageDisk>(folder, limit));
    }
    for (int i = 0; i < 300; ++i) {
        disks[static_cast<size_t>(i % 4)]->insert("http://a/" + std::to_string(i), imageOfSize(2000));
        EXPECT_LE(bytesIn(folder), limit + 3 * limit / 8) << i;
    }
}

TEST_F(MKImageDiskTest, WhatAProcessThatDiedHasBegunIsRemovedLater) {
    MKImageDisk(folder).insert("http://a/1", imageOfSize(500));
    const fs::path stored = fs::directory_iterator(folder)->path();
    const fs::path old = stored.string() + ".ABCDEF", young = stored.string() + ".GHIJKL", other = folder + "/other";
    for (const fs::path& path : {old, young, other}) {
        std::ofstream(path) << "part";
    }
    fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(2));
    fs::last_write_time(other, fs::file_time_type::clock::now() - std::chrono::hours(2));
    MKImageDisk(folder).insert("http://a/2", imageOfSize(500));
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(young)) << "another process may be writing it";
    EXPECT_TRUE(fs::exists(other)) << "it is none of ours";
}

TEST_F(MKImageDiskTest, AFolderThatGoesAwayIsMadeAgain) {
    MKImageDisk disk(folder);
    disk.insert("http://a/1", imageOfSize(500));
    fs::remove_all(temporary / "made");
    EXPECT_FALSE(disk.find("http://a/1"));
    disk.insert("http://a/1", imageOfSize(500));
    EXPECT_TRUE(disk.find("http://a/1"));
}

TEST_F(MKImageDiskTest, AFolderThatCannotBeWrittenGivesWhatIsInIt) {
    MKImageDisk disk(folder);
    disk.insert("http://a/1", imageOfSize(500));
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    disk.insert("http://a/2", imageOfSize(500));
    EXPECT_TRUE(disk.find("http://a/1"));
    EXPECT_EQ(disk.find("http://a/2").has_value(), geteuid() == 0) << "nothing stops the administrator";
    fs::permissions(folder, fs::perms::owner_all);
}

TEST_F(MKImageDiskTest, WhatIsLargerThanAllOfItIsNotStored) {
    MKImageDisk disk(folder, 10000);
    disk.insert("http://a/1", imageOfSize(10000));
    EXPECT_FALSE(disk.find("http://a/1"));
}

TEST_F(MKImageDiskTest, DamagedFilesAreAsIfTheyWereNotThere) {
    MKImageDisk disk(folder);
    disk.insert("http://a/1", imageOfSize(500));
    const fs::path file = fs::directory_iterator(folder)->path();
    std::string content;
    {
        std::ifstream in(file, std::ios::binary);
        content.assign(std::istreambuf_iterator<char>(in), {});
    }
    for (size_t length = 0; length < content.size(); length += 7) {
        std::ofstream(file, std::ios::binary) << content.substr(0, length);
        ASSERT_FALSE(disk.find("http://a/1")) << length;
    }
    content.back() = 'x';
    std::ofstream(file, std::ios::binary) << content;
    EXPECT_FALSE(disk.find("http://a/1"));
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(MKImageDiskTest, AFolderThatCannotBeMadeStoresNothing) {
    std::ofstream(temporary / "file") << "in the way";
    MKImageDisk disk(temporary / "file/folder");
    disk.insert("http://a/1", imageOfSize(10));
    EXPECT_FALSE(disk.find("http://a/1"));
}

} // namespace veyra
