#include "Basemap/Maker/Bytes.h"

#include <zlib.h>

#include <fstream>
#include <stdexcept>

namespace veyra::basemapMaker {

void appendLittleEndian(Bytes& out, std::uint32_t value, int byteCount) {
    for (int i = 0; i < byteCount; ++i) {
        out.push_back(static_cast<unsigned char>(value >> (8 * i)));
    }
}

void appendVarint(Bytes& out, std::size_t value) {
    for (; value >= 0x80; value >>= 7) {
        out.push_back(static_cast<unsigned char>(value | 0x80));
    }
    out.push_back(static_cast<unsigned char>(value));
}

void appendDelta(Bytes& out, std::int32_t delta) {
    const auto bits = static_cast<std::uint32_t>(delta);
    appendVarint(out, (bits << 1) ^ (0u - (bits >> 31)));
}

Bytes packed(const Bytes& bytes) {
    uLongf length = compressBound(bytes.size());
    Bytes out(length);
    if (compress2(out.data(), &length, bytes.data(), bytes.size(), Z_BEST_COMPRESSION) != Z_OK) {
        throw std::runtime_error("zlib cannot pack what it is given");
    }
    out.resize(length);
    return out;
}

Bytes withChecksum(const Bytes& magic, const Bytes& covered) {
    Bytes out = magic;
    appendLittleEndian(out, static_cast<std::uint32_t>(crc32_z(0, covered.data(), covered.size())), 4);
    out.insert(out.end(), covered.begin(), covered.end());
    return out;
}

void writeFile(const std::string& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::runtime_error(path + ": cannot be written");
    }
}

} // namespace veyra::basemapMaker
