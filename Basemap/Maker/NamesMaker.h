#pragma once

// Puts together the names of the map: countries, waters and cities, each with the zooms at which it may be shown.

#include "Basemap/Maker/NameTable.h"
#include "Basemap/Maker/TopologyReader.h"
#include "Platform/MapKit/Basemap/BasemapNames.h"

#include <string>
#include <vector>

namespace veyra::basemapMaker {

// A name that is not yet part of a file; its textStart and textLength mean nothing.
struct MadeName {
    BasemapName entry;
    std::string text;
    double weight = 0; // of two names with the same minimum zoom the heavier one comes first
};

class NamesMaker {
public:
    explicit NamesMaker(NameTable table) : _table(std::move(table)) {}

    // `path` is the shapefile's, without ".shp".
    void addCities(const std::string& path);
    // After the cities: how many people live in those of a country says how much it matters.
    void addCountries(const std::vector<NamedShape>& shapes);
    void addWaters(const std::vector<Water>& waters);

    // From the most important name to the least. Hands them over.
    std::vector<MadeName> finish();

private:
    struct City {
        Position place;
        double population;
    };
    double populationIn(const NamedShape& country) const;

    NameTable _table;
    std::vector<MadeName> _names;
    std::vector<City> _cities;
};

// Writes names as a file; Basemap/FORMAT.md describes the bytes. Throws std::runtime_error when that fails.
void writeNames(const std::vector<MadeName>& names, const std::string& path);

} // namespace veyra::basemapMaker
