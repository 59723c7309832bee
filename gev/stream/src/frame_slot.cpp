#include "frame_slot.h"

#include "streaming_copy.h"

#include <algorithm>
#include <cstring>

namespace ry::gev::stream::detail {

namespace {

// Bounds the bitmaps when a device sends tiny packets into a big buffer: 2 MiB of bits, as many
// packets as 24-bit ids can number.
constexpr uint64_t kMaxPacketIds = uint64_t{1} << 24;

// Ids 0 (leader) .. N (last payload) and N + 1 (trailer) for a buffer cut into packets.
uint32_t PacketIdsFor(size_t bufferBytes, uint32_t packetBytes) {
    const uint64_t payloadPackets = (uint64_t{bufferBytes} + packetBytes - 1) / packetBytes;
    return static_cast<uint32_t>(std::min(payloadPackets + 2, kMaxPacketIds));
}

}  // namespace

void FrameSlot::Open(uint64_t blockId, bool extendedIds, const LentBuffer& buffer,
                     uint32_t packetBytes, TimePoint now) {
    active_ = true;
    blockId_ = blockId;
    extendedIds_ = extendedIds;
    buffer_ = buffer;
    leader_ = LeaderFields{};
    haveLeader_ = haveTrailer_ = tooSmall_ = false;
    packetBytes_ = packetBytes;
    firstPacketBytes_ = lastPayloadId_ = highestPayloadId_ = payloadReceived_ = 0;
    linesSent_ = 0;
    shortPacketId_ = shortPacketBytes_ = oversizedPackets_ = undersizedPackets_ = 0;
    resentPackets_ = 0;
    withdrawnPackets_ = strayPackets_ = outOfBufferId_ = 0;
    bytesFilled_ = 0;
    // Until the packet size is known only the leader and packet 1 (always at offset 0) fit.
    const uint32_t ids = packetBytes_ != 0 ? PacketIdsFor(buffer.size, packetBytes_) : 2;
    received_.Reset(ids);
    requested_.Reset(ids);
    openedAt = lastPacketAt = now;
    nextResendAt = TimePoint{};
    resendRounds = 0;
    resendDue = resendRefused = false;
    nextExpectedId = 0;
}

void FrameSlot::LearnPacketBytes(uint32_t packetBytes) {
    packetBytes_ = packetBytes;
    const uint32_t ids = PacketIdsFor(buffer_.size, packetBytes_);
    received_.Grow(ids);
    requested_.Grow(ids);
    if (haveTrailer_) {
        // The trailer bit could not be kept while only ids 0 and 1 were addressable.
        if (lastPayloadId_ + 1 < ids) {
            received_.Set(lastPayloadId_ + 1);
        } else {
            tooSmall_ = true;
        }
    }
}

bool FrameSlot::OnLeader(const LeaderFields& leader) {
    if (!received_.Set(0)) {
        return false;
    }
    resentPackets_ += requested_.Test(0) ? 1 : 0;
    leader_ = leader;
    haveLeader_ = true;
    if (const uint32_t last = LeadersLastPayloadId(); last != 0 && !haveTrailer_) {
        WithdrawPast(last);
    }
    return true;
}

bool FrameSlot::OnTrailer(uint32_t packetId, uint32_t linesSent) {
    if (packetId == 0 || haveTrailer_) {
        return false;
    }
    haveTrailer_ = true;
    linesSent_ = linesSent;
    lastPayloadId_ = packetId - 1;
    WithdrawPast(lastPayloadId_);
    if (received_.Set(packetId)) {
        resentPackets_ += requested_.Test(packetId) ? 1 : 0;
    }
    if (packetBytes_ != 0 && packetId >= received_.Size()) {
        tooSmall_ = true;
    }
    if (shortPacketId_ != 0 && shortPacketId_ != lastPayloadId_) {
        ForgetShortPacket();
    }
    return true;
}

// Packets placed past the end the leader or the trailer tells were strays (a forged id, a
// packet of another block size): their bits and bytes go, so the block can still be whole.
void FrameSlot::WithdrawPast(uint32_t last) {
    if (highestPayloadId_ <= last) {
        return;
    }
    if (shortPacketId_ > last) {
        ForgetShortPacket();
        --withdrawnPackets_;
        ++strayPackets_;
    }
    const uint32_t end = std::min(highestPayloadId_, received_.Size() - 1);
    for (uint32_t id = last + 1; id <= end && packetBytes_ != 0; ++id) {
        if (!received_.Test(id)) {
            continue;
        }
        received_.Clear(id);
        const uint64_t offset = uint64_t{id - 1} * packetBytes_;
        bytesFilled_ -= std::min<size_t>(packetBytes_, buffer_.size - offset);
        --payloadReceived_;
        ++strayPackets_;
    }
    highestPayloadId_ = last;
}

void FrameSlot::ForgetShortPacket() {
    received_.Clear(shortPacketId_);
    bytesFilled_ -= shortPacketBytes_;
    --payloadReceived_;
    ++withdrawnPackets_;
    shortPacketId_ = shortPacketBytes_ = 0;
}

// A packet shorter than the others can only be the last one of the block; anything else is a
// truncated datagram whose bytes must not count.
bool FrameSlot::AcceptShortPacket(uint32_t packetId) {
    if (haveTrailer_ ? packetId != lastPayloadId_ : packetId < highestPayloadId_) {
        return false;
    }
    if (shortPacketId_ != 0 && shortPacketId_ != packetId) {
        if (shortPacketId_ > packetId) {
            return false;
        }
        ForgetShortPacket();
    }
    shortPacketId_ = packetId;
    return true;
}

// Learns the packet size from what this block has shown so far; false when this packet
// cannot be placed yet.
bool FrameSlot::KnowsPacketBytes(uint32_t packetId, size_t size) {
    if (packetBytes_ != 0) {
        return true;
    }
    if (packetId == 1) {
        firstPacketBytes_ = static_cast<uint32_t>(size);
        if (highestPayloadId_ > 1) {  // a later packet exists, so packet 1 was full
            LearnPacketBytes(firstPacketBytes_);
        }
        return true;  // packet 1 starts the block whatever the size
    }
    if (firstPacketBytes_ != 0) {
        LearnPacketBytes(firstPacketBytes_);
        return true;
    }
    if (haveTrailer_ && packetId < lastPayloadId_) {  // not the last, so full
        LearnPacketBytes(static_cast<uint32_t>(size));
        return true;
    }
    highestPayloadId_ = std::max(highestPayloadId_, packetId);
    return false;
}

// An image leader tells the block's size, so its last payload id once P is known; 0 when
// the leader has not come or does not say.
uint32_t FrameSlot::LeadersLastPayloadId() const {
    if (!haveLeader_ || leader_.payloadBytes == 0 || packetBytes_ == 0) {
        return 0;
    }
    const uint64_t packets = (leader_.payloadBytes + packetBytes_ - 1) / packetBytes_;
    return static_cast<uint32_t>(std::min<uint64_t>(packets, kMaxPacketIds));
}

// Ids past the leader's size belong to no packet of this block.
bool FrameSlot::PastTheLeadersEnd(uint32_t packetId) const {
    const uint32_t last = LeadersLastPayloadId();
    return last != 0 && packetId > last;
}

PlaceResult FrameSlot::PlacePayload(uint32_t packetId, const uint8_t* data, size_t size) {
    if (packetId == 0 || size == 0 || (haveTrailer_ && packetId > lastPayloadId_) ||
        PastTheLeadersEnd(packetId)) {
        return PlaceResult::Rejected;
    }
    if (!KnowsPacketBytes(packetId, size)) {
        return PlaceResult::Unplaceable;
    }
    if (packetBytes_ != 0 && size > packetBytes_) {
        ++oversizedPackets_;
        return PlaceResult::Rejected;
    }
    if (received_.Test(packetId)) {
        return PlaceResult::Duplicate;
    }
    // With the size unknown only packet 1 gets here, and it always starts the block.
    const uint64_t offset = packetBytes_ != 0 ? uint64_t{packetId - 1} * packetBytes_ : 0;
    if (offset >= buffer_.size || packetId >= received_.Size()) {
        // Only a packet the trailer confirms proves the block too big: a stray id does not.
        outOfBufferId_ = std::max(outOfBufferId_, packetId);
        return PlaceResult::OutOfBuffer;
    }
    const bool isShort = packetBytes_ != 0 && size < packetBytes_;
    if (isShort && !AcceptShortPacket(packetId)) {
        ++undersizedPackets_;
        return PlaceResult::Rejected;
    }
    CopyIn(packetId, static_cast<size_t>(offset), data, size);
    return PlaceResult::Placed;
}

void FrameSlot::CopyIn(uint32_t packetId, size_t offset, const uint8_t* data, size_t size) {
    const size_t copied = std::min(size, buffer_.size - offset);
    if (copied < size) {
        outOfBufferId_ = std::max(outOfBufferId_, packetId);  // a stray id proves nothing yet
    }
    received_.Set(packetId);
    if (data != buffer_.data + offset) {  // the kernel may have put it in place already
        StreamingCopy(buffer_.data + offset, data, copied);
    }
    bytesFilled_ += copied;
    ++payloadReceived_;
    resentPackets_ += requested_.Test(packetId) ? 1 : 0;
    if (packetId == shortPacketId_) {
        shortPacketBytes_ = static_cast<uint32_t>(copied);
    } else if (shortPacketId_ != 0 && packetId > shortPacketId_) {
        ForgetShortPacket();
    }
    highestPayloadId_ = std::max(highestPayloadId_, packetId);
}

bool FrameSlot::Overflowed() const {
    return tooSmall_ ||
           (outOfBufferId_ != 0 && (!haveTrailer_ || outOfBufferId_ <= lastPayloadId_));
}

bool FrameSlot::IsComplete() const {
    return haveLeader_ && haveTrailer_ && !Overflowed() && payloadReceived_ == lastPayloadId_;
}

// Each payload packet carries at least one byte, and P bytes once P is known.
uint32_t FrameSlot::LastPayloadIdThatFits() const {
    if (packetBytes_ != 0) {
        return received_.Size() - 2;
    }
    return static_cast<uint32_t>(std::min<uint64_t>(buffer_.size, kMaxPacketIds - 2));
}

uint32_t FrameSlot::ExpectedLastPayloadId() const {
    uint64_t last = highestPayloadId_;
    if (haveTrailer_) {
        last = lastPayloadId_;
    } else if (haveLeader_ && leader_.payloadBytes != 0 && packetBytes_ != 0) {
        const uint64_t fitting = std::min<uint64_t>(leader_.payloadBytes, buffer_.size);
        last = std::max<uint64_t>((fitting + packetBytes_ - 1) / packetBytes_, highestPayloadId_);
    }
    return static_cast<uint32_t>(std::min<uint64_t>(last, LastPayloadIdThatFits()));
}

size_t FrameSlot::PlanPlacements(PlacementHint* out, size_t max) const {
    if (packetBytes_ == 0 || buffer_.size == 0) {
        return 0;
    }
    const uint32_t last = haveTrailer_ || (haveLeader_ && leader_.payloadBytes != 0)
                              ? ExpectedLastPayloadId()
                              : received_.Size() - 2;
    size_t planned = 0;
    for (uint32_t id = std::max(nextExpectedId, 1u); planned < max && id <= last; ++id) {
        if (received_.Test(id)) {
            continue;
        }
        const uint64_t offset = uint64_t{id - 1} * packetBytes_;
        if (offset >= buffer_.size) {
            break;
        }
        const size_t room = buffer_.size - static_cast<size_t>(offset);
        out[planned++] = PlacementHint{blockId_, id, extendedIds_, buffer_.data + offset,
                                       std::min<size_t>(packetBytes_, room)};
    }
    return planned;
}

uint32_t FrameSlot::MissingCount() const {
    return received_.CountClear(0, ExpectedLastPayloadId() + 1);
}

FrameStatus FrameSlot::FinalStatus() const {
    if (Overflowed()) {
        return FrameStatus::TooSmall;
    }
    return IsComplete() ? FrameStatus::Complete : FrameStatus::Incomplete;
}

ReceivedFrame FrameSlot::Describe(FrameStatus status) const {
    ReceivedFrame frame;
    frame.buffer = buffer_;
    frame.status = status;
    frame.blockId = blockId_;
    const ry::gev::ImageLeader& image = leader_.image;
    frame.timestamp = image.timestamp;
    frame.payloadType = image.payload_type;
    frame.pixelFormat = image.pixel_format;
    frame.width = image.size_x;
    const bool fewerLines = linesSent_ != 0 && linesSent_ < image.size_y;
    frame.height = fewerLines ? linesSent_ : image.size_y;
    frame.offsetX = image.offset_x;
    frame.offsetY = image.offset_y;
    frame.paddingX = image.padding_x;
    frame.paddingY = image.padding_y;
    frame.bytesFilled = bytesFilled_;
    frame.missingPackets = status == FrameStatus::Complete ? 0 : MissingCount();
    frame.resentPackets = resentPackets_;
    return frame;
}

}  // namespace ry::gev::stream::detail
