#include "Hosts/Veyra/VirtualDisplay.h"

#include <gtk/gtk.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/random.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veyra {

namespace {

constexpr const char* missingXvfb =
    "there is no display, and a virtual one cannot be started: Xvfb is missing (Debian package xvfb)";

void appendCounted(std::string& record, const std::string& text) {
    record += static_cast<char>(text.size() >> 8);
    record += static_cast<char>(text.size() & 255);
    record += text;
}

/// Writes a private file in X's authority format with one random key, valid for every display; "" when that fails.
std::string writeKeyFile() {
    std::string key(16, '\0');
    if (getrandom(key.data(), key.size(), 0) != static_cast<ssize_t>(key.size()))
        return "";
    std::string record = "\xff\xff"; // any address
    for (const std::string& field : {std::string(), std::string(), std::string("MIT-MAGIC-COOKIE-1"), key})
        appendCounted(record, field);
    gchar* name = nullptr;
    const int file = g_file_open_tmp("veyra-display-XXXXXX", &name, nullptr);
    if (file < 0)
        return "";
    const bool isWritten = write(file, record.data(), record.size()) == static_cast<ssize_t>(record.size());
    close(file);
    const std::string path = name;
    g_free(name);
    if (!isWritten)
        unlink(path.c_str());
    return isWritten ? path : "";
}

[[noreturn]] void becomeXvfb(int numberPipe, const std::string& keyFile) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    // Its complaints about keyboards are of no use to anybody; it writes its display's number to descriptor 3.
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    if (numberPipe == 3)
        fcntl(3, F_SETFD, 0);
    else
        dup2(numberPipe, 3);
    execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0", "1920x1080x24", "-nolisten", "tcp", "-auth",
           keyFile.c_str(), nullptr);
    _exit(127);
}

/// The number that Xvfb writes once it takes connections; "" when it ends without one.
std::string readNumber(int pipe) {
    std::string text;
    char c = 0;
    while (read(pipe, &c, 1) == 1 && c != '\n')
        text += c;
    return c == '\n' ? text : "";
}

bool isSet(const char* variable) {
    const char* value = g_getenv(variable);
    return value && *value;
}

} // namespace

std::unique_ptr<VirtualDisplay> VirtualDisplay::start(std::string& problem) {
    gchar* program = g_find_program_in_path("Xvfb");
    if (!program) {
        problem = missingXvfb;
        return nullptr;
    }
    g_free(program);
    const std::string keyFile = writeKeyFile();
    std::array<int, 2> pipe{};
    if (keyFile.empty() || pipe2(pipe.data(), O_CLOEXEC) != 0) {
        problem = "there is no display, and the folder for temporary files cannot be written for a virtual one";
        return nullptr;
    }
    const pid_t process = fork();
    if (process == 0)
        becomeXvfb(pipe[1], keyFile);
    close(pipe[1]);
    std::unique_ptr<VirtualDisplay> display(new VirtualDisplay(process, keyFile));
    const std::string number = process > 0 ? readNumber(pipe[0]) : "";
    close(pipe[0]);
    if (number.empty()) {
        problem = "there is no display, and Xvfb ended instead of giving one";
        return nullptr;
    }
    g_setenv("DISPLAY", (":" + number).c_str(), TRUE);
    g_setenv("XAUTHORITY", keyFile.c_str(), TRUE);
    g_setenv("NO_AT_BRIDGE", "1", TRUE); // there is nobody to read the screen to
    g_unsetenv("WAYLAND_DISPLAY");
    return display;
}

VirtualDisplay::~VirtualDisplay() {
    if (_process > 0) {
        kill(_process, SIGTERM);
        waitpid(_process, nullptr, 0);
    }
    unlink(_keyFile.c_str());
}

Outcome startGtk(bool needsX11, std::unique_ptr<VirtualDisplay>& display) {
    if (!isSet("DISPLAY") && (needsX11 || !isSet("WAYLAND_DISPLAY"))) {
        std::string problem;
        display = VirtualDisplay::start(problem);
        if (!display)
            return {ExitStatus::Failed, problem};
        needsX11 = true;
    }
    if (needsX11)
        gdk_set_allowed_backends("x11");
    if (!gtk_init_check(nullptr, nullptr))
        return {ExitStatus::Failed, std::string("the display ") +
                                        (isSet("DISPLAY") ? g_getenv("DISPLAY") : g_getenv("WAYLAND_DISPLAY")) +
                                        " cannot be opened"};
    return {};
}

} // namespace veyra
