// The transport layer's client against a device that answers badly: discovery keeps only
// well-formed answers, each once, within its time-out; every bad read ends in an error
// within its budget and leaves the caller's buffer as it was, while duplicates and stale
// answers cannot change the value read.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>

#include "hostile_device.h"
#include "private_network.h"
#include "ry/gev/client/control_channel.h"
#include "ry/gev/client/discovery.h"
#include "ry/gev/protocol/bootstrap.h"

namespace ry::emulator::hostile {
namespace {

using namespace std::chrono;
using gev::client::ControlChannel;
using gev::client::DiscoveredDevice;

const bool kIsolated = ry::gev::testing::EnterPrivateNetwork();
constexpr uint32_t kDeviceIp = 0x7F000002;

gev::client::HostInterface Loopback() {
    gev::client::HostInterface host;
    host.name = "lo";
    host.ip = 0x7F000001;
    host.mask = 0xFF000000;
    return host;
}

class HostileDeviceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!kIsolated)
            GTEST_SKIP() << "needs a private network namespace (run as root)";
    }

    std::vector<DiscoveredDevice> Discover(HostileConfig config, milliseconds& took) {
        const HostileDevice device(std::move(config));
        gev::client::DiscoveryOptions options;
        options.timeoutMs = 300;
        std::vector<DiscoveredDevice> found;
        const auto start = steady_clock::now();
        EXPECT_EQ(gev::client::Discover(Loopback(), options, found), GC_ERR_SUCCESS);
        took = duration_cast<milliseconds>(steady_clock::now() - start);
        return found;
    }
};

TEST_F(HostileDeviceTest, DiscoveryDropsEveryMalformedAnswerWithinItsTimeOut) {
    for (const Answer answer : kUnusableAnswers) {
        HostileConfig config;
        config.discovery = answer;
        config.late_ms = 600;
        milliseconds took{};
        EXPECT_TRUE(Discover(config, took).empty()) << static_cast<int>(answer);
        EXPECT_LT(took, milliseconds(600)) << static_cast<int>(answer);
    }
}

TEST_F(HostileDeviceTest, DuplicatedAnswersMakeOneDevice) {
    HostileConfig config;
    config.discovery = Answer::Duplicated;
    milliseconds took{};
    const auto found = Discover(config, took);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].ip, kDeviceIp);
    EXPECT_EQ(found[0].model, "Hostile");
}

TEST_F(HostileDeviceTest, TextsWithoutTerminatorsStopAtTheirFieldWidth) {
    HostileConfig config;
    config.hostile_texts = true;
    milliseconds took{};
    const auto found = Discover(config, took);
    ASSERT_EQ(found.size(), 1u);
    const DiscoveredDevice& device = found[0];
    // The bytes are kept as the device sent them; showing them safely is the display's job.
    EXPECT_EQ(device.vendor, hostile_text(32));
    EXPECT_EQ(device.model, hostile_text(32));
    EXPECT_EQ(device.version, hostile_text(32));
    EXPECT_EQ(device.vendorInfo, hostile_text(48));
    EXPECT_EQ(device.serial, hostile_text(16));
    EXPECT_EQ(device.userName, hostile_text(16));
    EXPECT_EQ(device.Id().size(), 32u + 1 + 32 + 1 + 16);
}

class HostileReads : public HostileDeviceTest {
  protected:
    void Start(Answer reads, gev::client::RequestBudget budget = {300, 3, 1000}) {
        HostileConfig config;
        config.reads = reads;
        config.late_ms = 400;
        channel_.reset();
        device_.reset();
        device_ = std::make_unique<HostileDevice>(config);
        channel_ = std::make_unique<ControlChannel>();
        ASSERT_TRUE(channel_->Open(0x7F000001, kDeviceIp, gev::kGvcpPort, nullptr));
        channel_->SetBudget(budget);
    }

    // A read that fails leaves the buffer alone and ends within `limit`.
    void ExpectFailedReads(milliseconds limit) {
        std::array<uint8_t, 600> memory;
        memory.fill(0x5A);
        uint32_t value = 0xCAFEF00D;
        const auto start = steady_clock::now();
        EXPECT_NE(channel_->ReadRegister(gev::bootstrap::kStreamChannelCount, value),
                  GC_ERR_SUCCESS);
        EXPECT_NE(channel_->ReadMemory(gev::bootstrap::kFirstUrl, memory), GC_ERR_SUCCESS);
        EXPECT_LT(steady_clock::now() - start, limit);
        EXPECT_EQ(value, 0xCAFEF00Du);
        EXPECT_TRUE(std::all_of(memory.begin(), memory.end(), [](uint8_t b) { return b == 0x5A; }));
    }

    std::unique_ptr<HostileDevice> device_;
    std::unique_ptr<ControlChannel> channel_;
};

TEST_F(HostileReads, BadAnswersEndInAnErrorWithinTheBudget) {
    for (const Answer answer : kUnusableAnswers) {
        SCOPED_TRACE(static_cast<int>(answer));
        Start(answer);
        ExpectFailedReads(milliseconds(3000));
    }
}

TEST_F(HostileReads, EndlessPendingAnswersStopAtTheAllowance) {
    Start(Answer::PendingForever, {300, 3, 1000});
    ExpectFailedReads(milliseconds(2 * (300 + 1000) + 400));
}

TEST_F(HostileReads, DuplicatesAndStaleAnswersDoNotChangeWhatIsRead) {
    Start(Answer::Duplicated);
    for (int i = 0; i < 5; ++i) {
        uint32_t channels = 0;
        ASSERT_EQ(channel_->ReadRegister(gev::bootstrap::kStreamChannelCount, channels),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(channels, 1u);
        std::array<uint8_t, 32> url{};
        ASSERT_EQ(channel_->ReadMemory(gev::bootstrap::kFirstUrl, url), GC_ERR_SUCCESS);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(url.data()), 6), "Local:");
    }
}

}  // namespace
}  // namespace ry::emulator::hostile
