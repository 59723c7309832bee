// Cameras that lack a feature, hold it read-only or do not offer it now: each accessor gives
// its own result and writes nothing. The emulator presents its description so.
#include "camera_fixture.h"

namespace {

using namespace RYSDK;
using ry::emulator::FeatureVariant;

class FeatureVariants : public rytest::EmulatedCameraTest {
  protected:
    RyCamera* OpenWith(std::map<std::string, FeatureVariant> variants) {
        ry::emulator::CameraConfig config;
        config.feature_variants = std::move(variants);
        StartCamera(config);
        RyCamera* camera = nullptr;
        // The size is given, so that a camera without Width or Height still opens.
        EXPECT_EQ(Open(&camera, 4, 640, 480), RESULT_SUCCESS);
        return camera;
    }
};

TEST_F(FeatureVariants, AMissingFeatureGivesEachAccessorsOwnResult) {
    RyCamera* camera = OpenWith({{"TriggerMode", FeatureVariant::Missing},
                                 {"TriggerActivation", FeatureVariant::Missing},
                                 {"ExposureTime", FeatureVariant::Missing},
                                 {"GainSelector", FeatureVariant::Missing},
                                 {"GevCurrentIPConfigurationDHCP", FeatureVariant::Missing},
                                 {"GevCurrentIPConfigurationPersistentIP", FeatureVariant::Missing},
                                 {"FileOperationExecute", FeatureVariant::Missing}});
    ASSERT_NE(camera, nullptr);
    int mode = 0;
    EXPECT_EQ(camera->SetTriggerMode(1), RESULT_ERROR_XML_NOT_EXIST_NODE);
    EXPECT_EQ(camera->GetTriggerMode(&mode), RESULT_ERROR_XML_NOT_EXIST_NODE);
    EXPECT_EQ(camera->SetTriggerActivation(TRIGGER_ACTIVATION_RISING_EDGE),
              RESULT_ERROR_INVALID_HANDLE);
    unsigned int time = 0;
    EXPECT_EQ(camera->GetExposureTime(&time), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(camera->SetGain(GAIN_SEL_ALL, 1.0f), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(camera->GigESetCurrentIpConfigurationDHCP(true), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(camera->GigESetCurrentIpConfigurationPersistentIP(true),
              RESULT_ERROR_XML_NOT_EXIST_NODE);
    const uint8_t data[4] = {1, 2, 3, 4};
    // The file streams cannot work a device file without the command that runs operations.
    EXPECT_EQ(camera->WriteFileStream("UserData", data, sizeof(data)),
              RESULT_ERROR_FILE_STREAM_OPEN_FAILURE);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(FeatureVariants, AReadOnlyFeatureIsNeverWritten) {
    RyCamera* camera = OpenWith({{"TriggerMode", FeatureVariant::ReadOnly},
                                 {"Width", FeatureVariant::ReadOnly},
                                 {"GainSelector", FeatureVariant::ReadOnly}});
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(camera->SetTriggerMode(1), RESULT_ERROR_RYCAMERA_READ_ONLY);
    int mode = -1;
    ASSERT_EQ(camera->GetTriggerMode(&mode), RESULT_SUCCESS);
    EXPECT_EQ(mode, 0) << "the camera's register kept its value";
    EXPECT_EQ(camera->SetWidth(641), RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE)
        << "alignment is judged before the access mode";
    EXPECT_EQ(camera->SetWidth(320), RESULT_ERROR_RYCAMERA_READ_ONLY);
    EXPECT_EQ(camera->SetCustomCommand("Width", "320", 0), RESULT_ERROR_RYCAMERA_READ_ONLY);
    unsigned int width = 0;
    ASSERT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(width, 640u);
    EXPECT_EQ(camera->SetGain(GAIN_SEL_RED, 2.0f), RESULT_ERROR_RYCAMERA_READ_ONLY);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(FeatureVariants, AFeatureNotAvailableNowIsRefused) {
    RyCamera* camera = OpenWith({{"TriggerSource", FeatureVariant::NotAvailable},
                                 {"ExposureMode", FeatureVariant::NotAvailable},
                                 {"BinningFactor", FeatureVariant::NotAvailable}});
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(camera->SetTriggerSource(TRIGGER_SOURCE_EXTERNAL),
              RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    TRIGGER_SOURCE source{};
    EXPECT_EQ(camera->GetTriggerSource(&source), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    EXPECT_EQ(camera->SetExposureMode(EXPOSURE_MODE_TIMED), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    unsigned int factor = 0;
    EXPECT_EQ(camera->GetBinningFactor(&factor), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(FeatureVariants, GainWorksAsAnIntegerFeatureToo) {
    RyCamera* camera = OpenWith({{"Gain", FeatureVariant::AsInteger}});
    ASSERT_NE(camera, nullptr);
    _PROPERTY property{};
    ASSERT_EQ(camera->GetPropertyInfo("Gain", &property), RESULT_SUCCESS);
    EXPECT_EQ(property.type, 2u) << "an integer feature";
    EXPECT_EQ(camera->SetGain(GAIN_SEL_GREEN, 6.7f), RESULT_SUCCESS);
    GAIN_SEL selector = GAIN_SEL_ALL;
    float gain = 0;
    ASSERT_EQ(camera->GetGain(&selector, &gain), RESULT_SUCCESS);
    EXPECT_EQ(selector, GAIN_SEL_GREEN);
    EXPECT_FLOAT_EQ(gain, 6.0f) << "an integer gain takes the value truncated";
    EXPECT_EQ(camera->SetGain(GAIN_SEL_GREEN, 49.0f), RESULT_ERROR_INVALID_PARAMETER)
        << "the integer node's own range applies";
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

}  // namespace
