// Receive slots for one recvmmsg call, allocated once. A message may be aimed at the place in
// a lent buffer where the engine expects its data: the kernel then writes the GVSP header into
// the slot and the data straight into the frame, so the common packet is copied only once.
// A message that turns out to be something else is gathered back into its slot before any
// packet of the batch is placed, so a wrong guess never costs more than one extra copy.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ry::gev::stream::detail {

// Where the engine expects the next packet of the frame being received.
struct PlacementHint {
    uint64_t blockId = 0;
    uint32_t packetId = 0;
    bool extendedId = false;
    uint8_t* region = nullptr;  // the packet's place in the lent buffer
    size_t regionBytes = 0;
};

class ReceiveBatch {
  public:
    static constexpr size_t kDefaultMessages = 64;
    // Large enough for any UDP datagram, so a cut-off datagram can only come from a sender
    // lying about its length.
    static constexpr size_t kSlotBytes = 65536;

    explicit ReceiveBatch(size_t messages = kDefaultMessages);

    size_t Capacity() const { return headers_.size(); }

    // Aims the first hints.size() messages at their regions; the others get plain slots.
    // Then drains up to `count` waiting datagrams without blocking; returns how many arrived.
    size_t ReceiveFrom(int fd, const PlacementHint* hints, size_t hintCount, size_t count);

    // The datagram as received, contiguous in its slot, unless DataInPlace(i) is set: then the
    // slot holds the header and the data already sit in the hinted region.
    const uint8_t* Data(size_t i) const { return storage_.data() + i * kSlotBytes; }
    size_t Size(size_t i) const { return headers_[i].msg_len; }
    const uint8_t* DataInPlace(size_t i) const { return inPlace_[i]; }
    bool Truncated(size_t i) const { return (headers_[i].msg_hdr.msg_flags & MSG_TRUNC) != 0; }
    uint32_t SourceIp(size_t i) const { return ntohl(sources_[i].sin_addr.s_addr); }

  private:
    void Aim(size_t i, const PlacementHint& hint);
    void Unaim(size_t i);
    void Settle(size_t i, const PlacementHint& hint);

    std::vector<uint8_t> storage_;
    std::vector<iovec> vectors_;  // three per message: header, region, rest of the slot
    std::vector<sockaddr_in> sources_;
    std::vector<mmsghdr> headers_;
    std::vector<const uint8_t*> inPlace_;
};

}  // namespace ry::gev::stream::detail
