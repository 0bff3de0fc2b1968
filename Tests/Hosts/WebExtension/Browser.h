// A small WebKitGTK application around one web view, for tests: it loads the built module from its own extensions
// folder and serves the test pages from a loopback server. One for the whole test program, on its main thread.
#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace veyra::test {

class PageServer;

struct Pixel {
    int red, green, blue;
    friend bool operator==(const Pixel&, const Pixel&) = default;
};

class Browser {
public:
    /// The view is 800 × 600 points.
    static Browser& shared();
    /// Another one, with a web process of its own, which gets the environment as it is at the first page.
    Browser();
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    /// Loads a page of the server ("/pages/…") or any other address, and waits for it.
    void load(const std::string& address);
    std::string address(const std::string& path) const;
    void goBack();
    void setBackForwardCacheEnabled(bool enabled);

    /// Runs an asynchronous function body in the page and returns its result as text. A failure of the script fails the
    /// test and returns "failed".
    std::string run(const std::string& body);

    /// Sends a user message to the page and waits for its answer; a missing answer fails the test.
    GVariant* ask(const char* message);
    /// One number of the module's statistics.
    uint64_t statistic(const char* name);
    void collectGarbage();
    /// Waits until all maps of the page are idle and on screen.
    void waitUntilIdle() { ask("veyra-when-idle"); }

    /// Runs the main loop until `condition` holds; false after `seconds`.
    static bool waitUntil(const std::function<bool()>& condition, double seconds = 10);
    static void wait(double seconds);

    /// The pixel of the page as it looks, in points of the view.
    Pixel pixelAt(int x, int y);

    // Geolocation: what the application makes of the pages' requests, and what it says where the user is.

    enum class Permission { Allow, Deny, Keep };
    void setGeolocationPermission(Permission permission) { _permission = permission; }
    /// Requests of pages so far.
    unsigned geolocationRequests() const { return _requests; }
    /// Answers those that were kept.
    void answerGeolocationRequests(bool allows);
    /// Whether a page wants to know where the user is now.
    bool isAskedWhereTheUserIs() const { return _isLocating; }
    void locate(double latitude, double longitude, double accuracy);
    void locateWithAltitude(double latitude, double longitude, double accuracy, double altitude,
                            double altitudeAccuracy);
    void failToLocate();

    // Input, as a device would send it; in points of the view.
    void touch(GdkEventType type, int finger, double x, double y);
    void button(GdkEventType type, double x, double y);
    void motion(double x, double y, bool isPressed);
    void scroll(double x, double y, double deltaY, GdkModifierType modifiers = {}, double deltaX = 0);
    void key(guint keyval);

    /// Addresses that pages wanted to open in windows of their own; they get none.
    const std::vector<std::string>& openedWindows() const { return _openedWindows; }

private:
    void send(GdkEvent* event, GdkDevice* device);
    void listenToGeolocation();

    PageServer* const _server;
    GtkWidget* _window = nullptr;
    WebKitWebView* _view = nullptr;
    bool _isLoaded = false;
    std::vector<std::string> _openedWindows;

    WebKitGeolocationManager* _locations = nullptr;
    Permission _permission = Permission::Deny;
    unsigned _requests = 0;
    std::vector<WebKitPermissionRequest*> _keptRequests;
    bool _isLocating = false;
};

} // namespace veyra::test
