// The hand of a user, for benchmarks: sends events of the mouse to a web view at the pace of a device. GTK's main
// thread only.
#pragma once

#include <webkit2/webkit2.h>

#include <functional>

namespace veyra::benchmark {

class PageInput {
public:
    explicit PageInput(WebKitWebView* view) : _view(GTK_WIDGET(view)) {}

    /// Drags along a curve around the middle for so many seconds, 60 motions a second.
    void drag(double seconds);
    /// Turns the wheel back and forth over the middle, 30 notches a second.
    void turnWheel(double seconds);

private:
    void send(GdkEvent* event, double x, double y);
    void pace(double seconds, unsigned perSecond, const std::function<void(double time)>& act);
    GtkWidget* const _view;
};

} // namespace veyra::benchmark
