#include "Basemap/Maker/AttributeTable.h"

#include <iconv.h>

#include <stdexcept>

namespace veyra::basemapMaker {

namespace {

std::string utf8FromWindows1252(std::string text) {
    static const iconv_t converter = iconv_open("UTF-8", "WINDOWS-1252");
    std::string out(4 * text.size(), '\0');
    char* from = text.data();
    char* to = out.data();
    std::size_t fromLeft = text.size(), toLeft = out.size();
    if (iconv(converter, &from, &fromLeft, &to, &toLeft) == static_cast<std::size_t>(-1)) {
        throw std::runtime_error("text that is not Windows-1252: " + text);
    }
    out.resize(out.size() - toLeft);
    return out;
}

} // namespace

void AttributeTable::Close::operator()(DBFInfo* file) const {
    DBFClose(file);
}

AttributeTable::AttributeTable(const std::string& path) : _path(path), _file(DBFOpen(path.c_str(), "rb")) {
    if (!_file) {
        throw std::runtime_error(path + ": cannot be opened as a table of attributes");
    }
}

int AttributeTable::recordCount() const {
    return DBFGetRecordCount(_file.get());
}

std::string AttributeTable::text(int record, const char* field) const {
    return utf8FromWindows1252(DBFReadStringAttribute(_file.get(), record, fieldIndex(field)));
}

double AttributeTable::number(int record, const char* field) const {
    return DBFReadDoubleAttribute(_file.get(), record, fieldIndex(field));
}

int AttributeTable::fieldIndex(const char* field) const {
    const int index = DBFGetFieldIndex(_file.get(), field);
    if (index < 0) {
        throw std::runtime_error(_path + ": there is no field " + field);
    }
    return index;
}

} // namespace veyra::basemapMaker
