// Opening and closing cameras through the SDK against the emulator over real UDP.
#include <chrono>
#include <thread>

#include "camera_fixture.h"

namespace {

using namespace RYSDK;
using ry::emulator::CameraConfig;
using ry::emulator::XmlForm;

class CameraOpen : public rytest::EmulatedCameraTest {};

class DescriptionForms : public rytest::EmulatedCameraTest,
                         public ::testing::WithParamInterface<XmlForm> {};

TEST_P(DescriptionForms, OpenReadsTheDescriptionAndCloseReleasesEverything) {
    CameraConfig config;
    config.xml_form = GetParam();
    StartCamera(config);

    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    ASSERT_NE(camera, nullptr);
    unsigned int width = 0, height = 0, count = 0;
    PIXEL_FORMAT format{};
    ASSERT_EQ(camera->GetBufferInfo(count, width, height, format), RESULT_SUCCESS);
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(width, 640u);
    EXPECT_EQ(height, 480u);
    EXPECT_EQ(format, PIXEL_FORMAT_MONO8);

    int32_t properties = 0;
    ASSERT_EQ(camera->GetPropertyCount(&properties), RESULT_SUCCESS);
    EXPECT_GT(properties, 20);
    _PROPERTY property{};
    ASSERT_EQ(camera->GetPropertyInfo("Width", &property), RESULT_SUCCESS);
    EXPECT_STREQ(property.name, "Width");
    EXPECT_EQ(property.accessMode, 4u);

    TransportHandle device = nullptr;
    ASSERT_EQ(camera->GetDeviceHandle(&device), RESULT_SUCCESS);
    const std::string xml = camera->GetXML(device, 0);
    const std::string start = GetParam() == XmlForm::Utf16Bom ? "\xEF\xBB\xBF<?xml" : "<?xml";
    EXPECT_EQ(xml.substr(0, start.size()), start);
    EXPECT_NE(xml.find("</RegisterDescription>"), std::string::npos);

    RyInterface* adapter = Adapter();
    char name[256] = {};
    size_t size = sizeof(name);
    ASSERT_EQ(camera->GetDeviceID(0, name, &size), RESULT_SUCCESS);
    EXPECT_EQ(adapter->FindCamera(name), camera);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(adapter->FindCamera(name), nullptr);
    // The device is free again: a second open succeeds.
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(EveryForm, DescriptionForms,
                         ::testing::Values(XmlForm::Zip, XmlForm::Plain, XmlForm::Utf8Bom,
                                           XmlForm::Utf16Bom));

TEST_F(CameraOpen, ArgumentsAreRefusedBeforeTheDeviceIsTouched) {
    StartCamera();
    RyCamera* camera = nullptr;
    EXPECT_EQ(gige_->OpenCamera(0u, &camera, 4, 0, 0, 0, nullptr, nullptr, nullptr),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Open(&camera, 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Open(&camera, 4, 1922), RESULT_ERROR_INVALID_WIDTH);
    EXPECT_EQ(camera, nullptr);
    EXPECT_EQ(Adapter()->FindCamera("127.0.0.2"), nullptr);
    // Nothing was left holding the device.
    ASSERT_EQ(Open(&camera, 4, 320, 240), RESULT_SUCCESS);
    unsigned int width = 0;
    EXPECT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(width, 640u) << "the pool size does not change the camera's width";
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(CameraOpen, PacketSizeOutsideTheDeviceRangeIsRefused) {
    StartCamera();
    RyCamera* camera = nullptr;
    EXPECT_EQ(Open(&camera, 4, 0, 0, 100000), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera, nullptr);
    EXPECT_EQ(Open(&camera, 4, 0, 0, 1500), RESULT_SUCCESS);
    _PROPERTY property{};
    EXPECT_EQ(camera->GetPropertyInfo("GevSCPSPacketSize", &property), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(CameraOpen, OlderGenerationIsStoppedThroughItsRegisterAtClose) {
    CameraConfig config;
    config.model = "GigE_Connect";
    StartCamera(config);
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(emulator_->legacy_stop_writes(), 0u);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(emulator_->legacy_stop_writes(), 1u);
}

TEST_F(CameraOpen, OtherModelsNeverWriteTheOlderStopRegister) {
    StartCamera();
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(emulator_->legacy_stop_writes(), 0u);
}

TEST_F(CameraOpen, BufferFormatChangeRebuildsThePoolAndTheCameraFollows) {
    StartCamera();
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    ASSERT_EQ(camera->ChangeBufferFormat(6, 320, 240, PIXEL_FORMAT_MONO12), RESULT_SUCCESS);
    unsigned int count = 0, width = 0, height = 0;
    PIXEL_FORMAT format{};
    ASSERT_EQ(camera->GetBufferInfo(count, width, height, format), RESULT_SUCCESS);
    EXPECT_EQ(count, 6u);
    EXPECT_EQ(width, 320u);
    EXPECT_EQ(height, 240u);
    EXPECT_EQ(format, PIXEL_FORMAT_MONO12);
    EXPECT_EQ(camera->SetClearBuffer(1), RESULT_SUCCESS);
    EXPECT_EQ(camera->SetPixelFormat(static_cast<PIXEL_FORMAT>(0x12345678)), RESULT_ERROR);
    EXPECT_EQ(camera->SetWidth(642), RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE);
    EXPECT_EQ(camera->SetHeight(241), RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(CameraOpen, CloseWithMonitorThreadsReturnsPromptly) {
    StartCamera();
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera, 4, 0, 0, 0, [](OBJECT_INFO*, DISCONNECT_INFO) {}), RESULT_SUCCESS);
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    // The monitor waits in one-second slices and the status poll in four-second ones; a
    // close that waited those out would take seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(900));
}

std::atomic<int> disconnects{0};
DISCONNECT_INFO lastDisconnect{};

TEST_F(CameraOpen, ALostCameraIsReportedOnce) {
    StartCamera();
    disconnects = 0;
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera, 4, 0, 0, 0,
                   [](OBJECT_INFO*, DISCONNECT_INFO info) {
                       lastDisconnect = info;
                       ++disconnects;
                   }),
              RESULT_SUCCESS);
    EXPECT_EQ(camera->SetHeartBeatTimeoutTryCount(1), RESULT_SUCCESS);
    int tries = 0;
    EXPECT_EQ(camera->GetHeartBeatTimeoutTryCount(tries), RESULT_SUCCESS);
    EXPECT_EQ(tries, 1);
    ry::emulator::FaultConfig faults;
    faults.unplugged = true;
    emulator_->set_faults(faults);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    while (disconnects == 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ASSERT_EQ(disconnects, 1);
    EXPECT_NE(lastDisconnect.heartBeatTimeout, 0u);
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    EXPECT_EQ(disconnects, 1) << "a lost camera is reported once";
    gige_->CloseCamera(camera);
}

TEST_F(CameraOpen, ACameraThatStopsAnsweringDuringTheOpenFailsCleanly) {
    CameraConfig config;
    config.faults.ack_delay_ms = 3;
    StartCamera(config);
    std::thread unplug([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        ry::emulator::FaultConfig faults = emulator_->faults();
        faults.unplugged = true;
        emulator_->set_faults(faults);
    });
    RyCamera* camera = nullptr;
    const auto began = std::chrono::steady_clock::now();
    const RESULT result = Open(&camera);
    unplug.join();
    EXPECT_NE(result, RESULT_SUCCESS);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(20));
    if (result == RESULT_ERROR_RYCAMERA_GETXML)
        gige_->CloseCamera(camera);
    // Plugged in again, the camera opens.
    emulator_->set_faults({});
    RyCamera* again = nullptr;
    for (int attempt = 0; attempt < 20 && Open(&again) != RESULT_SUCCESS; ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(gige_->CloseCamera(again), RESULT_SUCCESS);
}

TEST_F(CameraOpen, CopiesShareTheCameraAndFreeNothingTwice) {
    StartCamera();
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    {
        RyCamera copy(*camera);
        unsigned int width = 0;
        EXPECT_EQ(copy.GetWidth(&width), RESULT_SUCCESS);
        EXPECT_EQ(width, 640u);
    }
    unsigned int width = 0;
    EXPECT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(CameraOpen, EveryIndexCheckHoldsAtTheTopOfTheRange) {
    StartCamera();
    constexpr unsigned int kTop = 0xFFFFFFFF;
    RyInterface* adapter = nullptr;
    EXPECT_EQ(gige_->OpenInterface(kTop, &adapter), RESULT_ERROR_INVALID_PARAMETER);
    adapter = Adapter();
    char text[256] = {};
    size_t size = sizeof(text);
    EXPECT_EQ(adapter->GetCameraName(kTop, text, &size), RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER);
    size = sizeof(text);
    EXPECT_EQ(adapter->GetCameraID(kTop, text, &size), RESULT_ERROR_TLGETDEVICENAME);
    RyCamera* camera = nullptr;
    EXPECT_EQ(gige_->OpenCamera(kTop, &camera, 4, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER);
    EXPECT_EQ(adapter->OpenCamera(kTop, &camera, 4, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER);
    RYCAMERA_INFO info;
    EXPECT_EQ(gige_->GetCameraInfo(kTop, &info), RESULT_ERROR_RYINTERFACE_CANNOT_FIND_DEVICE);
    RYINTERFACE_INFO record;
    EXPECT_EQ(gige_->GetInterfaceInfo(kTop, &record), RESULT_ERROR);
    unsigned int count = 7;
    EXPECT_EQ(gige_->GetNumCameras(kTop, &count), RESULT_SUCCESS);
    EXPECT_EQ(count, 0u);

    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    size = sizeof(text);
    EXPECT_EQ(camera->GetDeviceID(kTop, text, &size), RESULT_ERROR_TLGETDEVICENAME);
    size = sizeof(text);
    EXPECT_EQ(camera->GetDeviceModelName(kTop, text, &size), RESULT_ERROR_TLGETDEVICENAME);
    _PROPERTY property{};
    EXPECT_EQ(camera->GetPropertyInfo(static_cast<int32_t>(kTop), &property),
              RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera->GetPropertyInfo(0x7FFFFFFF, &property), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

TEST_F(CameraOpen, ClosingWhatNoInterfaceHoldsIsRefused) {
    StartCamera();
    EXPECT_EQ(gige_->CloseCamera(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    RyCamera stranger(nullptr, 0);
    EXPECT_EQ(gige_->CloseCamera(&stranger), RESULT_ERROR_INVALID_PARAMETER);
    unsigned int width = 0;
    EXPECT_EQ(stranger.GetWidth(&width), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    EXPECT_EQ(stranger.OpenCamera("x", 1, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_ERROR_RYCAMERA_INTERFACE_HANDLE);
}

TEST_F(CameraOpen, ZeroTimeOutsMeanNoLimit) {
    StartCamera();
    EXPECT_EQ(gige_->SetGVCPTimeout(0), RESULT_SUCCESS);
    unsigned int timeout = 1;
    EXPECT_EQ(gige_->GetGVCPTimeout(timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 0u);
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

}  // namespace
