#include "Basemap/Maker/NameTable.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace veyra::basemapMaker {

namespace {

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void forEachLine(const std::string& path, const auto& action) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(path + ": cannot be opened");
    }
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            action(line);
        }
    }
}

} // namespace

NameTable::NameTable(const std::string& path) {
    forEachLine(path, [&](const std::string& line) {
        const std::size_t sign = line.find('=');
        if (sign == std::string::npos) {
            throw std::runtime_error(path + ": no equals sign: " + line);
        }
        _names[trimmed(line.substr(0, sign))] = trimmed(line.substr(sign + 1));
    });
}

std::optional<std::string> NameTable::shown(const std::string& name) const {
    const auto found = _names.find(name);
    if (found == _names.end()) {
        return name;
    }
    return found->second.empty() ? std::nullopt : std::optional(found->second);
}

std::vector<Water> readWaters(const std::string& path) {
    std::vector<Water> waters;
    forEachLine(path, [&](const std::string& line) {
        std::istringstream in(line);
        std::vector<std::string> fields;
        for (std::string field; std::getline(in, field, ';');) {
            fields.push_back(trimmed(field));
        }
        if (fields.size() != 5) {
            throw std::runtime_error(path + ": not five fields: " + line);
        }
        waters.push_back({fields[0],
                          fields[1],
                          {.longitude = std::stod(fields[3]), .latitude = std::stod(fields[2])},
                          std::stod(fields[4])});
    });
    return waters;
}

} // namespace veyra::basemapMaker
