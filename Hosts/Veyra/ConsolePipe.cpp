#include "Hosts/Veyra/ConsolePipe.h"

#include "Hosts/Veyra/ConsoleLine.h"

#include <glib-unix.h>

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace veyra {

ConsolePipe::ConsolePipe() {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        return; // the engine's own lines go to standard output then
    std::fflush(stdout);
    _terminal = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(pipe[1], STDOUT_FILENO);
    close(pipe[1]);
    _reading = pipe[0];
    fcntl(_reading, F_SETFL, O_NONBLOCK);
    _source = g_unix_fd_add(
        _reading, G_IO_IN,
        [](gint, GIOCondition, gpointer self) -> gboolean {
            static_cast<ConsolePipe*>(self)->drain();
            return G_SOURCE_CONTINUE;
        },
        this);
}

ConsolePipe::~ConsolePipe() {
    if (_reading < 0)
        return;
    drain();
    if (!_line.empty())
        show(_line);
    g_source_remove(_source);
    close(_reading);
    dup2(_terminal, STDOUT_FILENO);
    close(_terminal);
}

void ConsolePipe::drain() {
    std::array<char, 65536> bytes;
    ssize_t count = 0;
    while (_reading >= 0 && (count = read(_reading, bytes.data(), bytes.size())) > 0) {
        for (const char c : std::string_view(bytes.data(), static_cast<size_t>(count))) {
            if (c != '\n') {
                _line += c;
                continue;
            }
            show(_line);
            _line.clear();
        }
    }
}

void ConsolePipe::show(const std::string& line) const {
    const std::string shown = consoleLine(line) + "\n";
    for (size_t written = 0; written < shown.size();) {
        const ssize_t count = write(_terminal, shown.data() + written, shown.size() - written);
        if (count <= 0)
            return; // nobody reads it any more
        written += static_cast<size_t>(count);
    }
}

} // namespace veyra
