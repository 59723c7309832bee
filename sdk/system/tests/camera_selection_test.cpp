// Choosing the camera an open is for: global numbering, names, the interface form's
// checks against the total, and what a failed interface open leaves behind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "scripted_transport.h"
#include "system/camera_selection.h"

namespace RYSDK::testing {
namespace {

using system::CameraSelection;
using system::CameraTarget;

class CameraSelectionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetEventLogCallback(
            [](void* sink, uint16_t, uint32_t, const wchar_t* record) {
                static_cast<std::vector<std::wstring>*>(sink)->emplace_back(record);
            },
            &records);
    }
    void TearDown() override { UseSyslogEventLog(); }

    bool Logged(const std::wstring& text) const {
        for (const auto& record : records) {
            if (record.find(text) != std::wstring::npos)
                return true;
        }
        return false;
    }

    Script script;
    std::vector<std::wstring> records;
};

TEST_F(CameraSelectionTest, GlobalIndexCountsInterfaceAfterInterface) {
    script.interfaces = {{"abcfirst", 2}, {"abcempty", 0}, {"abcsecond", 3}};
    ScriptedTransport transport(script);
    RyGigE gige;
    CameraTarget target;
    ASSERT_EQ(CameraSelection::ByIndex(gige, 2, target), RESULT_SUCCESS) << "opens implicitly";
    EXPECT_EQ(target.cameraName, "dev2-0");
    ASSERT_NE(target.adapter, nullptr);
    EXPECT_STREQ(target.adapter->GetInterfaceID(), "second");

    CameraTarget later;
    ASSERT_EQ(CameraSelection::ByIndex(gige, 4, later), RESULT_SUCCESS);
    EXPECT_EQ(later.cameraName, "dev2-2");
    EXPECT_EQ(later.adapter, target.adapter) << "an interface is opened once";

    EXPECT_EQ(CameraSelection::ByIndex(gige, 5, later), RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER);
    EXPECT_TRUE(Logged(L"nCameraIndex(5) > (unNumOfCameras(5) - 1)."));
}

TEST_F(CameraSelectionTest, NoCamerasAndClosedSystemsGiveNoCameras) {
    script.interfaces = {{"abcone", 1}};
    ScriptedTransport transport(script);
    RyGigE gige;
    CameraTarget target;
    ASSERT_EQ(CameraSelection::ByIndex(gige, 0, target), RESULT_SUCCESS);
    gige.Close();
    // The records are gone and, discovery having run once, it is not run again.
    EXPECT_EQ(CameraSelection::ByIndex(gige, 0, target), RESULT_ERROR_NO_CAMERAS);
    EXPECT_TRUE(Logged(L"RESULT_ERROR_NO_CAMERAS : unNumOfCamera is zero."));
    EXPECT_EQ(CameraSelection::ByInterface(gige, "abcone", 0, target), RESULT_ERROR_NO_CAMERAS);
    ASSERT_EQ(gige.Discovery(), RESULT_SUCCESS);
    EXPECT_EQ(CameraSelection::ByIndex(gige, 0, target), RESULT_SUCCESS);
}

TEST_F(CameraSelectionTest, ByNameSearchesEveryInterface) {
    script.interfaces = {{"abcone", 1}, {"abctwo", 2}};
    ScriptedTransport transport(script);
    RyGigE gige;
    CameraTarget target;
    ASSERT_EQ(CameraSelection::ByName(gige, "dev1-1", target), RESULT_SUCCESS);
    EXPECT_STREQ(target.adapter->GetInterfaceID(), "two");
    EXPECT_EQ(CameraSelection::ByName(gige, "nobody", target),
              RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST);
    EXPECT_TRUE(Logged(L"Name(nobody) can't find"));
    EXPECT_EQ(CameraSelection::ByName(gige, nullptr, target), RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(CameraSelectionTest, InterfaceFormChecksTheTotalThenTheInterface) {
    script.interfaces = {{"abcone", 1}, {"abctwo", 3}};
    ScriptedTransport transport(script);
    RyGigE gige;
    CameraTarget target;
    ASSERT_EQ(CameraSelection::ByInterface(gige, "abctwo", 2, target), RESULT_SUCCESS);
    EXPECT_EQ(target.cameraName, "dev1-2");
    // Index 3 is within the total of 4 but beyond the first interface's single camera.
    EXPECT_EQ(CameraSelection::ByInterface(gige, "abcone", 3, target), RESULT_ERROR);
    EXPECT_EQ(CameraSelection::ByInterface(gige, "abcone", 4, target),
              RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER);
    EXPECT_TRUE(Logged(L"nCameraIndex(4) > (unNumOfCameras(4) - 1)\n"));
    EXPECT_EQ(CameraSelection::ByInterface(gige, "abcnone", 0, target), RESULT_ERROR);
}

TEST_F(CameraSelectionTest, AFailedInterfaceOpenIsReportedAndLeavesNoInterface) {
    script.interfaces = {{"abcbad", 2}};
    ScriptedTransport transport(script);
    RyGigE gige;
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    script.interfaces[0].openResult = GC_ERR_IO;
    CameraTarget target;
    EXPECT_EQ(CameraSelection::ByIndex(gige, 1, target), RESULT_ERROR_TLOPENINTERFACE);
    EXPECT_TRUE(Logged(L"OpenInterface returned not success. InterfaceID(bad)"));
    EXPECT_EQ(target.adapter, nullptr);
    RYINTERFACE_INFO record;
    ASSERT_EQ(gige.GetInterfaceInfo(0u, &record), RESULT_SUCCESS);
    EXPECT_EQ(record.m_ErrorFlag, 1u);
    EXPECT_EQ(record.m_Result, RESULT_ERROR_TLOPENINTERFACE);

    script.interfaces[0].openResult = GC_ERR_SUCCESS;
    EXPECT_EQ(CameraSelection::ByName(gige, "dev0-0", target), RESULT_SUCCESS)
        << "the next attempt opens it";
}

TEST_F(CameraSelectionTest, FailedOpenAndDiscoveryAreReturnedAsTheyAre) {
    script.tlOpenResult = GC_ERR_RESOURCE_IN_USE;
    {
        ScriptedTransport transport(script);
        RyGigE gige;
        CameraTarget target;
        EXPECT_EQ(CameraSelection::ByIndex(gige, 0, target), RESULT_ERROR_OPENED_ALREADY);
        EXPECT_TRUE(Logged(L"Open returned not success. CameraIndex(0) Ret["));
        EXPECT_EQ(CameraSelection::ByName(gige, "x", target), RESULT_ERROR_OPENED_ALREADY);
        EXPECT_TRUE(Logged(L"Open returned not success(2)"));
    }
    script.tlOpenResult = GC_ERR_SUCCESS;
    script.interfaces = {{"abcone", 2}};
    script.interfaces[0].failingDeviceId = 0;
    ScriptedTransport transport(script);
    RyGigE gige;
    CameraTarget target;
    // The implicit Open runs discovery itself; once the system is open, later attempts
    // run discovery on its own until it succeeds.
    EXPECT_EQ(CameraSelection::ByIndex(gige, 0, target), RESULT_ERROR_TLGETDEVICENAME);
    EXPECT_TRUE(Logged(L"Open returned not success. CameraIndex(0) Ret["));
    EXPECT_EQ(CameraSelection::ByIndex(gige, 0, target), RESULT_ERROR_TLGETDEVICENAME);
    EXPECT_TRUE(Logged(L"Discovery returned not success. Ret["));
}

}  // namespace
}  // namespace RYSDK::testing
