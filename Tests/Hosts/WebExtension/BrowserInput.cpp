#include "Tests/Hosts/WebExtension/Browser.h"

namespace veyra::test {

namespace {

guint32 now() {
    return static_cast<guint32>(g_get_monotonic_time() / 1000);
}

} // namespace

void Browser::send(GdkEvent* event, GdkDevice* device) {
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(GTK_WIDGET(_view))));
    event->any.send_event = FALSE;
    gdk_event_set_device(event, device);
    gdk_event_set_source_device(event, device);
    gtk_main_do_event(event);
    gdk_event_free(event);
    // Let the web process see each event before the next: it drops motions that it has no time for.
    wait(0.02);
}

static GdkDevice* pointer() {
    return gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default()));
}

void Browser::touch(GdkEventType type, int finger, double x, double y) {
    GdkEvent* event = gdk_event_new(type);
    event->touch.sequence = reinterpret_cast<GdkEventSequence*>(static_cast<intptr_t>(finger));
    event->touch.emulating_pointer = FALSE;
    event->touch.time = now();
    event->touch.x = event->touch.x_root = x;
    event->touch.y = event->touch.y_root = y;
    send(event, pointer());
}

void Browser::button(GdkEventType type, double x, double y) {
    GdkEvent* event = gdk_event_new(type);
    event->button.button = 1;
    event->button.time = now();
    event->button.state = type == GDK_BUTTON_RELEASE ? GDK_BUTTON1_MASK : 0;
    event->button.x = event->button.x_root = x;
    event->button.y = event->button.y_root = y;
    send(event, pointer());
}

void Browser::motion(double x, double y, bool isPressed) {
    GdkEvent* event = gdk_event_new(GDK_MOTION_NOTIFY);
    event->motion.time = now();
    event->motion.state = isPressed ? GDK_BUTTON1_MASK : 0;
    event->motion.x = event->motion.x_root = x;
    event->motion.y = event->motion.y_root = y;
    send(event, pointer());
}

void Browser::scroll(double x, double y, double deltaY, GdkModifierType modifiers, double deltaX) {
    GdkEvent* event = gdk_event_new(GDK_SCROLL);
    event->scroll.time = now();
    event->scroll.direction = GDK_SCROLL_SMOOTH;
    event->scroll.state = modifiers;
    event->scroll.delta_x = deltaX;
    event->scroll.delta_y = deltaY;
    event->scroll.x = event->scroll.x_root = x;
    event->scroll.y = event->scroll.y_root = y;
    send(event, pointer());
}

void Browser::key(guint keyval) {
    GdkKeymapKey* keys = nullptr;
    int count = 0;
    gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gdk_display_get_default()), keyval, &keys, &count);
    for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
        GdkEvent* event = gdk_event_new(type);
        event->key.keyval = keyval;
        event->key.time = now();
        event->key.hardware_keycode = static_cast<guint16>(count ? keys[0].keycode : 0);
        send(event, gdk_seat_get_keyboard(gdk_display_get_default_seat(gdk_display_get_default())));
    }
    g_free(keys);
}

} // namespace veyra::test
