// Turns the datagrams of one stream into frames: opens a block when its first packet shows
// up, places packets, asks for the missing ones and hands every block back exactly once.
// Runs on the receiving thread only; nothing here allocates per packet or per frame.
#pragma once

#include <array>
#include <functional>

#include "block_sequence.h"
#include "frame_slot.h"
#include "gvsp_view.h"
#include "shared_counters.h"

namespace ry::gev::stream::detail {

class FrameAssembler {
  public:
    // Frames that may be in progress at once: one receiving, the others waiting for resends.
    // At hundreds of frames a second a resend round spans several frames.
    static constexpr size_t kFramesInFlight = 8;
    // Resend requests per round; past this the rest of the block is asked as one range.
    static constexpr uint32_t kMaxRangesPerRound = 32;

    FrameAssembler(const ReceiverCallbacks& callbacks, SharedCounters& shared);

    void Configure(const ReceiverSettings& settings);
    void Reset();

    // `dataInPlace`, when set, is where the packet's data already sit (see ReceiveBatch);
    // `bytes` then holds the header.
    void OnDatagram(const uint8_t* bytes, size_t size, TimePoint now,
                    const uint8_t* dataInPlace = nullptr);
    // Hints for the next batch: the packets the block being received still lacks.
    size_t PlanPlacements(PlacementHint* out, size_t max) const;
    bool HasOpenFrame() const;
    // The last payload id of the latest complete frame: the next is likely to end there too.
    uint32_t UsualLastPayloadId() const { return usualLastPayloadId_; }
    // A datagram longer than the receive slot: its tail is lost, so none of it is used.
    void OnTruncatedDatagram() { ++pending_.packetsRejected; }
    void OnForeignDatagram() { ++pending_.packetsIgnored; }

    // Resend rounds and time-outs; called after every batch and on every poll time-out.
    void Service(TimePoint now);
    // Milliseconds until Service has something to do, capped at `idleMs`.
    int MillisecondsToNextDeadline(TimePoint now, int idleMs) const;

    // Gives back every frame in progress: delivered as they are, or returned without a frame.
    void CloseAll(bool discard, const std::function<void(const LentBuffer&)>& returnBuffer);

    // Moves the counts gathered since the last call to the shared counters.
    void Publish();

  private:
    FrameSlot* FindSlot(uint64_t blockId);
    FrameSlot* SlotForNewBlock(const GvspPacket& packet, TimePoint now);
    FrameSlot* OpenBlock(const GvspPacket& packet, TimePoint now);
    void CountDropped(BlockSequence::Verdict verdict);
    void Accept(FrameSlot& slot, const GvspPacket& packet, TimePoint now);
    FrameSlot& FreeSlot();
    uint32_t StreamPacketBytes(bool extendedId) const;

    void OnLeader(FrameSlot& slot, const GvspPacket& packet);
    void OnTrailer(FrameSlot& slot, const GvspPacket& packet);
    void OnPayload(FrameSlot& slot, const GvspPacket& packet);
    void OnErrorPacket(FrameSlot* slot, const GvspPacket& packet);
    void AfterPacket(FrameSlot& slot, uint32_t packetId, TimePoint now);

    void MarkOlderFramesDue(TimePoint now);
    void ServiceSlot(FrameSlot& slot, TimePoint now);
    TimePoint NextActionAt(const FrameSlot& slot) const;
    void StartResendRound(FrameSlot& slot, TimePoint now);
    uint32_t RequestMissing(FrameSlot& slot, uint32_t first, uint32_t last);
    void AskDevice(const FrameSlot& slot, uint32_t first, uint32_t last);
    void Close(FrameSlot& slot);

    const ReceiverCallbacks& callbacks_;
    SharedCounters& shared_;
    ReceiverCounters pending_;
    ReceiverSettings settings_;
    std::array<FrameSlot, kFramesInFlight> slots_;
    FrameSlot* lastSlot_ = nullptr;  // the block most packets belong to
    BlockSequence sequence_;
    uint32_t learnedPacketBytes_ = 0;
    uint32_t usualLastPayloadId_ = 0;
    bool packetSizeHintRefuted_ = false;
};

}  // namespace ry::gev::stream::detail
