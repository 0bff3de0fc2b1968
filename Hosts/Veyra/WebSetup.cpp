#include "Hosts/Veyra/WebSetup.h"

#include "Hosts/Veyra/SoftwareRendering.h"

#include <array>
#include <climits>
#include <filesystem>
#include <unistd.h>

namespace veyra {

namespace {

constexpr const char* moduleName = "veyra-web-extension.so";

std::string programFolder() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    const std::string_view program(path.data(), length > 0 ? static_cast<size_t>(length) : 0);
    return std::string(program.substr(0, program.rfind('/')));
}

void enableFeature(WebKitSettings* settings, std::string_view identifier) {
    WebKitFeatureList* features = webkit_settings_get_all_features();
    for (gsize i = 0; i < webkit_feature_list_get_length(features); ++i) {
        WebKitFeature* feature = webkit_feature_list_get(features, i);
        if (identifier == webkit_feature_get_identifier(feature))
            webkit_settings_set_feature_enabled(settings, feature, TRUE);
    }
    webkit_feature_list_unref(features);
}

// Without a graphics device, compositing by OpenGL takes several times the work of painting.
void chooseFastWayToScreen(WebKitSettings* settings) {
    if (rendersInSoftware())
        webkit_settings_set_hardware_acceleration_policy(settings, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    enableFeature(settings, "UseDamagingInformationForCompositing");
}

} // namespace

std::string extensionFolder() {
    for (const char* relative : {"../lib/web-extensions", VEYRA_INSTALLED_EXTENSIONS}) {
        const std::string folder = programFolder() + "/" + relative;
        if (access((folder + "/" + moduleName).c_str(), R_OK) == 0)
            return folder;
    }
    return "";
}

std::unique_ptr<WebContext> WebContext::make(Outcome& problem) {
    const std::string modules = extensionFolder();
    if (modules.empty()) {
        problem = {ExitStatus::Failed, std::string("the plug-in ") + moduleName + " is missing; it belongs in " +
                                           programFolder() + "/" + VEYRA_INSTALLED_EXTENSIONS};
        return nullptr;
    }
    gchar* folder = g_dir_make_tmp("veyra-XXXXXX", nullptr);
    if (!folder) {
        problem = {ExitStatus::Failed, std::string("cannot write to ") + g_get_tmp_dir()};
        return nullptr;
    }
    WebKitWebsiteDataManager* storage =
        webkit_website_data_manager_new("base-data-directory", folder, "base-cache-directory", folder, nullptr);
    WebKitWebContext* context = webkit_web_context_new_with_website_data_manager(storage);
    g_object_unref(storage);
    webkit_web_context_set_web_extensions_directory(context, modules.c_str());
    std::unique_ptr<WebContext> made(new WebContext(context, folder));
    g_free(folder);
    return made;
}

WebContext::~WebContext() {
    g_object_unref(_context);
    // The engine's processes end a moment later, and may write until then.
    for (int tries = 0; tries < 20; ++tries) {
        std::error_code ignored;
        std::filesystem::remove_all(_storage, ignored);
        g_usleep(10000);
        if (!std::filesystem::exists(_storage, ignored))
            return;
    }
}

WebKitWebView* makeWebView(WebKitWebContext* context, bool isAutomated) {
    WebKitSettings* settings = webkit_settings_new();
    webkit_settings_set_enable_write_console_messages_to_stdout(settings, TRUE);
    webkit_settings_set_enable_developer_extras(settings, TRUE);
    chooseFastWayToScreen(settings);
    auto* view = WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context, "settings", settings,
                                              "is-controlled-by-automation", isAutomated, nullptr));
    g_object_unref(settings);
    return view;
}

std::string addressOfPage(const std::string& argument) {
    const char* scheme = g_uri_peek_scheme(argument.c_str());
    if (scheme && access(argument.c_str(), F_OK) != 0)
        return argument;
    GFile* file = g_file_new_for_path(argument.c_str());
    gchar* address = g_file_get_uri(file);
    const std::string result = address;
    g_free(address);
    g_object_unref(file);
    return result;
}

std::string loadProblem(const char* address, const GError* error) {
    if (g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) ||
        g_error_matches(error, WEBKIT_POLICY_ERROR, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE))
        return "";
    return std::string("cannot load ") + address + ": " + error->message;
}

} // namespace veyra
