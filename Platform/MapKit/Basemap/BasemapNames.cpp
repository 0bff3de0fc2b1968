#include "Platform/MapKit/Basemap/BasemapNames.h"

#include "Platform/MapKit/Basemap/BasemapFile.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <zlib.h>

#include <new>

namespace veyra {

namespace {

using namespace basemapFormat;

// Reads little-endian numbers one after the other and knows where it is.
class ByteReader {
public:
    ByteReader(const std::vector<unsigned char>& bytes, const std::string& file) : _bytes(bytes), _file(file) {}

    bool isAtEnd() const { return _at == _bytes.size(); }

    std::uint32_t number(int byteCount) {
        need(static_cast<std::size_t>(byteCount));
        std::uint32_t value = 0;
        for (int i = byteCount - 1; i >= 0; --i) {
            value = value << 8 | _bytes[_at + static_cast<std::size_t>(i)];
        }
        _at += static_cast<std::size_t>(byteCount);
        return value;
    }

    std::string_view text(std::size_t length) {
        need(length);
        const std::string_view found(reinterpret_cast<const char*>(_bytes.data()) + _at, length);
        _at += length;
        return found;
    }

    [[noreturn]] void fail(const char* fault) const {
        throw BasemapError(_file + ": unpacked byte " + std::to_string(_at) + ": " + fault);
    }

private:
    void need(std::size_t count) const {
        if (count > _bytes.size() - _at) {
            fail("the names end inside one");
        }
    }

    const std::vector<unsigned char>& _bytes;
    const std::string& _file;
    std::size_t _at = 0;
};

BasemapName readName(ByteReader& reader) {
    BasemapName name;
    const std::uint32_t kind = reader.number(1);
    if (kind >= basemapNameKindCount) {
        reader.fail("the kind of a name is not known");
    }
    name.kind = static_cast<BasemapNameKind>(kind);
    name.isCapital = (reader.number(1) & capitalFlag) != 0;
    name.size = static_cast<std::uint8_t>(reader.number(1));
    if (name.size > largestNameSize) {
        reader.fail("the size of a name is out of range");
    }
    name.textLength = reader.number(1);
    name.minimumZoom = reader.number(2) * zoomUnit;
    name.maximumZoom = reader.number(2) * zoomUnit;
    const std::uint32_t x = reader.number(4), y = reader.number(4), extent = reader.number(4);
    if (x > worldSide || y > worldSide || extent > worldSide) {
        reader.fail("a name lies outside the world");
    }
    name.x = static_cast<std::int32_t>(x);
    name.y = static_cast<std::int32_t>(y);
    name.extent = static_cast<std::int32_t>(extent);
    return name;
}

std::uint32_t u32(std::span<const std::byte> data, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) {
        value = value << 8 | std::to_integer<std::uint32_t>(data[offset + i]);
    }
    return value;
}

std::vector<unsigned char> unpackedNames(std::span<const std::byte> data, const std::string& file) {
    const auto fail = [&](std::size_t offset, const char* fault) {
        throw BasemapError(file + ": byte " + std::to_string(offset) + ": " + fault);
    };
    if (data.size() < namesHeaderLength) {
        fail(data.size(), "the file ends inside its header");
    }
    for (std::size_t i = 0; i < namesMagic.size(); ++i) {
        if (std::to_integer<unsigned char>(data[i]) != namesMagic[i]) {
            fail(i, "not a file of names");
        }
    }
    if (u32(data, namesVersionOffset) != namesVersion) {
        fail(namesVersionOffset, "the format version is not known");
    }
    const auto* const bytes = reinterpret_cast<const Bytef*>(data.data());
    if (crc32_z(0, bytes + namesVersionOffset, data.size() - namesVersionOffset) != u32(data, checksumOffset)) {
        fail(checksumOffset, "the checksum is wrong");
    }
    const std::uint32_t length = u32(data, namesLengthOffset);
    const std::size_t packedLength = data.size() - namesHeaderLength;
    if (length > maximumPackingRatio * packedLength) {
        fail(namesLengthOffset, "the unpacked length is out of range");
    }
    std::vector<unsigned char> unpacked(length);
    uLongf found = length;
    const int result = uncompress(unpacked.data(), &found, bytes + namesHeaderLength, packedLength);
    if (result == Z_MEM_ERROR) {
        throw std::bad_alloc();
    }
    if (result != Z_OK || found != length) {
        fail(namesHeaderLength, "the packed data are damaged");
    }
    return unpacked;
}

} // namespace

BasemapNames::BasemapNames(std::span<const std::byte> data, const std::string& name) {
    const std::vector<unsigned char> unpacked = unpackedNames(data, name);
    ByteReader reader(unpacked, name);
    while (!reader.isAtEnd()) {
        BasemapName entry = readName(reader);
        entry.textStart = static_cast<std::uint32_t>(_texts.size());
        _texts += reader.text(entry.textLength);
        _names.push_back(entry);
    }
    _names.shrink_to_fit();
    _texts.shrink_to_fit();
}

} // namespace veyra
