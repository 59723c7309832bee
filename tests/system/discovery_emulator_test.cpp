// The SDK's system object against emulated cameras over real UDP on loopback.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "private_network.h"
#include "ry/emulator/emulator_process.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"

namespace {

using namespace RYSDK;

class EmulatedCameras : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!rytest::InPrivateNetwork())
            GTEST_SKIP() << rytest::kPrivateNetworkAdvice;
        SetEventLogCallback(nullptr, nullptr);
    }
    void TearDown() override { UseSyslogEventLog(); }
};

TEST_F(EmulatedCameras, DiscoversEveryCameraWithItsRecord) {
    const ry::emulator::EmulatorProcess emulator(
        RY_EMULATOR_PATH,
        {"--address", "127.0.0.2", "--count", "3", "--model", "RY-TEST", "--serial", "SN"}, 3);

    RyGigE gige;
    ASSERT_EQ(gige.SetDiscoveryTimeout(500), RESULT_SUCCESS);
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    unsigned int cameras = 0;
    ASSERT_EQ(gige.GetNumCameras(&cameras), RESULT_SUCCESS);
    ASSERT_EQ(cameras, 3u);

    std::set<std::string> addresses;
    for (unsigned int i = 0; i < cameras; ++i) {
        RYCAMERA_INFO info;
        ASSERT_EQ(gige.GetCameraInfo(i, &info), RESULT_SUCCESS);
        EXPECT_STREQ(info.m_ModelName, "RY-TEST");
        EXPECT_NE(info.m_Name[0], '\0');
        EXPECT_EQ(std::string(info.m_MACAddress).size(), 17u) << info.m_MACAddress;
        addresses.insert(info.m_IPAddress);
        RYCAMERA_INFO byName;
        ASSERT_EQ(gige.GetCameraInfo(info.m_Name, &byName), RESULT_SUCCESS);
        EXPECT_EQ(byName.m_DeviceIndex, info.m_DeviceIndex);
    }
    EXPECT_EQ(addresses, (std::set<std::string>{"127.0.0.2", "127.0.0.3", "127.0.0.4"}));
}

TEST_F(EmulatedCameras, InterfaceReportsItsAddressCamerasAndSettings) {
    const ry::emulator::EmulatorProcess emulator(RY_EMULATOR_PATH,
                                                 {"--address", "127.0.0.5", "--model", "RY-TEST"});

    RyGigE gige;
    gige.SetDiscoveryTimeout(500);
    RyInterface* adapter = nullptr;
    ASSERT_EQ(gige.OpenInterface(0u, &adapter), RESULT_SUCCESS);
    char address[64] = {};
    size_t size = sizeof(address);
    ASSERT_EQ(adapter->GetIPAddress(address, &size), RESULT_SUCCESS);
    EXPECT_STREQ(address, "127.0.0.1");
    char subnet[64] = {};
    size = sizeof(subnet);
    ASSERT_EQ(adapter->GetSubnet(subnet, &size), RESULT_SUCCESS);
    EXPECT_STREQ(subnet, "255.0.0.0");

    unsigned int count = 0;
    ASSERT_EQ(adapter->GetNumCameras(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 1u);
    char id[128] = {};
    size = sizeof(id);
    ASSERT_EQ(adapter->GetCameraID(0, id, &size), RESULT_SUCCESS);
    RYCAMERA_INFO info;
    ASSERT_EQ(gige.GetCameraInfo(0u, &info), RESULT_SUCCESS);
    EXPECT_STREQ(id, info.m_Name);

    ASSERT_EQ(adapter->SetImageReceivingTimeout(1234), RESULT_SUCCESS);
    unsigned int timeout = 0;
    ASSERT_EQ(adapter->GetImageReceivingTimeout(timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 1234u);
    ASSERT_EQ(gige.SetGVCPTimeout(321), RESULT_SUCCESS);
    ASSERT_EQ(gige.GetGVCPTimeout(timeout), RESULT_SUCCESS);
    EXPECT_EQ(timeout, 321u);
    EXPECT_EQ(gige.Close(), RESULT_SUCCESS);
}

TEST_F(EmulatedCameras, NoCameraMeansAnEmptyButSuccessfulDiscovery) {
    RyGigE gige;
    gige.SetDiscoveryTimeout(100);
    ASSERT_EQ(gige.Open(), RESULT_SUCCESS);
    unsigned int count = 5;
    ASSERT_EQ(gige.GetNumCameras(&count), RESULT_SUCCESS);
    EXPECT_EQ(count, 0u);
}

}  // namespace
