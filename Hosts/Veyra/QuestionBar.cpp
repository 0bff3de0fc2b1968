#include "Hosts/Veyra/QuestionBar.h"

#include <memory>

namespace veyra {

namespace {

using Answered = std::function<void(bool)>;

void answer(GtkWidget* bar, bool isYes) {
    const std::unique_ptr<Answered> answered(static_cast<Answered*>(g_object_steal_data(G_OBJECT(bar), "answered")));
    if (answered)
        (*answered)(isYes);
}

void responded(GtkInfoBar* bar, int response, gpointer) {
    answer(GTK_WIDGET(bar), response == GTK_RESPONSE_YES);
    gtk_widget_destroy(GTK_WIDGET(bar));
}

void destroyed(GtkWidget* bar, gpointer) {
    answer(bar, false);
}

} // namespace

void askInBar(GtkBox* box, const std::string& question, const char* yes, const char* no, Answered answered) {
    GtkWidget* bar = gtk_info_bar_new_with_buttons(no, GTK_RESPONSE_NO, yes, GTK_RESPONSE_YES, nullptr);
    gtk_info_bar_set_message_type(GTK_INFO_BAR(bar), GTK_MESSAGE_QUESTION);
    GtkWidget* label = gtk_label_new(question.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_container_add(GTK_CONTAINER(gtk_info_bar_get_content_area(GTK_INFO_BAR(bar))), label);
    g_object_set_data(G_OBJECT(bar), "answered", new Answered(std::move(answered)));
    g_signal_connect(bar, "response", G_CALLBACK(responded), nullptr);
    g_signal_connect(bar, "destroy", G_CALLBACK(destroyed), nullptr);
    gtk_box_pack_start(box, bar, FALSE, FALSE, 0);
    gtk_box_reorder_child(box, bar, 0);
    gtk_widget_show_all(bar);
}

} // namespace veyra
