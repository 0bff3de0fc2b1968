#include "Basemap/Maker/ShapefileReader.h"

#include <shapefil.h>

#include <memory>
#include <stdexcept>

namespace veyra::basemapMaker {

namespace {

struct CloseShapefile {
    void operator()(SHPInfo* file) const { SHPClose(file); }
};

struct DestroyObject {
    void operator()(SHPObject* object) const { SHPDestroyObject(object); }
};

// Twice the signed area in square degrees, positive when counter-clockwise with north up.
double signedArea(const PositionLine& ring) {
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Position& a = ring[i];
        const Position& b = ring[(i + 1) % ring.size()];
        sum += a.longitude * b.latitude - b.longitude * a.latitude;
    }
    return sum;
}

void appendRings(const SHPObject& object, std::vector<PositionRing>& rings) {
    for (int part = 0; part < object.nParts; ++part) {
        const int first = object.panPartStart[part];
        const int end = part + 1 < object.nParts ? object.panPartStart[part + 1] : object.nVertices;
        PositionRing ring;
        for (int i = first; i < end; ++i) {
            ring.positions.push_back({object.padfX[i], object.padfY[i]});
        }
        ring.isHole = signedArea(ring.positions) > 0;
        rings.push_back(std::move(ring));
    }
}

// Calls `action` with each shape of a file whose shapes are of that type.
void forEachShape(const std::string& path, int expectedType, const char* kind, const auto& action) {
    const std::unique_ptr<SHPInfo, CloseShapefile> file(SHPOpen(path.c_str(), "rb"));
    if (!file) {
        throw std::runtime_error(path + ": cannot be opened as a shapefile");
    }
    int count = 0;
    int type = 0;
    SHPGetInfo(file.get(), &count, &type, nullptr, nullptr);
    if (type != expectedType) {
        throw std::runtime_error(path + ": holds no " + kind);
    }
    for (int i = 0; i < count; ++i) {
        const std::unique_ptr<SHPObject, DestroyObject> object(SHPReadObject(file.get(), i));
        if (!object) {
            throw std::runtime_error(path + ": shape " + std::to_string(i) + " cannot be read");
        }
        action(*object);
    }
}

} // namespace

std::vector<PositionRing> readPolygonShapefile(const std::string& path) {
    std::vector<PositionRing> rings;
    forEachShape(path, SHPT_POLYGON, "polygons", [&](const SHPObject& object) { appendRings(object, rings); });
    return rings;
}

std::vector<std::vector<PositionLine>> readLineShapefile(const std::string& path) {
    std::vector<std::vector<PositionLine>> shapes;
    forEachShape(path, SHPT_ARC, "lines", [&](const SHPObject& object) {
        std::vector<PositionRing> parts;
        appendRings(object, parts);
        shapes.emplace_back();
        for (PositionRing& part : parts) {
            shapes.back().push_back(std::move(part.positions));
        }
    });
    return shapes;
}

std::vector<Position> readPointShapefile(const std::string& path) {
    std::vector<Position> places;
    forEachShape(path, SHPT_POINT, "points", [&](const SHPObject& object) {
        places.push_back({object.padfX[0], object.padfY[0]});
    });
    return places;
}

} // namespace veyra::basemapMaker
