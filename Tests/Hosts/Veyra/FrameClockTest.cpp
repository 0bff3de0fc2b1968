#include "Hosts/Veyra/FrameClock.h"

#include <gtest/gtest.h>

namespace veyra {

TEST(FrameClock, BeatsSixtyTimesASecondFromItsStart) {
    EXPECT_NEAR(secondsToNextFrame(100, 100.005), 1.0 / 60 - 0.005, 1e-9);
    EXPECT_NEAR(secondsToNextFrame(100, 100 + 10.25 / 60), 0.75 / 60, 1e-9);
}

TEST(FrameClock, LeavesOutABeatThatIsAllButOver) {
    EXPECT_NEAR(secondsToNextFrame(0, 1.0 / 60 - 1e-6), 1.0 / 60 + 1e-6, 1e-9);
    EXPECT_NEAR(secondsToNextFrame(0, 0), 1.0 / 60, 1e-9);
}

} // namespace veyra
