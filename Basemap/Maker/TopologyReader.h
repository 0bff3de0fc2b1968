#pragma once

// A TopoJSON file: shapes that share their common edges ("arcs"). Holds its own decoded copy of the file.

#include "Basemap/Maker/Sources.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace veyra::basemapMaker {

class TopologyReader {
public:
    // Throws std::runtime_error or a nlohmann::json exception when the file is no topology.
    explicit TopologyReader(const std::string& path);

    // The arcs that at least two shapes of an object have in common: where its countries meet. Shapes named in
    // `ignored` (property "name") count as a part of whichever shape they touch, so that their edges are none.
    std::vector<PositionLine> sharedArcs(const std::string& object, const std::vector<std::string>& ignored) const;

private:
    const nlohmann::json& geometries(const std::string& object) const;

    nlohmann::json _topology;
    std::vector<PositionLine> _arcs;
};

} // namespace veyra::basemapMaker
