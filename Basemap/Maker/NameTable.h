#pragma once

// The hand-made tables of the maker: lines of text, those that begin with # are remarks.

#include "Basemap/Maker/Sources.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace veyra::basemapMaker {

// "NAME = NAME TO SHOW": what stands on the map in place of a name of the inputs, or nothing.
class NameTable {
public:
    // Throws std::runtime_error when the file cannot be read or a line has no equals sign.
    explicit NameTable(const std::string& path);

    // Nothing when the name is not to be shown.
    std::optional<std::string> shown(const std::string& name) const;

private:
    std::map<std::string, std::string> _names;
};

// "KIND; NAME; LATITUDE; LONGITUDE; WIDTH": a water of kind "ocean", "sea" or "lake", the middle of its name and how
// wide it is there, in degrees.
struct Water {
    std::string kind;
    std::string name;
    Position middle;
    double width = 0;
};

// Throws std::runtime_error when the file cannot be read or a line is not of that form.
std::vector<Water> readWaters(const std::string& path);

} // namespace veyra::basemapMaker
