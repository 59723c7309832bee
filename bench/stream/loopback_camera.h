// The sending side of the throughput benchmark: one Mono8 image cut into GVSP packets once,
// then sent frame after frame with sendmmsg from a connected loopback socket, the block id
// patched into the prebuilt headers. Only the packet headers change between frames.
#pragma once

#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ry::bench {

struct CameraShape {
    uint32_t width = 2048;
    uint32_t height = 2048;
    uint32_t packetSize = 9000;  // IP datagram of a full data packet
};

class LoopbackCamera {
  public:
    LoopbackCamera(const CameraShape& shape, uint16_t destinationPort);
    ~LoopbackCamera();
    LoopbackCamera(const LoopbackCamera&) = delete;
    LoopbackCamera& operator=(const LoopbackCamera&) = delete;

    // Sends leader, payload and trailer of one block; returns the payload bytes sent.
    size_t SendFrame(uint16_t blockId);
    const std::vector<uint8_t>& Image() const { return image_; }
    size_t PayloadBytes() const { return image_.size(); }

  private:
    static constexpr size_t kHeaderBytes = 8;
    static constexpr size_t kSendBatch = 64;

    void BuildPackets(const CameraShape& shape);

    int fd_ = -1;
    std::vector<uint8_t> image_;
    std::vector<uint8_t> headers_;  // kHeaderBytes per packet, leader and trailer included
    std::vector<uint8_t> leaderBody_;
    std::vector<uint8_t> trailerBody_;
    std::vector<iovec> vectors_;  // two per packet: header, body
    std::vector<mmsghdr> messages_;
};

}  // namespace ry::bench
