#pragma once

// Reads the names of a base map: of countries, waters and cities, with where they are and how much they matter.
// `Basemap/FORMAT.md` describes the bytes.
//
// Threads: immutable once constructed; any number of threads may read it at once. Ownership: it keeps nothing of the
// bytes that it is made from.
//
// Broken data are reported, never trusted: the constructor checks everything and throws BasemapError, whose message
// names the file and the place.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veyra {

// What a name stands for. The numbers are those of the file.
enum class BasemapNameKind : std::uint8_t {
    Country = 0,
    Territory = 1, // inhabited land that is no country of its own, or not all agree that it is
    Ocean = 2,
    Sea = 3,
    Lake = 4,
    City = 5,
};

inline constexpr std::size_t basemapNameKindCount = 6;

// One name.
struct BasemapName {
    BasemapNameKind kind = BasemapNameKind::City;
    bool isCapital = false; // of a country
    std::uint8_t size = 0;  // 0 small to 3 large: how large the name is written
    double minimumZoom = 0; // from this zoom on it may be shown; at zoom z the world is 256 * 2^z points wide
    double maximumZoom = 0; // up to this one
    std::int32_t x = 0;     // map points: the city, or the middle of the name
    std::int32_t y = 0;
    std::int32_t extent = 0; // map points: how wide the land or water is, taken all in all; 0 for a city
    std::uint32_t textStart = 0;
    std::uint32_t textLength = 0;
};

class BasemapNames {
public:
    // `name` stands for the file in error messages. Throws BasemapError.
    BasemapNames(std::span<const std::byte> data, const std::string& name);

    // From the most important to the least.
    std::span<const BasemapName> all() const { return _names; }

    // UTF-8; a line feed separates two lines. Lives as long as the object.
    std::string_view text(const BasemapName& name) const {
        return std::string_view(_texts).substr(name.textStart, name.textLength);
    }

    // Memory held, in bytes.
    std::size_t byteSize() const { return _names.capacity() * sizeof(BasemapName) + _texts.capacity(); }

private:
    std::vector<BasemapName> _names;
    std::string _texts;
};

// The names of the world that is linked into the program. Read at the first call, from whichever thread; never
// destroyed. Throws BasemapError.
const BasemapNames& builtInNames();

} // namespace veyra
