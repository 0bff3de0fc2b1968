#include "Benchmarks/Pages/PageInput.h"

#include <cmath>

namespace veyra::benchmark {

namespace {

constexpr double middleX = 512, middleY = 384;

double seconds() {
    return static_cast<double>(g_get_monotonic_time()) / G_USEC_PER_SEC;
}

} // namespace

void PageInput::send(GdkEvent* event, double x, double y) {
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(_view)));
    GdkDevice* pointer = gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default()));
    gdk_event_set_device(event, pointer);
    gdk_event_set_source_device(event, pointer);
    const auto time = static_cast<guint32>(g_get_monotonic_time() / 1000);
    if (event->type == GDK_MOTION_NOTIFY) {
        event->motion.x = event->motion.x_root = x;
        event->motion.y = event->motion.y_root = y;
        event->motion.time = time;
    } else if (event->type == GDK_SCROLL) {
        event->scroll.x = event->scroll.x_root = x;
        event->scroll.y = event->scroll.y_root = y;
        event->scroll.time = time;
    } else {
        event->button.x = event->button.x_root = x;
        event->button.y = event->button.y_root = y;
        event->button.time = time;
        event->button.button = 1;
    }
    gtk_main_do_event(event);
    gdk_event_free(event);
}

void PageInput::pace(double length, unsigned perSecond, const std::function<void(double)>& act) {
    struct Pace {
        const std::function<void(double)>& act;
        double start;
    } pace{act, seconds()};
    const auto beat = [](gpointer data) -> gboolean {
        const auto* running = static_cast<Pace*>(data);
        running->act(seconds() - running->start);
        return G_SOURCE_CONTINUE;
    };
    const guint source = g_timeout_add_full(G_PRIORITY_HIGH, 1000 / perSecond, beat, &pace, nullptr);
    while (seconds() - pace.start < length)
        g_main_context_iteration(nullptr, TRUE);
    g_source_remove(source);
}

void PageInput::drag(double length) {
    send(gdk_event_new(GDK_BUTTON_PRESS), middleX, middleY);
    pace(length, 60, [this](double time) {
        GdkEvent* motion = gdk_event_new(GDK_MOTION_NOTIFY);
        motion->motion.state = GDK_BUTTON1_MASK;
        send(motion, middleX + 300 * std::sin(time * 3), middleY + 200 * std::sin(time * 2));
    });
    GdkEvent* release = gdk_event_new(GDK_BUTTON_RELEASE);
    release->button.state = GDK_BUTTON1_MASK;
    send(release, middleX, middleY);
}

void PageInput::turnWheel(double length) {
    pace(length, 30, [this](double time) {
        GdkEvent* scroll = gdk_event_new(GDK_SCROLL);
        scroll->scroll.direction = GDK_SCROLL_SMOOTH;
        scroll->scroll.delta_y = std::fmod(time, 2) < 1 ? -0.2 : 0.2;
        send(scroll, middleX, middleY);
    });
}

} // namespace veyra::benchmark
