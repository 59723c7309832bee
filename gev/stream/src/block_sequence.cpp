#include "block_sequence.h"

#include <cstring>

namespace ry::gev::stream::detail {

namespace {

constexpr uint64_t kStandardBlockIdSpan = 65535;  // 16-bit ids run 1..65535, 0 is unused
constexpr size_t kLargestDatagram = 65536;

// The id after `blockId`: 16-bit ids wrap from 65535 to 1.
uint64_t Successor(uint64_t blockId, bool extendedIds) {
    return extendedIds ? blockId + 1 : ry::gev::next_block_id16(static_cast<uint16_t>(blockId));
}

}  // namespace

BlockSequence::BlockSequence() : kept_(kLargestDatagram) {}

void BlockSequence::Reset() {
    started_ = false;
    newest_ = 0;
    runPackets_ = 0;
    DropKept();
}

BlockSequence::Verdict BlockSequence::Place(const GvspPacket& packet) const {
    if (!started_) {
        return Verdict::Far;
    }
    const uint64_t id = packet.blockId;
    if (id == newest_) {
        return Verdict::Newest;
    }
    if (id == Successor(newest_, packet.extendedId)) {
        return Verdict::Open;
    }
    uint64_t behind = 0;
    if (packet.extendedId) {
        behind = id < newest_ ? newest_ - id : UINT64_MAX;
    } else {
        behind = (newest_ + kStandardBlockIdSpan - id) % kStandardBlockIdSpan;
    }
    return behind <= kLateBlockWindow ? Verdict::Late : Verdict::Far;
}

bool BlockSequence::FollowsRun(const GvspPacket& packet) const {
    return runPackets_ != 0 && (packet.blockId == runBlock_ ||
                                packet.blockId == Successor(runBlock_, packet.extendedId));
}

BlockSequence::Verdict BlockSequence::Judge(const GvspPacket& packet, bool& kept) {
    kept = false;
    const Verdict verdict = Place(packet);
    if (verdict == Verdict::Open || verdict == Verdict::Newest) {
        runPackets_ = 0;  // the stream itself
        return verdict;
    }
    if (FollowsRun(packet)) {
        ++runPackets_;
    } else {
        runPackets_ = 1;
        Keep(packet, verdict);
        kept = true;
    }
    runBlock_ = packet.blockId;
    const uint32_t needed = verdict == Verdict::Late ? kLateRunToResync : kFarRunToResync;
    return runPackets_ >= needed ? Verdict::Open : verdict;
}

void BlockSequence::Opened(uint64_t blockId) {
    started_ = true;
    newest_ = blockId;
    runPackets_ = 0;
}

void BlockSequence::Keep(const GvspPacket& packet, Verdict verdict) {
    DropKept();
    const size_t headerBytes = packet.extendedId ? kExtendedHeaderBytes : kStandardHeaderBytes;
    if (headerBytes + packet.dataSize > kept_.size()) {
        return;
    }
    // The data may sit in a receive slot that is reused before the run proves itself.
    if (packet.dataSize != 0) {
        std::memmove(kept_.data(), packet.data, packet.dataSize);
    }
    keptPacket_ = packet;
    keptPacket_.data = kept_.data();
    haveKept_ = true;
    keptVerdict_ = verdict;
}

void BlockSequence::DropKept() {
    if (haveKept_) {
        dropped_ = keptVerdict_;
        haveKept_ = false;
    }
}

bool BlockSequence::TakeKept(uint64_t blockId, GvspPacket& out) {
    if (!haveKept_ || keptPacket_.blockId != blockId) {
        DropKept();
        return false;
    }
    out = keptPacket_;
    haveKept_ = false;
    return true;
}

BlockSequence::Verdict BlockSequence::TakeDropped() {
    const Verdict verdict = dropped_;
    dropped_ = Verdict::Open;
    return verdict;
}

}  // namespace ry::gev::stream::detail
