#include "Benchmarks/Pages/PageHost.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace veyra::benchmark {

namespace {

// Fields of a stat file after the name in parentheses.
std::vector<std::string> statFields(const std::filesystem::path& path) {
    std::ifstream file(path);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    std::istringstream rest(text.substr(std::min(text.size(), text.rfind(')') + 1)));
    std::vector<std::string> fields;
    for (std::string field; rest >> field;)
        fields.push_back(field);
    return fields;
}

double statSeconds(const std::filesystem::path& path) {
    const auto fields = statFields(path);
    if (fields.size() < 13)
        return 0;
    return (std::stod(fields[11]) + std::stod(fields[12])) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

std::string firstLine(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

bool isDescendantOf(const std::string& process, int ancestor) {
    for (std::string current = process; current != "0" && current != "1";) {
        const auto fields = statFields("/proc/" + current + "/stat");
        if (fields.size() < 2)
            return false;
        current = fields[1];
        if (current == std::to_string(ancestor))
            return true;
    }
    return false;
}

void turnUntil(const bool& done) {
    while (!done)
        g_main_context_iteration(nullptr, TRUE);
}

} // namespace

PageHost::PageHost(const PageOptions& options) {
    WebKitWebContext* context = webkit_web_context_new();
    if (!options.extensions.empty())
        webkit_web_context_set_web_extensions_directory(context, options.extensions.c_str());
    _view = WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context, nullptr));
    WebKitSettings* settings = webkit_web_view_get_settings(_view);
    webkit_settings_set_enable_page_cache(settings, TRUE);
    if (!options.composited) {
        webkit_settings_set_hardware_acceleration_policy(settings, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
        WebKitFeatureList* features = webkit_settings_get_all_features();
        for (gsize i = 0; i < webkit_feature_list_get_length(features); ++i) {
            WebKitFeature* feature = webkit_feature_list_get(features, i);
            if (!strcmp(webkit_feature_get_identifier(feature), "UseDamagingInformationForCompositing"))
                webkit_settings_set_feature_enabled(settings, feature, TRUE);
        }
        webkit_feature_list_unref(features);
    }
    _window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_decorated(GTK_WINDOW(_window), FALSE);
    gtk_window_set_default_size(GTK_WINDOW(_window), options.width, options.height);
    gtk_container_add(GTK_CONTAINER(_window), GTK_WIDGET(_view));
    gtk_widget_show_all(_window);
    gtk_window_move(GTK_WINDOW(_window), 0, 0);
}

PageHost::~PageHost() {
    gtk_widget_destroy(_window);
}

void PageHost::load(const std::string& uri) {
    bool done = false;
    const gulong handler =
        g_signal_connect(_view, "load-changed", G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, gpointer flag) {
                             if (event == WEBKIT_LOAD_FINISHED)
                                 *static_cast<bool*>(flag) = true;
                         }),
                         &done);
    webkit_web_view_load_uri(_view, uri.c_str());
    turnUntil(done);
    g_signal_handler_disconnect(_view, handler);
}

std::string PageHost::run(const std::string& script) {
    struct Answer {
        bool done = false;
        std::string text;
    } answer;
    const std::string body = "return JSON.stringify(await (async () => {" + script + "})()) ?? 'null'";
    webkit_web_view_call_async_javascript_function(
        _view, body.c_str(), -1, nullptr, nullptr, nullptr, nullptr,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            auto* to = static_cast<Answer*>(data);
            GError* error = nullptr;
            JSCValue* value =
                webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(view), result, &error);
            if (value) {
                char* json = jsc_value_to_string(value);
                to->text = json;
                g_free(json);
                g_object_unref(value);
            } else {
                std::cerr << "page: " << error->message << '\n';
                g_error_free(error);
            }
            to->done = true;
        },
        &answer);
    turnUntil(answer.done);
    return answer.text;
}

void PageHost::wait(double seconds) {
    bool done = false;
    g_timeout_add(
        static_cast<guint>(seconds * 1000),
        [](gpointer flag) -> gboolean {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        },
        &done);
    turnUntil(done);
}

void PageHost::send(const char* message, const std::function<void(WebKitUserMessage*)>& answer) {
    struct Waiting {
        bool done = false;
        const std::function<void(WebKitUserMessage*)>& answer;
    } waiting{false, answer};
    webkit_web_view_send_message_to_page(
        _view, webkit_user_message_new(message, nullptr), nullptr,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            auto* to = static_cast<Waiting*>(data);
            WebKitUserMessage* reply =
                webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(view), result, nullptr);
            if (reply) {
                to->answer(reply);
                g_object_unref(reply);
            }
            to->done = true;
        },
        &waiting);
    turnUntil(waiting.done);
}

std::map<std::string, uint64_t> PageHost::statistics() {
    std::map<std::string, uint64_t> numbers;
    send("veyra-statistics", [&](WebKitUserMessage* reply) {
        GVariantIter iterator;
        g_variant_iter_init(&iterator, webkit_user_message_get_parameters(reply));
        const char* key;
        GVariant* value;
        while (g_variant_iter_next(&iterator, "{&sv}", &key, &value)) {
            numbers[key] = g_variant_get_uint64(value);
            g_variant_unref(value);
        }
    });
    return numbers;
}

void PageHost::collectGarbage() {
    send("veyra-collect-garbage", [](WebKitUserMessage*) {});
}

int PageHost::webProcess() const {
    int newest = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (!std::all_of(name.begin(), name.end(), ::isdigit) || firstLine(entry.path() / "comm") != "WebKitWebProces")
            continue;
        if (isDescendantOf(name, getpid()))
            newest = std::max(newest, std::stoi(name));
    }
    return newest;
}

double processSeconds(int process) {
    return statSeconds("/proc/" + std::to_string(process) + "/stat");
}

double threadSeconds(int process, const std::string& name) {
    double seconds = 0;
    std::error_code error;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", error))
        if (firstLine(task.path() / "comm") == name)
            seconds += statSeconds(task.path() / "stat");
    return seconds;
}

double residentMegabytes(int process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    double total = 0, resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

double privateMegabytes(int process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    double kilobytes = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("Private_"))
            kilobytes += std::atof(line.c_str() + line.find(':') + 1);
    }
    return kilobytes * 1024 / 1e6;
}

double median(std::vector<double> values) {
    if (values.empty())
        return 0;
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

} // namespace veyra::benchmark
