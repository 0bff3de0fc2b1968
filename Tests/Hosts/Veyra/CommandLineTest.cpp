#include "Tests/Hosts/Veyra/Program.h"

#include <gtest/gtest.h>

namespace veyra::test {

TEST(CommandLine, HelpNamesTheCommands) {
    const Finished help = runVeyra({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* command : {"open", "snapshot", "script", "--verbose", "--version"})
        EXPECT_NE(help.output.find(command), std::string::npos) << command;
    EXPECT_EQ(help.errors, "");
}

TEST(CommandLine, HelpOfACommandNamesItsOptions) {
    const Finished help = runVeyra({"snapshot", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--output", "--size", "--scale", "--wait-for-title", "--timeout"})
        EXPECT_NE(help.output.find(option), std::string::npos) << option;
}

TEST(CommandLine, VersionIsOneLine) {
    const Finished version = runVeyra({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "veyra 0.1.0\n");
}

TEST(CommandLine, BadArgumentsEndWithStatus2AndSayWhatIsWrong) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "A subcommand is required"},
        {{"draw"}, "A subcommand is required"},
        {{"open"}, "PAGE is required"},
        {{"open", "page.html", "--automation"}, "PAGE is required"},
        {{"snapshot", "maps.html"}, "--output is required"},
        {{"snapshot", "--output", "x.png"}, "PAGE is required"},
        {{"snapshot", "maps.html", "--output", "x.png", "--size", "0x5"},
         "--size: 0x5 is no size such as 1024x768, with sides of 1 to 16384"},
        {{"snapshot", "maps.html", "--output", "x.png", "--size", "20"},
         "--size: 20 is no size such as 1024x768, with sides of 1 to 16384"},
        {{"snapshot", "maps.html", "--output", "x.png", "--size", "20x20x20"},
         "--size: 20x20x20 is no size such as 1024x768, with sides of 1 to 16384"},
        {{"snapshot", "maps.html", "--output", "x.png", "--scale", "1.5"},
         "--scale: the scale of a page is a whole number from 1 to 8"},
        {{"snapshot", "maps.html", "--output", "x.png", "--size", "9000x10", "--scale", "2"},
         "--scale: the picture would be larger than 16384 pixels a side"},
        {{"script", "x.js", "--scale", "9"}, "--scale: the scale of a script's map is a number from 0.25 to 8"},
        {{"script", "x.js", "--timeout", "0"}, "--timeout: Value 0 not in range"},
        {{"script"}, "FILE is required"},
    };
    for (const auto& [arguments, message] : cases) {
        const Finished refused = runVeyra(arguments);
        EXPECT_EQ(refused.status, 2) << message;
        EXPECT_NE(refused.errors.find(message), std::string::npos) << refused.errors;
        EXPECT_EQ(refused.output, "");
    }
}

} // namespace veyra::test
