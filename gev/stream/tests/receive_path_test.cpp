// The choice between the stream socket and the packet ring, and what the ring path must keep
// from the socket path: the port stays bound, large frames streamed back to back come whole.
#include <linux/capability.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <thread>

#include "gvsp_test_sender.h"

namespace ry::gev::stream::testing {
namespace {

// Drops CAP_NET_RAW from the calling thread only (capabilities are per thread).
bool DropNetRawFromThisThread() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (::syscall(SYS_capget, &header, data) != 0) {
        return false;
    }
    data[0].effective &= ~(1u << CAP_NET_RAW);
    return ::syscall(SYS_capset, &header, data) == 0;
}

bool MayOpenPacketSockets() {
    const int fd = ::socket(AF_PACKET, SOCK_DGRAM, 0);
    if (fd < 0) {
        return false;
    }
    ::close(fd);
    return true;
}

TEST(ReceivePath, AutomaticTakesTheRingWhenThePacketSocketOpens) {
    if (!MayOpenPacketSockets()) {
        GTEST_SKIP() << "no CAP_NET_RAW";
    }
    ReceiverEndpoint endpoint = LoopbackEndpoint();
    endpoint.receivePath = ReceivePath::Automatic;
    auto receiver = FrameReceiver::Create(endpoint, {}, {}, nullptr);
    ASSERT_NE(receiver, nullptr);
    EXPECT_EQ(receiver->PathInUse(), ReceivePath::PacketRing);
    endpoint.receivePath = ReceivePath::Socket;
    receiver = FrameReceiver::Create(endpoint, {}, {}, nullptr);
    ASSERT_NE(receiver, nullptr);
    EXPECT_EQ(receiver->PathInUse(), ReceivePath::Socket);
}

TEST(ReceivePath, WithoutCapNetRawAutomaticFallsBackToTheSocketAndTheRingIsRefused) {
    std::thread unprivileged([] {
        ASSERT_TRUE(DropNetRawFromThisThread());
        ASSERT_FALSE(MayOpenPacketSockets());
        ReceiverEndpoint endpoint = LoopbackEndpoint();
        endpoint.receivePath = ReceivePath::Automatic;
        auto receiver = FrameReceiver::Create(endpoint, NoResend(), {}, nullptr);
        ASSERT_NE(receiver, nullptr);
        EXPECT_EQ(receiver->PathInUse(), ReceivePath::Socket);
        endpoint.receivePath = ReceivePath::PacketRing;
        std::string error;
        EXPECT_EQ(FrameReceiver::Create(endpoint, NoResend(), {}, &error), nullptr);
        EXPECT_NE(error.find("packet socket"), std::string::npos) << error;
    });
    unprivileged.join();
}

class BothPaths : public OnBothPaths {};
RY_ON_BOTH_PATHS(BothPaths);

// A port nobody listens on makes the host answer with port-unreachable, which a connected
// sender sees as ECONNREFUSED: the ring path must keep the port bound.
TEST_P(BothPaths, TheStreamPortStaysBoundSoTheDeviceGetsNoPortUnreachable) {
    Harness h(NoResend());
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(fd, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(kDeviceIp);
    to.sin_port = htons(h.receiver->LocalPort());
    ASSERT_EQ(::connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to), 0);
    const Block block = BuildBlock({.blockId = 1});
    for (const auto& packet : block.packets) {
        EXPECT_EQ(::send(fd, packet.data(), packet.size(), 0), static_cast<ssize_t>(packet.size()));
    }
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    int error = 0;
    socklen_t length = sizeof error;
    ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length);
    EXPECT_EQ(error, 0);
    ::close(fd);
}

TEST_P(BothPaths, LargeFramesSentBackToBackAreAllWhole) {
    constexpr uint32_t kWidth = 1024;
    constexpr uint32_t kHeight = 512;  // 512 KiB in 8000-byte packets: 66 packets
    constexpr size_t kFrames = 24;     // more packets than the wake-up step many times over
    Harness h(NoResend(), kFrames, kWidth * kHeight);
    std::vector<Block> blocks;
    for (uint64_t id = 1; id <= kFrames; ++id) {
        blocks.push_back(BuildBlock({.blockId = id,
                                     .width = kWidth,
                                     .height = kHeight,
                                     .packetDataBytes = 8000,
                                     .seed = static_cast<uint8_t>(id)}));
        h.device->SendAll(blocks.back());
    }
    ASSERT_TRUE(h.collector.WaitForFrames(kFrames, kWaitMs));
    const auto frames = h.collector.Frames();
    for (size_t i = 0; i < kFrames; ++i) {
        EXPECT_EQ(frames[i].status, FrameStatus::Complete) << i;
        EXPECT_EQ(h.collector.Bytes(frames[i]), blocks[i].payload) << i;
    }
    EXPECT_EQ(h.receiver->Counters().packetsReceived, kFrames * blocks[0].packets.size());
}

}  // namespace
}  // namespace ry::gev::stream::testing
