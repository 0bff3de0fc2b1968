#include "Platform/MapKit/ImageTiles/MKImageDisk.h"

#include <glib.h>
#include <glib/gstdio.h>
#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <vector>

namespace veyra {

namespace {

namespace fs = std::filesystem;

// A file begins with these lines: the first one here, the address, the entity tag, the last change, the time until
// which it is fresh, whether it may be used stale, the length and the check sum of the bytes, which follow.
constexpr const char* firstLine = "veyra image 1";
constexpr const char* suffix = ".image";

// Other processes store images too: what has been counted is counted anew after this part of the limit.
constexpr int64_t partsOfLimit = 8;
// A file that a process which died has begun is so old at least.
constexpr auto oldestUnfinished = std::chrono::hours(1);

uint32_t checkSumOf(const std::string& bytes) {
    return static_cast<uint32_t>(
        crc32(crc32(0, nullptr, 0), reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

std::string contentOf(const std::string& url, const MKStoredImage& image) {
    std::ostringstream content;
    content.imbue(std::locale::classic());
    content << firstLine << '\n'
            << url << '\n'
            << image.entityTag << '\n'
            << image.lastModified << '\n'
            << static_cast<int64_t>(image.freshUntil) << '\n'
            << image.mayUseStale << '\n'
            << image.bytes.size() << '\n'
            << checkSumOf(image.bytes) << '\n'
            << image.bytes;
    return content.str();
}

template <class Number>
bool readNumber(const std::string& line, Number& number) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    return error == std::errc() && end == line.data() + line.size();
}

std::optional<MKStoredImage> imageIn(const std::string& content, const std::string& url) {
    size_t at = 0;
    const auto nextLine = [&] {
        const size_t end = std::min(content.find('\n', at), content.size());
        std::string line = content.substr(at, end - at);
        at = std::min(end + 1, content.size());
        return line;
    };
    if (nextLine() != firstLine || nextLine() != url) {
        return std::nullopt;
    }
    MKStoredImage image;
    image.entityTag = nextLine();
    image.lastModified = nextLine();
    int64_t freshUntil = 0;
    int mayUseStale = 0;
    size_t length = 0;
    uint32_t checkSum = 0;
    if (!readNumber(nextLine(), freshUntil) || !readNumber(nextLine(), mayUseStale) ||
        !readNumber(nextLine(), length) || !readNumber(nextLine(), checkSum)) {
        return std::nullopt;
    }
    image.freshUntil = static_cast<double>(freshUntil);
    image.mayUseStale = mayUseStale != 0;
    image.bytes = content.substr(at);
    if (image.bytes.size() != length || checkSumOf(image.bytes) != checkSum) {
        return std::nullopt;
    }
    return image;
}

struct StoredFile {
    fs::path path;
    fs::file_time_type used;
    int64_t bytes;
};

/// Other processes may add and remove files meanwhile. What was never finished is removed.
std::vector<StoredFile> filesIn(const std::string& folder) {
    std::vector<StoredFile> files;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        std::error_code gone;
        const auto used = at->last_write_time(gone);
        const auto bytes = static_cast<int64_t>(at->file_size(gone));
        if (gone) {
            continue;
        }
        if (at->path().extension() == suffix) {
            files.push_back({at->path(), used, bytes});
        } else if (at->path().stem().extension() == suffix &&
                   fs::file_time_type::clock::now() - used > oldestUnfinished) {
            fs::remove(at->path(), gone);
        }
    }
    return files;
}

int64_t sizeOf(const std::vector<StoredFile>& files) {
    int64_t size = 0;
    for (const StoredFile& file : files) {
        size += file.bytes;
    }
    return size;
}

} // namespace

MKImageDisk::MKImageDisk(std::string folder, int64_t byteLimit) : _folder(std::move(folder)), _byteLimit(byteLimit) {}

MKImageDisk& MKImageDisk::shared() {
    static auto* const disk = new MKImageDisk(std::string(g_get_user_cache_dir()) + "/veyra/tiles");
    return *disk;
}

std::string MKImageDisk::pathFor(const std::string& url) const {
    gchar* const name = g_compute_checksum_for_string(G_CHECKSUM_SHA256, url.c_str(), -1);
    std::string path = _folder + "/" + name + suffix;
    g_free(name);
    return path;
}

std::optional<MKStoredImage> MKImageDisk::find(const std::string& url) {
    const std::string path = pathFor(url);
    gchar* bytes = nullptr;
    gsize length = 0;
    if (!g_file_get_contents(path.c_str(), &bytes, &length, nullptr)) {
        return std::nullopt;
    }
    auto image = imageIn(std::string(bytes, length), url);
    g_free(bytes);
    std::error_code ignored;
    if (image) {
        fs::last_write_time(path, fs::file_time_type::clock::now(), ignored);
    } else {
        fs::remove(path, ignored);
    }
    return image;
}

void MKImageDisk::insert(const std::string& url, const MKStoredImage& image) {
    const std::string content = contentOf(url, image);
    const auto bytes = static_cast<int64_t>(content.size());
    if (bytes > _byteLimit || g_mkdir_with_parents(_folder.c_str(), 0700) != 0) {
        return;
    }
    makeRoom(bytes);
    g_file_set_contents_full(pathFor(url).c_str(), content.data(), static_cast<gssize>(bytes),
                             G_FILE_SET_CONTENTS_CONSISTENT, 0600, nullptr);
}

void MKImageDisk::remove(const std::string& url) {
    std::error_code ignored;
    fs::remove(pathFor(url), ignored);
}

void MKImageDisk::makeRoom(int64_t newBytes) {
    const NSLockGuard guard(_lock);
    if (_byteSize && *_byteSize + newBytes <= _byteLimit && _uncounted + newBytes <= _byteLimit / partsOfLimit) {
        *_byteSize += newBytes;
        _uncounted += newBytes;
        return;
    }
    std::vector<StoredFile> files = filesIn(_folder);
    int64_t size = sizeOf(files) + newBytes;
    if (size > _byteLimit) {
        std::sort(files.begin(), files.end(), [](const StoredFile& a, const StoredFile& b) { return a.used < b.used; });
        // Somewhat more than is needed goes, so that the folder is not listed for each image.
        const int64_t aim = _byteLimit - _byteLimit / 10;
        for (auto file = files.begin(); file != files.end() && size > aim; ++file) {
            std::error_code ignored;
            fs::remove(file->path, ignored);
            size -= file->bytes;
        }
    }
    _byteSize = size;
    _uncounted = 0;
}

} // namespace veyra
