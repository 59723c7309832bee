// Features by name, pixel formats and sizes, the network configuration, raw registers and
// the discovery texts of a camera, against the emulator.
#include <cstring>
#include <string>

#include "camera_fixture.h"
#include "recorded_log.h"

namespace {

using namespace RYSDK;

class FeatureAccess : public rytest::OpenedCameraTest {
  protected:
    std::string Read(const char* feature, int32_t selector = GET_CUSTOM_COMMAND_VALUE) {
        char text[256] = {};
        uint64_t size = sizeof(text);
        const RESULT result = camera_->GetCustomCommand(feature, text, &size, selector);
        return result == RESULT_SUCCESS ? std::string(text) : "error " + std::to_string(result);
    }
};

TEST_F(FeatureAccess, AnswersFollowTheSizeContract) {
    ASSERT_EQ(camera_->SetCustomCommand("AcquisitionFrameCount", "1234", 0), RESULT_SUCCESS);
    char text[8] = "xxxxxxx";
    uint64_t size = 4;
    EXPECT_EQ(camera_->GetCustomCommand("AcquisitionFrameCount", text, &size),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(size, 5u);
    EXPECT_STREQ(text, "xxxxxxx") << "nothing is written into a buffer too small";
    EXPECT_EQ(camera_->GetCustomCommand("AcquisitionFrameCount", text, &size), RESULT_SUCCESS);
    EXPECT_STREQ(text, "1234");
    size = 0;
    EXPECT_EQ(camera_->GetCustomCommand("AcquisitionFrameCount", nullptr, &size),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(size, 5u) << "a null buffer asks for the size";
    // An empty answer is never written.
    size = sizeof(text);
    EXPECT_EQ(camera_->GetCustomCommand("DeviceUserID", text, &size),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(size, 1u);
}

TEST_F(FeatureAccess, EveryKindReadsAndWritesByName) {
    EXPECT_EQ(Read("Width"), "640");
    EXPECT_EQ(Read("AcquisitionFrameCount", GET_CUSTOM_COMMAND_MIN), "1");
    EXPECT_EQ(Read("AcquisitionFrameCount", GET_CUSTOM_COMMAND_MAX), "65535");
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
    EXPECT_EQ(Read("PixelFormat", GET_CUSTOM_COMMAND_INDEX + 5), "Mono12Packed");
    EXPECT_EQ(Read("PixelFormat", GET_CUSTOM_COMMAND_MIN), "error 20");
    EXPECT_EQ(Read("ReverseX"), "0");
    EXPECT_EQ(Read("DeviceModelName"), "RyEmulator");
    EXPECT_EQ(Read("TriggerSoftware"), "error 19");

    EXPECT_EQ(camera_->SetCustomCommand("PixelFormat", "BayerRG8", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("PixelFormat"), "BayerRG8");
    EXPECT_EQ(camera_->SetCustomCommand("PixelFormat", "NoSuchFormat", 0),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetCustomCommand("ReverseX", "1", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("ReverseX"), "1");
    EXPECT_EQ(camera_->SetCustomCommand("ReverseX", "2", 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetCustomCommand("Gain", "3.5", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("Gain"), "3.5");
    EXPECT_EQ(camera_->SetCustomCommand("DeviceUserID", "line 3", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("DeviceUserID"), "line 3");
    EXPECT_EQ(camera_->SetCustomCommand("TriggerSoftware", nullptr, 0), RESULT_SUCCESS);
    EXPECT_EQ(camera_->InvalidateNodes(), RESULT_SUCCESS);
}

TEST_F(FeatureAccess, WritesAreCheckedBeforeTheCameraIsTouched) {
    EXPECT_EQ(camera_->SetCustomCommand("Width", "1282", 0),
              RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE);
    EXPECT_EQ(Read("Width"), "640");
    EXPECT_EQ(camera_->SetCustomCommand("Width", "100000", 0, 0, 1), RESULT_SUCCESS)
        << "the clamp flag brings a value into range";
    EXPECT_NE(Read("Width"), "640");
    EXPECT_EQ(camera_->SetCustomCommand("SensorWidth", "8", 0), RESULT_ERROR_RYCAMERA_READ_ONLY);
    EXPECT_EQ(camera_->SetCustomCommand("Width", nullptr, 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetCustomCommand(nullptr, "1", 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetCustomCommand("", "1", 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->SetCustomCommand("NoSuchFeature", "1", 0), RESULT_ERROR_XML_NOT_EXIST_NODE);
    uint64_t size = 0;
    EXPECT_EQ(camera_->GetCustomCommand("Width", nullptr, &size, 999),
              RESULT_ERROR_XML_UNSUPPORTED_COMMAND);
    EXPECT_EQ(size, 0xFFFFFFu);
    EXPECT_EQ(camera_->GetCustomCommand("Width", nullptr, nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Read("PixelFormat", GET_CUSTOM_COMMAND_INDEX + 1000), "error 8");
    EXPECT_EQ(camera_->SetCustomCommand("GevHeartbeatTimeout", "4000", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("GevHeartbeatTimeout"), "4000");
}

TEST_F(FeatureAccess, PixelFormatsAndSizesAreListedByPosition) {
    unsigned int count = 0;
    ASSERT_EQ(camera_->GetPixelFormatLineupNum(&count), RESULT_SUCCESS);
    EXPECT_GE(count, 20u);
    PIXEL_FORMAT format = static_cast<PIXEL_FORMAT>(0);
    ASSERT_EQ(camera_->GetPixelFormatLineup(0, &format), RESULT_SUCCESS);
    EXPECT_EQ(format, PIXEL_FORMAT_MONO8);
    format = static_cast<PIXEL_FORMAT>(77);
    EXPECT_EQ(camera_->GetPixelFormatLineup(count, &format), RESULT_SUCCESS);
    EXPECT_EQ(format, 77) << "a position past the end leaves the output";
    EXPECT_EQ(camera_->GetPixelFormatLineup(0, nullptr), RESULT_ERROR_INVALID_PARAMETER);

    unsigned int bits = 0;
    ASSERT_EQ(camera_->GetPixelSize(&bits), RESULT_SUCCESS);
    EXPECT_EQ(bits, 8u);
    ASSERT_EQ(camera_->GetPixelSizeTypeNum(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 5u);
    ASSERT_EQ(camera_->GetPixelSizeType(2, &bits), RESULT_SUCCESS);
    EXPECT_EQ(bits, 12u);
    int valid = -1;
    EXPECT_EQ(camera_->IsValidPixelSize(16, &valid), RESULT_SUCCESS);
    EXPECT_EQ(valid, 1);
    EXPECT_EQ(camera_->IsValidPixelSize(13, &valid), RESULT_SUCCESS);
    EXPECT_EQ(valid, 0);
}

TEST_F(FeatureAccess, NetworkConfigurationAndIdentity) {
    bool dhcp = false;
    ASSERT_EQ(camera_->GigEGetCurrentIpConfigurationDHCP(&dhcp), RESULT_SUCCESS);
    EXPECT_EQ(camera_->GigESetCurrentIpConfigurationDHCP(!dhcp), RESULT_SUCCESS);
    bool after = dhcp;
    ASSERT_EQ(camera_->GigEGetCurrentIpConfigurationDHCP(&after), RESULT_SUCCESS);
    EXPECT_EQ(after, !dhcp);
    bool persistent = false;
    EXPECT_EQ(camera_->GigEGetCurrentIpConfigurationPersistentIP(&persistent), RESULT_SUCCESS);
    EXPECT_EQ(camera_->GigEGetCurrentIpConfigurationPersistentIP(nullptr),
              RESULT_ERROR_INVALID_PARAMETER);
    unsigned int mask = 0;
    EXPECT_EQ(camera_->GigEGetPersistentSubnetMask(&mask), RESULT_SUCCESS);

    RYCAMERA_INFO info;
    ASSERT_EQ(gige_->GetCameraInfo(0u, &info), RESULT_SUCCESS);
    char mac[18] = {};
    size_t size = 10;
    EXPECT_EQ(camera_->GigEGetCurrentMACAddress(mac, &size), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(size, 18u);
    ASSERT_EQ(camera_->GigEGetCurrentMACAddress(mac, &size), RESULT_SUCCESS);
    EXPECT_STRCASEEQ(mac, info.m_MACAddress);

    char text[64] = {};
    size = sizeof(text);
    ASSERT_EQ(camera_->GetDeviceIP(0, text, &size), RESULT_SUCCESS);
    EXPECT_STREQ(text, "127.0.0.2");
    size = sizeof(text);
    ASSERT_EQ(camera_->GetDeviceVendorName(0, text, &size), RESULT_SUCCESS);
    EXPECT_STREQ(text, info.m_ManufacturerName);
    size = sizeof(text);
    ASSERT_EQ(camera_->GetDeviceVersion(0, text, &size), RESULT_SUCCESS);
    EXPECT_STREQ(text, "1.0.0");
    size = 3;
    EXPECT_EQ(camera_->GetDeviceMAC(0, text, &size), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(size, 18u);
}

TEST_F(FeatureAccess, EveryKindLogsUnderItsOwnWord) {
    rytest::RecordedLog log;
    for (const char* feature : {"Width", "Gain", "PixelFormat", "DeviceUserID", "FileAccessBuffer"})
        EXPECT_EQ(camera_->SetCustomCommand(feature, nullptr, 0), RESULT_ERROR_INVALID_PARAMETER)
            << feature;
    for (const wchar_t* text : {L"INTEGER::cpArg is invalid", L"FLOAT::cpArg is invalid",
                                L"ENUMERATION::cpArg is invalid", L"STRING::cpArg is invalid",
                                L"REGISTER::cpArg is invalid"})
        EXPECT_TRUE(log.Contains(text)) << text;
    EXPECT_EQ(camera_->SetCustomCommand("ReverseX", nullptr, 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(log.Contains(L"BOOLEAN:: nArg(-1) is invalid"));
    // A port has no value to write: the kinds without a writer are all "NODE".
    EXPECT_EQ(camera_->SetCustomCommand("Device", "1", 0), RESULT_ERROR_XML_UNSUPPORTED_COMMAND);
    EXPECT_TRUE(log.Contains(L"NODE::RESULT_ERROR_XML_UNSUPPORTED_COMMAND"));
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
    EXPECT_TRUE(log.Contains(L"ENUMERATION::GET_CUSTOM_COMMAND(")) << "reads name the kind too";
}

TEST_F(FeatureAccess, SettingsComeFromTheCacheAndWritesRefreshWhatTheyChange) {
    unsigned int width = 0;
    PIXEL_FORMAT format{};
    ASSERT_EQ(camera_->GetWidth(&width), RESULT_SUCCESS);
    ASSERT_EQ(camera_->GetPixelFormat(&format), RESULT_SUCCESS);
    // With the cable pulled only a cache can answer: the grab thread reads the pixel format
    // for every frame.
    ry::emulator::FaultConfig unplugged;
    unplugged.unplugged = true;
    emulator_->set_faults(unplugged);
    unsigned int cachedWidth = 0;
    PIXEL_FORMAT cachedFormat{};
    EXPECT_EQ(camera_->GetWidth(&cachedWidth), RESULT_SUCCESS);
    EXPECT_EQ(camera_->GetPixelFormat(&cachedFormat), RESULT_SUCCESS);
    EXPECT_EQ(cachedWidth, width);
    EXPECT_EQ(cachedFormat, format);
    emulator_->set_faults({});

    // The camera changes the pixel size with the format and the payload with both: what a
    // write changes is read anew without InvalidateNodes.
    ASSERT_EQ(camera_->SetCustomCommand("PixelFormat", "Mono16", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("PixelSize"), "Bpp16");
    EXPECT_EQ(Read("PayloadSize"), std::to_string(width * 480 * 2));
    ASSERT_EQ(camera_->SetCustomCommand("PixelSize", "Bpp8", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
    ASSERT_EQ(camera_->SetCustomCommand("Height", "240", 0), RESULT_SUCCESS);
    EXPECT_EQ(Read("PayloadSize"), std::to_string(width * 240));
}

TEST_F(FeatureAccess, RawRegistersTranslateTheirFailures) {
    uint8_t word[4] = {};
    int64_t size = sizeof(word);
    ASSERT_EQ(camera_->ReadData(word, 0x0000, &size), RESULT_SUCCESS);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(word[0] | word[1], 0x02) << "GigE Vision major version 2 in the first register";
    size = sizeof(word);
    EXPECT_EQ(camera_->ReadData(word, 0x0FFFFFF0, &size), RESULT_ERROR_INVALID_ADDRESS);
    uint64_t written = sizeof(word);
    EXPECT_NE(camera_->WriteData(word, 0x0000, &written), RESULT_SUCCESS);
    EXPECT_EQ(camera_->ReadData(nullptr, 0, &size), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->WriteData(word, 0, nullptr), RESULT_ERROR_INVALID_PARAMETER);
}

}  // namespace
