// A folder for the files of a test, which goes away with it.
#pragma once

#include <glib.h>

#include <filesystem>
#include <string>

namespace veyra {

class TemporaryFolder {
public:
    TemporaryFolder() {
        gchar* const made = g_dir_make_tmp("veyra-tiles-XXXXXX", nullptr);
        _path = made;
        g_free(made);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return _path; }
    std::string operator/(const std::string& name) const { return _path + "/" + name; }

private:
    std::string _path;
};

} // namespace veyra
