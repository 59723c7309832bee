// Broadcast discovery over loopback inside a private network namespace.
#include <gtest/gtest.h>

#include <algorithm>

#include "private_network.h"
#include "ry/gev/client/discovery.h"
#include "test_camera.h"

namespace ry::gev::client {
namespace {

using testing::TestCamera;
using testing::TestCameraOptions;

const bool kIsolated = ry::gev::testing::EnterPrivateNetwork();

TestCameraOptions CameraAt(uint32_t ip, uint8_t macTail, std::string serial) {
    TestCameraOptions options;
    options.ip = ip;
    options.port = 3956;
    options.answerBroadcast = true;
    options.mac[5] = macTail;
    options.serial = std::move(serial);
    return options;
}

HostInterface Loopback(uint32_t mask) {
    HostInterface host;
    host.name = "lo";
    host.ip = 0x7F000001;
    host.mask = mask;
    return host;
}

class DiscoveryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!kIsolated)
            GTEST_SKIP() << "needs a private network namespace (run as root)";
    }
};

TEST_F(DiscoveryTest, FindsEveryCameraOnceWithItsIdentity) {
    TestCamera first(CameraAt(0x7F000002, 2, "S2"));
    TestCamera second(CameraAt(0x7F000003, 3, "S3"));
    std::vector<DiscoveredDevice> found;
    ASSERT_EQ(Discover(Loopback(0xFF000000), {200, false}, found), GC_ERR_SUCCESS);
    ASSERT_EQ(found.size(), 2u);
    std::sort(found.begin(), found.end(), [](auto& a, auto& b) { return a.ip < b.ip; });
    EXPECT_EQ(found[0].ip, 0x7F000002u);
    EXPECT_EQ(found[0].serial, "S2");
    EXPECT_EQ(found[0].vendor, "RyTest");
    EXPECT_EQ(found[0].Id(), "RyTest-TestCam-S2");
    EXPECT_EQ(found[1].mac[5], 3);
    EXPECT_EQ(MacToText(found[1].mac.data()), "02:00:00:00:00:03");
}

TEST_F(DiscoveryTest, DevicesOutsideTheSubnetAreListedOnlyOnRequest) {
    TestCamera inside(CameraAt(0x7F000002, 2, "IN"));
    TestCamera outside(CameraAt(0x7F000105, 5, "OUT"));
    std::vector<DiscoveredDevice> found;
    ASSERT_EQ(Discover(Loopback(0xFFFFFF00), {200, false}, found), GC_ERR_SUCCESS);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].serial, "IN");
    ASSERT_EQ(Discover(Loopback(0xFFFFFF00), {200, true}, found), GC_ERR_SUCCESS);
    EXPECT_EQ(found.size(), 2u);
}

TEST_F(DiscoveryTest, EndsAtTheTimeOutWhenNobodyAnswers) {
    std::vector<DiscoveredDevice> found;
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(Discover(Loopback(0xFF000000), {150, false}, found), GC_ERR_SUCCESS);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_TRUE(found.empty());
    EXPECT_GE(took, std::chrono::milliseconds(140));
    EXPECT_LT(took, std::chrono::milliseconds(400));
}

TEST_F(DiscoveryTest, ListsTheLoopbackInterface) {
    const auto hosts = ListHostInterfaces();
    const auto lo =
        std::find_if(hosts.begin(), hosts.end(), [](auto& h) { return h.name == "lo"; });
    ASSERT_NE(lo, hosts.end());
    EXPECT_EQ(lo->ip, 0x7F000001u);
    EXPECT_EQ(lo->mask, 0xFF000000u);
    EXPECT_EQ(lo->Id(), "lo-127.0.0.1");
}

}  // namespace
}  // namespace ry::gev::client
