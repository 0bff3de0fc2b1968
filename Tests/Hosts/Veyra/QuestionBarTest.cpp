// The bar in which `open` asks the user.
#include "Hosts/Veyra/QuestionBar.h"
#include "Hosts/Veyra/VirtualDisplay.h"

#include <gtest/gtest.h>

#include <optional>

namespace veyra::test {

namespace {

class QuestionBar : public testing::Test {
protected:
    void SetUp() override {
        static std::string problem;
        static const auto* display = VirtualDisplay::start(problem).release(); // GTK keeps its connection for ever
        ASSERT_NE(display, nullptr) << problem;
        ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
        window = gtk_offscreen_window_new();
        box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
        gtk_container_add(GTK_CONTAINER(window), box);
        gtk_widget_show_all(window);
    }
    void TearDown() override {
        if (window)
            gtk_widget_destroy(window);
    }
    void ask(std::optional<bool>& answer) {
        askInBar(GTK_BOX(box), "May it?", "_Allow", "_Deny", [&answer](bool allows) {
            EXPECT_FALSE(answer) << "answered twice";
            answer = allows;
        });
    }
    GtkInfoBar* first() {
        GList* children = gtk_container_get_children(GTK_CONTAINER(box));
        auto* bar = children ? GTK_INFO_BAR(children->data) : nullptr;
        g_list_free(children);
        return bar;
    }
    GtkWidget* window = nullptr;
    GtkWidget* box = nullptr;
};

} // namespace

TEST_F(QuestionBar, EachButtonAnswersAndTakesTheBarAway) {
    for (const bool allows : {true, false}) {
        std::optional<bool> answer;
        ask(answer);
        ASSERT_NE(first(), nullptr);
        gtk_info_bar_response(first(), allows ? GTK_RESPONSE_YES : GTK_RESPONSE_NO);
        EXPECT_EQ(answer, allows);
        EXPECT_EQ(first(), nullptr);
    }
}

TEST_F(QuestionBar, ClosingItIsANo) {
    std::optional<bool> answer;
    ask(answer);
    gtk_info_bar_response(first(), GTK_RESPONSE_CLOSE);
    EXPECT_EQ(answer, false);
}

TEST_F(QuestionBar, TheEndOfTheWindowIsANo) {
    std::optional<bool> answer;
    ask(answer);
    gtk_widget_destroy(window);
    window = nullptr;
    EXPECT_EQ(answer, false);
}

TEST_F(QuestionBar, ANewerQuestionStandsAboveAnOlderOne) {
    std::optional<bool> older, newer;
    ask(older);
    ask(newer);
    gtk_info_bar_response(first(), GTK_RESPONSE_YES);
    EXPECT_EQ(newer, true);
    EXPECT_FALSE(older);
    gtk_info_bar_response(first(), GTK_RESPONSE_NO);
    EXPECT_EQ(older, false);
}

} // namespace veyra::test
