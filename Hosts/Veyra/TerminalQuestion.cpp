#include "Hosts/Veyra/TerminalQuestion.h"

#include <deque>
#include <gio/gunixinputstream.h>
#include <unistd.h>

namespace veyra {

namespace {

struct Question {
    std::string text;
    std::function<void(bool)> answered;
};

// The first is the one that is being asked.
std::deque<Question>& questions() {
    static auto* list = new std::deque<Question>;
    return *list;
}

GDataInputStream* standardInput() {
    static GDataInputStream* stream = [] {
        GInputStream* input = g_unix_input_stream_new(STDIN_FILENO, FALSE);
        GDataInputStream* lines = g_data_input_stream_new(input);
        g_object_unref(input);
        return lines;
    }();
    return stream;
}

void putFirst();

void lineRead(GObject* stream, GAsyncResult* result, gpointer) {
    gchar* line = g_data_input_stream_read_line_finish(G_DATA_INPUT_STREAM(stream), result, nullptr, nullptr);
    const bool isYes = line && (line[0] == 'y' || line[0] == 'Y');
    g_free(line);
    const auto answered = std::move(questions().front().answered);
    questions().pop_front();
    if (!questions().empty())
        putFirst();
    answered(isYes);
}

void putFirst() {
    g_printerr("%s [y/N] ", questions().front().text.c_str());
    g_data_input_stream_read_line_async(standardInput(), G_PRIORITY_DEFAULT, nullptr, lineRead, nullptr);
}

} // namespace

void askInTerminal(const std::string& question, std::function<void(bool)> answered) {
    questions().push_back({question, std::move(answered)});
    if (questions().size() == 1)
        putFirst();
}

} // namespace veyra
