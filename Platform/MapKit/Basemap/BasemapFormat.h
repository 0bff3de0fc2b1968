#pragma once

// The numbers of the base map's file format that the reader and the maker share. `Basemap/FORMAT.md` is their
// description.

#include <array>
#include <cstddef>
#include <cstdint>

namespace veyra::basemapFormat {

// The world's side in map points, as a power of two.
inline constexpr int worldBits = 28;
inline constexpr std::int32_t worldSide = std::int32_t{1} << worldBits;

inline constexpr std::array<unsigned char, 8> magic = {0x89, 'V', 'B', 'M', '\r', '\n', 0x1a, '\n'};
inline constexpr std::uint16_t version = 1;

// Places of the fixed header's fields, in bytes.
inline constexpr std::size_t checksumOffset = 8;
inline constexpr std::size_t versionOffset = 12; // also the first byte that the checksum covers
inline constexpr std::size_t levelCountOffset = 14;
inline constexpr std::size_t headerLengthOffset = 16;
inline constexpr std::size_t fileLengthOffset = 20;
inline constexpr std::size_t attributionLengthOffset = 24;
inline constexpr std::size_t fixedHeaderLength = 28;

inline constexpr std::size_t levelRecordLength = 12;
inline constexpr std::size_t cellEntryLength = 16;

inline constexpr int maximumLevels = 16;
inline constexpr int minimumGridBits = 8;
inline constexpr int maximumColumnBits = 10;
inline constexpr double zoomUnit = 1.0 / 256;

// Deflate packs no better than this, so a longer unpacked length cannot be true.
inline constexpr std::uint64_t maximumPackingRatio = 1032;
inline constexpr std::uint64_t maximumCellLength = std::uint64_t{64} << 20;

inline constexpr std::uint32_t allLandFlag = 1;

// The file of names.
inline constexpr std::array<unsigned char, 8> namesMagic = {0x89, 'V', 'B', 'N', '\r', '\n', 0x1a, '\n'};
inline constexpr std::uint32_t namesVersion = 1;
inline constexpr std::size_t namesVersionOffset = 12; // also the first byte that the checksum covers
inline constexpr std::size_t namesLengthOffset = 16;
inline constexpr std::size_t namesHeaderLength = 20;
inline constexpr std::uint32_t capitalFlag = 1;
inline constexpr std::uint32_t largestNameSize = 3;

// The file of pictures.
inline constexpr std::array<unsigned char, 8> imageryMagic = {0x89, 'V', 'B', 'I', '\r', '\n', 0x1a, '\n'};
inline constexpr std::uint16_t imageryVersion = 1;
inline constexpr std::size_t imageryVersionOffset = 12; // also the first byte that the checksum covers
inline constexpr std::size_t imageryLevelCountOffset = 14;
inline constexpr std::size_t imageryTileSideOffset = 16;
inline constexpr std::size_t imageryFileLengthOffset = 20;
inline constexpr std::size_t imageryAttributionLengthOffset = 24;
inline constexpr std::size_t imageryHeaderLength = 28;
inline constexpr std::size_t imageryEntryLength = 8;
inline constexpr std::uint32_t maximumImageryLevels = 10;

} // namespace veyra::basemapFormat
