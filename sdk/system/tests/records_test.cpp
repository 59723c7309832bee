#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "rysdk/RyInfo.h"
#include "system/interface_identifier.h"

namespace RYSDK {
namespace {

TEST(CameraRecord, DefaultsMarkTheResultAsNotSet) {
    const RYCAMERA_INFO info;
    EXPECT_EQ(info.m_Result, 55u);
    EXPECT_EQ(info.m_ErrorFlag, 0u);
    EXPECT_EQ(info.m_Name[0], '\0');
    EXPECT_EQ(info.m_MACAddress[31], '\0');
}

TEST(InterfaceRecord, CopiesOwnCopiesOfTheCameraRecords) {
    auto original = std::make_unique<RYINTERFACE_INFO>();
    std::strcpy(original->m_Name, "eth0");
    auto camera = std::make_unique<RYCAMERA_INFO>();
    std::strcpy(camera->m_Name, "cam-a");
    original->AddCameraInfo(camera.release());
    original->AddCameraInfo(nullptr);
    ASSERT_EQ(original->m_CameraCount, 1u);

    RYINTERFACE_INFO copy(*original);
    RYINTERFACE_INFO assigned;
    assigned = *original;
    original.reset();
    ASSERT_EQ(copy.m_CameraCount, 1u);
    EXPECT_STREQ(copy.GetCameraInfo(0)->m_Name, "cam-a");
    EXPECT_STREQ(assigned.m_Name, "eth0");
    EXPECT_STREQ(assigned.GetCameraInfo(0)->m_Name, "cam-a");
    EXPECT_EQ(assigned.GetCameraInfo(1), nullptr);
    assigned.ClearCameraInfo();
    EXPECT_EQ(assigned.m_CameraCount, 0u);
}

TEST(InterfaceIdentifier, FirstWordLessThreeCharacters) {
    EXPECT_EQ(system::InterfaceIdFromName("abceth0 Intel adapter"), "eth0");
    EXPECT_EQ(system::InterfaceIdFromName("lo0 loopback"), "lo0");
    EXPECT_EQ(system::InterfaceIdFromName("abcd"), "d");
    EXPECT_EQ(system::InterfaceIdFromName(""), "");
    EXPECT_EQ(system::InterfaceIdFromName(" leading"), "");
}

TEST(InterfaceIdentifier, LabelMarkerSelectsTheSecondWord) {
    EXPECT_EQ(system::InterfaceIdFromLabel("ID: eth0"), "eth0");
    EXPECT_EQ(system::InterfaceIdFromLabel("Interface ID: eth1 extra"), "ID:");
    EXPECT_EQ(system::InterfaceIdFromLabel("ID:eth2 x"), "eth2");
    EXPECT_EQ(system::InterfaceIdFromLabel("eth0 whole text"), "eth0 whole text");
    EXPECT_EQ(system::InterfaceIdFromLabel("ID:"), "");
}

}  // namespace
}  // namespace RYSDK
