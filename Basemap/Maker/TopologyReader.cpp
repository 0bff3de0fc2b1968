#include "Basemap/Maker/TopologyReader.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <stdexcept>

namespace veyra::basemapMaker {

namespace {

// A negative number ~n stands for arc n walked backwards.
std::size_t arcIndex(int number) {
    return static_cast<std::size_t>(number < 0 ? ~number : number);
}

void forEachPolygon(const nlohmann::json& geometry, const auto& action) {
    const std::string type = geometry.at("type");
    if (type == "Polygon") {
        action(geometry.at("arcs"));
    } else if (type == "MultiPolygon") {
        for (const nlohmann::json& polygon : geometry.at("arcs")) {
            action(polygon);
        }
    }
}

} // namespace

TopologyReader::TopologyReader(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path + ": cannot be opened");
    }
    _topology = nlohmann::json::parse(file);
    const nlohmann::json& scale = _topology.at("transform").at("scale");
    const nlohmann::json& translate = _topology.at("transform").at("translate");
    for (const nlohmann::json& arc : _topology.at("arcs")) {
        PositionLine line;
        long x = 0;
        long y = 0;
        for (const nlohmann::json& delta : arc) {
            x += delta.at(0).get<long>();
            y += delta.at(1).get<long>();
            line.push_back({static_cast<double>(x) * scale.at(0).get<double>() + translate.at(0).get<double>(),
                            static_cast<double>(y) * scale.at(1).get<double>() + translate.at(1).get<double>()});
        }
        _arcs.push_back(std::move(line));
    }
}

const nlohmann::json& TopologyReader::geometries(const std::string& object) const {
    return _topology.at("objects").at(object).at("geometries");
}

std::vector<SharedArc> TopologyReader::sharedArcs(const std::string& object,
                                                  const std::vector<std::string>& ignored) const {
    std::vector<std::set<std::string>> users(_arcs.size());
    std::vector<bool> isIgnored(_arcs.size());
    for (const nlohmann::json& geometry : geometries(object)) {
        const std::string name = geometry.at("properties").at("name");
        const bool ignore = std::find(ignored.begin(), ignored.end(), name) != ignored.end();
        forEachPolygon(geometry, [&](const nlohmann::json& polygon) {
            for (const nlohmann::json& ring : polygon) {
                for (const nlohmann::json& element : ring) {
                    const std::size_t arc = arcIndex(element);
                    users.at(arc).insert(name);
                    isIgnored[arc] = isIgnored[arc] || ignore;
                }
            }
        });
    }
    std::vector<SharedArc> shared;
    for (std::size_t i = 0; i < _arcs.size(); ++i) {
        if (users[i].size() > 1 && !isIgnored[i]) {
            shared.push_back({_arcs[i], {users[i].begin(), users[i].end()}});
        }
    }
    return shared;
}

PositionLine TopologyReader::ring(const nlohmann::json& arcs) const {
    PositionLine line;
    for (const nlohmann::json& element : arcs) {
        const int number = element;
        PositionLine arc = _arcs.at(arcIndex(number));
        if (number < 0) {
            std::reverse(arc.begin(), arc.end());
        }
        // An arc begins where the one before it ends.
        line.insert(line.end(), arc.begin() + (line.empty() ? 0 : 1), arc.end());
    }
    return line;
}

std::vector<NamedShape> TopologyReader::shapes(const std::string& object) const {
    std::vector<NamedShape> found;
    for (const nlohmann::json& geometry : geometries(object)) {
        NamedShape shape{geometry.at("properties").at("name"), {}};
        forEachPolygon(geometry, [&](const nlohmann::json& polygon) {
            shape.polygons.emplace_back();
            for (const nlohmann::json& arcs : polygon) {
                shape.polygons.back().push_back(ring(arcs));
            }
        });
        found.push_back(std::move(shape));
    }
    return found;
}

} // namespace veyra::basemapMaker
