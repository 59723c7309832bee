// Which block ids the stream may open. A device numbers its blocks one after the other, so the
// block after the newest opens at once; anything else (a stray or forged packet far ahead,
// the ids of a device that restarted its count, the next frame after whole frames were lost)
// must first show that it is the stream: packets of one block, or of consecutive blocks, with
// no packet of the current stream in between. A single packet never moves the stream, and a
// stream that moved on is followed within a frame or two.
#pragma once

#include <cstdint>
#include <vector>

#include "gvsp_view.h"

namespace ry::gev::stream::detail {

class BlockSequence {
  public:
    // Packets of blocks up to this many ids behind the newest are late leftovers...
    static constexpr uint64_t kLateBlockWindow = 100;
    // ... unless this many of them arrive in a row: then the device restarted its count.
    static constexpr uint32_t kLateRunToResync = 48;
    // Packets in a row that move the stream to a block id out of sequence.
    static constexpr uint32_t kFarRunToResync = 2;

    enum class Verdict {
        Open,    // the next block, or a run long enough to follow: open it
        Newest,  // the newest block, already given back or dropped for want of a buffer
        Late,    // a block given back earlier: its packets are leftovers
        Far,     // out of sequence: not the stream (yet)
    };

    BlockSequence();

    // Nothing known: the first block must show itself like any block out of sequence.
    void Reset();
    bool Started() const { return started_; }
    uint64_t Newest() const { return newest_; }

    // For a packet whose block is not open. The first packet of a run out of sequence is
    // kept (`kept` tells) so that it can be replayed once the run proves to be the stream;
    // the caller counts it only when TakeDropped hands it back.
    Verdict Judge(const GvspPacket& packet, bool& kept);
    // The stream moved to `blockId`. Call TakeKept next.
    void Opened(uint64_t blockId);
    // A packet of an open block: the stream is alive, so a run out of sequence is broken.
    void OnStreamPacket() { runPackets_ = 0; }

    // The kept packet when it belongs to `blockId` (its data point into this object until
    // the next Judge); false otherwise.
    bool TakeKept(uint64_t blockId, GvspPacket& out);
    // Verdict of the kept packet that was dropped since the last call (Open when none):
    // the caller counts it when it is certain it will not be replayed.
    Verdict TakeDropped();

  private:
    Verdict Place(const GvspPacket& packet) const;
    bool FollowsRun(const GvspPacket& packet) const;
    void Keep(const GvspPacket& packet, Verdict verdict);
    void DropKept();

    bool started_ = false;
    uint64_t newest_ = 0;
    uint64_t runBlock_ = 0;  // newest block id of the run out of sequence
    uint32_t runPackets_ = 0;
    std::vector<uint8_t> kept_;  // the data of the first packet of the run
    GvspPacket keptPacket_;      // its fields, its data pointing into kept_
    bool haveKept_ = false;
    Verdict keptVerdict_ = Verdict::Newest;
    Verdict dropped_ = Verdict::Open;
};

}  // namespace ry::gev::stream::detail
