#include "Hosts/Veyra/ConsoleMessage.h"

#include <gtest/gtest.h>

namespace veyra {

TEST(ConsoleMessage, DropsPlaceAndSource) {
    EXPECT_EQ(consoleMessage("file:///a/b.html:3:14: CONSOLE LOG hello there"), "CONSOLE LOG hello there");
    EXPECT_EQ(consoleMessage("http://x/:1:2: CONSOLE NETWORK ERROR no: such CONSOLE thing"),
              "CONSOLE ERROR no: such CONSOLE thing");
    EXPECT_EQ(consoleMessage("CONSOLE WARN without a place"), "CONSOLE WARN without a place");
}

TEST(ConsoleMessage, KeepsThePlaceOfWhatTheScriptEngineRaised) {
    EXPECT_EQ(consoleMessage("file:///p.html:1:9: CONSOLE JS ERROR TypeError: x"),
              "CONSOLE ERROR TypeError: x (file:///p.html:1:9)");
}

TEST(ConsoleMessage, IndentsFurtherLines) {
    EXPECT_EQ(consoleMessage("p:1:1: CONSOLE INFO a\nb\n\nc"), "CONSOLE INFO a\n    b\n    \n    c");
}

TEST(ConsoleMessage, MayHaveNoText) {
    EXPECT_EQ(consoleMessage("p:1:1: CONSOLE LOG"), "CONSOLE LOG");
    EXPECT_EQ(consoleMessage("p:1:1: CONSOLE LOG "), "CONSOLE LOG");
}

TEST(ConsoleMessage, HasOtherWordsForSpecialMessages) {
    EXPECT_EQ(consoleMessage("p:1:1: CONSOLE TABLE 1,2"), "CONSOLE TABLE 1,2");
    EXPECT_EQ(consoleMessage("p:1:1: CONSOLE DIR [object Object]"), "CONSOLE DIR [object Object]");
    EXPECT_EQ(consoleMessage("p:1:1: CONSOLE STARTGROUP g"), "CONSOLE STARTGROUP g");
}

TEST(ConsoleMessage, IsNothingElse) {
    EXPECT_EQ(consoleMessage("** Message: 10:00: log: CONSOLE"), std::nullopt);
    EXPECT_EQ(consoleMessage("** Message: CONSOLE LOG x"), std::nullopt);
    EXPECT_EQ(consoleMessage("CONSOLE of a game"), std::nullopt);
    EXPECT_EQ(consoleMessage(""), std::nullopt);
}

} // namespace veyra
