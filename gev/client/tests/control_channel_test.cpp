// The control channel against a real UDP peer on loopback: register and memory access,
// splitting, unaligned edges, retries, PENDING_ACK and error statuses.
#include <gtest/gtest.h>

#include <numeric>

#include "private_network.h"
#include "ry/gev/client/control_channel.h"
#include "ry/gev/protocol/bootstrap.h"
#include "test_camera.h"

namespace ry::gev::client {
namespace {

using testing::TestCamera;
using testing::TestCameraOptions;
namespace reg = ry::gev::bootstrap;

const bool kIsolated = ry::gev::testing::EnterPrivateNetwork();

class ControlChannelTest : public ::testing::Test {
  protected:
    void Open(TestCameraOptions options = {}) {
        camera_ = std::make_unique<TestCamera>(options);
        ASSERT_TRUE(channel_.Open(0x7F000001, camera_->Ip(), camera_->Port(), nullptr));
        channel_.SetBudget({300, 3});
    }
    std::unique_ptr<TestCamera> camera_;
    ControlChannel channel_;
};

TEST_F(ControlChannelTest, ReadsAndWritesRegisters) {
    Open();
    uint32_t value = 0;
    ASSERT_EQ(channel_.ReadRegister(reg::kVersion, value), GC_ERR_SUCCESS);
    EXPECT_EQ(value, 0x00020000u);
    ASSERT_EQ(channel_.WriteRegister(0xB000, 0xCAFEBABE), GC_ERR_SUCCESS);
    EXPECT_EQ(camera_->Register(0xB000), 0xCAFEBABEu);
    // More registers than one READREG carries: the channel splits the request.
    std::vector<uint32_t> addresses(200), values(200);
    for (size_t i = 0; i < addresses.size(); ++i) {
        addresses[i] = 0xC000 + static_cast<uint32_t>(4 * i);
        camera_->SetRegister(addresses[i], static_cast<uint32_t>(i * 7));
    }
    ASSERT_EQ(channel_.ReadRegisters(addresses, values), GC_ERR_SUCCESS);
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(values[i], i * 7);
    EXPECT_EQ(channel_.ReadRegister(0x3, value), GC_ERR_INVALID_ADDRESS);
}

TEST_F(ControlChannelTest, MemoryAccessIsSplitAndUnalignedEdgesArePreserved) {
    Open();
    std::vector<uint8_t> pattern(1500);
    std::iota(pattern.begin(), pattern.end(), uint8_t{1});
    ASSERT_EQ(channel_.WriteMemory(0x12000, pattern), GC_ERR_SUCCESS);
    EXPECT_EQ(camera_->ReadBytes(0x12000, pattern.size()), pattern);
    std::vector<uint8_t> back(pattern.size());
    ASSERT_EQ(channel_.ReadMemory(0x12000, back), GC_ERR_SUCCESS);
    EXPECT_EQ(back, pattern);

    // An unaligned 3-byte write must leave the neighbouring bytes of its words alone.
    const std::vector<uint8_t> three{0xAA, 0xBB, 0xCC};
    ASSERT_EQ(channel_.WriteMemory(0x12001, three), GC_ERR_SUCCESS);
    const auto words = camera_->ReadBytes(0x12000, 8);
    EXPECT_EQ(words, (std::vector<uint8_t>{1, 0xAA, 0xBB, 0xCC, 5, 6, 7, 8}));
    std::vector<uint8_t> middle(5);
    ASSERT_EQ(channel_.ReadMemory(0x12002, middle), GC_ERR_SUCCESS);
    EXPECT_EQ(middle, (std::vector<uint8_t>{0xBB, 0xCC, 5, 6, 7}));
}

TEST_F(ControlChannelTest, RejectsRangesThatCannotExist) {
    Open();
    std::vector<uint8_t> data(8);
    EXPECT_EQ(channel_.ReadMemory(0xFFFFFFFCull, data), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(channel_.ReadMemory(0x1000, std::span<uint8_t>()), GC_ERR_INVALID_PARAMETER);
    // Beyond the device's memory: the device's own status comes back as the code.
    EXPECT_EQ(channel_.ReadMemory(TestCamera::kMemorySize, data), GC_ERR_INVALID_ADDRESS);
}

TEST_F(ControlChannelTest, RetriesLostCommandsWithinTheBudget) {
    Open();
    camera_->DropNextCommands(2);
    uint32_t value = 0;
    EXPECT_EQ(channel_.ReadRegister(reg::kStreamChannelCount, value), GC_ERR_SUCCESS);
    EXPECT_EQ(value, 1u);
    EXPECT_EQ(camera_->CommandsSeen(), 3u);
    camera_->DropNextCommands(3);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(channel_.ReadRegister(reg::kStreamChannelCount, value), GC_ERR_TIMEOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(600));
}

TEST_F(ControlChannelTest, WaitsPastTheBudgetWhenTheDeviceSaysPending) {
    TestCameraOptions options;
    options.pendingAckMs = 500;  // the device needs 250 ms, longer than one attempt
    Open(options);
    channel_.SetBudget({150, 1});
    EXPECT_EQ(channel_.WriteRegister(TestCamera::kSlowRegister, 7), GC_ERR_SUCCESS);
    EXPECT_EQ(camera_->Register(TestCamera::kSlowRegister), 7u);
    EXPECT_EQ(camera_->CommandsSeen(), 1u);  // no resend while pending
}

TEST_F(ControlChannelTest, RefusedWritesReportAccessDenied) {
    Open();
    ControlChannel other;
    ASSERT_TRUE(other.Open(0x7F000001, camera_->Ip(), camera_->Port(), nullptr));
    other.SetBudget({200, 2});
    ASSERT_EQ(channel_.WriteRegister(reg::kControlChannelPrivilege, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(other.WriteRegister(0xB000, 1), GC_ERR_ACCESS_DENIED);
    uint32_t value = 0;
    EXPECT_EQ(other.ReadRegister(reg::kControlChannelPrivilege, value), GC_ERR_SUCCESS);
    EXPECT_EQ(value, 2u);
}

TEST(StatusToErrorTest, MapsDeviceStatusesToTransportCodes) {
    EXPECT_EQ(StatusToError(0x0000), GC_ERR_SUCCESS);
    EXPECT_EQ(StatusToError(0x8001), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(StatusToError(0x8003), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(StatusToError(0x8005), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(StatusToError(0x8006), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(StatusToError(0x8007), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(StatusToError(0x8FFF), GC_ERR_IO);
}

}  // namespace
}  // namespace ry::gev::client
