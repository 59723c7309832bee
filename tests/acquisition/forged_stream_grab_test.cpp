// A grab through the SDK while forged GVSP packets arrive at its stream port, from another
// address and from another port of the camera's own address: every frame the application
// gets is the camera's, whole and in order, and no counter is disturbed.
#include <gtest/gtest.h>

#include <cstdlib>

#include "frame_collector.h"
#include "hostile_device.h"

namespace rytest {
namespace {

using namespace RYSDK;
using namespace std::chrono_literals;

constexpr uint32_t kHostLoopback = 0x7F000001;

TEST_F(AcquisitionTest, AGrabKeepsItsFramesWhileForgedPacketsArrive) {
    OpenWithCallback(FastCamera(100.0), &FrameCollector::Callback, 16);
    char port[32] = {};
    uint64_t size = sizeof(port);
    ASSERT_EQ(camera_->GetCustomCommand("GevSCPHostPort", port, &size), RESULT_SUCCESS);
    const ry::emulator::hostile::ForgedStream forged({"127.0.0.2", "127.0.0.3"}, kHostLoopback,
                                                     static_cast<uint16_t>(std::atoi(port)));
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(50, 10s));
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);
    EXPECT_GT(forged.packets_sent(), 1000u);

    // A slow build (a sanitizer's) may run out of buffers now and then: every block id the
    // application did not see must then be a frame counted as lost, none a forgery's victim.
    const auto frames = frames_.Frames();
    uint64_t skipped = 0;
    for (size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i].info.bufferStatus, 0u) << "block " << frames[i].info.blockId;
        EXPECT_TRUE(frames[i].matchesTestImage) << "block " << frames[i].info.blockId;
        if (i > 0) {
            ASSERT_GT(frames[i].info.blockId, frames[i - 1].info.blockId);
            skipped += frames[i].info.blockId - frames[i - 1].info.blockId - 1;
        }
    }
    uint64_t value = 1;
    EXPECT_EQ(camera_->GetNumCorruptedImage(value), RESULT_SUCCESS);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(camera_->GetNumLostImage(value), RESULT_SUCCESS);
    EXPECT_GE(value, skipped);
    unsigned int missing = 1;
    EXPECT_EQ(camera_->GetStreamInfo(STREAM_INFO_MISSING_PACKETS, missing), RESULT_SUCCESS);
    EXPECT_EQ(missing, 0u);
}

}  // namespace
}  // namespace rytest
