#include "Hosts/Veyra/ConsoleMessage.h"

#include <algorithm>
#include <array>

namespace veyra {

namespace {

constexpr std::string_view mark = "CONSOLE ";

struct Message {
    std::string_view place, source, level, text;
};

bool isLevel(std::string_view word) {
    constexpr std::array<std::string_view, 12> levels{"LOG",
                                                      "INFO",
                                                      "WARN",
                                                      "ERROR",
                                                      "DEBUG",
                                                      "TRACE",
                                                      "TABLE",
                                                      "DIR",
                                                      "DIRXML",
                                                      "STARTGROUP",
                                                      "STARTGROUPCOLLAPSED",
                                                      "ENDGROUP"}; // the engine's names
    return std::find(levels.begin(), levels.end(), word) != levels.end();
}

/// Reads "[SOURCE ]LEVEL[ text]"; false when it is nothing of that kind.
bool readMessage(std::string_view rest, Message& message) {
    for (int words = 0; words < 2; ++words) {
        const size_t end = std::min(rest.find_first_of(" \n"), rest.size());
        const std::string_view word = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (isLevel(word)) {
            message.level = word;
            message.text = rest;
            return true;
        }
        message.source = word;
    }
    return false;
}

/// A place is an address without spaces.
bool readLogged(std::string_view logged, Message& message) {
    if (logged.starts_with(mark))
        return readMessage(logged.substr(mark.size()), message);
    const size_t end = logged.find(": CONSOLE ");
    if (end == std::string_view::npos || logged.substr(0, end).find_first_of(" \n") != std::string_view::npos)
        return false;
    message.place = logged.substr(0, end);
    return readMessage(logged.substr(end + 2 + mark.size()), message);
}

} // namespace

std::optional<std::string> consoleMessage(std::string_view logged) {
    Message message;
    if (!readLogged(logged, message))
        return std::nullopt;
    std::string shown = std::string(mark) + std::string(message.level);
    if (!message.text.empty())
        shown += " ";
    for (const char c : message.text) {
        shown += c;
        if (c == '\n')
            shown += "    ";
    }
    if (message.source == "JS" && !message.place.empty())
        shown += " (" + std::string(message.place) + ")";
    return shown;
}

} // namespace veyra
