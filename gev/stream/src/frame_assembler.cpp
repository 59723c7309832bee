#include "frame_assembler.h"

#include <algorithm>

namespace ry::gev::stream::detail {

FrameAssembler::FrameAssembler(const ReceiverCallbacks& callbacks, SharedCounters& shared)
    : callbacks_(callbacks), shared_(shared) {}

void FrameAssembler::Configure(const ReceiverSettings& settings) {
    if (settings.packetSize != settings_.packetSize) {
        packetSizeHintRefuted_ = false;
    }
    if (settings.extendedIds != settings_.extendedIds) {
        sequence_.Reset();  // the device numbers its blocks anew in the other id mode
        CountDropped(sequence_.TakeDropped());
    }
    settings_ = settings;
}

void FrameAssembler::Reset() {
    for (FrameSlot& slot : slots_) {
        slot.Release();
    }
    lastSlot_ = nullptr;
    sequence_.Reset();
    CountDropped(sequence_.TakeDropped());
}

void FrameAssembler::Publish() {
    shared_.Add(pending_);
    pending_ = ReceiverCounters{};
}

FrameSlot* FrameAssembler::FindSlot(uint64_t blockId) {
    const auto matches = [&](const FrameSlot& slot) {
        return slot.Active() && slot.BlockId() == blockId;
    };
    if (lastSlot_ != nullptr && matches(*lastSlot_)) {
        return lastSlot_;
    }
    for (FrameSlot& slot : slots_) {
        if (matches(slot)) {
            lastSlot_ = &slot;
            return &slot;
        }
    }
    return nullptr;
}

void FrameAssembler::CountDropped(BlockSequence::Verdict verdict) {
    switch (verdict) {
        case BlockSequence::Verdict::Newest:
        case BlockSequence::Verdict::Late:
            ++pending_.packetsIgnored;  // leftovers of blocks already given back
            break;
        case BlockSequence::Verdict::Far:
            ++pending_.packetsRejected;
            break;
        case BlockSequence::Verdict::Open:
            break;
    }
}

uint32_t FrameAssembler::StreamPacketBytes(bool extendedId) const {
    if (learnedPacketBytes_ != 0) {
        return learnedPacketBytes_;
    }
    if (packetSizeHintRefuted_) {
        return 0;
    }
    return static_cast<uint32_t>(
        ry::gev::gvsp_payload_per_packet(settings_.packetSize, extendedId));
}

FrameSlot& FrameAssembler::FreeSlot() {
    FrameSlot* oldest = &slots_[0];
    for (FrameSlot& slot : slots_) {
        if (!slot.Active()) {
            return slot;
        }
        if (slot.openedAt < oldest->openedAt) {
            oldest = &slot;
        }
    }
    Close(*oldest);
    return *oldest;
}

FrameSlot* FrameAssembler::OpenBlock(const GvspPacket& packet, TimePoint now) {
    sequence_.Opened(packet.blockId);
    MarkOlderFramesDue(now);
    FrameSlot& slot = FreeSlot();
    LentBuffer buffer;
    if (!callbacks_.takeBuffer || !callbacks_.takeBuffer(buffer)) {
        ++pending_.framesDroppedNoBuffer;
        return nullptr;
    }
    if (buffer.data == nullptr) {
        buffer.size = 0;  // nothing can be written; the frame comes back flagged too small
    }
    slot.Open(packet.blockId, packet.extendedId, buffer, StreamPacketBytes(packet.extendedId), now);
    lastSlot_ = &slot;
    return &slot;
}

size_t FrameAssembler::PlanPlacements(PlacementHint* out, size_t max) const {
    if (lastSlot_ == nullptr || !lastSlot_->Active()) {
        return 0;
    }
    return lastSlot_->PlanPlacements(out, max);
}

bool FrameAssembler::HasOpenFrame() const {
    return std::any_of(slots_.begin(), slots_.end(),
                       [](const FrameSlot& slot) { return slot.Active(); });
}

void FrameAssembler::OnDatagram(const uint8_t* bytes, size_t size, TimePoint now,
                                const uint8_t* dataInPlace) {
    GvspPacket packet;
    if (!DecodeGvspHeader(bytes, size, packet) || (!packet.extendedId && packet.blockId == 0) ||
        packet.extendedId != settings_.extendedIds) {
        ++pending_.packetsRejected;
        return;
    }
    if (dataInPlace != nullptr) {
        packet.data = dataInPlace;
    }
    const bool knownFormat = packet.format >= static_cast<uint8_t>(PacketFormat::Leader) &&
                             packet.format <= static_cast<uint8_t>(PacketFormat::GenericPayload);
    if (!knownFormat) {
        ++pending_.packetsIgnored;
        return;
    }
    FrameSlot* slot = FindSlot(packet.blockId);
    if ((packet.status & kErrorStatusBit) != 0) {
        OnErrorPacket(slot, packet);
        return;
    }
    if (slot != nullptr) {
        sequence_.OnStreamPacket();
    } else if ((slot = SlotForNewBlock(packet, now)) == nullptr) {
        return;
    }
    Accept(*slot, packet, now);
}

// A packet of a block that is not open: opens it when it is the stream's next block or a
// run out of sequence proved to be the stream (whose first packet is then replayed).
FrameSlot* FrameAssembler::SlotForNewBlock(const GvspPacket& packet, TimePoint now) {
    bool kept = false;
    const BlockSequence::Verdict verdict = sequence_.Judge(packet, kept);
    CountDropped(sequence_.TakeDropped());
    if (verdict != BlockSequence::Verdict::Open) {
        if (!kept) {
            CountDropped(verdict);
        }
        return nullptr;
    }
    FrameSlot* slot = OpenBlock(packet, now);
    GvspPacket first;
    const bool replay = sequence_.TakeKept(packet.blockId, first);
    CountDropped(sequence_.TakeDropped());
    if (slot != nullptr && replay && first.packetId != packet.packetId) {
        Accept(*slot, first, now);
        if (!slot->Active()) {
            return nullptr;
        }
    } else if (replay) {
        ++pending_.packetsIgnored;  // no buffer for the block, or the same packet again
    }
    return slot;
}

void FrameAssembler::Accept(FrameSlot& slot, const GvspPacket& packet, TimePoint now) {
    ++pending_.packetsReceived;
    slot.lastPacketAt = now;
    switch (static_cast<PacketFormat>(packet.format)) {
        case PacketFormat::Leader:
            OnLeader(slot, packet);
            break;
        case PacketFormat::Trailer:
            OnTrailer(slot, packet);
            break;
        case PacketFormat::GenericPayload:
            OnPayload(slot, packet);
            break;
    }
    AfterPacket(slot, packet.packetId, now);
}

void FrameAssembler::OnLeader(FrameSlot& slot, const GvspPacket& packet) {
    LeaderFields leader;
    if (packet.packetId != 0 || !DecodeLeader(packet.data, packet.dataSize, leader)) {
        ++pending_.packetsRejected;
        return;
    }
    if (!slot.OnLeader(leader)) {
        ++pending_.packetsDuplicated;
    }
}

void FrameAssembler::OnTrailer(FrameSlot& slot, const GvspPacket& packet) {
    if (packet.dataSize < 4 || packet.packetId == 0) {
        ++pending_.packetsRejected;
        return;
    }
    // Image trailers tell how many lines were sent (fewer with variable-height acquisition).
    const auto image =
        ry::gev::decode_image_trailer(ry::gev::ConstBytes(packet.data, packet.dataSize));
    const bool imageTrailer = image && (image->payload_type & ry::gev::kPayloadTypeBaseMask) ==
                                           static_cast<uint16_t>(ry::gev::GvspPayloadType::Image);
    if (!slot.OnTrailer(packet.packetId, imageTrailer ? image->size_y : 0)) {
        ++pending_.packetsDuplicated;
        return;
    }
    slot.resendDue = true;
}

void FrameAssembler::OnPayload(FrameSlot& slot, const GvspPacket& packet) {
    switch (slot.PlacePayload(packet.packetId, packet.data, packet.dataSize)) {
        case PlaceResult::Placed:
            pending_.bytesReceived += packet.dataSize;
            if (learnedPacketBytes_ == 0 && slot.PacketBytes() != 0) {
                learnedPacketBytes_ = slot.PacketBytes();
            }
            break;
        case PlaceResult::Duplicate:
            ++pending_.packetsDuplicated;
            break;
        case PlaceResult::Unplaceable:
            break;
        case PlaceResult::Rejected:
        case PlaceResult::OutOfBuffer:
            ++pending_.packetsRejected;
            break;
    }
}

// The device answers a resend request it cannot serve with a header-only error packet; asking
// again would only bring the same answer.
void FrameAssembler::OnErrorPacket(FrameSlot* slot, const GvspPacket& packet) {
    const bool packetGone = packet.status == kStatusPacketUnavailable ||
                            packet.status == kStatusPacketAndPreviousRemoved ||
                            packet.status == kStatusPacketRemoved;
    if (slot != nullptr && packetGone) {
        slot->resendRefused = true;
        slot->resendDue = true;
    }
    ++pending_.packetsIgnored;
}

void FrameAssembler::AfterPacket(FrameSlot& slot, uint32_t packetId, TimePoint now) {
    if (slot.IsComplete()) {
        Close(slot);
        return;
    }
    const bool gap = packetId > slot.nextExpectedId;
    const bool askNow = settings_.resendEnabled && settings_.frequentResend &&
                        settings_.maxResendRequests > 0 && !slot.resendRefused;
    if (gap && askNow) {
        RequestMissing(slot, slot.nextExpectedId, packetId - 1);
        if (slot.resendRounds == 0) {
            slot.resendRounds = 1;
            slot.nextResendAt = After(now, settings_.resendTimeoutMs);
        }
    }
    slot.nextExpectedId = std::max(slot.nextExpectedId, packetId + 1);
}

}  // namespace ry::gev::stream::detail
