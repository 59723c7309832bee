#include "receive_batch.h"

#include <algorithm>
#include <cstring>

#include "gvsp_view.h"

namespace ry::gev::stream::detail {

namespace {

constexpr size_t kVectorsPerMessage = 3;

size_t HeaderBytes(bool extendedId) {
    return extendedId ? kExtendedHeaderBytes : kStandardHeaderBytes;
}

// True when the datagram is the payload packet the hint expected and all its data went into
// the region.
bool MatchesHint(const uint8_t* slot, size_t size, const PlacementHint& hint) {
    GvspPacket packet;
    const size_t headerBytes = HeaderBytes(hint.extendedId);
    return size > headerBytes && size - headerBytes <= hint.regionBytes &&
           DecodeGvspHeader(slot, headerBytes, packet) && packet.extendedId == hint.extendedId &&
           packet.status == 0 &&
           packet.format == static_cast<uint8_t>(PacketFormat::GenericPayload) &&
           packet.blockId == hint.blockId && packet.packetId == hint.packetId;
}

}  // namespace

ReceiveBatch::ReceiveBatch(size_t messages)
    : storage_(messages * kSlotBytes),
      vectors_(messages * kVectorsPerMessage),
      sources_(messages),
      headers_(messages),
      inPlace_(messages, nullptr) {
    for (size_t i = 0; i < messages; ++i) {
        headers_[i].msg_hdr.msg_iov = &vectors_[i * kVectorsPerMessage];
        headers_[i].msg_hdr.msg_name = &sources_[i];
        Unaim(i);
    }
}

void ReceiveBatch::Aim(size_t i, const PlacementHint& hint) {
    uint8_t* slot = storage_.data() + i * kSlotBytes;
    const size_t headerBytes = HeaderBytes(hint.extendedId);
    // The region must not be larger than the slot could take back when gathering.
    const size_t regionBytes = std::min(hint.regionBytes, kSlotBytes - headerBytes);
    iovec* vectors = &vectors_[i * kVectorsPerMessage];
    vectors[0] = {slot, headerBytes};
    vectors[1] = {hint.region, regionBytes};
    vectors[2] = {slot + headerBytes + regionBytes, kSlotBytes - headerBytes - regionBytes};
    headers_[i].msg_hdr.msg_iovlen = kVectorsPerMessage;
}

void ReceiveBatch::Unaim(size_t i) {
    vectors_[i * kVectorsPerMessage] = {storage_.data() + i * kSlotBytes, kSlotBytes};
    headers_[i].msg_hdr.msg_iovlen = 1;
}

// Makes message i contiguous in its slot unless it is exactly what the hint expected.
void ReceiveBatch::Settle(size_t i, const PlacementHint& hint) {
    uint8_t* slot = storage_.data() + i * kSlotBytes;
    const size_t size = headers_[i].msg_len;
    if (MatchesHint(slot, size, hint)) {
        inPlace_[i] = hint.region;
        return;
    }
    const size_t headerBytes = HeaderBytes(hint.extendedId);
    if (size > headerBytes) {
        const size_t regionBytes = vectors_[i * kVectorsPerMessage + 1].iov_len;
        std::memcpy(slot + headerBytes, hint.region, std::min(size - headerBytes, regionBytes));
    }
}

size_t ReceiveBatch::ReceiveFrom(int fd, const PlacementHint* hints, size_t hintCount,
                                 size_t count) {
    count = std::min(count, headers_.size());
    hintCount = std::min(hintCount, count);
    for (size_t i = 0; i < count; ++i) {
        if (i < hintCount) {
            Aim(i, hints[i]);
        } else {
            Unaim(i);
        }
        headers_[i].msg_hdr.msg_namelen = sizeof(sockaddr_in);
        headers_[i].msg_hdr.msg_flags = 0;
        inPlace_[i] = nullptr;
    }
    const int result =
        ::recvmmsg(fd, headers_.data(), static_cast<unsigned>(count), MSG_DONTWAIT, nullptr);
    const size_t received = result > 0 ? static_cast<size_t>(result) : 0;
    // Every misdirected message is gathered before any is placed: placing one could overwrite
    // the region another message of this batch still holds.
    for (size_t i = 0; i < std::min(received, hintCount); ++i) {
        Settle(i, hints[i]);
    }
    return received;
}

}  // namespace ry::gev::stream::detail
