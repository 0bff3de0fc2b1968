#include "Hosts/Veyra/ConsoleOutput.h"

#include "Hosts/Veyra/ConsoleMessage.h"

#include <glib-unix.h>

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace veyra {

namespace {

constexpr size_t longestRecord = 256 * 1024;

void writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count <= 0)
            return; // nobody reads it any more
        text.remove_prefix(static_cast<size_t>(count));
    }
}

} // namespace

ConsoleOutput::ConsoleOutput() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return; // the engine's own lines go to standard error then
    std::fflush(stderr);
    _standardError = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    _reading = ends[0];
    fcntl(_reading, F_SETFL, O_NONBLOCK);
    _source = g_unix_fd_add(
        _reading, G_IO_IN,
        [](gint, GIOCondition, gpointer self) -> gboolean {
            static_cast<ConsoleOutput*>(self)->drain();
            return G_SOURCE_CONTINUE;
        },
        this);
}

ConsoleOutput::~ConsoleOutput() {
    if (_reading < 0)
        return;
    drain();
    if (!_begun.empty())
        show(_begun);
    g_source_remove(_source);
    dup2(_standardError, STDERR_FILENO);
    close(_standardError);
    close(_reading);
}

void ConsoleOutput::drain() {
    std::vector<char> record(longestRecord);
    ssize_t count = 0;
    while (_reading >= 0 && (count = read(_reading, record.data(), record.size())) > 0) {
        _begun.append(record.data(), static_cast<size_t>(count));
        if (_begun.back() == '\n') {
            show(std::string_view(_begun).substr(0, _begun.size() - 1));
            _begun.clear();
        }
    }
}

void ConsoleOutput::show(std::string_view logged) const {
    if (const auto message = consoleMessage(logged))
        writeAll(STDOUT_FILENO, *message + "\n");
    else
        writeAll(_standardError, std::string(logged) + "\n");
}

} // namespace veyra
