// Receive slots for one recvmmsg call, allocated once. A message may be aimed at the places in
// a lent buffer where the engine expects the data of its packets: the kernel then writes the
// GVSP headers into the slot and the data straight into the frame, so the common packet is
// copied only once. With segmentation offload taken whole (UDP_GRO), one datagram carries a
// train of equal-sized packets, and a message is aimed at as many consecutive packets as the
// trains last held. A message that turns out to be something else is gathered back into its
// slot before any packet of the batch is placed, so a wrong guess never costs more than one
// extra copy.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ry::gev::stream::detail {

// Where the engine expects one packet of the frame being received.
struct PlacementHint {
    uint64_t blockId = 0;
    uint32_t packetId = 0;
    bool extendedId = false;
    uint8_t* region = nullptr;  // the packet's place in the lent buffer
    size_t regionBytes = 0;
};

// One GVSP packet of a received datagram.
struct ReceivedPacket {
    const uint8_t* bytes = nullptr;    // the header, followed by the data unless inPlace is set
    size_t size = 0;                   // header and data
    const uint8_t* inPlace = nullptr;  // the data, already at its place in the lent buffer
    uint32_t message = 0;              // the datagram it came in (source, truncation)
};

class ReceiveBatch {
  public:
    static constexpr size_t kDefaultMessages = 64;
    // Packets one message may be aimed at: a 64 KiB datagram of the smallest common packets.
    static constexpr size_t kMaxTrain = 64;
    // Large enough for any UDP datagram, so a cut-off datagram can only come from a sender
    // lying about its length.
    static constexpr size_t kSlotBytes = 65536;
    // Aimed headers sit at fixed steps in front of the slot's overflow, which still takes a
    // whole datagram however little room the aimed regions offer.
    static constexpr size_t kHeaderStep = 32;
    static constexpr size_t kHeaderArea = kHeaderStep * kMaxTrain;
    static constexpr size_t kStorageBytesPerMessage = kHeaderArea + kSlotBytes;

    explicit ReceiveBatch(size_t messages = kDefaultMessages);

    size_t Capacity() const { return headers_.size(); }
    size_t HintCapacity() const { return headers_.size() * kMaxTrain; }
    // Packets per datagram seen in the last batch that told (1 until a train arrived).
    size_t TrainLength() const { return trainLength_; }

    // Aims the first messages at the hints, TrainLength() consecutive hints each; the others
    // get plain slots. Then drains up to `count` waiting datagrams without blocking and cuts
    // them into packets; returns how many datagrams arrived.
    size_t ReceiveFrom(int fd, const PlacementHint* hints, size_t hintCount, size_t count);

    size_t PacketCount() const { return packets_.size(); }
    const ReceivedPacket& Packet(size_t k) const { return packets_[k]; }
    bool Truncated(uint32_t message) const {
        return (headers_[message].msg_hdr.msg_flags & MSG_TRUNC) != 0;
    }
    uint32_t SourceIp(uint32_t message) const { return ntohl(sources_[message].sin_addr.s_addr); }
    uint16_t SourcePort(uint32_t message) const { return ntohs(sources_[message].sin_port); }

  private:
    struct Aim {
        const PlacementHint* hints = nullptr;
        size_t count = 0;
    };

    uint8_t* Slot(size_t i) { return storage_.data() + i * kStorageBytesPerMessage; }
    void AimAt(size_t i, const PlacementHint* hints, size_t count);
    void Unaim(size_t i);
    void Settle(size_t i);
    bool LandedAsAimed(size_t i, size_t size, size_t segment);
    void Gather(size_t i, size_t size);
    void Split(size_t i, size_t size, size_t segment);
    size_t SegmentSize(size_t i) const;
    void LearnTrainLength(size_t received);

    std::vector<uint8_t> storage_;
    std::vector<uint8_t> gathering_;  // one datagram, while it is put back together
    std::vector<iovec> vectors_;      // kVectorsPerMessage per message
    std::vector<sockaddr_in> sources_;
    std::vector<mmsghdr> headers_;
    std::vector<uint8_t> controls_;  // room for the segment size of each message
    std::vector<Aim> aims_;
    std::vector<ReceivedPacket> packets_;
    size_t trainLength_ = 1;
};

}  // namespace ry::gev::stream::detail
