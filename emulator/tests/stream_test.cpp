// GVSP streaming: packet layout, image contents, acquisition modes, triggers and resend.
#include <gtest/gtest.h>

#include <cstring>
#include <mutex>
#include <thread>

#include "feature_registers.h"
#include "ry/gev/protocol/pixel_formats.h"
#include "test_client.h"

namespace ry::emulator::testing {
namespace {

namespace pf = gev::pixel_format;

class Stream : public ::testing::Test {
  protected:
    explicit Stream(CameraConfig config = test_camera(5))
        : camera_(config), client_(camera_.address(), camera_.control_port()) {
        EXPECT_EQ(client_.take_control(), 0);
    }
    void start(std::uint32_t mode, std::uint32_t frames = 1) {
        ASSERT_EQ(client_.write_regs({{reg::kAcquisitionMode, mode},
                                      {reg::kAcquisitionFrameCount, frames},
                                      {reg::kAcquisitionStart, 1}}),
                  0);
    }
    // Receives one block and checks every byte of it.
    void expect_block(std::uint32_t format, std::uint32_t width, std::uint32_t height,
                      std::size_t per_packet, bool extended = false) {
        const auto packets = receiver_.next_block();
        ASSERT_GE(packets.size(), 3u);
        const auto& leader = packets.front();
        ASSERT_EQ(leader.header.format, gev::GvspFormat::Leader);
        EXPECT_EQ(leader.header.packet_id, 0u);
        EXPECT_EQ(leader.header.extended_ids, extended);
        const auto image_leader = gev::decode_image_leader(leader.data);
        ASSERT_TRUE(image_leader);
        EXPECT_EQ(image_leader->pixel_format, format);
        EXPECT_EQ(image_leader->size_x, width);
        const std::size_t size = gev::image_size(format, width, height);
        const auto count = gev::gvsp_payload_packet_count(size, per_packet);
        const auto& trailer = packets.back();
        ASSERT_EQ(trailer.header.format, gev::GvspFormat::Trailer);
        EXPECT_EQ(trailer.header.packet_id, count + 1);
        EXPECT_EQ(gev::decode_image_trailer(trailer.data)->size_y, height);
        EXPECT_EQ(packets.size(), count + 2u);
        for (const auto& p : packets) {
            EXPECT_EQ(p.header.block_id, leader.header.block_id);
        }
        EXPECT_EQ(assemble(packets, size, per_packet),
                  expected_image(format, width, height, leader.header.block_id));
        last_block_ = leader.header.block_id;
    }
    Camera camera_;
    TestClient client_;
    StreamReceiver receiver_;
    std::uint64_t last_block_ = 0;
};

TEST_F(Stream, EveryPixelFormatArrivesByteExact) {
    ASSERT_EQ(open_stream(client_, receiver_, 600), 0);
    for (const auto& format : gev::known_pixel_formats()) {
        if (format.name.starts_with("BayerBG")) {
            continue;  // not offered by this camera
        }
        ASSERT_EQ(client_.write_regs({{reg::kPixelFormat, format.code}, {reg::kWidth, 68}}), 0)
            << format.name;
        start(1);
        SCOPED_TRACE(std::string(format.name));
        expect_block(format.code, 68, 32, 600 - 36);
    }
}

TEST_F(Stream, SingleAndMultiFrameCountsThenBlockIdsContinue) {
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    start(1);
    expect_block(pf::kMono8, 64, 32, 1464);
    EXPECT_EQ(last_block_, 1u);
    EXPECT_FALSE(receiver_.next(200));
    start(2, 3);
    for (int i = 0; i < 3; ++i) {
        expect_block(pf::kMono8, 64, 32, 1464);
    }
    EXPECT_EQ(last_block_, 4u);
    EXPECT_FALSE(receiver_.next(200));
}

TEST_F(Stream, TheTrailerObserverHearsEachBlockOnceItsTrailerIsOut) {
    std::mutex mutex;
    std::vector<std::uint64_t> heard;
    camera_.set_trailer_observer([&](std::uint64_t block_id) {
        const std::lock_guard lock(mutex);
        heard.push_back(block_id);
    });
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    start(2, 3);
    for (int i = 0; i < 3; ++i) {
        expect_block(pf::kMono8, 64, 32, 1464);
    }
    EXPECT_FALSE(receiver_.next(200));  // the observer added nothing to the stream
    camera_.set_trailer_observer({});
    const std::lock_guard lock(mutex);
    EXPECT_EQ(heard, (std::vector<std::uint64_t>{1, 2, 3}));
}

TEST_F(Stream, ContinuousRunsUntilStoppedAtTheFrameRate) {
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    // 20 frames per second as an IEEE double, high word first.
    const double fps = 20.0;
    std::uint64_t bits;
    std::memcpy(&bits, &fps, sizeof bits);
    ASSERT_EQ(
        client_.write_regs({{reg::kAcquisitionFrameRate, static_cast<std::uint32_t>(bits >> 32)},
                            {reg::kAcquisitionFrameRate + 4, static_cast<std::uint32_t>(bits)}}),
        0);
    start(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    ASSERT_EQ(client_.write_reg(reg::kAcquisitionStop, 1), 0);
    const auto frames = camera_.frames_sent();
    EXPECT_GE(frames, 7u);
    EXPECT_LE(frames, 13u);
}

TEST_F(Stream, SoftwareAndExternalTriggersProduceOneFrameEach) {
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    ASSERT_EQ(client_.write_regs({{reg::kTriggerMode, 1}, {reg::kTriggerSource, 0}}), 0);
    start(0);
    EXPECT_FALSE(receiver_.next(200));
    ASSERT_EQ(client_.write_reg(reg::kTriggerSoftware, 1), 0);
    expect_block(pf::kMono8, 64, 32, 1464);
    camera_.fire_external_trigger();  // ignored: the source is Software
    EXPECT_FALSE(receiver_.next(200));
    ASSERT_EQ(client_.write_reg(reg::kAcquisitionStop, 1), 0);
    ASSERT_EQ(client_.write_reg(reg::kTriggerSource, 1), 0);
    start(0);
    camera_.fire_external_trigger();
    expect_block(pf::kMono8, 64, 32, 1464);
}

TEST_F(Stream, TestPacketHasThePacketSize) {
    ASSERT_EQ(open_stream(client_, receiver_, 4000), 0);
    ASSERT_EQ(client_.write_reg(0x0D04, 0xC0000000 | 3000), 0);  // fire, do not fragment
    const auto packet = receiver_.next();
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->data.size() + 8, 3000u - 28u);          // UDP payload = SCPS - IP/UDP headers
    EXPECT_EQ(client_.read_reg(0x0D04), 0x40000000u | 3000);  // the fire bit reads back 0
}

TEST_F(Stream, StreamHoldKeepsFramesUntilReleased) {
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    ASSERT_EQ(client_.write_reg(reg::kStreamHold, 1), 0);
    start(1);
    EXPECT_FALSE(receiver_.next(300));
    ASSERT_EQ(client_.write_reg(reg::kStreamHold, 0), 0);
    expect_block(pf::kMono8, 64, 32, 1464);
    EXPECT_EQ(client_.read_reg(reg::kFrameCapacity), reg::kFrameCapacityFrames);
}

TEST_F(Stream, ExtendedIdsUse64BitBlocksAndResendAnswersWithFlag) {
    ASSERT_EQ(client_.write_reg(0x0960, 0x40000000), 0);
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    start(1);
    expect_block(pf::kMono8, 64, 32, 1452, true);
    gev::PacketResendRequest request{0, last_block_, 1, 1, true};
    client_.send_raw(gev::make_packetresend_command(client_.next_id(), request));
    const auto resent = receiver_.next();
    ASSERT_TRUE(resent);
    EXPECT_EQ(resent->header.flags & gev::kGvspFlagResent, gev::kGvspFlagResent);
    EXPECT_EQ(resent->header.block_id, last_block_);
    EXPECT_EQ(resent->header.packet_id, 1u);
}

TEST_F(Stream, DroppedPacketsComeBackOnResendAndUnknownOnesAreReported) {
    ASSERT_EQ(open_stream(client_, receiver_, 576), 0);
    FaultConfig faults;
    faults.drop_packet_ids = {2, 3};
    camera_.set_faults(faults);
    ASSERT_EQ(client_.write_reg(0x0954, 0x4), 0);  // extended status codes
    start(1);
    auto packets = receiver_.next_block();
    ASSERT_FALSE(packets.empty());
    const std::uint64_t block = packets.front().header.block_id;
    EXPECT_EQ(packets.size(), 4u);  // leader, 2048 bytes in 4 packets of 540 (two lost), trailer
    client_.send_raw(gev::make_packetresend_command(client_.next_id(), {0, block, 2, 3, false}));
    for (int i = 0; i < 2; ++i) {
        auto p = receiver_.next();
        ASSERT_TRUE(p);
        EXPECT_EQ(p->header.status, static_cast<std::uint16_t>(gev::GevStatus::PacketResend));
        packets.push_back(*p);
    }
    EXPECT_EQ(assemble(packets, 2048, 540), expected_image(pf::kMono8, 64, 32, block));
    EXPECT_EQ(camera_.packets_resent(), 2u);

    client_.send_raw(
        gev::make_packetresend_command(client_.next_id(), {0, block + 50, 1, 1, false}));
    auto missing = receiver_.next();
    ASSERT_TRUE(missing);
    EXPECT_TRUE(gev::is_error(missing->header.status));
    EXPECT_TRUE(missing->data.empty());

    faults.ignore_resend = true;
    camera_.set_faults(faults);
    client_.send_raw(gev::make_packetresend_command(client_.next_id(), {0, block, 2, 2, false}));
    EXPECT_FALSE(receiver_.next(200));
}

TEST_F(Stream, RandomDropFractionLosesAboutThatShare) {
    ASSERT_EQ(open_stream(client_, receiver_, 576), 0);
    ASSERT_EQ(client_.write_regs({{reg::kWidth, 512}, {reg::kHeight, 512}}), 0);  // 486 packets
    FaultConfig faults;
    faults.drop_fraction = 0.25;
    camera_.set_faults(faults);
    start(1);
    std::size_t payload = 0;
    while (auto p = receiver_.next(300)) {
        payload += p->header.format == gev::GvspFormat::Payload ? 1 : 0;
    }
    EXPECT_GT(payload, 486u * 6 / 10);
    EXPECT_LT(payload, 486u * 9 / 10);
}

TEST_F(Stream, UnpluggedCameraIsSilentAndComesBack) {
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    ASSERT_EQ(client_.write_reg(0x0954, 0x1), 0);  // keep control while unplugged
    FaultConfig faults;
    faults.unplugged = true;
    camera_.set_faults(faults);
    EXPECT_FALSE(client_.read_regs({0x0938}));
    faults.unplugged = false;
    camera_.set_faults(faults);
    start(1);
    expect_block(pf::kMono8, 64, 32, 1464);
}

TEST_F(Stream, DelayedAndMalformedAcknowledges) {
    FaultConfig faults;
    faults.ack_delay_ms = 300;
    camera_.set_faults(faults);
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(client_.read_reg(0x0938), 3000u);
    EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(290));
    faults = {};
    faults.malformed_packets = true;
    camera_.set_faults(faults);
    EXPECT_FALSE(client_.read_regs({0x0938}));  // 6 bytes: not even an ack header
    camera_.set_faults({});
    ASSERT_EQ(open_stream(client_, receiver_), 0);
    faults.malformed_packets = true;
    camera_.set_faults(faults);
    client_.send_raw(*gev::make_writereg_command(
        client_.next_id(), {{reg::kAcquisitionMode, 1}, {reg::kAcquisitionStart, 1}}));
    const auto leader = receiver_.next();
    ASSERT_TRUE(leader);
    EXPECT_FALSE(gev::decode_image_leader(leader->data));  // cut short
}

}  // namespace
}  // namespace ry::emulator::testing
