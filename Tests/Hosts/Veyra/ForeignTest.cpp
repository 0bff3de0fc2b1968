#include "Tests/Hosts/Veyra/Program.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace veyra::test {

TEST(ForeignApplication, ShowsMapsWithNothingButTheModule) {
    const TemporaryFolder modules, pictures;
    std::filesystem::copy_file(VEYRA_MODULE, modules.file("veyra-web-extension.so"));
    const std::string picture = pictures.file("page.png");
    const Finished ended =
        runProgram({"xvfb-run", "-a", VEYRA_FOREIGN, modules.file(""), "file://" VEYRA_DATA "/foreign.html", picture});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    const Picture page(picture);
    EXPECT_TRUE(page.isWater(20, 100));
    EXPECT_TRUE(page.isLand(140, 100));
    EXPECT_EQ(page.at(200, 100), 0x010203u);
}

} // namespace veyra::test
