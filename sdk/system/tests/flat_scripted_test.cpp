// OpenRyGigE over a scripted transport. One test, because a failed open keeps the
// process-wide system object for the rest of the process, as it is meant to.
#include <gtest/gtest.h>

#include "rysdk/RyEventLog.h"
#include "rysdk/rysdk_c.h"
#include "scripted_transport.h"

namespace RYSDK::testing {
namespace {

TEST(FlatScripted, AFailedOpenKeepsTheSystemUntilItIsClosed) {
    SetEventLogCallback(nullptr, nullptr);
    Script script;
    script.interfaces = {{"abcfirst one", 2}, {"abcsecond", 3}};
    {
        ScriptedTransport transport(script);
        RYGIGE_HANDLE system = nullptr;
        ASSERT_EQ(OpenRyGigE(&system), RESULT_SUCCESS);
        // The flat record of the second interface, and its first camera by global index.
        ::RYINTERFACE_INFO adapter{};
        ASSERT_EQ(RyDiscoveryInterfaceInfo(system, 1, &adapter), RESULT_SUCCESS);
        EXPECT_STREQ(adapter.m_Name, "abcsecond");
        EXPECT_EQ(adapter.m_Index, 1u);
        ::RYCAMERA_INFO camera{};
        ASSERT_EQ(RyDiscoveryCameraInfo(system, 2, &camera), RESULT_SUCCESS);
        EXPECT_EQ(camera.m_DeviceIndex, 0u);
        EXPECT_EQ(RyDiscoveryCameraInfo(system, 5, &camera), RESULT_ERROR_CANNOT_FIND_INTERFACE);
        ASSERT_EQ(CloseRyGigE(&system), RESULT_SUCCESS);
    }

    script.tlOpenResult = GC_ERR_ERROR;
    ScriptedTransport failing(script);
    RYGIGE_HANDLE system = nullptr;
    EXPECT_EQ(OpenRyGigE(&system), RESULT_ERROR);
    EXPECT_EQ(system, nullptr);
    EXPECT_EQ(OpenRyGigE(&system), RESULT_ERROR_OPENED_ALREADY);
    // A camera can still not be closed without a handle, but the object is there.
    EXPECT_EQ(CameraClose(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    UseSyslogEventLog();
}

}  // namespace
}  // namespace RYSDK::testing
