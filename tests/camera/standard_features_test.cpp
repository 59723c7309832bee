// The typed accessors of the standard features against the emulator: their departures from
// the common steps, their lineups and what they refuse.
#include <functional>
#include <string>
#include <vector>

#include "camera_fixture.h"
#include "recorded_log.h"

namespace {

using namespace RYSDK;

using rytest::RecordedLog;

class StandardFeatures : public rytest::EmulatedCameraTest {
  protected:
    void Start(ry::emulator::CameraConfig config = {}) {
        StartCamera(config);
        ASSERT_EQ(Open(&camera_), RESULT_SUCCESS);
    }
    void TearDown() override {
        if (camera_ != nullptr)
            gige_->CloseCamera(camera_);
        EmulatedCameraTest::TearDown();
    }

    RyCamera* camera_ = nullptr;
};

TEST_F(StandardFeatures, GeometryIsClampedThenAligned) {
    ASSERT_NO_FATAL_FAILURE(Start());
    unsigned int value = 0;
    EXPECT_EQ(camera_->SetWidth(0), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetWidth(&value), RESULT_SUCCESS);
    EXPECT_EQ(value, 16u) << "below the minimum becomes the minimum";
    EXPECT_EQ(camera_->SetWidth(641), RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE);
    EXPECT_EQ(camera_->SetWidth(100000), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetWidth(&value), RESULT_SUCCESS);
    EXPECT_EQ(value, 8192u);
    EXPECT_EQ(camera_->SetHeight(5), RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE);
    EXPECT_EQ(camera_->SetHeight(1), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetHeight(&value), RESULT_SUCCESS);
    EXPECT_EQ(value, 2u);
    EXPECT_EQ(camera_->SetSCPSPacketSize(100000), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetSCPSPacketSize(&value), RESULT_SUCCESS);
    EXPECT_EQ(value, 16380u) << "a packet size too large becomes the largest";
    EXPECT_EQ(camera_->GetWidth(nullptr), RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(StandardFeatures, LineupsListWhatTheCameraOffersAndEndLeniently) {
    ASSERT_NO_FATAL_FAILURE(Start());
    unsigned int count = 0;
    ASSERT_EQ(camera_->GetTriggerModeLineupNum(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 2u);
    unsigned int value = 77;
    EXPECT_EQ(camera_->GetTriggerModeLineup(99, &value), RESULT_SUCCESS);
    EXPECT_EQ(value, 77u) << "a position past the entries leaves the caller's value";
    ASSERT_EQ(camera_->GetBinningHorizontalLineupNum(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 3u);
    ASSERT_EQ(camera_->GetBinningHorizontalLineup(2, &value), RESULT_SUCCESS);
    EXPECT_EQ(value, 4u);
    TESTIMAGE image = TESTIMAGE_OFF;
    ASSERT_EQ(camera_->GetTestImageLineup(3, &image), RESULT_SUCCESS);
    EXPECT_EQ(image, 3);
    TRIGGER_SOURCE source = TRIGGER_SOURCE_SOFTWARE;
    ASSERT_EQ(camera_->GetTriggerSourceLineup(1, &source), RESULT_SUCCESS);
    EXPECT_EQ(source, TRIGGER_SOURCE_EXTERNAL);
    EXPECT_EQ(camera_->GetTriggerModeLineupNum(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->GetTriggerModeLineup(0, nullptr), RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(StandardFeatures, EnumerationsKeepTheirOwnRules) {
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_EQ(camera_->SetTriggerMode(1), RESULT_SUCCESS);
    int mode = 0;
    ASSERT_EQ(camera_->GetTriggerMode(&mode), RESULT_SUCCESS);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(camera_->SetTriggerSource(TRIGGER_SOURCE_EXTERNAL), RESULT_SUCCESS);
    TRIGGER_SOURCE source = TRIGGER_SOURCE_SOFTWARE;
    ASSERT_EQ(camera_->GetTriggerSource(&source), RESULT_SUCCESS);
    EXPECT_EQ(source, TRIGGER_SOURCE_EXTERNAL);
    EXPECT_EQ(camera_->SetTriggerSource(static_cast<TRIGGER_SOURCE>(2)),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetTriggerSoftware(), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetTriggerActivation(TRIGGER_ACTIVATION_FALLING_EDGE), RESULT_SUCCESS);

    EXPECT_EQ(camera_->SetTestImage(TESTIMAGE_VERTICAL_RAMP), RESULT_SUCCESS);
    TESTIMAGE image = TESTIMAGE_OFF;
    ASSERT_EQ(camera_->GetTestImage(&image), RESULT_SUCCESS);
    EXPECT_EQ(image, 3) << "the vertical ramp is written as 2 and then 3";
    EXPECT_EQ(camera_->SetTestImage(static_cast<TESTIMAGE>(5)), RESULT_ERROR);

    EXPECT_EQ(camera_->SetExposureMode(EXPOSURE_MODE_TRIGGER_WIDTH), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetExposureMode(static_cast<EXPOSURE_MODE>(2)),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetReadoutMode(READOUT_FAST), RESULT_SUCCESS);
    READOUT readout = READOUT_NORMAL;
    ASSERT_EQ(camera_->GetReadoutMode(&readout), RESULT_SUCCESS);
    EXPECT_EQ(readout, READOUT_FAST);
    EXPECT_EQ(camera_->SetBinningVertical(2), RESULT_SUCCESS);
    unsigned int binning = 0;
    ASSERT_EQ(camera_->GetBinningVertical(&binning), RESULT_SUCCESS);
    EXPECT_EQ(binning, 2u);
    EXPECT_EQ(camera_->SetStrobePolarity(STROBE_POLARITY_ACTIVE_LOW), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetStrobePolarity(static_cast<STROBE_POLARITY>(3)),
              RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(StandardFeatures, OnlyOneHoldsTheStream) {
    ASSERT_NO_FATAL_FAILURE(Start());
    unsigned int hold = 7;
    EXPECT_EQ(camera_->SetStreamHold(1), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetStreamHold(&hold), RESULT_SUCCESS);
    EXPECT_EQ(hold, 1u);
    EXPECT_EQ(camera_->SetStreamHold(2), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetStreamHold(&hold), RESULT_SUCCESS);
    EXPECT_EQ(hold, 0u);
}

TEST_F(StandardFeatures, GainAndBlackLevelWriteTheSelectorFirst) {
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_EQ(camera_->SetGain(GAIN_SEL_RED, 6.5f), RESULT_SUCCESS);
    GAIN_SEL selector = GAIN_SEL_ALL;
    float gain = 0;
    ASSERT_EQ(camera_->GetGain(&selector, &gain), RESULT_SUCCESS);
    EXPECT_EQ(selector, GAIN_SEL_RED);
    EXPECT_FLOAT_EQ(gain, 6.5f);
    EXPECT_EQ(camera_->SetGain(GAIN_SEL_BLUE, 100.0f), RESULT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(camera_->GetGain(&selector, &gain), RESULT_SUCCESS);
    EXPECT_EQ(selector, GAIN_SEL_RED) << "nothing is written when the value is out of range";
    EXPECT_EQ(camera_->SetBlackLevel(BLACKLEVEL_SEL_GREEN, 12), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetReverseX(1), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetStrobeOffset(100), RESULT_SUCCESS);
}

TEST_F(StandardFeatures, ValuesTheCameraRefusesEndInAnException) {
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_EQ(camera_->SetExposureTime(5), RESULT_ERROR_EXCEPTION);
    EXPECT_EQ(camera_->SetBinningFactor(9), RESULT_ERROR_EXCEPTION);
    EXPECT_EQ(camera_->SetExposureTime(2000), RESULT_SUCCESS);
    unsigned int time = 0;
    ASSERT_EQ(camera_->GetExposureTime(&time), RESULT_SUCCESS);
    EXPECT_EQ(time, 2000u);
    EXPECT_EQ(camera_->SetHorizontalStart(8), RESULT_SUCCESS);
    unsigned int start = 0;
    ASSERT_EQ(camera_->GetHorizontalStart(&start), RESULT_SUCCESS);
    EXPECT_EQ(start, 8u);
    EXPECT_EQ(camera_->SetSCPSPacketSize(1499), RESULT_ERROR_EXCEPTION)
        << "the increment is the camera's to check";
}

TEST_F(StandardFeatures, TheExternalSourceIsFoundUnderItsShortName) {
    ry::emulator::CameraConfig config;
    config.trigger_entry_ext = true;
    ASSERT_NO_FATAL_FAILURE(Start(config));
    EXPECT_EQ(camera_->SetTriggerSource(TRIGGER_SOURCE_EXTERNAL), RESULT_SUCCESS);
    TRIGGER_SOURCE source = TRIGGER_SOURCE_SOFTWARE;
    ASSERT_EQ(camera_->GetTriggerSource(&source), RESULT_SUCCESS);
    EXPECT_EQ(source, TRIGGER_SOURCE_EXTERNAL);
    ASSERT_EQ(camera_->GetTriggerSourceLineup(1, &source), RESULT_SUCCESS);
    EXPECT_EQ(source, TRIGGER_SOURCE_EXTERNAL);
}

TEST_F(StandardFeatures, RefusalsAreLoggedWithTheirCause) {
    ry::emulator::CameraConfig config;
    config.feature_variants = {{"TriggerMode", ry::emulator::FeatureVariant::ReadOnly}};
    ASSERT_NO_FATAL_FAILURE(Start(config));
    RecordedLog log;
    EXPECT_EQ(camera_->SetTriggerMode(1), RESULT_ERROR_RYCAMERA_READ_ONLY);
    EXPECT_TRUE(log.Contains(L"TriggerMode.AccessMode == R0")) << "a digit zero, as logged";
    EXPECT_EQ(camera_->SetExposureTime(5), RESULT_ERROR_EXCEPTION);
    EXPECT_TRUE(log.Contains(L"value 5 is outside")) << "the node map's own text is logged";
}

TEST_F(StandardFeatures, NullOutputsAreRefused) {
    ASSERT_NO_FATAL_FAILURE(Start());
    GAIN_SEL selector{};
    float gain = 0;
    const std::vector<std::function<RESULT()>> calls = {
        [&] { return camera_->GetTriggerMode(nullptr); },
        [&] { return camera_->GetTriggerSource(nullptr); },
        [&] { return camera_->GetTriggerSourceLineup(0, nullptr); },
        [&] { return camera_->GetSCPSPacketSize(nullptr); },
        [&] { return camera_->GetBinningHorizontal(nullptr); },
        [&] { return camera_->GetBinningVerticalLineupNum(nullptr); },
        [&] { return camera_->GetStreamHold(nullptr); },
        [&] { return camera_->GetVerticalEnd(nullptr); },
        [&] { return camera_->GetTestImage(nullptr); },
        [&] { return camera_->GetTestImageLineup(0, nullptr); },
        [&] { return camera_->GetExposureMode(nullptr); },
        [&] { return camera_->GetGain(&selector, nullptr); },
        [&] { return camera_->GetGain(nullptr, &gain); },
    };
    for (size_t k = 0; k < calls.size(); ++k)
        EXPECT_EQ(calls[k](), RESULT_ERROR_INVALID_PARAMETER) << "call " << k;
    unsigned int source = 0;
    ASSERT_EQ(camera_->GetTriggerSourceLineupNum(&source), RESULT_SUCCESS);
    TRIGGER_SOURCE kept = static_cast<TRIGGER_SOURCE>(42);
    EXPECT_EQ(camera_->GetTriggerSourceLineup(source, &kept), RESULT_SUCCESS);
    EXPECT_EQ(kept, 42) << "a position past the entries leaves the caller's value";
}

// Before open the node map is missing, and that is tested before anything else: even a null
// output gives the node map's result.
TEST(StandardFeaturesBeforeOpen, EveryAccessorNeedsTheNodeMap) {
    RyCamera camera(nullptr, 0);
    unsigned int u = 0;
    int i = 0;
    float f = 0;
    TRIGGER_SOURCE source{};
    TESTIMAGE image{};
    READOUT readout{};
    EXPOSURE_MODE exposure{};
    GAIN_SEL gain{};
    const std::vector<std::function<RESULT()>> calls = {
        [&] { return camera.SetTriggerMode(1); },
        [&] { return camera.GetTriggerMode(&i); },
        [&] { return camera.GetTriggerModeLineup(0, &u); },
        [&] { return camera.GetTriggerModeLineupNum(&u); },
        [&] { return camera.SetTriggerSource(TRIGGER_SOURCE_SOFTWARE); },
        [&] { return camera.GetTriggerSource(&source); },
        [&] { return camera.GetTriggerSourceLineup(0, &source); },
        [&] { return camera.GetTriggerSourceLineupNum(&u); },
        [&] { return camera.SetTriggerActivation(TRIGGER_ACTIVATION_RISING_EDGE); },
        [&] { return camera.SetTriggerSoftware(); },
        [&] { return camera.SetSCPSPacketSize(1500); },
        [&] { return camera.GetSCPSPacketSize(&u); },
        [&] { return camera.SetBinningHorizontal(1); },
        [&] { return camera.GetBinningHorizontal(&u); },
        [&] { return camera.GetBinningHorizontalLineup(0, &u); },
        [&] { return camera.GetBinningHorizontalLineupNum(&u); },
        [&] { return camera.SetBinningVertical(1); },
        [&] { return camera.GetBinningVertical(&u); },
        [&] { return camera.GetBinningVerticalLineup(0, &u); },
        [&] { return camera.GetBinningVerticalLineupNum(&u); },
        [&] { return camera.SetBinningFactor(1); },
        [&] { return camera.GetBinningFactor(&u); },
        [&] { return camera.SetStreamHold(1); },
        [&] { return camera.GetStreamHold(&u); },
        [&] { return camera.SetWidth(640); },
        [&] { return camera.GetWidth(&u); },
        [&] { return camera.SetHeight(480); },
        [&] { return camera.GetHeight(&u); },
        [&] { return camera.SetHorizontalStart(0); },
        [&] { return camera.GetHorizontalStart(&u); },
        [&] { return camera.SetHorizontalEnd(1); },
        [&] { return camera.GetHorizontalEnd(&u); },
        [&] { return camera.SetVerticalStart(0); },
        [&] { return camera.GetVerticalStart(&u); },
        [&] { return camera.SetVerticalEnd(1); },
        [&] { return camera.GetVerticalEnd(&u); },
        [&] { return camera.SetTestImage(TESTIMAGE_OFF); },
        [&] { return camera.SetTestImage(static_cast<TESTIMAGE>(5)); },
        [&] { return camera.GetTestImage(&image); },
        [&] { return camera.GetTestImageLineup(0, &image); },
        [&] { return camera.GetTestImageLineupNum(&u); },
        [&] { return camera.SetReadoutMode(READOUT_NORMAL); },
        [&] { return camera.GetReadoutMode(&readout); },
        [&] { return camera.SetExposureMode(EXPOSURE_MODE_TIMED); },
        [&] { return camera.GetExposureMode(&exposure); },
        [&] { return camera.SetExposureTime(100); },
        [&] { return camera.GetExposureTime(&u); },
        [&] { return camera.SetGain(GAIN_SEL_ALL, 1.0f); },
        [&] { return camera.GetGain(&gain, &f); },
        [&] { return camera.SetBlackLevel(BLACKLEVEL_SEL_ALL, 1); },
        [&] { return camera.SetReverseX(0); },
        [&] { return camera.SetStrobeOffset(0); },
        [&] { return camera.SetStrobePolarity(STROBE_POLARITY_ACTIVE_HIGH); },
        [&] { return camera.GetTriggerMode(nullptr); },
        [&] { return camera.GetTriggerModeLineup(0, nullptr); },
        [&] { return camera.GetTestImageLineupNum(nullptr); },
        [&] { return camera.GetGain(nullptr, nullptr); },
    };
    for (size_t k = 0; k < calls.size(); ++k)
        EXPECT_EQ(calls[k](), RESULT_ERROR_XML_NODE_ACCESS_FAILED) << "call " << k;
}

}  // namespace
