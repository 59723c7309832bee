// A small GVSP device for the tests: builds the packets of one block with a known byte
// pattern and sends chosen packets, in any order, from its own loopback address.
#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "ry/gev/stream/frame_receiver.h"

namespace ry::gev::stream::testing {

constexpr uint32_t kDeviceIp = 0x7F000001;   // 127.0.0.1
constexpr uint32_t kForeignIp = 0x7F000002;  // 127.0.0.2
constexpr uint32_t kMono8 = 0x01080001;
constexpr int kWaitMs = 3000;  // generous: only a broken engine ever waits this long

inline ReceiverSettings NoResend() {
    ReceiverSettings settings;
    settings.resendEnabled = false;
    return settings;
}

struct BlockSpec {
    uint64_t blockId = 1;
    bool extendedIds = false;
    uint32_t width = 64;
    uint32_t height = 48;
    uint32_t packetDataBytes = 200;  // payload bytes per full packet: 16 packets by default
    uint8_t seed = 0;
    bool leaderDeclaresSize = true;  // false: an image leader whose size says nothing (0x0)
};

// Datagrams of one block indexed by packet id: leader, payload..., trailer.
struct Block {
    BlockSpec spec;
    std::vector<uint8_t> payload;
    std::vector<std::vector<uint8_t>> packets;

    uint32_t TrailerId() const { return static_cast<uint32_t>(packets.size() - 1); }
};

Block BuildBlock(const BlockSpec& spec);
// A header-only error packet answering a resend request (status with the top bit set).
std::vector<uint8_t> BuildErrorPacket(const BlockSpec& spec, uint32_t packetId, uint16_t status);

class UdpSender {
  public:
    UdpSender(uint32_t sourceIp, uint16_t destinationPort, uint32_t destinationIp = kDeviceIp);
    ~UdpSender();
    UdpSender(const UdpSender&) = delete;
    UdpSender& operator=(const UdpSender&) = delete;

    void Send(const std::vector<uint8_t>& datagram) const;
    void SendAll(const Block& block) const;
    void SendRange(const Block& block, uint32_t first, uint32_t last) const;
    // Sends the datagrams as one segmentation-offload train: the kernel cuts it at the size
    // of the first, so all but the last must be that long. False when the kernel refuses.
    bool SendTrain(const std::vector<std::vector<uint8_t>>& datagrams) const;

  private:
    int fd_ = -1;
    uint16_t destinationPort_ = 0;
    uint32_t destinationIp_ = 0;
};

// Lends fixed buffers to the engine and collects the frames it hands back.
class FrameCollector {
  public:
    FrameCollector(size_t bufferCount, size_t bufferBytes);

    ReceiverCallbacks Callbacks();
    // Resends every requested packet of `block` through `sender` (the device's behaviour).
    void ServeResendsFrom(const UdpSender* sender, const std::vector<Block>* blocks);

    bool WaitForFrames(size_t count, int timeoutMs);
    std::vector<ReceivedFrame> Frames();
    std::vector<uint8_t> Bytes(const ReceivedFrame& frame) const;
    size_t FreeBuffers();
    // Every lent buffer sits in front of guard bytes; false when one was overwritten.
    bool GuardsIntact();
    void Give(const LentBuffer& buffer);

    struct ResendRequest {
        uint64_t blockId;
        uint32_t first;
        uint32_t last;
    };
    std::vector<ResendRequest> Requests();

    static constexpr size_t kGuardBytes = 256;
    static constexpr uint8_t kFill = 0xEE;

  private:
    bool Take(LentBuffer& buffer);
    void Deliver(const ReceivedFrame& frame);
    void OnResend(uint64_t blockId, uint32_t first, uint32_t last);

    std::vector<std::vector<uint8_t>> storage_;
    std::mutex mutex_;
    std::condition_variable delivered_;
    std::deque<LentBuffer> free_;
    std::vector<ReceivedFrame> frames_;
    std::vector<ResendRequest> requests_;
    const UdpSender* resendSender_ = nullptr;
    const std::vector<Block>* resendBlocks_ = nullptr;
};

// The receive path the engine is tested on: Harness and LoopbackEndpoint take it.
void SetPathUnderTest(ReceivePath path);
ReceivePath PathUnderTest();
// Host and device both at kDeviceIp, on the path under test.
ReceiverEndpoint LoopbackEndpoint();

// A suite whose cases run once on each receive path: frames and counters must not differ.
class OnBothPaths : public ::testing::TestWithParam<ReceivePath> {
  protected:
    OnBothPaths() { SetPathUnderTest(GetParam()); }
};
std::string PathName(const ::testing::TestParamInfo<ReceivePath>& info);

#define RY_ON_BOTH_PATHS(Suite) \
    INSTANTIATE_TEST_SUITE_P(   \
        Paths, Suite, ::testing::Values(ReceivePath::Socket, ReceivePath::PacketRing), PathName)

// The engine on loopback with a collector, ready for a device at kDeviceIp.
struct Harness {
    explicit Harness(ReceiverSettings settings = {}, size_t buffers = 8,
                     size_t bufferBytes = 64 * 48);
    ~Harness();

    FrameCollector collector;
    std::unique_ptr<FrameReceiver> receiver;
    std::unique_ptr<UdpSender> device;
};

}  // namespace ry::gev::stream::testing
