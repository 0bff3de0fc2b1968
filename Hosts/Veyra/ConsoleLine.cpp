#include "Hosts/Veyra/ConsoleLine.h"

#include <array>
#include <vector>

namespace veyra {

namespace {

constexpr std::string_view mark = "CONSOLE ";

bool isLevel(std::string_view word) {
    constexpr std::array<std::string_view, 7> levels{"LOG", "INFO", "WARN", "ERROR", "DEBUG", "TRACE", "TABLE"};
    for (const std::string_view level : levels)
        if (word == level)
            return true;
    return false;
}

struct Message {
    std::string_view place, source, level, text;
};

/// Reads "[SOURCE ]LEVEL[ text]"; false when it is nothing of that kind.
bool readMessage(std::string_view rest, Message& message) {
    for (int words = 0; words < 2; ++words) {
        const size_t end = std::min(rest.find(' '), rest.size());
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
bool readLine(std::string_view line, Message& message) {
    if (line.starts_with(mark))
        return readMessage(line.substr(mark.size()), message);
    const size_t end = line.find(": CONSOLE ");
    if (end == std::string_view::npos || line.substr(0, end).find(' ') != std::string_view::npos)
        return false;
    message.place = line.substr(0, end);
    return readMessage(line.substr(end + 2 + mark.size()), message);
}

} // namespace

std::string consoleLine(std::string_view engineLine) {
    Message message;
    if (!readLine(engineLine, message))
        return "    " + std::string(engineLine);
    std::string shown = std::string(mark) + std::string(message.level);
    if (!message.text.empty())
        shown += " " + std::string(message.text);
    if (message.source == "JS" && !message.place.empty())
        shown += " (" + std::string(message.place) + ")";
    return shown;
}

} // namespace veyra
