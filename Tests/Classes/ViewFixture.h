// A page with a map, for tests of the plug-in classes: a bare script context, and a host that runs nothing by itself.
//
// The test's one thread is the web thread, except while it runs `runMain` or `onMain`: then it is the main queue, and
// what goes to the web thread is queued. So a test knows exactly what has happened before and after each queue has run.
// Owns the page and its maps; when the test is over, every view must be gone.
#pragma once

#include "Hosts/Common/PlugInInstance.h"
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/WebKit/WebScriptObject.h"

#include <gtest/gtest.h>

#include <list>

namespace veyra {

class ViewFixture : public testing::Test {
protected:
    ViewFixture();
    ~ViewFixture() override;
    void TearDown() override;

    // Queues.

    /// Runs the block as the main queue would.
    static void onMain(const Block& block);
    /// Runs what is queued on the main queue, until nothing is left.
    static void runMain();
    /// Runs the main queue, and waits for what arrives there from elsewhere, until the condition holds; false when it
    /// does not within some seconds.
    static bool runMainUntil(const std::function<bool()>& condition);
    /// Runs what is queued on the web thread, until nothing is left.
    static void runWeb();
    /// Runs both in turn until events have been delivered and what they asked for is done.
    static void settle();

    // The page.

    /// The text of the script's result, or "threw: " and the exception's.
    std::string run(const std::string& script);
    JSValueRef evaluate(const std::string& script, JSValueRef* exception = nullptr);
    /// The script's result as native code gets it.
    id native(const std::string& script) { return context->toNative(evaluate(script)); }
    /// What the page's console was told, one error a line.
    std::string consoleErrors() { return run("errors.join('\\n')"); }
    /// Makes a global function that runs the block.
    void defineFunction(const char* name, Block block);
    /// Assigns a listener to `map` whose methods note event names and arguments, as JSON, in the global array `events`.
    void record();
    /// The noted events, one a line; forgets them.
    std::string recorded();
    void collectGarbage();

    // Maps.

    /// Makes and starts a view in a window of no size, and shows it to the page as a global object of that name.
    std::shared_ptr<PlugInInstance> makeMap(const std::string& name = "map");
    /// The script object of that name stands for the view.
    void expose(const std::string& name, const std::shared_ptr<PlugInInstance>& instance);
    /// Stops the map of that script object as a host does whose page takes it away.
    void takeAway(const std::string& name);
    /// The first map made.
    PlugInInstance& instance() { return *_maps.front().instance; }
    VeyraView& view() { return *instance().view(); }
    MKMapView& mapView() { return *view().mapView(); }
    /// Gives the first map's window a size, in points, and so the map its first layout.
    void layOut(double width = 320, double height = 480);
    /// Plug-in arguments with this page's container, as a host makes them.
    std::shared_ptr<const NSDictionary> arguments() const;

    JSGlobalContextRef global;
    std::shared_ptr<ScriptContext> context;
    std::shared_ptr<WebFrame> frame;

private:
    struct ShownMap {
        JSObjectRef object; // protected
        std::shared_ptr<PlugInInstance> instance;
    };
    static SelfSharingObject* resolve(JSContextRef, JSObjectRef object);
    JSObjectRef setGlobal(const std::string& name, JSObjectRef object);

    static std::vector<ShownMap> _maps; // of the running test
    std::list<Block> _functions;
};

/// Latitude and longitude, for comparisons.
inline std::pair<double, double> degrees(CLLocationCoordinate2D coordinate) {
    return {coordinate.latitude, coordinate.longitude};
}

/// A fixture whose page has one map, named "map", in a window of no size.
class MapFixture : public ViewFixture {
protected:
    MapFixture() { makeMap(); }
};

/// The same with a map of 320 × 480 points that shows the world around 0, 0 and has reported it.
class ShownMapFixture : public MapFixture {
protected:
    ShownMapFixture() {
        layOut();
        onMain([&] { mapView().setRegion({{0, 0}, {20, 20}}); });
        settle();
    }
};

} // namespace veyra
