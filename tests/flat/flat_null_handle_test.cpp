// Every flat function that forwards to an object refuses a handle it did not hand out: null,
// an address of something else, or one closed since. The table below holds every such
// function; a test reads the C header so that a function added there without a row fails.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "rysdk/rysdk_c.h"

namespace {

struct Row {
    const char* name;
    std::function<RESULT(void*)> call;
};

// Calls `function` with `handle` first and every other argument zero or null: with a handle
// the table refuses, nothing else is looked at.
template <typename Handle, typename... Args>
Row MakeRow(const char* name, RESULT (*function)(Handle, Args...)) {
    return {name,
            [function](void* handle) { return function(static_cast<Handle>(handle), Args{}...); }};
}

#define ROW(function) MakeRow(#function, &function)

const std::vector<Row>& Forwarders() {
    static const std::vector<Row> rows = {
        ROW(RyDiscovery), ROW(RyGetNumInterfaces), ROW(RyGetNumCameras),
        ROW(RyGetNumCamerasByIndex), ROW(RyGetNumCamerasByName), ROW(RyDiscoveryInterfaceInfo),
        ROW(RyDiscoveryCameraInfo), ROW(RyOpenCameraByIndex), ROW(RyOpenCameraByName),
        ROW(RyOpenInterfaceByIndex), ROW(RyOpenInterfaceByName), ROW(RyForceIP),
        ROW(RyUseMTUOptimize), ROW(RySetMTUTimeout), ROW(RyGetMTUTimeout), ROW(RySetGVCPTimeout),
        ROW(RyGetGVCPTimeout), ROW(RySetMultiCastAddress), ROW(RyGetMultiCastAddress),
        ROW(RySetIgnoreSubnet), ROW(RyGetIgnoreSubnet), ROW(RySetDiscoveryTimeout),
        ROW(RyGetDiscoveryTimeout), ROW(RySetCCPPrivilege), ROW(RyUserLogging),
        // Interface
        ROW(InterfaceOpenCameraByIndex), ROW(InterfaceOpenCameraByName),
        ROW(InterfaceGetNumCameras), ROW(InterfaceGetCameraName), ROW(InterfaceGetCameraID),
        ROW(InterfaceGetRyGigEHandle), ROW(InterfaceGetSubnet), ROW(InterfaceGetIPAddress),
        ROW(InterfaceUsePacketResend), ROW(InterfaceUsePacketResendFrequently),
        ROW(InterfaceUseLAGMode), ROW(InterfaceGetImageReceivingTimeout),
        ROW(InterfaceSetImageReceivingTimeout), ROW(InterfaceGetImageRetransTimeout),
        ROW(InterfaceSetImageRetransTimeout), ROW(InterfaceCloseInterface),
        // Camera
        ROW(CameraGetInterfaceHandle), ROW(CameraGrab), ROW(CameraSnap), ROW(CameraAbort),
        ROW(CameraGetGrabData), ROW(CameraGetGrabCondition), ROW(CameraSetAcquisitionTimeOut),
        ROW(CameraGetAcquisitionTimeOut), ROW(CameraGetStreamInfo),
        ROW(CameraUseIndependentCallback), ROW(CameraSetImageCallback), ROW(CameraGetFrameCapacity),
        ROW(CameraChangeBufferFormat), ROW(CameraGetBufferInfo), ROW(CameraGetWidth),
        ROW(CameraGetHeight), ROW(CameraSetWidth), ROW(CameraSetHeight), ROW(CameraSetPixelFormat),
        ROW(CameraGetPixelFormat), ROW(CameraGetPixelFormatLineup),
        ROW(CameraGetPixelFormatLineupNum), ROW(CameraSetTriggerMode), ROW(CameraGetTriggerMode),
        ROW(CameraGetTriggerModeLineup), ROW(CameraGetTriggerModeLineupNum),
        ROW(CameraSetTriggerSource), ROW(CameraGetTriggerSource), ROW(CameraGetTriggerSourceLineup),
        ROW(CameraGetTriggerSourceLineupNum), ROW(CameraSetTriggerSoftware),
        ROW(CameraSetTriggerActivation), ROW(CameraSetBinningHorizontal),
        ROW(CameraGetBinningHorizontal), ROW(CameraGetBinningHorizontalLineup),
        ROW(CameraGetBinningHorizontalLineupNum), ROW(CameraSetBinningVertical),
        ROW(CameraGetBinningVertical), ROW(CameraGetBinningVerticalLineup),
        ROW(CameraGetBinningVerticalLineupNum), ROW(CameraGetBinningFactor),
        ROW(CameraSetBinningFactor), ROW(CameraSetStreamHold), ROW(CameraGetStreamHold),
        ROW(CameraSetSCPSPacketSize), ROW(CameraGetSCPSPacketSize), ROW(CameraSetTestImage),
        ROW(CameraGetTestImage), ROW(CameraGetTestImageLineup), ROW(CameraGetTestImageLineupNum),
        ROW(CameraSetPixelSize), ROW(CameraGetPixelSize), ROW(CameraGetPixelSizeLineupNum),
        ROW(CameraGetPixelSizeLineup), ROW(CameraSetReadoutMode), ROW(CameraGetExposureMode),
        ROW(CameraSetExposureMode), ROW(CameraGetExposureTime), ROW(CameraSetExposureTime),
        ROW(CameraGetGain), ROW(CameraSetGain), ROW(CameraSetHorizontalStart),
        ROW(CameraGetHorizontalStart), ROW(CameraSetHorizontalEnd), ROW(CameraGetHorizontalEnd),
        ROW(CameraSetVerticalStart), ROW(CameraGetVerticalStart), ROW(CameraSetVerticalEnd),
        ROW(CameraGetVerticalEnd), ROW(CameraSetBlackLevel), ROW(CameraSetReverseX),
        ROW(CameraSetStrobeOffset), ROW(CameraSetStrobePolarity), ROW(CameraGetDeviceModelName),
        ROW(CameraGetDeviceVersion), ROW(CameraGetDeviceVendorName), ROW(CameraGetDeviceID),
        ROW(CameraGigESetCurrentIpConfigurationDHCP),
        ROW(CameraGigESetCurrentIpConfigurationPersistentIP),
        ROW(CameraGigEGetCurrentIpConfigurationDHCP),
        ROW(CameraGigEGetCurrentIpConfigurationPersistentIP),
        ROW(CameraGigEGetPersistentSubnetMask), ROW(CameraGigEGetCurrentMACAddress),
        ROW(CameraGigEGetColorRGBGain), ROW(CameraGigESetColorRGBGain),
        ROW(CameraGigEGetTemperature), ROW(CameraGigEGetSerialNumber), ROW(CameraSetCustomCommand),
        ROW(CameraGetCustomCommand), ROW(CameraGetPropertyCount), ROW(CameraGetPropertyInfo),
        ROW(CameraGetPropertyInfoUsingIndex), ROW(CameraReadData), ROW(CameraWriteData),
        ROW(CameraReadFileStream), ROW(CameraWriteFileStream), ROW(CameraSetEventControl),
        ROW(CameraSetHeartBeatTimeoutTryCount), ROW(CameraGetHeartBeatTimeoutTryCount),
        ROW(CameraGetUARTCustomCommand), ROW(CameraSetUARTCustomCommand)};
    return rows;
}

TEST(FlatHandles, EveryForwarderRefusesAHandleItDidNotHandOut) {
    // Not null and not an object of the SDK's either: a stale or mistaken pointer.
    long unrelated = 0;
    for (const Row& row : Forwarders()) {
        EXPECT_EQ(row.call(nullptr), RESULT_ERROR_INVALID_PARAMETER) << row.name << " (null)";
        EXPECT_EQ(row.call(&unrelated), RESULT_ERROR_INVALID_PARAMETER) << row.name;
    }
    EXPECT_EQ(unrelated, 0);
}

// The functions that take no object handle, or whose refusal has a result of its own.
const std::set<std::string> kNotForwarders = {"OpenRyGigE", "CloseRyGigE", "CameraClose"};

std::set<std::string> DeclaredFunctions() {
    std::set<std::string> names;
    const std::string declaration = "RYSDK_API RESULT ";
    for (const char* header : {"rysdk_c.h", "rysdk_c_camera.h"}) {
        std::ifstream file(std::string(RY_SDK_INCLUDE_DIR) + "/rysdk/" + header);
        std::stringstream text;
        text << file.rdbuf();
        const std::string content = text.str();
        for (size_t at = content.find(declaration); at != std::string::npos;
             at = content.find(declaration, at + 1)) {
            const size_t begin = at + declaration.size();
            names.insert(content.substr(begin, content.find('(', begin) - begin));
        }
    }
    return names;
}

TEST(FlatHandles, TheTableCoversEveryDeclaredFunction) {
    std::set<std::string> inTable;
    for (const Row& row : Forwarders())
        inTable.insert(row.name);
    const std::set<std::string> declared = DeclaredFunctions();
    ASSERT_GT(declared.size(), 100u);
    for (const std::string& name : declared) {
        if (kNotForwarders.count(name) == 0) {
            EXPECT_EQ(inTable.count(name), 1u) << name << " has no row";
        }
    }
}

TEST(FlatHandles, SystemFunctionsWithAPointerToTheHandle) {
    EXPECT_EQ(OpenRyGigE(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CloseRyGigE(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    RYGIGE_HANDLE none = nullptr;
    EXPECT_EQ(CloseRyGigE(&none), RESULT_ERROR_INVALID_PARAMETER);
    long unrelated = 0;
    auto foreign = reinterpret_cast<RYGIGE_HANDLE>(&unrelated);
    EXPECT_EQ(CloseRyGigE(&foreign), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(foreign, reinterpret_cast<RYGIGE_HANDLE>(&unrelated));
    // Without a system object a camera cannot be closed at all.
    EXPECT_EQ(CameraClose(nullptr), RESULT_ERROR_RYGIGE_INITIALIZATION);
}

}  // namespace
