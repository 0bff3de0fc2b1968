#include "Platform/UIKit/ImageFileEnd.h"

#include <cstdint>

namespace veyra {

namespace {

uint8_t byteAt(std::string_view data, size_t place) {
    return static_cast<uint8_t>(data[place]);
}

uint64_t bigEndian(std::string_view data, size_t place, size_t count) {
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value = value << 8 | byteAt(data, place + i);
    return value;
}

/// Where the next marker of a JPEG begins, in or behind coded data: its zero bytes and restarts are none.
size_t nextMarker(std::string_view data, size_t place) {
    for (place = data.find('\xff', place); place != data.npos && place + 1 < data.size();
         place = data.find('\xff', place + 1)) {
        const uint8_t kind = byteAt(data, place + 1);
        if (kind != 0 && kind != 0xff && !(kind >= 0xd0 && kind <= 0xd7))
            return place;
    }
    return data.npos;
}

} // namespace

bool reachesEndOfPNG(std::string_view data) {
    constexpr size_t signature = 8, around = 12; // of a chunk's data: its length, its type and its checksum
    for (size_t place = signature; place + around <= data.size();) {
        const uint64_t length = bigEndian(data, place, 4);
        if (data.substr(place + 4, 4) == "IEND")
            return place + around + length <= data.size();
        place += around + length;
    }
    return false;
}

bool reachesEndOfJPEG(std::string_view data) {
    constexpr uint8_t end = 0xd9;
    for (size_t place = nextMarker(data, 2); place != data.npos;) {
        const uint8_t kind = byteAt(data, place + 1);
        if (kind == end)
            return true;
        if (place + 4 > data.size())
            return false;
        const size_t next = place + 2 + bigEndian(data, place + 2, 2);
        if (next > data.size())
            return false;
        place = nextMarker(data, next); // behind a scan's header its coded data is passed over
    }
    return false;
}

bool reachesEndOfWebP(std::string_view data) {
    uint64_t length = 0; // of what follows
    for (size_t i = 8; i-- > 4;)
        length = length << 8 | byteAt(data, i);
    return length + 8 <= data.size();
}

} // namespace veyra
