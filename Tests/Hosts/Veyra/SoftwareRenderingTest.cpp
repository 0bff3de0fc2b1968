#include "Hosts/Veyra/SoftwareRendering.h"

#include <gtest/gtest.h>

namespace veyra {

TEST(SoftwareRendering, KnowsRenderersThatRunOnTheProcessor) {
    EXPECT_TRUE(isSoftwareRenderer("llvmpipe (LLVM 15.0.6, 256 bits)"));
    EXPECT_TRUE(isSoftwareRenderer("softpipe"));
    EXPECT_TRUE(isSoftwareRenderer("Google SwiftShader"));
    EXPECT_TRUE(isSoftwareRenderer("")); // none at all
    EXPECT_FALSE(isSoftwareRenderer("Mesa Intel(R) UHD Graphics 620 (KBL GT2)"));
    EXPECT_FALSE(isSoftwareRenderer("NVIDIA GeForce RTX 3060/PCIe/SSE2"));
}

} // namespace veyra
