// A `veyra` that WebKitWebDriver drives: input as from a user's devices, in the real browser. Each object is a session
// of its own; everything ends with it.
#pragma once

#include <gio/gio.h>
#include <libsoup/soup.h>
#include <nlohmann/json.hpp>

#include <string>

namespace veyra::test {

class DrivenBrowser {
public:
    /// Starts the driver and the browser, and opens the address.
    explicit DrivenBrowser(const std::string& address);
    ~DrivenBrowser();
    DrivenBrowser(const DrivenBrowser&) = delete;
    DrivenBrowser& operator=(const DrivenBrowser&) = delete;

    /// The result of a function body in the page.
    nlohmann::json run(const std::string& body);
    /// Runs the body until it gives true; false when it does not within ten seconds.
    bool waitUntil(const std::string& body);

    // In CSS pixels of the page. A drag comes to rest before the button is released.
    void drag(int fromX, int fromY, int toX, int toY);
    void click(int x, int y);
    void wheel(int x, int y, int deltaY);
    /// Presses and releases a key, by its code in the WebDriver standard or its text.
    void key(const std::string& text);

private:
    nlohmann::json request(const char* method, const std::string& path, const nlohmann::json& body);
    nlohmann::json command(const std::string& path, const nlohmann::json& body) {
        return request("POST", "/session/" + _session + path, body);
    }
    void act(const nlohmann::json& source) { command("/actions", {{"actions", {source}}}); }
    bool waitForDriver();

    SoupSession* const _client;
    GSubprocess* _driver = nullptr;
    std::string _origin, _session;
};

} // namespace veyra::test
