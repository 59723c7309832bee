#include "receive_batch.h"

#include <netinet/udp.h>

#include <algorithm>
#include <cstring>

#include "gvsp_view.h"

namespace ry::gev::stream::detail {

namespace {

// A header and a region per packet, and the rest of the slot.
constexpr size_t kVectorsPerMessage = 2 * ReceiveBatch::kMaxTrain + 1;
constexpr size_t kHeaderStep = ReceiveBatch::kHeaderStep;
constexpr size_t kControlBytes = CMSG_SPACE(sizeof(int));
// Packets one datagram may carry (the kernel's own limit for a train); a datagram claiming
// more is refused as a whole.
constexpr size_t kMaxPacketsPerDatagram = 128;
// Datagrams in one batch, all single packets, that show the sender stopped sending trains.
constexpr size_t kSinglesBeforeUnlearning = 8;

static_assert(kHeaderStep >= kExtendedHeaderBytes);

size_t HeaderBytes(bool extendedId) {
    return extendedId ? kExtendedHeaderBytes : kStandardHeaderBytes;
}

// True when the packet is the payload packet the hint expected and all its data went into
// the region.
bool MatchesHint(const uint8_t* header, size_t size, const PlacementHint& hint) {
    GvspPacket packet;
    const size_t headerBytes = HeaderBytes(hint.extendedId);
    return size > headerBytes && size - headerBytes <= hint.regionBytes &&
           DecodeGvspHeader(header, headerBytes, packet) && packet.extendedId == hint.extendedId &&
           packet.status == 0 &&
           packet.format == static_cast<uint8_t>(PacketFormat::GenericPayload) &&
           packet.blockId == hint.blockId && packet.packetId == hint.packetId;
}

}  // namespace

ReceiveBatch::ReceiveBatch(size_t messages)
    : storage_(messages * kStorageBytesPerMessage),
      gathering_(kSlotBytes),
      vectors_(messages * kVectorsPerMessage),
      sources_(messages),
      headers_(messages),
      controls_(messages * kControlBytes),
      aims_(messages) {
    packets_.reserve(messages * kMaxPacketsPerDatagram);
    for (size_t i = 0; i < messages; ++i) {
        headers_[i].msg_hdr.msg_iov = &vectors_[i * kVectorsPerMessage];
        headers_[i].msg_hdr.msg_name = &sources_[i];
        Unaim(i);
    }
}

void ReceiveBatch::AimAt(size_t i, const PlacementHint* hints, size_t count) {
    uint8_t* slot = Slot(i);
    const size_t headerBytes = HeaderBytes(hints[0].extendedId);
    iovec* vectors = &vectors_[i * kVectorsPerMessage];
    size_t used = 0;
    for (size_t k = 0; k < count; ++k) {
        vectors[used++] = {slot + k * kHeaderStep, headerBytes};
        vectors[used++] = {hints[k].region, hints[k].regionBytes};
    }
    vectors[used++] = {slot + kHeaderArea, kSlotBytes};
    headers_[i].msg_hdr.msg_iovlen = used;
    aims_[i] = {hints, count};
}

void ReceiveBatch::Unaim(size_t i) {
    vectors_[i * kVectorsPerMessage] = {Slot(i), kSlotBytes};
    headers_[i].msg_hdr.msg_iovlen = 1;
    aims_[i] = {};
}

// The segment size of a train taken whole; a plain datagram is one segment.
size_t ReceiveBatch::SegmentSize(size_t i) const {
    auto* header = const_cast<msghdr*>(&headers_[i].msg_hdr);  // the macros want it mutable
    for (cmsghdr* c = CMSG_FIRSTHDR(header); c != nullptr; c = CMSG_NXTHDR(header, c)) {
        if (c->cmsg_level == SOL_UDP && c->cmsg_type == UDP_GRO) {
            int segment = 0;
            std::memcpy(&segment, CMSG_DATA(c), sizeof segment);
            return segment > 0 ? static_cast<size_t>(segment) : headers_[i].msg_len;
        }
    }
    return headers_[i].msg_len;
}

// Every packet must be the one its hint expected, and every packet but the last must have
// filled its region exactly, or the next header did not land in its place.
bool ReceiveBatch::LandedAsAimed(size_t i, size_t size, size_t segment) {
    const Aim& aim = aims_[i];
    const size_t headerBytes = HeaderBytes(aim.hints[0].extendedId);
    const size_t packets = (size + segment - 1) / segment;
    if (packets > aim.count) {
        return false;
    }
    for (size_t k = 0; k < packets; ++k) {
        const size_t bytes = std::min(segment, size - k * segment);
        const bool last = k + 1 == packets;
        if (!MatchesHint(Slot(i) + k * kHeaderStep, bytes, aim.hints[k]) ||
            (!last && bytes - headerBytes != aim.hints[k].regionBytes)) {
            return false;
        }
    }
    return true;
}

// Puts a misdirected datagram back together at the start of its slot, in the order the
// kernel wrote it across the vectors.
void ReceiveBatch::Gather(size_t i, size_t size) {
    const iovec* vectors = &vectors_[i * kVectorsPerMessage];
    size_t gathered = 0;
    for (size_t v = 0; v < headers_[i].msg_hdr.msg_iovlen && gathered < size; ++v) {
        const size_t bytes =
            std::min({vectors[v].iov_len, size - gathered, gathering_.size() - gathered});
        std::memcpy(gathering_.data() + gathered, vectors[v].iov_base, bytes);
        gathered += bytes;
    }
    std::memcpy(Slot(i), gathering_.data(), gathered);
}

void ReceiveBatch::Split(size_t i, size_t size, size_t segment) {
    for (size_t offset = 0; offset < size; offset += segment) {
        packets_.push_back({Slot(i) + offset, std::min(segment, size - offset), nullptr,
                            static_cast<uint32_t>(i)});
    }
}

void ReceiveBatch::Settle(size_t i) {
    const size_t size = std::min<size_t>(headers_[i].msg_len, kSlotBytes);
    const size_t segment = SegmentSize(i);
    const bool implausible =
        (size + segment - 1) / std::max<size_t>(segment, 1) > kMaxPacketsPerDatagram;
    if (size == 0 || implausible || Truncated(static_cast<uint32_t>(i))) {
        if (aims_[i].count != 0) {
            Gather(i, size);
        }
        packets_.push_back({Slot(i), implausible ? 0 : size, nullptr, static_cast<uint32_t>(i)});
        return;
    }
    if (aims_[i].count != 0 && LandedAsAimed(i, size, segment)) {
        for (size_t k = 0; k * segment < size; ++k) {
            packets_.push_back({Slot(i) + k * kHeaderStep, std::min(segment, size - k * segment),
                                aims_[i].hints[k].region, static_cast<uint32_t>(i)});
        }
        return;
    }
    if (aims_[i].count != 0) {
        Gather(i, size);
    }
    Split(i, size, segment);
}

// Trains keep their length while a sender sends them; a batch of single packets only means
// the trains stopped when there were enough of them to tell.
void ReceiveBatch::LearnTrainLength(size_t received) {
    size_t longest = 0;
    for (size_t i = 0; i < received; ++i) {
        const size_t segment = SegmentSize(i);
        if (segment != 0) {
            longest = std::max<size_t>(longest, (headers_[i].msg_len + segment - 1) / segment);
        }
    }
    if (longest > 1 || received >= kSinglesBeforeUnlearning) {
        trainLength_ = std::clamp<size_t>(longest, 1, kMaxTrain);
    }
}

size_t ReceiveBatch::ReceiveFrom(int fd, const PlacementHint* hints, size_t hintCount,
                                 size_t count) {
    count = std::min(count, headers_.size());
    size_t nextHint = 0;
    for (size_t i = 0; i < count; ++i) {
        const size_t train = std::min(trainLength_, hintCount - nextHint);
        if (train > 0) {
            AimAt(i, hints + nextHint, train);
            nextHint += train;
        } else {
            Unaim(i);
        }
        msghdr& header = headers_[i].msg_hdr;
        header.msg_namelen = sizeof(sockaddr_in);
        header.msg_control = &controls_[i * kControlBytes];
        header.msg_controllen = kControlBytes;
        header.msg_flags = 0;
    }
    const int result =
        ::recvmmsg(fd, headers_.data(), static_cast<unsigned>(count), MSG_DONTWAIT, nullptr);
    const size_t received = result > 0 ? static_cast<size_t>(result) : 0;
    // Every misdirected message is gathered before any packet is placed: placing one could
    // overwrite the region another message of this batch still holds.
    packets_.clear();
    for (size_t i = 0; i < received; ++i) {
        Settle(i);
    }
    LearnTrainLength(received);
    return received;
}

}  // namespace ry::gev::stream::detail
