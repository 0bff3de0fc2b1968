// Images that were downloaded, kept on disk from run to run under their addresses, bounded in bytes: those that were
// not used for the longest time go. Any thread, several processes at once. What cannot be read or written is as if it
// had not been stored.
#pragma once

#include "Platform/Foundation/NSLock.h"

#include <cstdint>
#include <optional>
#include <string>

namespace veyra {

/// An answer of a server, with what is needed to ask whether it has changed.
struct MKStoredImage {
    std::string entityTag, lastModified; ///< as the server sent them, or ""
    double freshUntil = 0;               ///< seconds since 1970
    bool mayUseStale = true;
    std::string bytes;
};

class MKImageDisk {
public:
    static constexpr int64_t defaultByteLimit = int64_t{192} << 20;

    /// Files are in `folder`, which is made when something is first stored.
    explicit MKImageDisk(std::string folder, int64_t byteLimit = defaultByteLimit);
    /// That of the user's cache folder; never destroyed.
    static MKImageDisk& shared();

    std::optional<MKStoredImage> find(const std::string& url);
    void insert(const std::string& url, const MKStoredImage& image);
    void remove(const std::string& url);

private:
    std::string pathFor(const std::string& url) const;
    void makeRoom(int64_t newBytes) VEYRA_EXCLUDES(_lock);

    const std::string _folder;
    const int64_t _byteLimit;
    NSLock _lock;
    std::optional<int64_t> _byteSize VEYRA_GUARDED_BY(_lock); // as far as this process knows
    int64_t _uncounted VEYRA_GUARDED_BY(_lock) = 0;           // of them stored since the folder was looked at
};

} // namespace veyra
