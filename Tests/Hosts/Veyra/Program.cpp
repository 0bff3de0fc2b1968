#include "Tests/Hosts/Veyra/Program.h"

#include <cairo.h>
#include <gio/gio.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace veyra::test {

Finished runProgram(const std::vector<std::string>& arguments, const std::map<std::string, std::string>& environment) {
    std::vector<const char*> words;
    for (const std::string& argument : arguments)
        words.push_back(argument.c_str());
    words.push_back(nullptr);
    GSubprocessLauncher* launcher =
        g_subprocess_launcher_new(GSubprocessFlags(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_PIPE));
    g_subprocess_launcher_set_cwd(launcher, VEYRA_DATA);
    g_subprocess_launcher_unsetenv(launcher, "DISPLAY");
    g_subprocess_launcher_unsetenv(launcher, "WAYLAND_DISPLAY");
    for (const auto& [name, value] : environment)
        g_subprocess_launcher_setenv(launcher, name.c_str(), value.c_str(), TRUE);
    GError* error = nullptr;
    GSubprocess* process = g_subprocess_launcher_spawnv(launcher, words.data(), &error);
    g_object_unref(launcher);
    Finished finished;
    if (!process) {
        ADD_FAILURE() << error->message;
        g_error_free(error);
        return finished;
    }
    GBytes *output = nullptr, *errors = nullptr;
    g_subprocess_communicate(process, nullptr, nullptr, &output, &errors, nullptr);
    const auto take = [](GBytes* bytes) {
        gsize size = 0;
        const auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
        const std::string text(data ? data : "", size);
        g_bytes_unref(bytes);
        return text;
    };
    finished.output = take(output);
    finished.errors = take(errors);
    if (g_subprocess_get_if_exited(process))
        finished.status = g_subprocess_get_exit_status(process);
    g_object_unref(process);
    return finished;
}

Finished runVeyra(std::vector<std::string> arguments, const std::map<std::string, std::string>& environment) {
    arguments.insert(arguments.begin(), VEYRA_PROGRAM);
    return runProgram(arguments, environment);
}

TemporaryFolder::TemporaryFolder() {
    gchar* path = g_dir_make_tmp("veyra-test-XXXXXX", nullptr);
    _path = path;
    g_free(path);
}

TemporaryFolder::~TemporaryFolder() {
    std::filesystem::remove_all(_path);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
    std::ofstream(file(name), std::ios::binary) << content;
    return file(name);
}

Picture::Picture(const std::string& path) : _surface(cairo_image_surface_create_from_png(path.c_str())) {}

Picture::~Picture() {
    cairo_surface_destroy(_surface);
}

int Picture::width() const {
    return cairo_image_surface_get_width(_surface);
}

int Picture::height() const {
    return cairo_image_surface_get_height(_surface);
}

unsigned Picture::at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width() || y >= height()) {
        ADD_FAILURE() << "no pixel at " << x << ", " << y;
        return 0;
    }
    const unsigned char* row = cairo_image_surface_get_data(_surface) + y * cairo_image_surface_get_stride(_surface);
    return reinterpret_cast<const uint32_t*>(row)[x] & 0xffffff;
}

bool Picture::isWater(int x, int y) const {
    return at(x, y) == 0xb4d5e7;
}

bool Picture::isLand(int x, int y) const {
    return at(x, y) == 0xf6f3ec;
}

} // namespace veyra::test
