#include "frame_assembler.h"

#include <algorithm>

namespace ry::gev::stream::detail {

namespace {

constexpr uint32_t kStandardBlockIdSpan = 65535;  // 16-bit ids run 1..65535, 0 is unused

}  // namespace

FrameAssembler::FrameAssembler(const ReceiverCallbacks& callbacks, SharedCounters& shared)
    : callbacks_(callbacks), shared_(shared) {}

void FrameAssembler::Configure(const ReceiverSettings& settings) {
    if (settings.packetSize != settings_.packetSize) {
        packetSizeHintRefuted_ = false;
    }
    settings_ = settings;
}

void FrameAssembler::Reset() {
    for (FrameSlot& slot : slots_) {
        slot.Release();
    }
    lastSlot_ = nullptr;
    anyBlockOpened_ = false;
    newestBlockId_ = 0;
}

void FrameAssembler::Publish() {
    shared_.Add(pending_);
    pending_ = ReceiverCounters{};
}

// Block ids of the two id modes are different blocks: a device switched to extended ids
// starts again at 1.
FrameSlot* FrameAssembler::FindSlot(uint64_t blockId, bool extendedIds) {
    const auto matches = [&](const FrameSlot& slot) {
        return slot.Active() && slot.BlockId() == blockId && slot.ExtendedIds() == extendedIds;
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

// A block id that is neither open nor newer than the newest one belongs to a block already
// given back (or dropped for want of a buffer): its packets are leftovers. An id far behind
// the newest means the device restarted its count.
bool FrameAssembler::IsNewBlock(const GvspPacket& packet) const {
    if (!anyBlockOpened_ || packet.extendedId != extendedIds_) {
        return true;
    }
    uint64_t behind = 0;
    if (packet.extendedId) {
        if (packet.blockId > newestBlockId_) {
            return true;
        }
        behind = newestBlockId_ - packet.blockId;
    } else {
        const uint64_t ahead =
            (packet.blockId + kStandardBlockIdSpan - newestBlockId_) % kStandardBlockIdSpan;
        behind = ahead == 0 ? 0 : kStandardBlockIdSpan - ahead;
    }
    return behind > kLateBlockWindow;
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
    anyBlockOpened_ = true;
    extendedIds_ = packet.extendedId;
    newestBlockId_ = packet.blockId;
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
    if (!DecodeGvspHeader(bytes, size, packet) || (!packet.extendedId && packet.blockId == 0)) {
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
    FrameSlot* slot = FindSlot(packet.blockId, packet.extendedId);
    if ((packet.status & kErrorStatusBit) != 0) {
        OnErrorPacket(slot, packet);
        return;
    }
    if (slot == nullptr) {
        if (!IsNewBlock(packet)) {
            ++pending_.packetsIgnored;
            return;
        }
        slot = OpenBlock(packet, now);
        if (slot == nullptr) {
            return;
        }
    }
    ++pending_.packetsReceived;
    slot->lastPacketAt = now;
    switch (static_cast<PacketFormat>(packet.format)) {
        case PacketFormat::Leader:
            OnLeader(*slot, packet);
            break;
        case PacketFormat::Trailer:
            OnTrailer(*slot, packet);
            break;
        case PacketFormat::GenericPayload:
            OnPayload(*slot, packet);
            break;
    }
    AfterPacket(*slot, packet.packetId, now);
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
