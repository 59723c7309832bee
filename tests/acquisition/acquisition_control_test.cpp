// Acquisition against the emulated camera: each acquisition mode, every pixel format the
// camera offers, the software trigger, polling, the queue manager, the callback thread and
// the older register-driven generation. Every delivered frame is compared byte for byte
// with the emulator's test image.
#include <gtest/gtest.h>

#include <thread>

#include "frame_collector.h"

namespace rytest {
namespace {

using namespace RYSDK;
using namespace std::chrono_literals;

constexpr uint32_t kNoGrabThread = 0xFFFFFFFF;
constexpr uint32_t kThreadEnded = 0;

void ExpectAllMatch(const std::vector<ReceivedFrame>& frames) {
    for (const ReceivedFrame& frame : frames) {
        EXPECT_TRUE(frame.matchesTestImage) << "block " << frame.info.blockId;
        EXPECT_EQ(frame.info.bufferStatus, 0u) << "block " << frame.info.blockId;
        EXPECT_EQ(frame.info.result, RESULT_SUCCESS);
    }
}

TEST_F(AcquisitionTest, SnapDeliversTheFramesAskedAndEndsByItself) {
    OpenWithCallback();
    EXPECT_EQ(camera_->WaitGrabThread(0), kNoGrabThread);
    ASSERT_EQ(camera_->Snap(5), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(5000), kThreadEnded);
    const auto frames = frames_.Frames();
    ASSERT_EQ(frames.size(), 5u);
    ExpectAllMatch(frames);
    EXPECT_EQ(frames[0].info.width, 640u);
    EXPECT_EQ(frames[0].info.height, 480u);
    EXPECT_EQ(frames[0].info.pixelFormat, PIXEL_FORMAT(0x01080001));
    for (size_t i = 1; i < frames.size(); ++i)
        EXPECT_EQ(frames[i].info.blockId, frames[i - 1].info.blockId + 1);
    int grabbing = 1;
    EXPECT_EQ(camera_->GetGrabCondition(grabbing), RESULT_SUCCESS);
    EXPECT_EQ(grabbing, 0);
    uint64_t delivered = 0;
    EXPECT_EQ(camera_->GetNumDeliveredFrame(delivered), RESULT_SUCCESS);
    EXPECT_EQ(delivered, 5u);
}

TEST_F(AcquisitionTest, ContinuousHonoursTheFrameCountWhenAskedTo) {
    OpenWithCallback();
    ASSERT_EQ(SetFeature("AcquisitionFrameCount", "4"), RESULT_SUCCESS);
    ASSERT_EQ(camera_->AcquisitionModeOpt(1), RESULT_SUCCESS);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(5000), kThreadEnded);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(frames_.Count(), 4u);
    ExpectAllMatch(frames_.Frames());
}

TEST_F(AcquisitionTest, ContinuousGrabStopsAtAbortAndNothingArrivesAfterIt) {
    OpenWithCallback();
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    int grabbing = 0;
    camera_->GetGrabCondition(grabbing);
    EXPECT_EQ(grabbing, 1);
    ASSERT_TRUE(frames_.WaitFor(20, 5s));
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);
    const size_t atAbort = frames_.Count();
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(frames_.Count(), atAbort);
    ExpectAllMatch(frames_.Frames());
    camera_->GetGrabCondition(grabbing);
    EXPECT_EQ(grabbing, 0);
    // A second acquisition on the same camera works as the first did.
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    EXPECT_TRUE(frames_.WaitFor(atAbort + 10, 5s));
    EXPECT_EQ(camera_->Abort(), RESULT_SUCCESS);
}

TEST_F(AcquisitionTest, EveryPixelFormatTheCameraOffersArrivesIntact) {
    OpenWithCallback();
    unsigned int count = 0;
    ASSERT_EQ(camera_->GetPixelFormatLineupNum(&count), RESULT_SUCCESS);
    ASSERT_GT(count, 3u);
    for (unsigned int i = 0; i < count; ++i) {
        PIXEL_FORMAT format{};
        ASSERT_EQ(camera_->GetPixelFormatLineup(i, &format), RESULT_SUCCESS);
        SCOPED_TRACE(testing::Message() << "format 0x" << std::hex << format);
        ASSERT_EQ(camera_->ChangeBufferFormat(4, 320, 240, format), RESULT_SUCCESS);
        const size_t before = frames_.Count();
        ASSERT_EQ(camera_->Snap(2), RESULT_SUCCESS);
        ASSERT_EQ(camera_->WaitGrabThread(5000), kThreadEnded);
        const auto frames = frames_.Frames();
        ASSERT_EQ(frames.size(), before + 2);
        for (size_t f = before; f < frames.size(); ++f) {
            EXPECT_EQ(frames[f].info.pixelFormat, format);
            EXPECT_TRUE(frames[f].matchesTestImage);
        }
    }
}

TEST_F(AcquisitionTest, SoftwareTriggerGivesOneFramePerTrigger) {
    OpenWithCallback();
    ASSERT_EQ(SetFeature("TriggerMode", "On"), RESULT_SUCCESS);
    ASSERT_EQ(SetFeature("TriggerSource", "Software"), RESULT_SUCCESS);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(frames_.Count(), 0u);
    for (size_t trigger = 1; trigger <= 3; ++trigger) {
        ASSERT_EQ(camera_->SetTriggerSoftware(), RESULT_SUCCESS);
        ASSERT_TRUE(frames_.WaitFor(trigger, 2s));
    }
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(frames_.Count(), 3u);
    ExpectAllMatch(frames_.Frames());
    EXPECT_EQ(camera_->Abort(), RESULT_SUCCESS);
}

TEST_F(AcquisitionTest, ATimeOutEndsTheGrabThreadAndStopsTheCamera) {
    OpenWithCallback();
    ASSERT_EQ(camera_->SetAcquisitionTimeOut(1000), RESULT_SUCCESS);
    ASSERT_EQ(SetFeature("TriggerMode", "On"), RESULT_SUCCESS);
    ASSERT_EQ(SetFeature("TriggerSource", "Software"), RESULT_SUCCESS);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    EXPECT_EQ(camera_->WaitGrabThread(300), 0x102u);
    EXPECT_EQ(camera_->WaitGrabThread(3000), kThreadEnded);
    int grabbing = 1;
    camera_->GetGrabCondition(grabbing);
    EXPECT_EQ(grabbing, 0);
}

TEST_F(AcquisitionTest, TimeOutSettingsRefuseOneToNineHundredNinetyNine) {
    OpenWithCallback();
    unsigned int timeout = 0;
    ASSERT_EQ(camera_->SetAcquisitionTimeOut(2000), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetAcquisitionTimeOut(500), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetAcquisitionTimeOut(999), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->GetAcquisitionTimeOut(&timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 2000u);
    EXPECT_EQ(camera_->SetAcquisitionTimeOut(0), RESULT_SUCCESS);
    EXPECT_EQ(camera_->GetAcquisitionTimeOut(&timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 0u);
    EXPECT_EQ(camera_->GetAcquisitionTimeOut(nullptr), RESULT_ERROR_INVALID_PARAMETER);

    RyCamera closed(nullptr, 1);
    EXPECT_EQ(closed.SetAcquisitionTimeOut(1000), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    EXPECT_EQ(closed.GetAcquisitionTimeOut(&timeout), RESULT_ERROR);
    // Never opened, it is not known as a camera of the feature generation: the register
    // writes fail.
    EXPECT_EQ(closed.Grab(), RESULT_ERROR);
    EXPECT_EQ(closed.Snap(1), RESULT_ERROR);
    EXPECT_EQ(closed.AcquisitionStop(), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
}

TEST_F(AcquisitionTest, PollersGetFramesAndCallbacksRefuseThem) {
    StartCamera(FastCamera());
    ASSERT_EQ(Open(&camera_, 8), RESULT_SUCCESS);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    uint32_t lastBlock = 0;
    for (int i = 0; i < 5; ++i) {
        IMAGE_INFO info{};
        ASSERT_EQ(camera_->GetGrabData(&info), RESULT_SUCCESS);
        EXPECT_TRUE(frames_.Matches(info));
        EXPECT_GT(info.blockId, lastBlock);
        lastBlock = info.blockId;
    }
    EXPECT_EQ(camera_->GetGrabData(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);
    ASSERT_EQ(camera_->SetAcquisitionTimeOut(1000), RESULT_SUCCESS);
    IMAGE_INFO info{};
    EXPECT_EQ(camera_->GetGrabData(&info), RESULT_ERROR_RYCAMERA_GRAB_TIMEOUT);

    camera_->SetImageCallback(&FrameCollector::Callback);
    EXPECT_EQ(camera_->GetGrabData(&info), RESULT_ERROR_RYCAMERA_CALLBACK_NOT_NULL);
}

TEST_F(AcquisitionTest, TheQueueManagerKeepsBuffersUntilTheApplicationQueuesThem) {
    OpenWithCallback(FastCamera(), &FrameCollector::Callback, 4);
    ASSERT_EQ(camera_->UseQueueManager(1), RESULT_SUCCESS);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(4, 3s));
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(frames_.Count(), 4u);  // every buffer is with the application
    uint64_t queued = 99;
    EXPECT_EQ(camera_->GetNumQueuedBuffer(queued), RESULT_SUCCESS);
    EXPECT_EQ(queued, 0u);
    uint64_t lost = 0;
    EXPECT_EQ(camera_->GetNumLostImage(lost), RESULT_SUCCESS);
    EXPECT_GT(lost, 0u);
    EXPECT_EQ(camera_->Abort(), RESULT_SUCCESS);
}

TEST_F(AcquisitionTest, TheCallbackThreadDeliversCopiesOfTheNewestFrame) {
    StartCamera(FastCamera());
    object_.pUserPointer = &frames_;
    RyCamera* camera = nullptr;
    // The copy buffer comes with the pool, so the mode is chosen before the open.
    RyInterface* adapter = Adapter();
    ASSERT_NE(adapter, nullptr);
    ASSERT_EQ(
        gige_->OpenCamera(0u, &camera, 8, 0, 0, 0, &object_, &FrameCollector::Callback, nullptr),
        RESULT_SUCCESS);
    camera_ = camera;
    ASSERT_EQ(camera_->UseIndependentCallback(1), RESULT_SUCCESS);
    frames_.onFrame = [](const IMAGE_INFO&) { std::this_thread::sleep_for(20ms); };
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(5, 5s));
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);
    const auto frames = frames_.Frames();
    ExpectAllMatch(frames);
    // A slow callback sees only the newest frames: block ids skip, never repeat.
    bool skipped = false;
    for (size_t i = 1; i < frames.size(); ++i) {
        EXPECT_GT(frames[i].info.blockId, frames[i - 1].info.blockId);
        skipped = skipped || frames[i].info.blockId > frames[i - 1].info.blockId + 1;
    }
    EXPECT_TRUE(skipped);
    EXPECT_EQ(frames[0].info.pImage, frames.back().info.pImage);  // one copy buffer
}

TEST_F(AcquisitionTest, StatisticsCountFramesAndRefuseUnknownItems) {
    OpenWithCallback();
    ASSERT_EQ(camera_->Snap(3), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(5000), kThreadEnded);
    uint64_t value = 0;
    EXPECT_EQ(camera_->GetNumDeliveredFrame(value), RESULT_SUCCESS);
    EXPECT_EQ(value, 3u);
    EXPECT_EQ(camera_->GetNumAnnouncedBuffer(value), RESULT_SUCCESS);
    EXPECT_EQ(value, 8u);
    EXPECT_EQ(camera_->GetNumCorruptedImage(value), RESULT_SUCCESS);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(camera_->GetNumResendSuccessfulPackets(value), RESULT_SUCCESS);
    EXPECT_EQ(value, 0u);
    unsigned int item = 7;
    EXPECT_EQ(camera_->GetStreamInfo(STREAM_INFO_LOST_FRAMES, item), RESULT_SUCCESS);
    EXPECT_EQ(item, 0u);
    EXPECT_EQ(camera_->GetStreamInfo(STREAM_INFO(2), item), RESULT_ERROR_INVALID_PARAMETER);
    unsigned int capacity = 0;
    EXPECT_EQ(camera_->GetFrameCapacity(&capacity), RESULT_SUCCESS);
    EXPECT_GT(capacity, 0u);

    RyCamera closed(nullptr, 1);
    EXPECT_EQ(closed.GetNumDeliveredFrame(value), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(closed.GetNumLostImage(value), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(closed.GetNumAnnouncedBuffer(value), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(closed.GetNumQueuedBuffer(value), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(closed.GetNumCorruptedImage(value), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(closed.GetNumResendSuccessfulPackets(value), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(closed.GetStreamInfo(STREAM_INFO_LOST_FRAMES, item), RESULT_ERROR_INVALID_HANDLE);
}

TEST_F(AcquisitionTest, TheRegisterDrivenGenerationIsStartedAndStoppedByItsRegisters) {
    auto config = FastCamera();
    config.model = "GigE_Connect";
    OpenWithCallback(config);
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    ASSERT_TRUE(frames_.WaitFor(5, 5s));
    const uint64_t stopsBefore = emulator_->legacy_stop_writes();
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);
    EXPECT_EQ(emulator_->legacy_stop_writes(), stopsBefore + 1);
    ExpectAllMatch(frames_.Frames());

    // The grab thread learns nothing of the registers: it ends at its time-out.
    ASSERT_EQ(camera_->SetAcquisitionTimeOut(1000), RESULT_SUCCESS);
    std::this_thread::sleep_for(200ms);  // a frame the camera was sending at the stop
    const size_t before = frames_.Count();
    ASSERT_EQ(camera_->Snap(3), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(5000), kThreadEnded);
    EXPECT_EQ(frames_.Count(), before + 3);
}

TEST_F(AcquisitionTest, ThePacketSizeChosenAtOpenServesTheFirstFrames) {
    StartCamera(FastCamera());
    object_.pUserPointer = &frames_;
    ASSERT_EQ(gige_->OpenCamera(0u, &camera_, 8, 0, 0, 8192, &object_, &FrameCollector::Callback,
                                nullptr),
              RESULT_SUCCESS);
    ASSERT_EQ(camera_->Snap(3), RESULT_SUCCESS);
    ASSERT_EQ(camera_->WaitGrabThread(5000), kThreadEnded);
    ASSERT_EQ(frames_.Count(), 3u);
    ExpectAllMatch(frames_.Frames());
    uint64_t corrupted = 1;
    EXPECT_EQ(camera_->GetNumCorruptedImage(corrupted), RESULT_SUCCESS);
    EXPECT_EQ(corrupted, 0u);
}

TEST_F(AcquisitionTest, AMonitorsGrabLeavesTheCameraAlone) {
    StartCamera(FastCamera());
    ASSERT_EQ(gige_->SetCCPPrivilege(CCP_PRIVILEGE_MONITOR), RESULT_SUCCESS);
    object_.pUserPointer = &frames_;
    ASSERT_EQ(
        gige_->OpenCamera(0u, &camera_, 4, 0, 0, 0, &object_, &FrameCollector::Callback, nullptr),
        RESULT_SUCCESS);
    RecordedLog log;
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    int grabbing = 0;
    camera_->GetGrabCondition(grabbing);
    EXPECT_EQ(grabbing, 1);
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(emulator_->frames_sent(), 0u);
    EXPECT_TRUE(log.Contains(L"_bMonitorMode is TRUE"));
    EXPECT_EQ(camera_->Abort(), RESULT_SUCCESS);
}

}  // namespace
}  // namespace rytest
