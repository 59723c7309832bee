// The flat C functions that do more than forward, against an emulated camera on loopback.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include "private_network.h"
#include "ry/emulator/camera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/rysdk_c.h"

namespace {

class FlatInterface : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!rytest::InPrivateNetwork())
            GTEST_SKIP() << rytest::kPrivateNetworkAdvice;
        RYSDK::SetEventLogCallback(nullptr, nullptr);
        ry::emulator::CameraConfig config;
        config.address = "127.0.0.2";
        config.model = "RY-FLAT";
        config.width = 320;
        config.height = 240;
        emulator_ = std::make_unique<ry::emulator::Camera>(config);
        ASSERT_EQ(OpenRyGigE(&system_), RESULT_SUCCESS);
        ASSERT_EQ(RySetDiscoveryTimeout(system_, 300), RESULT_SUCCESS);
        ASSERT_EQ(RyDiscovery(system_), RESULT_SUCCESS);
        uint32_t cameras = 0;
        ASSERT_EQ(RyGetNumCameras(system_, &cameras), RESULT_SUCCESS);
        ASSERT_EQ(cameras, 1u);
    }
    void TearDown() override {
        if (system_ != nullptr) {
            EXPECT_EQ(CloseRyGigE(&system_), RESULT_SUCCESS);
        }
        emulator_.reset();
        RYSDK::UseSyslogEventLog();
    }

    RYINTERFACE_HANDLE OpenAdapter() {
        RYINTERFACE_HANDLE adapter = nullptr;
        EXPECT_EQ(RyOpenInterfaceByIndex(system_, 0, &adapter), RESULT_SUCCESS);
        return adapter;
    }

    OBJECT_INFO object_{};
    RYGIGE_HANDLE system_ = nullptr;
    std::unique_ptr<ry::emulator::Camera> emulator_;
};

TEST_F(FlatInterface, ASecondOpenIsRefusedAndTheFirstHandleStaysValid) {
    RYGIGE_HANDLE second = nullptr;
    EXPECT_EQ(OpenRyGigE(&second), RESULT_ERROR_OPENED_ALREADY);
    EXPECT_EQ(second, nullptr);
    uint32_t interfaces = 0;
    EXPECT_EQ(RyGetNumInterfaces(system_, &interfaces), RESULT_SUCCESS);
    EXPECT_EQ(interfaces, 1u);

    RYGIGE_HANDLE stale = system_;
    ASSERT_EQ(CloseRyGigE(&system_), RESULT_SUCCESS);
    EXPECT_EQ(system_, nullptr);
    EXPECT_EQ(RyGetNumInterfaces(stale, &interfaces), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CloseRyGigE(&stale), RESULT_ERROR_INVALID_PARAMETER);
    // Closed, a new system object can be made.
    ASSERT_EQ(OpenRyGigE(&system_), RESULT_SUCCESS);
}

TEST_F(FlatInterface, DiscoveryRecordsAreCopiedFlat) {
    RYINTERFACE_INFO adapter;
    std::memset(&adapter, 0x7F, sizeof(adapter));
    ASSERT_EQ(RyDiscoveryInterfaceInfo(system_, 0, &adapter), RESULT_SUCCESS);
    EXPECT_EQ(adapter.m_Index, 0u);
    EXPECT_EQ(adapter.m_Result, RESULT_SUCCESS);
    EXPECT_LT(std::strlen(adapter.m_Name), sizeof(adapter.m_Name));

    RYCAMERA_INFO camera;
    ASSERT_EQ(RyDiscoveryCameraInfo(system_, 0, &camera), RESULT_SUCCESS);
    EXPECT_STREQ(camera.m_ModelName, "RY-FLAT");
    EXPECT_STREQ(camera.m_IPAddress, "127.0.0.2");

    EXPECT_EQ(RyDiscoveryInterfaceInfo(system_, 1, &adapter), RESULT_ERROR_CANNOT_FIND_INTERFACE);
    EXPECT_EQ(RyDiscoveryCameraInfo(system_, 1, &camera), RESULT_ERROR_CANNOT_FIND_INTERFACE);
    EXPECT_EQ(RyDiscoveryInterfaceInfo(system_, 0, nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RyDiscoveryCameraInfo(system_, 0, nullptr), RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(FlatInterface, InterfaceOpensTakeTheUserRecordSecond) {
    RYINTERFACE_HANDLE adapter = OpenAdapter();
    uint32_t count = 0;
    ASSERT_EQ(InterfaceGetNumCameras(adapter, &count), RESULT_SUCCESS);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(InterfaceGetNumCameras(adapter, nullptr), RESULT_ERROR_INVALID_PARAMETER);

    // The camera refuses a null user record, so a wrong argument order would show here.
    RYCAMERA_HANDLE camera = nullptr;
    EXPECT_NE(
        InterfaceOpenCameraByIndex(adapter, nullptr, 0, &camera, 4, 0, 0, 0, nullptr, nullptr),
        RESULT_SUCCESS);
    ASSERT_EQ(
        InterfaceOpenCameraByIndex(adapter, &object_, 0, &camera, 4, 0, 0, 0, nullptr, nullptr),
        RESULT_SUCCESS);
    uint32_t width = 0;
    EXPECT_EQ(CameraGetWidth(camera, &width), RESULT_SUCCESS);
    EXPECT_EQ(width, 320u);
    ASSERT_EQ(CameraClose(camera), RESULT_SUCCESS);

    RYCAMERA_INFO info;
    ASSERT_EQ(RyDiscoveryCameraInfo(system_, 0, &info), RESULT_SUCCESS);
    ASSERT_EQ(InterfaceOpenCameraByName(adapter, &object_, info.m_Name, &camera, 4, 0, 0, 0,
                                        nullptr, nullptr),
              RESULT_SUCCESS);
    RYINTERFACE_HANDLE owner = nullptr;
    ASSERT_EQ(CameraGetInterfaceHandle(camera, &owner), RESULT_SUCCESS);
    EXPECT_EQ(owner, adapter);
    EXPECT_EQ(CameraClose(camera), RESULT_SUCCESS);
}

TEST_F(FlatInterface, AClosedCameraHandleIsRefusedNotFollowed) {
    RYCAMERA_HANDLE camera = nullptr;
    ASSERT_EQ(RyOpenCameraByIndex(system_, 0, &camera, 4, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_SUCCESS);
    ASSERT_EQ(CameraClose(camera), RESULT_SUCCESS);
    uint32_t width = 0;
    EXPECT_EQ(CameraGetWidth(camera, &width), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CameraClose(camera), RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(FlatInterface, ClosingTheInterfaceClosesItsCameraHandles) {
    RYCAMERA_HANDLE camera = nullptr;
    ASSERT_EQ(RyOpenCameraByIndex(system_, 0, &camera, 4, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_SUCCESS);
    RYINTERFACE_HANDLE adapter = nullptr;
    ASSERT_EQ(CameraGetInterfaceHandle(camera, &adapter), RESULT_SUCCESS);
    ASSERT_EQ(InterfaceCloseInterface(adapter), RESULT_SUCCESS);
    uint32_t width = 0;
    EXPECT_EQ(CameraGetWidth(camera, &width), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(InterfaceCloseInterface(adapter), RESULT_ERROR_IF_HANDLE);
    EXPECT_EQ(InterfaceGetNumCameras(adapter, &width), RESULT_ERROR_IF_HANDLE);
}

TEST_F(FlatInterface, CameraClosedWithTheSystemBecomesInvalid) {
    RYCAMERA_HANDLE camera = nullptr;
    ASSERT_EQ(RyOpenCameraByIndex(system_, 0, &camera, 4, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_SUCCESS);
    ASSERT_EQ(CloseRyGigE(&system_), RESULT_SUCCESS);
    uint32_t width = 0;
    EXPECT_EQ(CameraGetWidth(camera, &width), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CameraClose(camera), RESULT_ERROR_RYGIGE_INITIALIZATION);
}

// Arguments the C types carry differently from the class: enumerations by pointer, records,
// booleans as int32_t and references as pointers.
TEST_F(FlatInterface, ConvertedArgumentsReachTheCamera) {
    RYCAMERA_HANDLE camera = nullptr;
    ASSERT_EQ(RyOpenCameraByIndex(system_, 0, &camera, 4, 0, 0, 0, &object_, nullptr, nullptr),
              RESULT_SUCCESS);
    PIXEL_FORMAT format = 0;
    ASSERT_EQ(CameraGetPixelFormat(camera, &format), RESULT_SUCCESS);
    EXPECT_EQ(format, static_cast<PIXEL_FORMAT>(PIXEL_FORMAT_MONO8));

    PROPERTY_INFO property;
    ASSERT_EQ(CameraGetPropertyInfo(camera, "Width", &property), RESULT_SUCCESS);
    EXPECT_STREQ(property.name, "Width");
    EXPECT_EQ(property.accessMode, 4u);

    char value[64] = {};
    uint64_t size = sizeof(value);
    ASSERT_EQ(
        CameraGetCustomCommand(camera, "DeviceModelName", value, &size, GET_CUSTOM_COMMAND_VALUE),
        RESULT_SUCCESS);
    EXPECT_STREQ(value, "RY-FLAT");

    int32_t dhcp = -1;
    EXPECT_EQ(CameraGigEGetCurrentIpConfigurationDHCP(camera, &dhcp), RESULT_SUCCESS);
    EXPECT_TRUE(dhcp == 0 || dhcp == 1) << dhcp;
    int32_t tries = 0;
    EXPECT_EQ(CameraGetHeartBeatTimeoutTryCount(camera, nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CameraGetHeartBeatTimeoutTryCount(camera, &tries), RESULT_SUCCESS);
    uint32_t timeout = 0;
    EXPECT_EQ(RyGetDiscoveryTimeout(system_, nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RyGetDiscoveryTimeout(system_, &timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 300u);
    EXPECT_EQ(CameraClose(camera), RESULT_SUCCESS);
}

// The callback has the C header's types; the SDK calls it through its own.
std::atomic<int> framesSeen{0};
std::atomic<uint32_t> lastWidth{0};
std::atomic<void*> lastObject{nullptr};

void OnImage(OBJECT_INFO* object, IMAGE_INFO* image) {
    lastObject = object;
    lastWidth = image->width;
    ++framesSeen;
}

TEST_F(FlatInterface, FramesReachACCallbackAndThePollingCall) {
    RYCAMERA_HANDLE camera = nullptr;
    ASSERT_EQ(RyOpenCameraByIndex(system_, 0, &camera, 4, 0, 0, 0, &object_, OnImage, nullptr),
              RESULT_SUCCESS);
    ASSERT_EQ(CameraSnap(camera, 3), RESULT_SUCCESS);
    for (int i = 0; i < 500 && framesSeen < 3; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(framesSeen, 3);
    EXPECT_EQ(lastWidth, 320u);
    EXPECT_EQ(lastObject, &object_);
    CameraAbort(camera);

    ASSERT_EQ(CameraSetImageCallback(camera, nullptr), RESULT_SUCCESS);
    ASSERT_EQ(CameraSetAcquisitionTimeOut(camera, 3000), RESULT_SUCCESS);
    ASSERT_EQ(CameraGrab(camera), RESULT_SUCCESS);
    int32_t grabbing = 0;
    EXPECT_EQ(CameraGetGrabCondition(camera, &grabbing), RESULT_SUCCESS);
    EXPECT_EQ(grabbing, 1);
    IMAGE_INFO image{};
    EXPECT_EQ(CameraGetGrabData(camera, nullptr), RESULT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(CameraGetGrabData(camera, &image), RESULT_SUCCESS);
    EXPECT_EQ(image.width, 320u);
    EXPECT_EQ(image.height, 240u);
    EXPECT_NE(image.pImage, nullptr);
    EXPECT_EQ(CameraAbort(camera), RESULT_SUCCESS);
    uint32_t lost = 99;
    EXPECT_EQ(CameraGetStreamInfo(camera, STREAM_INFO_LOST_FRAMES, &lost), RESULT_SUCCESS);
    EXPECT_EQ(lost, 0u);
    EXPECT_EQ(CameraClose(camera), RESULT_SUCCESS);
}

}  // namespace
