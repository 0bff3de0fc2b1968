#pragma once

#include <shapefil.h>

#include <memory>
#include <string>

namespace veyra::basemapMaker {

// The table of attributes beside a shapefile: one record for each shape. Text is Windows-1252 in the file and UTF-8
// here.
class AttributeTable {
public:
    // Throws std::runtime_error when the table cannot be opened, as the others do for a field that is not there.
    explicit AttributeTable(const std::string& path);

    int recordCount() const;
    std::string text(int record, const char* field) const;
    double number(int record, const char* field) const;

private:
    int fieldIndex(const char* field) const;
    struct Close {
        void operator()(DBFInfo* file) const;
    };
    std::string _path;
    std::unique_ptr<DBFInfo, Close> _file;
};

} // namespace veyra::basemapMaker
