// Failures a real network cannot produce on demand, injected by a transport table that
// forwards every call to the real transport layer but one: each open step's failure, its
// result and what it leaves behind, against the emulator.
#include <cstring>

#include "camera_fixture.h"
#include "transport/transport_table.h"

namespace {

using namespace RYSDK;

// The table in use while a test runs; the default one forwards to libRyGenTL.
transport::TransportTable forwarding;
GC_ERROR scriptedStatus = GC_ERR_SUCCESS;
int announceCalls = 0;

class CameraOpenFailure : public rytest::EmulatedCameraTest {
  protected:
    void SetUp() override {
        rytest::EmulatedCameraTest::SetUp();
        if (IsSkipped())
            return;
        forwarding = transport::DefaultTransport();
        scriptedStatus = GC_ERR_SUCCESS;
        announceCalls = 0;
        transport::InstallTransport(&forwarding);
        StartCamera();
    }
    void TearDown() override {
        rytest::EmulatedCameraTest::TearDown();
        transport::InstallTransport(nullptr);
    }

    // After a failure the camera is released again: a plain open succeeds.
    void ExpectCameraOpensAgain() {
        forwarding = transport::DefaultTransport();
        RyCamera* camera = nullptr;
        ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
        EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    }
};

TEST_F(CameraOpenFailure, DeviceOpenCodesHaveTheirOwnResults) {
    const std::pair<GC_ERROR, RESULT> cases[] = {
        {GC_ERR_MEMORY_ALLOCATION, RESULT_ERROR_MEMORY_ALLOCATION},
        {GC_ERR_INVALID_PARAMETER, RESULT_ERROR_INVALID_PARAMETER},
        {GC_ERR_ACCESS_DENIED, RESULT_ERROR_ACCESS_DENIED},
        {GC_ERR_RESOURCE_IN_USE, RESULT_ERROR_RESOURCE_IN_USE},
        {GC_ERR_TIMEOUT, RESULT_ERROR},
    };
    forwarding.IFOpenDevice = [](IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS,
                                 DEV_HANDLE*) -> GC_ERROR { return scriptedStatus; };
    for (const auto& [status, expected] : cases) {
        scriptedStatus = status;
        RyCamera* camera = nullptr;
        EXPECT_EQ(Open(&camera), expected) << status;
        EXPECT_EQ(camera, nullptr);
    }
    ExpectCameraOpensAgain();
}

TEST_F(CameraOpenFailure, ASuccessfulDeviceOpenWithoutAHandleIsRefused) {
    forwarding.IFOpenDevice = [](IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS,
                                 DEV_HANDLE* device) -> GC_ERROR {
        *device = nullptr;
        return GC_ERR_SUCCESS;
    };
    RyCamera* camera = nullptr;
    EXPECT_EQ(Open(&camera), RESULT_ERROR_TLOPENDEVICE);
    ExpectCameraOpensAgain();
}

TEST_F(CameraOpenFailure, StreamOpenFailuresLeaveTheDeviceToTheClose) {
    forwarding.DevOpenDataStream = [](DEV_HANDLE, const char*, DS_HANDLE*) -> GC_ERROR {
        return scriptedStatus;
    };
    RyCamera* camera = nullptr;
    scriptedStatus = GC_ERR_INVALID_PARAMETER;
    EXPECT_EQ(Open(&camera), RESULT_ERROR_STREAM_MTU);
    scriptedStatus = GC_ERR_IO;
    EXPECT_EQ(Open(&camera), RESULT_ERROR_DEVCREATESTREAM);
    ExpectCameraOpensAgain();
}

TEST_F(CameraOpenFailure, AnUnreadableOrForeignDescriptionKeepsTheDeviceReachable) {
    forwarding.GCGetPortURL = [](PORT_HANDLE, char* url, size_t* size) -> GC_ERROR {
        std::strncpy(url, "File:///etc/camera.xml", *size);
        return GC_ERR_SUCCESS;
    };
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_ERROR_RYCAMERA_GETXML);
    ASSERT_NE(camera, nullptr) << "the camera is handed out for raw access";
    TransportHandle device = nullptr;
    ASSERT_EQ(camera->GetDeviceHandle(&device), RESULT_SUCCESS);
    EXPECT_NE(device, nullptr);
    unsigned int width = 0;
    EXPECT_EQ(camera->GetWidth(&width), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);

    forwarding.GCGetPortURL = [](PORT_HANDLE, char*, size_t*) -> GC_ERROR {
        return GC_ERR_TIMEOUT;
    };
    ASSERT_EQ(Open(&camera), RESULT_ERROR_RYCAMERA_GETXML);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    ExpectCameraOpensAgain();
}

TEST_F(CameraOpenFailure, ADescriptionTheNodeMapRefusesEndsInAnException) {
    // The bootstrap registers are no description: the node map refuses them.
    forwarding.GCGetPortURL = [](PORT_HANDLE, char* url, size_t* size) -> GC_ERROR {
        std::strncpy(url, "Local:camera.xml;0;200", *size);
        return GC_ERR_SUCCESS;
    };
    RyCamera* camera = nullptr;
    EXPECT_EQ(Open(&camera), RESULT_ERROR_EXCEPTION);
    // A length no camera's description has is refused before anything is allocated.
    forwarding.GCGetPortURL = [](PORT_HANDLE, char* url, size_t* size) -> GC_ERROR {
        std::strncpy(url, "Local:camera.zip;100000;FFFFFFFFF", *size);
        return GC_ERR_SUCCESS;
    };
    EXPECT_EQ(Open(&camera), RESULT_ERROR_RYCAMERA_GETXML);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    ExpectCameraOpensAgain();
}

TEST_F(CameraOpenFailure, APoolThatCannotBeAnnouncedClosesStreamDeviceAndAdapter) {
    forwarding.DSAnnounceBuffer = [](DS_HANDLE stream, void* buffer, size_t size, void* user,
                                     BUFFER_HANDLE* handle) -> GC_ERROR {
        if (++announceCalls == 3)
            return GC_ERR_MEMORY_ALLOCATION;
        return transport::DefaultTransport().DSAnnounceBuffer(stream, buffer, size, user, handle);
    };
    RyInterface* adapter = Adapter();
    RyCamera* camera = nullptr;
    EXPECT_EQ(Open(&camera), RESULT_ERROR_MEMORY_ALLOCATION);
    // The adapter's transport handle went with the stream and the device, as it always has.
    unsigned int devices = 0;
    EXPECT_EQ(adapter->GetNumCameras(&devices), RESULT_ERROR_TLGETNUMDEVICES);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(CameraOpenFailure, APoolLargerThanMemoryIsReportedAsAnAllocationFailure) {
    RyCamera* camera = nullptr;
    EXPECT_EQ(Open(&camera, 0xFFFFFFFFu), RESULT_ERROR_MEMORY_ALLOCATION);
}
#endif

TEST_F(CameraOpenFailure, AMonitorTheDeviceCannotOfferFailsTheOpen) {
    forwarding.GCRegisterEvent = [](EVENTSRC_HANDLE source, EVENT_TYPE type,
                                    EVENT_HANDLE* event) -> GC_ERROR {
        if (type == EVENT_ERROR)
            return scriptedStatus;
        return transport::DefaultTransport().GCRegisterEvent(source, type, event);
    };
    const auto disconnect = [](OBJECT_INFO*, DISCONNECT_INFO) {};
    RyCamera* camera = nullptr;
    scriptedStatus = GC_ERR_NOT_IMPLEMENTED;
    EXPECT_EQ(Open(&camera, 4, 0, 0, 0, disconnect), RESULT_ERROR);
    scriptedStatus = GC_ERR_INVALID_PARAMETER;
    EXPECT_EQ(Open(&camera, 4, 0, 0, 0, disconnect), RESULT_ERROR_INVALID_PARAMETER);
    ExpectCameraOpensAgain();
}

}  // namespace

namespace {

int closeCcpCalls = 0;
int destinationWrites = 0;
// GevSCDA of the first stream channel in the bootstrap registers.
constexpr uint64_t kStreamDestinationRegister = 0x0D18;

TEST_F(CameraOpenFailure, MonitorModeNeitherAimsTheStreamNorReleasesControl) {
    closeCcpCalls = 0;
    destinationWrites = 0;
    forwarding.CloseCCP = [](DEV_HANDLE device) -> GC_ERROR {
        ++closeCcpCalls;
        return transport::DefaultTransport().CloseCCP(device);
    };
    forwarding.GCWritePort = [](PORT_HANDLE port, uint64_t address, const void* buffer,
                                size_t* size) -> GC_ERROR {
        if (address == kStreamDestinationRegister)
            ++destinationWrites;
        return transport::DefaultTransport().GCWritePort(port, address, buffer, size);
    };
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(destinationWrites, 1);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(closeCcpCalls, 1);

    ASSERT_EQ(gige_->SetCCPPrivilege(CCP_PRIVILEGE_MONITOR), RESULT_SUCCESS);
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    unsigned int width = 0;
    EXPECT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(destinationWrites, 1);
    EXPECT_EQ(closeCcpCalls, 1);
}

}  // namespace
