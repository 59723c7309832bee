// The heartbeat keeps the privilege past the device's time-out and reports a device that
// stops answering within time-out x check count.
#include <gtest/gtest.h>

#include <future>

#include "private_network.h"
#include "ry/gev/client/heartbeat.h"
#include "ry/gev/protocol/bootstrap.h"
#include "test_camera.h"

namespace ry::gev::client {
namespace {

using testing::TestCamera;
namespace reg = ry::gev::bootstrap;

const bool kIsolated = ry::gev::testing::EnterPrivateNetwork();

class HeartbeatTest : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::TestCameraOptions options;
        options.heartbeatTimeoutMs = 600;
        camera_ = std::make_unique<TestCamera>(options);
        ASSERT_TRUE(channel_.Open(0x7F000001, camera_->Ip(), camera_->Port(), nullptr));
        channel_.SetBudget({200, 2});
        ASSERT_EQ(channel_.WriteRegister(reg::kControlChannelPrivilege, 2), GC_ERR_SUCCESS);
    }
    std::unique_ptr<TestCamera> camera_;
    ControlChannel channel_;
};

TEST_F(HeartbeatTest, KeepsThePrivilegePastTheDeviceTimeout) {
    Heartbeat heartbeat(channel_, [](GC_ERROR) { ADD_FAILURE() << "reported lost"; });
    heartbeat.SetTimeoutMs(600);
    heartbeat.Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    uint32_t ccp = 0;
    ASSERT_EQ(channel_.ReadRegister(reg::kControlChannelPrivilege, ccp), GC_ERR_SUCCESS);
    EXPECT_EQ(ccp, 2u);
    EXPECT_GE(camera_->ReadRegCommands(), 3u);
    heartbeat.Stop();
    EXPECT_FALSE(heartbeat.Lost());
}

TEST_F(HeartbeatTest, AShorterTimeoutTakesEffectAtOnce) {
    Heartbeat heartbeat(channel_, [](GC_ERROR) { ADD_FAILURE() << "reported lost"; });
    heartbeat.SetTimeoutMs(3000);  // first period: one beat a second
    heartbeat.Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    camera_->SetRegister(reg::kHeartbeatTimeout, 600);
    heartbeat.SetTimeoutMs(600);  // must not sleep out the old period
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    uint32_t ccp = 0;
    ASSERT_EQ(channel_.ReadRegister(reg::kControlChannelPrivilege, ccp), GC_ERR_SUCCESS);
    EXPECT_EQ(ccp, 2u);
    EXPECT_FALSE(heartbeat.Lost());
}

TEST_F(HeartbeatTest, ReportsAnUnpluggedDeviceOnceWithinTimeoutTimesCount) {
    std::promise<GC_ERROR> lost;
    std::atomic<int> reports{0};
    Heartbeat heartbeat(channel_, [&](GC_ERROR error) {
        if (reports++ == 0)
            lost.set_value(error);
    });
    heartbeat.SetTimeoutMs(600);
    heartbeat.SetCheckCount(2);
    heartbeat.Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const auto pulled = std::chrono::steady_clock::now();
    camera_->SetUnplugged(true);
    auto future = lost.get_future();
    ASSERT_EQ(future.wait_for(std::chrono::milliseconds(600 * 2)), std::future_status::ready);
    EXPECT_EQ(future.get(), GC_ERR_TIMEOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - pulled, std::chrono::milliseconds(1200));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(reports.load(), 1);
    EXPECT_TRUE(heartbeat.Lost());
}

TEST_F(HeartbeatTest, ReportsAPrivilegeTheDeviceTookAway) {
    std::promise<GC_ERROR> lost;
    Heartbeat heartbeat(channel_, [&](GC_ERROR error) { lost.set_value(error); });
    heartbeat.SetTimeoutMs(600);
    heartbeat.Start();
    camera_->SetRegister(reg::kControlChannelPrivilege, 0);
    auto future = lost.get_future();
    ASSERT_EQ(future.wait_for(std::chrono::seconds(2)), std::future_status::ready);
    EXPECT_EQ(future.get(), GC_ERR_ACCESS_DENIED);
}

}  // namespace
}  // namespace ry::gev::client
