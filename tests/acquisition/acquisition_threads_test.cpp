// The grab and callback threads against the application's threads: Abort while the grab
// thread waits, close while grabbing, a slow callback, a callback that calls back into the
// SDK or aborts, a pulled cable, and loss on the wire.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

#include "frame_collector.h"

namespace rytest {
namespace {

using namespace RYSDK;
using namespace std::chrono_literals;

class AcquisitionThreadsTest : public AcquisitionTest {};

TEST_F(AcquisitionThreadsTest, AbortFromAnotherThreadReleasesAWaitingGrabThread) {
    OpenWithCallback();
    ASSERT_EQ(camera_->SetAcquisitionTimeOut(0), RESULT_SUCCESS);  // wait without limit
    ASSERT_EQ(SetFeature("TriggerMode", "On"), RESULT_SUCCESS);
    ASSERT_EQ(SetFeature("TriggerSource", "Software"), RESULT_SUCCESS);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(camera_->WaitGrabThread(0), 0x102u);
    RESULT aborted = RESULT_ERROR;
    const auto began = std::chrono::steady_clock::now();
    std::thread other([&] { aborted = camera_->Abort(); });
    other.join();
    EXPECT_EQ(aborted, RESULT_SUCCESS);
    EXPECT_LT(std::chrono::steady_clock::now() - began, 1s);
    EXPECT_EQ(camera_->WaitGrabThread(0), 0xFFFFFFFFu);  // the handle is gone
    EXPECT_EQ(frames_.Count(), 0u);
}

TEST_F(AcquisitionThreadsTest, ASlowCallbackLosesFramesThatAreCountedAndAbortWaitsForIt) {
    OpenWithCallback(FastCamera(), &FrameCollector::Callback, 2);
    RecordedLog log;
    static std::atomic<int> lossEvents{0};
    lossEvents = 0;
    ASSERT_EQ(camera_->SetGeneralEventCallback([](EventType type) {
        if (type == EVENT_TYPE_FRAME_LOST)
            ++lossEvents;
    }),
              RESULT_SUCCESS);
    std::atomic<bool> inCallback{false};
    frames_.onFrame = [&](const IMAGE_INFO&) {
        inCallback = true;
        std::this_thread::sleep_for(60ms);
        inCallback = false;
    };
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(4, 5s));
    while (!inCallback)
        std::this_thread::yield();
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);
    // The delivery under way has returned, and none begins after Abort.
    EXPECT_FALSE(inCallback);
    const size_t atAbort = frames_.Count();
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(frames_.Count(), atAbort);
    uint64_t lost = 0;
    EXPECT_EQ(camera_->GetNumLostImage(lost), RESULT_SUCCESS);
    EXPECT_GT(lost, 0u);
    EXPECT_GT(lossEvents, 0);
    EXPECT_TRUE(log.Contains(L"Frame lost (buffer fault) on block ID"));
    for (const ReceivedFrame& frame : frames_.Frames())
        EXPECT_TRUE(frame.matchesTestImage);
}

TEST_F(AcquisitionThreadsTest, ACallbackMayReadTheCameraAndAbortIt) {
    OpenWithCallback();
    std::atomic<int> widthsRead{0};
    std::atomic<int> grabbingSeen{0};
    std::atomic<bool> abortDone{false};
    frames_.onFrame = [&](const IMAGE_INFO&) {
        int grabbing = 0;
        camera_->GetGrabCondition(grabbing);
        grabbingSeen += grabbing;
        unsigned int width = 0;
        if (camera_->GetWidth(&width) == RESULT_SUCCESS && width == 640)
            ++widthsRead;
        if (frames_.Count() == 5 && !abortDone) {
            EXPECT_EQ(camera_->Abort(), RESULT_SUCCESS);
            abortDone = true;
        }
    };
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(5, 5s));
    for (int i = 0; i < 200 && !abortDone; ++i)
        std::this_thread::sleep_for(10ms);
    ASSERT_TRUE(abortDone);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(frames_.Count(), 5u);
    EXPECT_EQ(widthsRead, 5);
    EXPECT_EQ(grabbingSeen, 5);
}

TEST_F(AcquisitionThreadsTest, ClosingWhileGrabbingEndsEveryThread) {
    for (int independent = 0; independent < 2; ++independent) {
        SCOPED_TRACE(independent ? "callback thread" : "grab thread");
        if (independent == 0)
            OpenWithCallback();
        else
            ASSERT_EQ(gige_->OpenCamera(0u, &camera_, 8, 0, 0, 0, &object_,
                                        &FrameCollector::Callback, nullptr),
                      RESULT_SUCCESS);
        camera_->UseIndependentCallback(independent);
        const size_t before = frames_.Count();
        ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
        ASSERT_TRUE(frames_.WaitFor(before + 5, 5s));
        ASSERT_EQ(gige_->CloseCamera(camera_), RESULT_SUCCESS);
        camera_ = nullptr;
        const size_t atClose = frames_.Count();
        std::this_thread::sleep_for(150ms);
        EXPECT_EQ(frames_.Count(), atClose);
    }
}

TEST_F(AcquisitionThreadsTest, APulledCableIsReportedOnceWithinTheHeartbeatBudget) {
    static std::atomic<int> reports{0};
    static DISCONNECT_INFO reported{};
    reports = 0;
    auto onDisconnect = [](OBJECT_INFO*, DISCONNECT_INFO info) {
        reported = info;
        ++reports;
    };
    OpenWithCallback(FastCamera(), &FrameCollector::Callback, 8, onDisconnect);
    ASSERT_EQ(camera_->SetHeartBeatTimeoutTryCount(2), RESULT_SUCCESS);
    int tries = 0;
    ASSERT_EQ(camera_->GetHeartBeatTimeoutTryCount(tries), RESULT_SUCCESS);
    EXPECT_EQ(tries, 2);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(5, 5s));

    ry::emulator::FaultConfig faults;
    faults.unplugged = true;
    emulator_->set_faults(faults);
    const auto pulled = std::chrono::steady_clock::now();
    while (reports == 0 && std::chrono::steady_clock::now() - pulled < 20s)
        std::this_thread::sleep_for(10ms);
    const auto waited = std::chrono::steady_clock::now() - pulled;
    ASSERT_EQ(reports, 1);
    const auto budget = std::chrono::milliseconds(uint64_t{reported.heartBeatTimeout} * tries) + 1s;
    EXPECT_LT(waited, budget);
    EXPECT_EQ(reported.heartBeatTimeoutTryCount, 2u);
    std::this_thread::sleep_for(1500ms);
    EXPECT_EQ(reports, 1);
}

// Loss injected on the stream port by the kernel's packet filter, inside this test's own
// network namespace. The packets are dropped as the camera sends them, before any receive
// path (the packet ring sees packets ahead of the input hook) could see them.
class LossyLinkTest : public AcquisitionTest {
  protected:
    bool DropStreamPackets(unsigned int percent) {
        const std::string rule =
            "nft add table inet rytest && nft add chain inet rytest output "
            "'{ type filter hook output priority 0; }' && nft add rule inet rytest output "
            "udp sport " +
            std::to_string(emulator_->stream_source_port()) + " numgen random mod 100 '<' " +
            std::to_string(percent) + " drop";
        return std::system(rule.c_str()) == 0;
    }
    void TearDown() override {
        std::system("nft delete table inet rytest 2>/dev/null");
        AcquisitionTest::TearDown();
    }
};

TEST_F(LossyLinkTest, OnePercentLossIsRepairedByResends) {
    OpenWithCallback(FastCamera(30.0), &FrameCollector::Callback, 16);
    RecordedLog log;
    if (!DropStreamPackets(1))
        GTEST_SKIP() << "nftables is not usable here";
    ASSERT_EQ(camera_->Snap(40), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(20000), 0u);
    const auto frames = frames_.Frames();
    uint64_t lost = 0;
    camera_->GetNumLostImage(lost);
    ASSERT_EQ(frames.size(), 40u) << "lost for want of a buffer: " << lost;
    for (const ReceivedFrame& frame : frames) {
        EXPECT_EQ(frame.info.bufferStatus, 0u);
        EXPECT_TRUE(frame.matchesTestImage);
    }
    uint64_t resent = 0;
    EXPECT_EQ(camera_->GetNumResendSuccessfulPackets(resent), RESULT_SUCCESS);
    unsigned int missing = 0;
    camera_->GetStreamInfo(STREAM_INFO_MISSING_PACKETS, missing);
    EXPECT_GT(resent, 0u) << "camera resent " << emulator_->packets_resent() << ", sent "
                          << emulator_->packets_sent() << ", missing " << missing;
    EXPECT_TRUE(log.Contains(L"ResendSuccessfulPkt block"));
}

TEST_F(LossyLinkTest, FivePercentLossWithoutResendsFlagsIncompleteFrames) {
    auto config = FastCamera(30.0);
    config.faults.ignore_resend = true;
    OpenWithCallback(config, &FrameCollector::Callback, 16);
    RecordedLog log;
    if (!DropStreamPackets(5))
        GTEST_SKIP() << "nftables is not usable here";
    ASSERT_EQ(camera_->Snap(30), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(30000), 0u);
    size_t incomplete = 0;
    for (const ReceivedFrame& frame : frames_.Frames()) {
        if (frame.info.bufferStatus != 0)
            ++incomplete;
        else
            EXPECT_TRUE(frame.matchesTestImage) << "a frame passed off as complete";
    }
    EXPECT_GT(incomplete, 0u);
    uint64_t corrupted = 0;
    EXPECT_EQ(camera_->GetNumCorruptedImage(corrupted), RESULT_SUCCESS);
    EXPECT_EQ(corrupted, incomplete);
    EXPECT_TRUE(log.Contains(L"MissingPkt block"));
}

}  // namespace
}  // namespace rytest
