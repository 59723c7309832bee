#include "frame_tally.h"

#include <gtest/gtest.h>

namespace ry::gev::tools {
namespace {

TEST(FrameTally, CountsFramesBytesAndGaps) {
    FrameTally tally;
    EXPECT_EQ(tally.Figures().lost, 0u);  // nothing seen, nothing lost
    tally.Add(10, true, 100);
    tally.Add(11, false, 40);
    tally.Add(14, true, 100);  // 12 and 13 never came
    const auto figures = tally.Figures();
    EXPECT_EQ(figures.frames, 3u);
    EXPECT_EQ(figures.incomplete, 1u);
    EXPECT_EQ(figures.bytes, 240u);
    EXPECT_EQ(figures.completeBytes, 200u);
    EXPECT_EQ(figures.lost, 2u);
}

TEST(FrameTally, ShortIdsWrapFrom65535ToOne) {
    FrameTally tally;
    tally.Add(65534, true, 1);
    tally.Add(65535, true, 1);
    tally.Add(1, true, 1);
    tally.Add(3, true, 1);  // 2 lost after the wrap
    EXPECT_EQ(tally.Figures().lost, 1u);
    // A long run keeps counting across several laps.
    FrameTally laps;
    uint64_t id = 1;
    for (int i = 0; i < 3 * 65535; ++i) {
        if (i % 1000 != 999)
            laps.Add(id, true, 1);
        id = id == 65535 ? 1 : id + 1;
    }
    EXPECT_EQ(laps.Figures().lost, 3u * 65535 / 1000);
}

TEST(FrameTally, LateAndRepeatedFramesNeitherHideNorInventLosses) {
    FrameTally tally;
    tally.Add(5, true, 1);
    tally.Add(8, true, 1);
    tally.Add(6, false, 1);  // delivered after 8: fills its gap
    tally.Add(1, false, 1);  // older than the first one seen: a frame, but no span
    tally.Add(8, false, 1);  // the same id again does not stand in for 7
    EXPECT_EQ(tally.Figures().lost, 1u);
    EXPECT_EQ(tally.Figures().frames, 5u);
    EXPECT_EQ(tally.Figures().incomplete, 3u);
}

TEST(FrameTally, ExtendedIdsRunPast65535WithoutALap) {
    FrameTally tally;
    tally.Add(65534, true, 1);
    tally.Add(65535, true, 1);
    tally.Add(65537, true, 1);  // 65536 lost; no jump back to 1 with 64-bit ids
    tally.Add(0x1'0000'0000ull, true, 1);
    EXPECT_EQ(tally.Figures().lost, 0x1'0000'0000ull - 65534 + 1 - 4);
}

}  // namespace
}  // namespace ry::gev::tools
