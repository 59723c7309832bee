// Control privilege: exclusive, control and monitor clients, switchover and heartbeat expiry.
#include <gtest/gtest.h>

#include <thread>

#include "feature_registers.h"
#include "test_client.h"

namespace ry::emulator::testing {
namespace {

using gev::GevStatus;
constexpr auto kDenied = static_cast<std::uint16_t>(GevStatus::AccessDenied);

class Privilege : public ::testing::Test {
  protected:
    Privilege()
        : camera_(test_camera(4)),
          primary_(camera_.address(), camera_.control_port()),
          other_(camera_.address(), camera_.control_port()) {}
    Camera camera_;
    TestClient primary_;
    TestClient other_;
};

TEST_F(Privilege, ControlLeavesOthersReadOnly) {
    ASSERT_EQ(primary_.take_control(2), 0);
    EXPECT_EQ(primary_.read_reg(0x0A04), primary_.local().port);
    EXPECT_EQ(primary_.read_reg(0x0A14), primary_.local().ip);
    EXPECT_EQ(other_.take_control(2), kDenied);
    EXPECT_EQ(other_.write_reg(reg::kWidth, 128), kDenied);
    EXPECT_EQ(other_.read_reg(reg::kWidth), 64u);  // a monitor may read
    EXPECT_EQ(primary_.write_reg(0x0A00, 0), 0);   // release
    EXPECT_EQ(other_.take_control(2), 0);
    EXPECT_EQ(primary_.write_reg(reg::kWidth, 128), kDenied);
}

TEST_F(Privilege, ControlCanBeTakenWithWriteMem) {
    EXPECT_EQ(primary_.write_mem(0x0A00, {0, 0, 0, 2}), 0);
    EXPECT_EQ(other_.write_mem(0x0A00, {0, 0, 0, 2}), kDenied);
    EXPECT_EQ(primary_.read_reg(0x0A00), 2u);
}

TEST_F(Privilege, ExclusiveRefusesEvenReads) {
    ASSERT_EQ(primary_.take_control(1), 0);
    const auto ack = other_.read_regs({0x0938});
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), kDenied);
    const auto mem = other_.read_mem(0x0200, 16);
    ASSERT_TRUE(mem);
    EXPECT_EQ(mem->status(), kDenied);
    EXPECT_EQ(primary_.read_reg(0x0938), 3000u);
}

TEST_F(Privilege, SwitchoverNeedsTheKey) {
    ASSERT_EQ(primary_.write_regs({{0x0A00, 2}, {0x095C, 0x1234}, {0x0A00, 6}}), 0);
    EXPECT_EQ(other_.take_control(0x43210002), kDenied);  // wrong key
    EXPECT_EQ(other_.take_control(0x12340002), 0);
    EXPECT_EQ(primary_.write_reg(reg::kWidth, 128), kDenied);
}

TEST_F(Privilege, HeartbeatExpiryDropsControlAndStopsTheStream) {
    StreamReceiver receiver;
    ASSERT_EQ(primary_.take_control(), 0);
    ASSERT_EQ(primary_.write_reg(0x0938, 100), 0);  // clamped to the 500 ms minimum
    EXPECT_EQ(primary_.read_reg(0x0938), 500u);
    ASSERT_EQ(open_stream(primary_, receiver), 0);
    ASSERT_EQ(primary_.write_reg(reg::kAcquisitionStart, 1), 0);
    ASSERT_TRUE(receiver.next(1000));
    // Heartbeats keep it alive past the timeout.
    for (int i = 0; i < 4; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(primary_.read_reg(0x0A00), 2u);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    EXPECT_EQ(other_.read_reg(0x0A00), 0u);
    EXPECT_EQ(other_.read_reg(0x0D00), 0u);  // stream channel closed
    receiver.drain();
    EXPECT_FALSE(receiver.next(300));
    EXPECT_EQ(other_.take_control(), 0);  // free for the next application
}

TEST_F(Privilege, HeartbeatCanBeDisabled) {
    ASSERT_EQ(primary_.take_control(), 0);
    ASSERT_EQ(primary_.write_regs({{0x0938, 500}, {0x0954, 0x1}}), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    EXPECT_EQ(other_.read_reg(0x0A00), 2u);
}

}  // namespace
}  // namespace ry::emulator::testing
