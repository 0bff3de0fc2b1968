#pragma once

// Bytes of a file in the making.

#include <cstdint>
#include <string>
#include <vector>

namespace veyra::basemapMaker {

using Bytes = std::vector<unsigned char>;

void appendLittleEndian(Bytes& out, std::uint32_t value, int byteCount);
// Seven bits a byte, lowest first.
void appendVarint(Bytes& out, std::size_t value);
// A signed number as a varint: 0, -1, 1, -2, 2 ... as 0, 1, 2, 3, 4 ...
void appendDelta(Bytes& out, std::int32_t delta);

// As one zlib stream. Throws std::runtime_error when there is no memory for it.
Bytes packed(const Bytes& bytes);

// `magic`, the CRC-32 of `covered` in four bytes, `covered`.
Bytes withChecksum(const Bytes& magic, const Bytes& covered);

// Throws std::runtime_error when the file cannot be written.
void writeFile(const std::string& path, const Bytes& bytes);

} // namespace veyra::basemapMaker
