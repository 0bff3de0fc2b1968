#include "Tests/Hosts/WebDriver/DrivenBrowser.h"

#include <gtest/gtest.h>

namespace veyra::test {

using nlohmann::json;

namespace {

/// A port that nobody listens at just now.
unsigned freePort() {
    GSocketListener* listener = g_socket_listener_new();
    const unsigned port = g_socket_listener_add_any_inet_port(listener, nullptr, nullptr);
    g_object_unref(listener);
    return port;
}

json moveTo(int x, int y, int milliseconds) {
    return {{"type", "pointerMove"}, {"duration", milliseconds}, {"x", x}, {"y", y}, {"origin", "viewport"}};
}

json mouse(const json& actions) {
    return {{"type", "pointer"}, {"id", "mouse"}, {"parameters", {{"pointerType", "mouse"}}}, {"actions", actions}};
}

const json press = {{"type", "pointerDown"}, {"button", 0}};
const json letGo = {{"type", "pointerUp"}, {"button", 0}};

} // namespace

DrivenBrowser::DrivenBrowser(const std::string& address) : _client(soup_session_new()) {
    const std::string port = std::to_string(freePort());
    _origin = "http://127.0.0.1:" + port;
    GSubprocessLauncher* launcher = g_subprocess_launcher_new(GSubprocessFlags(G_SUBPROCESS_FLAGS_STDOUT_SILENCE));
    g_subprocess_launcher_unsetenv(launcher, "DISPLAY"); // the browser brings one of its own
    g_subprocess_launcher_unsetenv(launcher, "WAYLAND_DISPLAY");
    _driver = g_subprocess_launcher_spawn(launcher, nullptr, "WebKitWebDriver", ("--port=" + port).c_str(), nullptr);
    g_object_unref(launcher);
    EXPECT_NE(_driver, nullptr) << "Debian package webkit2gtk-driver";
    if (!_driver || !waitForDriver())
        return;
    const json options = {{"binary", VEYRA_PROGRAM}, {"args", {"open", "--automation"}}};
    const json made =
        request("POST", "/session", {{"capabilities", {{"alwaysMatch", {{"webkitgtk:browserOptions", options}}}}}});
    _session = made.value("sessionId", "");
    EXPECT_NE(_session, "") << made.dump();
    command("/url", {{"url", address}});
}

DrivenBrowser::~DrivenBrowser() {
    if (!_session.empty())
        request("DELETE", "/session/" + _session, nullptr);
    if (_driver) {
        g_subprocess_send_signal(_driver, SIGTERM);
        g_subprocess_wait(_driver, nullptr, nullptr);
        g_object_unref(_driver);
    }
    g_object_unref(_client);
}

bool DrivenBrowser::waitForDriver() {
    for (int tries = 0; tries < 200; ++tries) {
        if (request("GET", "/status", nullptr).value("ready", false))
            return true;
        g_usleep(50000);
    }
    ADD_FAILURE() << "the driver does not answer";
    return false;
}

json DrivenBrowser::request(const char* method, const std::string& path, const json& body) {
    SoupMessage* message = soup_message_new(method, (_origin + path).c_str());
    if (!body.is_null()) {
        const std::string text = body.dump();
        GBytes* bytes = g_bytes_new(text.data(), text.size());
        soup_message_set_request_body_from_bytes(message, "application/json", bytes);
        g_bytes_unref(bytes);
    }
    GBytes* answer = soup_session_send_and_read(_client, message, nullptr, nullptr);
    json value = json::object();
    if (answer) {
        gsize size = 0;
        const auto* data = static_cast<const char*>(g_bytes_get_data(answer, &size));
        value = json::parse(data, data + size, nullptr, false).value("value", json());
        EXPECT_EQ(soup_message_get_status(message), SOUP_STATUS_OK) << path << " " << value.dump();
        g_bytes_unref(answer);
    }
    g_object_unref(message);
    return value;
}

json DrivenBrowser::run(const std::string& body) {
    return command("/execute/sync", {{"script", body}, {"args", json::array()}});
}

bool DrivenBrowser::waitUntil(const std::string& body) {
    for (int tries = 0; tries < 200; ++tries) {
        if (run(body) == true)
            return true;
        g_usleep(50000);
    }
    return false;
}

void DrivenBrowser::drag(int fromX, int fromY, int toX, int toY) {
    const json rest = {{"type", "pause"}, {"duration", 400}};
    act(mouse({moveTo(fromX, fromY, 0), press, moveTo(toX, toY, 300), rest, letGo}));
}

void DrivenBrowser::click(int x, int y) {
    act(mouse({moveTo(x, y, 0), press, letGo}));
}

void DrivenBrowser::wheel(int x, int y, int deltaY) {
    act({{"type", "wheel"},
         {"id", "wheel"},
         {"actions",
          {{{"type", "scroll"}, {"x", x}, {"y", y}, {"deltaX", 0}, {"deltaY", deltaY}, {"origin", "viewport"}}}}});
}

void DrivenBrowser::key(const std::string& text) {
    act({{"type", "key"},
         {"id", "keyboard"},
         {"actions", {{{"type", "keyDown"}, {"value", text}}, {{"type", "keyUp"}, {"value", text}}}}});
}

} // namespace veyra::test
