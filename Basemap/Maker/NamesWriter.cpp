#include "Basemap/Maker/Bytes.h"
#include "Basemap/Maker/NamesMaker.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"

#include <cmath>
#include <stdexcept>

namespace veyra::basemapMaker {

using namespace basemapFormat;

void writeNames(const std::vector<MadeName>& names, const std::string& path) {
    Bytes records;
    for (const MadeName& name : names) {
        if (name.text.size() > 255) {
            throw std::runtime_error("a name is too long: " + name.text);
        }
        const auto zoom = [](double value) { return static_cast<std::uint32_t>(std::lround(value / zoomUnit)); };
        appendLittleEndian(records, static_cast<std::uint32_t>(name.entry.kind), 1);
        appendLittleEndian(records, name.entry.isCapital ? capitalFlag : 0, 1);
        appendLittleEndian(records, name.entry.size, 1);
        appendLittleEndian(records, static_cast<std::uint32_t>(name.text.size()), 1);
        appendLittleEndian(records, zoom(name.entry.minimumZoom), 2);
        appendLittleEndian(records, zoom(name.entry.maximumZoom), 2);
        appendLittleEndian(records, static_cast<std::uint32_t>(name.entry.x), 4);
        appendLittleEndian(records, static_cast<std::uint32_t>(name.entry.y), 4);
        appendLittleEndian(records, static_cast<std::uint32_t>(name.entry.extent), 4);
        records.insert(records.end(), name.text.begin(), name.text.end());
    }
    Bytes covered; // by the checksum
    appendLittleEndian(covered, namesVersion, 4);
    appendLittleEndian(covered, static_cast<std::uint32_t>(records.size()), 4);
    const Bytes body = packed(records);
    covered.insert(covered.end(), body.begin(), body.end());
    writeFile(path, withChecksum({namesMagic.begin(), namesMagic.end()}, covered));
}

} // namespace veyra::basemapMaker
