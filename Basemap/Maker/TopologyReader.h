#pragma once

// A TopoJSON file: shapes that share their common edges ("arcs"). Holds its own decoded copy of the file.

#include "Basemap/Maker/Sources.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace veyra::basemapMaker {

// A line that at least two shapes have in common, with their names in alphabetical order.
struct SharedArc {
    PositionLine line;
    std::vector<std::string> names;
};

// A shape with its polygons, each an outer ring and its holes.
struct NamedShape {
    std::string name;
    std::vector<std::vector<PositionLine>> polygons;
};

class TopologyReader {
public:
    // Throws std::runtime_error or a nlohmann::json exception when the file is no topology.
    explicit TopologyReader(const std::string& path);

    // The arcs that at least two shapes of an object have in common: where its countries meet. Shapes named in
    // `ignored` (property "name") count as a part of whichever shape they touch, so that their edges are none.
    std::vector<SharedArc> sharedArcs(const std::string& object, const std::vector<std::string>& ignored) const;

    // All shapes of an object, in the file's order.
    std::vector<NamedShape> shapes(const std::string& object) const;

private:
    const nlohmann::json& geometries(const std::string& object) const;
    PositionLine ring(const nlohmann::json& arcs) const;

    nlohmann::json _topology;
    std::vector<PositionLine> _arcs;
};

} // namespace veyra::basemapMaker
