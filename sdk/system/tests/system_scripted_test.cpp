// RyGigE and RyInterface over a scripted transport: the failure paths and numbering rules
// that need a transport layer answering exactly as told.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "scripted_transport.h"

namespace RYSDK::testing {
namespace {

class ScriptedSystem : public ::testing::Test {
  protected:
    void SetUp() override { SetEventLogCallback(nullptr, nullptr); }
    void TearDown() override { UseSyslogEventLog(); }

    Script script;
};

TEST_F(ScriptedSystem, TLOpenFailuresHaveTheirOwnResults) {
    const std::pair<GC_ERROR, RESULT> cases[] = {
        {GC_ERR_INVALID_PARAMETER, RESULT_ERROR_INVALID_PARAMETER},
        {GC_ERR_INVALID_HANDLE, RESULT_ERROR_INVALID_HANDLE},
        {GC_ERR_RESOURCE_IN_USE, RESULT_ERROR_OPENED_ALREADY},
        {GC_ERR_ERROR, RESULT_ERROR},
        {GC_ERR_ACCESS_DENIED, RESULT_ERROR_TLOPEN},
    };
    for (const auto& [code, result] : cases) {
        script.tlOpenResult = code;
        ScriptedTransport transport(script);
        RyGigE gige;
        EXPECT_EQ(gige.Open(), result) << code;
    }
}

TEST_F(ScriptedSystem, CamerasAreNumberedInterfaceAfterInterface) {
    script.interfaces = {{"abcfirst one", 2}, {"abcsecond", 3}};
    ScriptedTransport transport(script);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);

    unsigned int count = 0;
    ASSERT_EQ(gige.GetNumCameras(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 5u);
    ASSERT_EQ(gige.GetNumCameras(1u, &count), RESULT_SUCCESS);
    EXPECT_EQ(count, 3u);
    ASSERT_EQ(gige.GetNumCameras("abcfirst one", &count), RESULT_SUCCESS);
    EXPECT_EQ(count, 2u);
    ASSERT_EQ(gige.GetNumCameras("nobody", &count), RESULT_SUCCESS);
    EXPECT_EQ(count, 0u);
    ASSERT_EQ(gige.GetNumInterfaces(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 2u);

    RYCAMERA_INFO info;
    ASSERT_EQ(gige.GetCameraInfo(2u, &info), RESULT_SUCCESS);
    EXPECT_STREQ(info.m_Name, "dev1-0");
    EXPECT_STREQ(info.m_ModelName, "Model0");
    EXPECT_STREQ(info.m_MACAddress, "02:00:00:00:00:00");
    EXPECT_EQ(info.m_Result, 55u);
    EXPECT_EQ(gige.GetCameraInfo(5u, &info), RESULT_ERROR_RYINTERFACE_CANNOT_FIND_DEVICE);
    ASSERT_EQ(gige.GetCameraInfo("dev1-2", &info), RESULT_SUCCESS);
    EXPECT_EQ(info.m_DeviceIndex, 2u);
    EXPECT_EQ(gige.GetCameraInfo("dev9-9", &info), RESULT_ERROR);

    RYINTERFACE_INFO record;
    ASSERT_EQ(gige.GetInterfaceInfo(1u, &record), RESULT_SUCCESS);
    EXPECT_STREQ(record.m_Name, "abcsecond");
    EXPECT_EQ(record.m_CameraCount, 3u);
    EXPECT_EQ(gige.GetInterfaceInfo(2u, &record), RESULT_ERROR);
    EXPECT_EQ(script.interfaceCloses, 2) << "discovery closes what it opened";
}

TEST_F(ScriptedSystem, FailingInterfacesStayListedWithTheirResult) {
    script.interfaces = {{"abcbroken", 4}, {"abcnoname", 1}, {"abcgood", 1}, {"abcnocount", 1}};
    script.interfaces[0].openResult = GC_ERR_ACCESS_DENIED;
    script.interfaces[1].idResult = GC_ERR_IO;
    script.interfaces[3].numDevicesResult = GC_ERR_IO;
    ScriptedTransport transport(script);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);

    RYINTERFACE_INFO record;
    ASSERT_EQ(gige.GetInterfaceInfo(0u, &record), RESULT_SUCCESS);
    EXPECT_EQ(record.m_Result, RESULT_ERROR_RYINTERFACE_OPENINTERFACE);
    EXPECT_EQ(record.m_CameraCount, 0u);
    RYINTERFACE_INFO second;
    ASSERT_EQ(gige.GetInterfaceInfo(1u, &second), RESULT_SUCCESS);
    EXPECT_EQ(second.m_Result, RESULT_ERROR_RYINTERFACE_GETINTERFACENAME);
    RYINTERFACE_INFO fourth;
    ASSERT_EQ(gige.GetInterfaceInfo(3u, &fourth), RESULT_SUCCESS);
    EXPECT_EQ(fourth.m_Result, RESULT_ERROR_RYINTERFACE_GETNUMDEVICES);

    RYCAMERA_INFO info;
    ASSERT_EQ(gige.GetCameraInfo(0u, &info), RESULT_SUCCESS);
    EXPECT_STREQ(info.m_Name, "dev2-0") << "the numbering skips interfaces without cameras";
}

TEST_F(ScriptedSystem, AnUnreadableDeviceIdEndsDiscoveryWithoutTheFlag) {
    script.interfaces = {{"abcone", 2}};
    script.interfaces[0].failingDeviceId = 1;
    ScriptedTransport transport(script);
    RyGigE gige;
    EXPECT_EQ(gige.Open(), RESULT_ERROR_TLGETDEVICENAME);
    DISCOVERY_INFO summary{};
    gige.GetDiscoveryInfo(summary);
    EXPECT_EQ(summary.m_Discovered, 0);
    EXPECT_EQ(script.interfaceCloses, 1);
}

TEST_F(ScriptedSystem, ZeroInterfacesIsASuccessfulButEmptyDiscovery) {
    ScriptedTransport transport(script);
    RyGigE gige;
    unsigned int count = 7;
    EXPECT_EQ(gige.GetNumInterfaces(&count), RESULT_ERROR) << "before discovery";
    EXPECT_EQ(gige.GetNumInterfaces(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    EXPECT_EQ(gige.GetNumInterfaces(&count), RESULT_ERROR);
    RYCAMERA_INFO info;
    EXPECT_EQ(gige.GetCameraInfo(0u, &info), RESULT_ERROR_RYINTERFACE_NO_NIC);
    EXPECT_EQ(gige.GetCameraInfo("x", &info), RESULT_ERROR);
    ASSERT_EQ(gige.GetNumCameras(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 0u);
    const unsigned char mac[6] = {2, 0, 0, 0, 0, 1};
    EXPECT_EQ(gige.SetForceIP(mac, 0x7F000002, 0xFF000000, 0), RESULT_SUCCESS);
    EXPECT_EQ(script.forceIpCalls, 0);
}

TEST_F(ScriptedSystem, SystemPortSettingsNeedTheTransportOpen) {
    ScriptedTransport transport(script);
    RyGigE gige;
    unsigned int timeout = 0;
    EXPECT_EQ(gige.SetGVCPTimeout(500), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(gige.GetMTUTimeout(timeout), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(gige.UseMTUOptimize(1), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(script.portCalls, 0);

    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    EXPECT_EQ(gige.SetGVCPTimeout(500), RESULT_SUCCESS);
    EXPECT_EQ(gige.UseMTUOptimize(1), RESULT_SUCCESS);
    EXPECT_EQ(gige.SetMTUTimeout(250), RESULT_SUCCESS);
    EXPECT_EQ(script.systemPort[2], 500u);
    EXPECT_EQ(script.systemPort[3], 1u);
    EXPECT_EQ(script.systemPort[4], 250u);
    ASSERT_EQ(gige.GetGVCPTimeout(timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 500u);
}

TEST_F(ScriptedSystem, InterfacesOpenByTheIdentifierRuleAndOnce) {
    script.interfaces = {{"abceth0 first adapter", 1}, {"lo0 second", 1}};
    ScriptedTransport transport(script);
    RyGigE gige;
    RyInterface* first = nullptr;
    RyInterface* again = nullptr;
    RyInterface* second = nullptr;
    EXPECT_EQ(gige.OpenInterface(0u, nullptr), RESULT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(gige.OpenInterface(0u, &first), RESULT_SUCCESS) << "opens and discovers first";
    ASSERT_EQ(gige.OpenInterface("abceth0 first adapter", &again), RESULT_SUCCESS);
    EXPECT_EQ(first, again);
    ASSERT_EQ(gige.OpenInterface(1u, &second), RESULT_SUCCESS);
    EXPECT_EQ(gige.OpenInterface(2u, &second), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(gige.OpenInterface("missing", &second), RESULT_ERROR_CANNOT_FIND_INTERFACE);

    const std::vector<std::string> tail(script.openedInterfaceIds.end() - 2,
                                        script.openedInterfaceIds.end());
    EXPECT_EQ(tail, (std::vector<std::string>{"eth0", "lo0"}));
    EXPECT_STREQ(first->GetInterfaceID(), "eth0");

    char address[32] = {};
    size_t size = sizeof(address);
    ASSERT_EQ(first->GetIPAddress(address, &size), RESULT_SUCCESS);
    EXPECT_STREQ(address, "127.0.0.1");

    const int closesBefore = script.interfaceCloses;
    EXPECT_EQ(gige.Close(), RESULT_SUCCESS);
    EXPECT_EQ(script.interfaceCloses, closesBefore + 2);
    unsigned int count = 9;
    ASSERT_EQ(gige.GetNumCameras(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 0u) << "records are gone and discovery does not run again by itself";
}

TEST_F(ScriptedSystem, AFailedInterfaceOpenMarksTheRecord) {
    script.interfaces = {{"abcbad", 1}};
    ScriptedTransport transport(script);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    script.interfaces[0].openResult = GC_ERR_IO;
    RyInterface* adapter = nullptr;
    EXPECT_EQ(gige.OpenInterface(0u, &adapter), RESULT_ERROR_TLOPENINTERFACE);
    RYINTERFACE_INFO record;
    ASSERT_EQ(gige.GetInterfaceInfo(0u, &record), RESULT_SUCCESS);
    EXPECT_EQ(record.m_ErrorFlag, 1u);
    EXPECT_EQ(record.m_Result, RESULT_ERROR_TLOPENINTERFACE);
}

TEST_F(ScriptedSystem, ForceIpTriesEveryAdapterUntilOneRefuses) {
    script.interfaces = {{"abcone", 1}, {"abctwo", 1}};
    ScriptedTransport transport(script);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    const unsigned char mac[6] = {2, 0, 0, 0, 0, 1};
    EXPECT_EQ(gige.SetForceIP(nullptr, 1, 1, 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(gige.SetForceIP(mac, 0, 1, 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(gige.SetForceIP(mac, 1, 0, 0), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(gige.SetForceIP(mac, 0x7F000002, 0xFF000000, 0), RESULT_SUCCESS);
    EXPECT_EQ(script.forceIpCalls, 2);
    script.forceIpResult = GC_ERR_ACCESS_DENIED;
    EXPECT_EQ(gige.SetForceIP(mac, 0x7F000002, 0xFF000000, 0), RESULT_ERROR_ACCESS_DENIED);
    EXPECT_EQ(script.forceIpCalls, 3);
}

TEST_F(ScriptedSystem, InterfaceObjectRules) {
    script.interfaces = {{"abcone", 2}};
    ScriptedTransport transport(script);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);

    RyInterface adapter(gige.GetSystemHandle(), 1);
    EXPECT_EQ(adapter.GetRyGigE(nullptr), RESULT_ERROR);
    EXPECT_EQ(adapter.CloseInterface(), RESULT_ERROR_IF_HANDLE);
    EXPECT_EQ(adapter.OpenInterface("if0", nullptr), RESULT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(adapter.OpenInterface("ID: one", &gige), RESULT_SUCCESS);
    EXPECT_EQ(script.openedInterfaceIds.back(), "one");
    EXPECT_STREQ(adapter.GetInterfaceID(), "ID: one");
    EXPECT_EQ(adapter.GetRyGigE(nullptr), RESULT_SUCCESS);

    // Names are copied without a terminating zero; a buffer of exactly the name's length
    // is too small.
    const std::string expected = "Camera dev0-1";
    char name[64] = {};
    size_t size = expected.size();
    EXPECT_EQ(adapter.GetCameraName(1, name, &size), RESULT_ERROR_INVALID_PARAMETER);
    size = 0;
    ASSERT_EQ(adapter.GetCameraName(1, nullptr, &size), RESULT_SUCCESS);
    EXPECT_EQ(size, expected.size() + 1);
    size = sizeof(name);
    ASSERT_EQ(adapter.GetCameraName(1, name, &size), RESULT_SUCCESS);
    EXPECT_EQ(std::string(name), expected);
    EXPECT_EQ(adapter.GetCameraName(2, name, &size), RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER);

    char id[8] = {};
    size = 3;
    ASSERT_EQ(adapter.GetCameraID(0, id, &size), RESULT_SUCCESS);
    EXPECT_EQ(id[0], '\0') << "too small a size copies nothing";
    size = sizeof(id);
    ASSERT_EQ(adapter.GetCameraID(0, id, &size), RESULT_SUCCESS);
    EXPECT_STREQ(id, "dev0-0");

    EXPECT_EQ(adapter.SetImageReceivingTimeout(900), RESULT_SUCCESS);
    EXPECT_EQ(adapter.SetImageRetransTimeout(30), RESULT_SUCCESS);
    EXPECT_EQ(adapter.UsePacketResend(5), RESULT_SUCCESS);
    EXPECT_EQ(adapter.UseLAGMode(1), RESULT_SUCCESS);
    EXPECT_EQ(adapter.UsePacketResendFrequently(0), RESULT_SUCCESS);
    EXPECT_EQ(script.systemPort[7], 900u);
    EXPECT_EQ(script.systemPort[8], 30u);
    EXPECT_EQ(script.systemPort[9], 1u);
    EXPECT_EQ(script.systemPort[16], 1u);
    EXPECT_EQ(script.systemPort[17], 0u);
    unsigned int timeout = 0;
    ASSERT_EQ(adapter.GetImageReceivingTimeout(timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 900u);

    EXPECT_EQ(adapter.CloseInterface(), RESULT_SUCCESS);
    EXPECT_EQ(adapter.CloseInterface(), RESULT_ERROR_IF_HANDLE);
}

TEST(UserLogging, NeedsALiveSdkAndEveryText) {
    std::vector<std::wstring> records;
    SetEventLogCallback(
        [](void* sink, uint16_t, uint32_t, const wchar_t* record) {
            static_cast<std::vector<std::wstring>*>(sink)->emplace_back(record);
        },
        &records);
    Script script;
    {
        ScriptedTransport transport(script);
        {
            RyGigE gige;
            records.clear();
            EXPECT_EQ(gige.UserLogging(L"App", L"main", L"run", 3, nullptr),
                      RESULT_ERROR_INVALID_PARAMETER);
            EXPECT_TRUE(records.empty());
            EXPECT_EQ(gige.UserLogging(L"App", L"main", L"run", 3, L"50%% at %d"), RESULT_SUCCESS);
            ASSERT_EQ(records.size(), 1u);
            EXPECT_EQ(records[0].rfind(L"\n\r50% at 0\n\rApp\n\rmain\n\rrun\n\r3\n\r", 0), 0u);
        }
        // The event source is process-wide: destroying any RyGigE ends event logging.
        RyGigE survivor;
        { RyGigE other; }
        EXPECT_EQ(survivor.UserLogging(L"App", L"main", L"run", 3, L"late"),
                  RESULT_ERROR_RYGIGE_INITIALIZATION);
    }
    UseSyslogEventLog();
}

}  // namespace
}  // namespace RYSDK::testing

namespace RYSDK::testing {
namespace {

std::vector<std::wstring> records;
void Capture(void*, uint16_t eventType, uint32_t, const wchar_t* record) {
    if (eventType == EVENT_LOG_ERROR)
        records.emplace_back(record);
}

bool Logged(const wchar_t* text) {
    for (const std::wstring& record : records) {
        if (record.find(text) != std::wstring::npos)
            return true;
    }
    return false;
}

// Every failure leaves an error record that names it.
TEST(ScriptedSystemLog, EveryFailureIsRecordedAtErrorLevel) {
    records.clear();
    Script script;
    script.interfaces = {{"abcbroken", 1}, {"abcnocount", 1}, {"abcgood", 1}};
    script.interfaces[0].openResult = GC_ERR_ACCESS_DENIED;
    script.interfaces[1].numDevicesResult = GC_ERR_IO;
    ScriptedTransport transport(script);
    SetEventLogCallback(Capture, nullptr);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    EXPECT_TRUE(Logged(L"TLOpenInterface returned not success")) << "discovery's 25";
    EXPECT_TRUE(Logged(L"IFGetNumDevices returned not success")) << "discovery's 27";

    RyInterface* adapter = nullptr;
    EXPECT_EQ(gige.OpenInterface("no such interface", &adapter),
              RESULT_ERROR_CANNOT_FIND_INTERFACE);
    EXPECT_TRUE(Logged(L"RESULT_ERROR_CANNOT_FIND_INTERFACE"));

    ASSERT_EQ(gige.OpenInterface(2u, &adapter), RESULT_SUCCESS);
    script.interfaces[2].numDevicesResult = GC_ERR_IO;
    unsigned int count = 0;
    EXPECT_EQ(adapter->GetNumCameras(&count), RESULT_ERROR_TLGETNUMDEVICES);
    EXPECT_TRUE(Logged(L"IFGetNumDevices returned not success Ret[GC_ERR_IO (-1010)]"));
    script.interfaces[2].numDevicesResult = GC_ERR_SUCCESS;
    script.interfaces[2].failingDeviceId = 0;
    char text[64] = {};
    size_t size = sizeof(text);
    records.clear();
    EXPECT_EQ(adapter->GetCameraID(0, text, &size), RESULT_ERROR_TLGETDEVICENAME);
    EXPECT_TRUE(Logged(L"RESULT_ERROR_TLGETDEVICENAME : nIndex(0)"));
    records.clear();
    EXPECT_EQ(adapter->GetCameraName(0, text, &size), RESULT_ERROR_TLGETDEVICENAME);
    EXPECT_TRUE(Logged(L"RESULT_ERROR_TLGETDEVICENAME : nIndex(0)"));
    SetEventLogCallback(nullptr, nullptr);
}

}  // namespace
}  // namespace RYSDK::testing
