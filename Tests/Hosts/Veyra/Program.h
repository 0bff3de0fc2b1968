// Runs programs as a user would, and looks at the pictures that they write.
#pragma once

#include <map>
#include <string>
#include <vector>

typedef struct _cairo_surface cairo_surface_t;

namespace veyra::test {

struct Finished {
    int status = -1; ///< -1: ended by a signal
    std::string output, errors;
};

/// Runs a program in the folder of the test data, with no display, and waits for its end. Variables are set, or unset
/// by "".
Finished runProgram(const std::vector<std::string>& arguments,
                    const std::map<std::string, std::string>& environment = {});

/// Runs `veyra` so.
Finished runVeyra(std::vector<std::string> arguments, const std::map<std::string, std::string>& environment = {});

/// A new folder, which goes away with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::string file(const std::string& name) const { return _path + "/" + name; }
    /// Makes a file and returns its path.
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::string _path;
};

class Picture {
public:
    explicit Picture(const std::string& path);
    ~Picture();
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    int width() const; ///< 0 when there is no picture
    int height() const;
    /// 0xRRGGBB
    unsigned at(int x, int y) const;
    /// The colours of the built-in standard map.
    bool isWater(int x, int y) const;
    bool isLand(int x, int y) const;

private:
    cairo_surface_t* const _surface;
};

} // namespace veyra::test
