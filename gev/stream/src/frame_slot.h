// One block being reassembled into a lent buffer. It decides where each payload packet goes,
// which packets are still missing and whether the block is whole; the assembler decides when
// to ask for resends and when to give the buffer back.
#pragma once

#include <chrono>
#include <cstdint>

#include "leader_info.h"
#include "packet_bitmap.h"
#include "receive_batch.h"
#include "ry/gev/stream/frame_receiver.h"

namespace ry::gev::stream::detail {

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;

// The moment `ms` after `from`; a setting of 0 has no limit, so its moment never comes.
inline TimePoint After(TimePoint from, uint32_t ms) {
    return ms == 0 ? TimePoint::max() : from + std::chrono::milliseconds(ms);
}

enum class PlaceResult {
    Placed,
    Duplicate,
    Rejected,     // short, oversized or beyond the trailer: never counted as data
    Unplaceable,  // the packet size of the stream is not known yet; a resend will bring it
    OutOfBuffer,  // the block is larger than the lent buffer
};

class FrameSlot {
  public:
    // `packetBytes` is the payload size per full packet when the stream already told us, else 0.
    void Open(uint64_t blockId, bool extendedIds, const LentBuffer& buffer, uint32_t packetBytes,
              TimePoint now);
    void Release() { active_ = false; }
    bool Active() const { return active_; }
    uint64_t BlockId() const { return blockId_; }
    bool ExtendedIds() const { return extendedIds_; }
    const LentBuffer& Buffer() const { return buffer_; }
    uint32_t PacketBytes() const { return packetBytes_; }
    // Packets longer than P, or several shorter ones, mean P is not the device's packet size.
    bool PacketSizeRefuted() const {
        return oversizedPackets_ != 0 || undersizedPackets_ + withdrawnPackets_ > 1;
    }
    bool HasTrailer() const { return haveTrailer_; }
    // Packets first taken as the short last one and dropped when later packets showed up.
    uint32_t WithdrawnPackets() const { return withdrawnPackets_; }
    // Packets placed before the trailer showed they lay past the block's end, then dropped.
    uint32_t StrayPackets() const { return strayPackets_; }

    // Each returns true when the packet was new for this block.
    bool OnLeader(const LeaderFields& leader);
    // `linesSent` is the image trailer's line count, 0 when the trailer has none.
    bool OnTrailer(uint32_t packetId, uint32_t linesSent);
    PlaceResult PlacePayload(uint32_t packetId, const uint8_t* data, size_t size);

    bool IsComplete() const;
    // The best guess of the last payload packet id: the trailer's, else the leader's size,
    // else the highest id seen; never past what the buffer can hold, so a forged id cannot
    // inflate the missing count or the resend requests.
    uint32_t ExpectedLastPayloadId() const;
    // The last payload id the trailer or an image leader told; 0 when neither has.
    uint32_t DeclaredLastPayloadId() const {
        return haveTrailer_ ? lastPayloadId_ : LeadersLastPayloadId();
    }
    // Packets of [0, expected last + 1] not yet received (leader and trailer included).
    uint32_t MissingCount() const;
    // Calls visit(first, last) for every missing run in [0, expected last + 1].
    template <typename Visit>
    void ForEachMissingRun(Visit&& visit) const {
        received_.ForEachClearRun(0, ExpectedLastPayloadId() + 1, visit);
    }
    template <typename Visit>
    void ForEachMissingRunIn(uint32_t first, uint32_t last, Visit&& visit) const {
        received_.ForEachClearRun(first, last, visit);
    }
    // Marks [first, last] as asked for, so their arrival counts as a resent packet.
    void MarkRequested(uint32_t first, uint32_t last) { requested_.SetRange(first, last); }

    // Fills up to `max` hints for the next packets this block still lacks, in id order;
    // returns how many. None while the packet size is unknown.
    size_t PlanPlacements(PlacementHint* out, size_t max) const;

    ReceivedFrame Describe(FrameStatus status) const;
    FrameStatus FinalStatus() const;

    // Resend and time-out bookkeeping, owned by the assembler.
    TimePoint openedAt{};
    TimePoint lastPacketAt{};
    TimePoint nextResendAt{};
    uint32_t resendRounds = 0;
    bool resendDue = false;       // a trailer or a newer block showed that packets are missing
    bool resendRefused = false;   // the device said a requested packet is gone
    uint32_t nextExpectedId = 0;  // gap detection in frequent-resend mode

  private:
    bool Overflowed() const;
    uint32_t LastPayloadIdThatFits() const;
    uint32_t LeadersLastPayloadId() const;
    bool PastTheLeadersEnd(uint32_t packetId) const;
    void WithdrawPast(uint32_t last);
    void LearnPacketBytes(uint32_t packetBytes);
    bool KnowsPacketBytes(uint32_t packetId, size_t size);
    void ForgetShortPacket();
    bool AcceptShortPacket(uint32_t packetId);
    void CopyIn(uint32_t packetId, size_t offset, const uint8_t* data, size_t size);

    bool active_ = false;
    uint64_t blockId_ = 0;
    bool extendedIds_ = false;
    LentBuffer buffer_;
    LeaderFields leader_;
    bool haveLeader_ = false;
    bool haveTrailer_ = false;
    bool tooSmall_ = false;
    uint32_t packetBytes_ = 0;
    uint32_t firstPacketBytes_ = 0;  // size of packet 1 while the packet size is unknown
    uint32_t lastPayloadId_ = 0;     // from the trailer
    uint32_t linesSent_ = 0;         // from an image trailer
    uint32_t highestPayloadId_ = 0;
    uint32_t payloadReceived_ = 0;
    uint32_t shortPacketId_ = 0;  // the one packet allowed to be shorter: it must be the last
    uint32_t shortPacketBytes_ = 0;
    uint32_t oversizedPackets_ = 0;
    uint32_t undersizedPackets_ = 0;  // short packets refused because they were not the last
    uint32_t withdrawnPackets_ = 0;
    uint32_t strayPackets_ = 0;
    uint32_t outOfBufferId_ = 0;  // highest payload id that fell (partly) past the buffer
    uint32_t resentPackets_ = 0;
    size_t bytesFilled_ = 0;
    PacketBitmap received_;
    PacketBitmap requested_;
};

}  // namespace ry::gev::stream::detail
