// The control channel against a test client over real UDP on loopback.
#include <gtest/gtest.h>

#include <random>

#include "feature_registers.h"
#include "test_client.h"

namespace ry::emulator::testing {
namespace {

using gev::GevStatus;
constexpr auto kDenied = static_cast<std::uint16_t>(GevStatus::AccessDenied);

class GvcpServer : public ::testing::Test {
  protected:
    GvcpServer() : camera_(test_camera(1)), client_(camera_.address(), camera_.control_port()) {}
    Camera camera_;
    TestClient client_;
};

TEST_F(GvcpServer, UnicastDiscoveryDescribesTheCamera) {
    const auto ack = client_.transact(gev::make_discovery_command(0xFFFF, false), 0xFFFF);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->header.acknowledge, 0x0003);
    auto info = gev::decode_device_info(ack->payload);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->model, "RyEmulator");
    EXPECT_EQ(info->serial_number, "TEST1");
    EXPECT_EQ(info->ip, *parse_ipv4("127.0.0.11"));
    EXPECT_EQ(info->version_major, 2);
    EXPECT_EQ(info->mac[0] & 0x02, 0x02);  // locally administered
}

TEST_F(GvcpServer, ReadRegConcatenatesAndStopsAtTheFirstBadAddress) {
    auto ack = client_.read_regs({0x0938, 0x0904, 0x0D1C});
    ASSERT_TRUE(ack);
    ASSERT_EQ(ack->payload.size(), 12u);
    EXPECT_EQ(gev::load_be32(ack->payload.data()), 3000u);
    EXPECT_EQ(gev::load_be32(ack->payload.data() + 4), 1u);
    EXPECT_EQ(gev::load_be32(ack->payload.data() + 8), camera_.stream_source_port());

    ack = client_.read_regs({0x0938, 0x00500000, 0x0904});
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::InvalidAddress));
    EXPECT_EQ(ack->payload.size(), 4u);  // the one value read before the failure

    ack = client_.read_regs({0x0939});
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::BadAlignment));
}

TEST_F(GvcpServer, WritesNeedControlAndReportTheFailingIndex) {
    EXPECT_EQ(client_.write_reg(reg::kWidth, 128), kDenied);
    ASSERT_EQ(client_.take_control(), 0);
    EXPECT_EQ(client_.write_regs({{reg::kWidth, 128}, {reg::kHeight, 64}}), 0);
    EXPECT_EQ(client_.read_reg(reg::kPayloadSize), 128u * 64u);

    const std::uint16_t id = client_.next_id();
    auto ack =
        client_.transact(*gev::make_writereg_command(id, {{reg::kWidth, 96}, {0x0000, 1}}), id);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::WriteProtect));
    EXPECT_EQ(gev::decode_writereg_ack(ack->payload), 1);  // first pair went through
    EXPECT_EQ(client_.read_reg(reg::kWidth), 96u);
    EXPECT_EQ(client_.write_reg(reg::kWidth, 97),
              static_cast<std::uint16_t>(GevStatus::InvalidParameter));
}

TEST_F(GvcpServer, MemoryAccessLimitsAndTheDescriptionUrl) {
    auto ack = client_.read_mem(0x0200, 512);
    ASSERT_TRUE(ack);
    const std::string url(reinterpret_cast<const char*>(ack->payload.data() + 4));
    EXPECT_EQ(url.rfind("Local:RyEmulator.zip;100000;", 0), 0u) << url;
    const std::size_t length = std::stoul(url.substr(url.rfind(';') + 1), nullptr, 16);
    const auto zip = client_.read_block(0x100000, length);
    ASSERT_GE(zip.size(), 4u);
    EXPECT_EQ(zip[0], 'P');
    EXPECT_EQ(zip[1], 'K');

    ack = client_.read_mem(0x0200, 536);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), 0);
    ack = client_.read_mem(0x0200, 540);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::InvalidParameter));
    ack = client_.read_mem(0x0202, 8);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::BadAlignment));

    ASSERT_EQ(client_.take_control(), 0);
    EXPECT_EQ(client_.write_mem(0x00E8, {'c', 'a', 'm', '1'}), 0);
    EXPECT_EQ(client_.read_reg(0x00E8), 0x63616D31u);
    EXPECT_EQ(client_.write_mem(0x100000, {0, 0, 0, 0}),
              static_cast<std::uint16_t>(GevStatus::WriteProtect));
}

TEST_F(GvcpServer, MalformedAndUnknownCommandsGetErrorsNotCrashes) {
    // Length field larger than the datagram.
    std::vector<std::uint8_t> bad = *gev::make_readreg_command(77, {0x0938});
    bad.resize(10);
    auto ack = client_.transact(bad, 77);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::InvalidHeader));

    // READREG whose payload is not whole words.
    ack =
        client_.transact(gev::make_command(0x0080, 1, 78, std::vector<std::uint8_t>{0, 0, 9}), 78);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::InvalidHeader));

    ack = client_.transact(gev::make_command(0x0F00, 1, 79), 79);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), static_cast<std::uint16_t>(GevStatus::NotImplemented));
    EXPECT_EQ(ack->header.acknowledge, 0x0F01);

    client_.send_raw({0x42});                                // shorter than a header: ignored
    client_.send_raw({0x00, 0x00, 0x00, 0x81, 0, 0, 0, 1});  // an ack, not a command
    std::vector<std::uint8_t> junk(600, 0x42);
    client_.send_raw(junk);
    EXPECT_EQ(client_.read_reg(0x0938), 3000u);  // still answering
}

TEST_F(GvcpServer, SurvivesRandomCommands) {
    ASSERT_EQ(client_.take_control(), 0);
    std::mt19937 random(7);
    const std::uint16_t commands[] = {0x0002, 0x0004, 0x0040, 0x0080, 0x0082, 0x0084, 0x0086};
    // Addresses near the interesting regions, so that the random writes reach real handlers.
    const std::uint32_t bases[] = {0x0000, 0x0600, 0x30000, 0x30100, 0x31000, 0x80000, 0x100000};
    for (int i = 0; i < 3000; ++i) {
        std::vector<std::uint8_t> payload(random() % 64);
        for (auto& b : payload) {
            b = static_cast<std::uint8_t>(random());
        }
        if (payload.size() >= 4 && random() % 2 == 0) {
            const std::uint32_t address = bases[random() % 7] + (random() % 0x200);
            gev::store_be32(payload.data(), address & ~3u);
        }
        // Never touch privilege or channel registers: a random destination address must not
        // make the camera send anywhere but loopback.
        bool channel_register = false;
        for (std::size_t off = 0; off + 4 <= payload.size(); off += 4) {
            const std::uint32_t word = gev::load_be32(payload.data() + off);
            channel_register |= word >= 0x0900 && word < 0x0E00;
        }
        const std::uint16_t command = commands[random() % 7];
        if (channel_register ||
            (command == 0x0086 && payload.size() >= 4 && gev::load_be32(payload.data()) < 0x0E00)) {
            continue;
        }
        auto datagram = gev::make_command(command, 0, 1, payload);
        if (random() % 4 == 0) {
            datagram.resize(random() % datagram.size());  // truncated
        }
        client_.send_raw(datagram);
    }
    // A random AcquisitionStart may build a large test image first while the flood fills the
    // socket, so retry as a real host would.
    const std::uint16_t id = client_.next_id();
    std::optional<Ack> ack;
    for (int attempt = 0; attempt < 20 && !ack; ++attempt) {
        ack = client_.transact(*gev::make_readreg_command(id, {0x0A00}), id, 1000);
    }
    ASSERT_TRUE(ack);
    ASSERT_EQ(ack->payload.size(), 4u);
    EXPECT_EQ(gev::load_be32(ack->payload.data()), 2u);
}

TEST_F(GvcpServer, WithoutAckFlagNothingIsSent) {
    auto cmd = *gev::make_readreg_command(90, {0x0938});
    cmd[1] = 0;
    EXPECT_FALSE(client_.transact(cmd, 90, 200));
}

TEST(GvcpPending, SlowAcquisitionStartAnnouncesPendingAck) {
    CameraConfig config = test_camera(2);
    config.pending_operation_ms = 700;
    Camera camera(config);
    TestClient client(camera.address(), camera.control_port());
    ASSERT_EQ(client.take_control(), 0);
    ASSERT_EQ(client.write_reg(0x0954, 0x2), 0);  // enable PENDING_ACK
    const std::uint16_t id = client.next_id();
    const auto ack =
        client.transact(*gev::make_writereg_command(id, {{reg::kAcquisitionStart, 1}}), id, 3000);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->status(), 0);
    ASSERT_EQ(client.pending().size(), 1u);
    EXPECT_GE(client.pending()[0], 700);
}

TEST(GvcpForceIp, MovesTheCameraWhenTheMacMatches) {
    Camera camera(test_camera(3));
    TestClient client(camera.address(), camera.control_port());
    const auto discovery = client.transact(gev::make_discovery_command(1, false), 1);
    ASSERT_TRUE(discovery);
    const auto info = *gev::decode_device_info(discovery->payload);

    gev::ForceIpRequest other{{9, 9, 9, 9, 9, 9}, *parse_ipv4("127.0.0.40"), 0xFF000000, 0};
    EXPECT_FALSE(client.transact(gev::make_forceip_command(2, 0x01, other), 2, 200));

    gev::ForceIpRequest mine{info.mac, *parse_ipv4("127.0.0.40"), 0xFF000000, 0};
    const auto ack = client.transact(gev::make_forceip_command(3, 0x01, mine), 3);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->header.acknowledge, 0x0005);
    EXPECT_EQ(camera.address(), "127.0.0.40");
    TestClient moved("127.0.0.40", camera.control_port());
    EXPECT_EQ(moved.read_reg(0x0024), *parse_ipv4("127.0.0.40"));
}

}  // namespace
}  // namespace ry::emulator::testing
