#include "block_sequence.h"

#include <cstring>

namespace ry::gev::stream::detail {

namespace {

constexpr uint64_t kStandardBlockIdSpan = 65535;  // 16-bit ids run 1..65535, 0 is unused
constexpr size_t kLargestDatagram = 65536;

// The id after `blockId`: 16-bit ids wrap from 65535 to 1.
uint64_t Successor(uint64_t blockId, bool extendedIds) {
    return extendedIds ? blockId + 1 : blockId % kStandardBlockIdSpan + 1;
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
    // The header is rebuilt from the fields the engine reads; the data may sit elsewhere.
    uint8_t* out = kept_.data();
    std::memset(out, 0, headerBytes);
    ry::gev::store_be16(out, packet.status);
    if (packet.extendedId) {
        out[4] = static_cast<uint8_t>(kExtendedIdBit | packet.format);
        ry::gev::store_be64(out + 8, packet.blockId);
        ry::gev::store_be32(out + 16, packet.packetId);
    } else {
        ry::gev::store_be16(out + 2, static_cast<uint16_t>(packet.blockId));
        ry::gev::store_be32(out + 4, packet.packetId & 0x00FFFFFFu);
        out[4] = packet.format;
    }
    if (packet.dataSize != 0) {
        std::memcpy(out + headerBytes, packet.data, packet.dataSize);
    }
    keptBytes_ = headerBytes + packet.dataSize;
    keptBlock_ = packet.blockId;
    keptVerdict_ = verdict;
}

void BlockSequence::DropKept() {
    if (keptBytes_ != 0) {
        dropped_ = keptVerdict_;
        keptBytes_ = 0;
    }
}

bool BlockSequence::TakeKept(uint64_t blockId, GvspPacket& out) {
    if (keptBytes_ == 0 || keptBlock_ != blockId) {
        DropKept();
        return false;
    }
    const bool decoded = DecodeGvspHeader(kept_.data(), keptBytes_, out);
    keptBytes_ = 0;
    return decoded;
}

BlockSequence::Verdict BlockSequence::TakeDropped() {
    const Verdict verdict = dropped_;
    dropped_ = Verdict::Open;
    return verdict;
}

}  // namespace ry::gev::stream::detail
