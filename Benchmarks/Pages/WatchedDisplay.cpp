#include "Benchmarks/Pages/WatchedDisplay.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace veyra::benchmark {

WatchedDisplay::WatchedDisplay() {
    char name[] = "/tmp/veyra-benchmark-XXXXXX";
    _folder = mkdtemp(name);
    int ends[2];
    if (pipe(ends) != 0)
        exit(1);
    const std::string number = std::to_string(ends[1]);
    const char* arguments[] = {"Xvfb",   "-displayfd",    number.c_str(), "-screen", "0",    "1280x1024x24",
                               "-fbdir", _folder.c_str(), "-nolisten",    "tcp",     nullptr};
    if (posix_spawnp(&_process, "Xvfb", nullptr, nullptr, const_cast<char**>(arguments), environ) != 0) {
        std::cerr << "Xvfb cannot be started; install the package xvfb\n";
        exit(1);
    }
    close(ends[1]);
    char display[16] = ":";
    if (read(ends[0], display + 1, sizeof display - 2) <= 0)
        exit(1);
    close(ends[0]);
    display[strcspn(display, "\n")] = 0;
    setenv("DISPLAY", display, 1);
}

WatchedDisplay::~WatchedDisplay() {
    kill(_process, SIGTERM);
    waitpid(_process, nullptr, 0);
    std::filesystem::remove_all(_folder);
}

} // namespace veyra::benchmark
