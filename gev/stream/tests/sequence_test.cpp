// Odd and hostile block and packet ids over real UDP: strays far ahead, counts that restart
// or jump, ids of the other id mode and packet ids past a block's end. The stream must go on
// (or come back within a few frames), the strays are counted, and no counter jumps by more
// than what was sent.
#include <gtest/gtest.h>

#include <thread>

#include "gvsp_test_sender.h"

namespace ry::gev::stream::testing {
namespace {

class Sequence : public OnBothPaths {};
RY_ON_BOTH_PATHS(Sequence);

// Complete, byte-exact frames for every block id in `ids`, in any order.
void ExpectCompleteFrames(FrameCollector& collector, const std::vector<Block>& blocks) {
    const auto frames = collector.Frames();
    for (const Block& block : blocks) {
        bool found = false;
        for (const ReceivedFrame& frame : frames) {
            if (frame.blockId == block.spec.blockId && frame.status == FrameStatus::Complete) {
                EXPECT_EQ(collector.Bytes(frame), block.payload) << block.spec.blockId;
                found = true;
            }
        }
        EXPECT_TRUE(found) << "block " << block.spec.blockId << " not delivered complete";
    }
}

std::vector<Block> SendBlocks(const UdpSender& device, uint64_t first, uint64_t count,
                              bool extendedIds = false) {
    std::vector<Block> blocks;
    for (uint64_t i = 0; i < count; ++i) {
        const uint64_t id = extendedIds ? first + i : (first + i - 1) % 65535 + 1;
        blocks.push_back(BuildBlock(
            {.blockId = id, .extendedIds = extendedIds, .seed = static_cast<uint8_t>(id)}));
        device.SendAll(blocks.back());
    }
    return blocks;
}

// Lets the engine drain what was sent before the frames are counted.
void Settle() {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
}

TEST_P(Sequence, AStrayPacketFarAheadNeitherOpensAFrameNorStallsTheStream) {
    for (const uint64_t ahead : {2u, 60u, 30000u}) {
        Harness h(NoResend());
        SendBlocks(*h.device, 1, 3);
        std::vector<uint8_t> stray = BuildBlock({.blockId = 3 + ahead}).packets[0];
        h.device->Send(stray);
        const auto after = SendBlocks(*h.device, 4, 4);
        ASSERT_TRUE(h.collector.WaitForFrames(7, kWaitMs)) << ahead;
        Settle();
        ExpectCompleteFrames(h.collector, after);
        EXPECT_EQ(h.collector.Frames().size(), 7u) << ahead;
        EXPECT_EQ(h.receiver->Counters().packetsRejected, 1u) << ahead;
        EXPECT_EQ(h.receiver->Counters().framesIncomplete, 0u) << ahead;
    }
}

TEST_P(Sequence, AForgedExtendedBlockIdNeverReachesTheCounters) {
    ReceiverSettings settings;  // with resend: a forged frame would be asked for and lost
    settings.extendedIds = true;
    settings.resendTimeoutMs = 10;
    Harness h(settings);
    SendBlocks(*h.device, 1, 2, true);
    const Block forged = BuildBlock({.blockId = uint64_t{1} << 62, .extendedIds = true});
    std::vector<Block> after;
    for (uint64_t id = 3; id <= 5; ++id) {  // never two in a row: the stream comes between
        h.device->Send(forged.packets[id]);
        after.push_back(SendBlocks(*h.device, id, 1, true)[0]);
    }
    ASSERT_TRUE(h.collector.WaitForFrames(5, kWaitMs));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ExpectCompleteFrames(h.collector, after);
    for (const ReceivedFrame& frame : h.collector.Frames()) {
        EXPECT_LT(frame.blockId, 100u);
    }
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.framesDelivered, 5u);
    EXPECT_EQ(counters.packetsMissing, 0u);
    EXPECT_EQ(counters.resendRequests, 0u);
    EXPECT_EQ(counters.packetsRejected, 3u);
}

TEST_P(Sequence, ACountRestartedFarBehindIsFollowedAtOnce) {
    Harness h(NoResend());
    SendBlocks(*h.device, 5000, 2);
    const auto restarted = SendBlocks(*h.device, 1, 3);
    ASSERT_TRUE(h.collector.WaitForFrames(5, kWaitMs));
    ExpectCompleteFrames(h.collector, restarted);  // the first packet is replayed
    EXPECT_EQ(h.receiver->Counters().framesIncomplete, 0u);
}

TEST_P(Sequence, ACountRestartedAFewBlocksBackIsFollowedWithinAFewFrames) {
    Harness h(NoResend(), 32);
    SendBlocks(*h.device, 1, 10);
    ASSERT_TRUE(h.collector.WaitForFrames(10, kWaitMs));
    // Block 1 again: it looks like leftovers of blocks already given back, until a whole run
    // of the restarted count shows otherwise.
    const auto restarted = SendBlocks(*h.device, 1, 10);
    ASSERT_TRUE(h.collector.WaitForFrames(15, kWaitMs));
    Settle();
    ExpectCompleteFrames(h.collector, {restarted.begin() + 4, restarted.end()});
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_LE(counters.framesIncomplete, 1u);
    EXPECT_LE(counters.packetsIgnored, 4u * restarted[0].packets.size());
}

TEST_P(Sequence, WholeFramesLostOpenTheNextFrameWithItsLeader) {
    Harness h(NoResend());
    SendBlocks(*h.device, 65530, 3);
    const auto after = SendBlocks(*h.device, 65535 + 5, 3);  // 65533..65535 and 1..4 never sent
    ASSERT_TRUE(h.collector.WaitForFrames(6, kWaitMs));
    ExpectCompleteFrames(h.collector, after);
    EXPECT_EQ(after[0].spec.blockId, 5u);
    EXPECT_EQ(h.receiver->Counters().packetsRejected, 0u);
}

TEST_P(Sequence, ExtendedIdPacketsOnAStandardStreamAreRejected) {
    Harness h(NoResend());
    const Block block = BuildBlock({.blockId = 1});
    const Block other = BuildBlock({.blockId = 2, .extendedIds = true});
    for (uint32_t id = 0; id <= block.TrailerId(); ++id) {
        h.device->Send(block.packets[id]);
        h.device->Send(other.packets[id]);
    }
    const auto after = SendBlocks(*h.device, 2, 2);
    ASSERT_TRUE(h.collector.WaitForFrames(3, kWaitMs));
    Settle();
    ExpectCompleteFrames(h.collector, {block});
    ExpectCompleteFrames(h.collector, after);
    EXPECT_EQ(h.receiver->Counters().packetsRejected, other.packets.size());
    EXPECT_EQ(h.collector.Frames().size(), 3u);
}

TEST_P(Sequence, PacketIdsPastTheBlocksEndAreDroppedAndTheBlockStaysWhole) {
    ReceiverSettings settings = NoResend();
    settings.packetSize = 200 + 36;
    Harness h(settings, 4, 64 * 64);  // room for packets past the 48 lines
    const Block block = BuildBlock({.blockId = 1});
    std::vector<uint8_t> pastTheLeader = block.packets[3];
    pastTheLeader[7] = static_cast<uint8_t>(block.TrailerId() + 2);
    std::vector<uint8_t> pastTheTrailer = block.packets[4];
    pastTheTrailer[7] = static_cast<uint8_t>(block.TrailerId() + 1);
    h.device->Send(pastTheTrailer);    // before the leader: nothing tells it is a stray yet
    h.device->Send(block.packets[1]);  // a second packet in a row opens the block
    h.device->Send(block.packets[0]);
    h.device->Send(pastTheLeader);
    h.device->SendRange(block, 2, block.TrailerId());
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::Complete);
    EXPECT_EQ(frame.bytesFilled, block.payload.size());
    EXPECT_EQ(h.collector.Bytes(frame), block.payload);
    EXPECT_EQ(h.receiver->Counters().packetsRejected, 2u);
}

TEST_P(Sequence, AForgedHugePacketIdCannotInflateTheMissingCount) {
    ReceiverSettings settings = NoResend();
    settings.extendedIds = true;
    settings.imageTimeoutMs = 50;
    Harness h(settings);
    const Block block = BuildBlock({.blockId = 1, .extendedIds = true});
    std::vector<uint8_t> huge = block.packets[2];
    huge[16] = huge[17] = huge[18] = 0xFF;  // packet id 0xFFFFFFxx
    h.device->Send(block.packets[0]);
    h.device->Send(huge);  // the packet size is not known yet: it cannot be placed
    h.device->SendRange(block, 1, 5);
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));  // no trailer: the time-out closes it
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::Incomplete);
    EXPECT_LE(frame.missingPackets, 64u * 48 / 200 + 2);
    EXPECT_LE(h.receiver->Counters().packetsMissing, 64u * 48 / 200 + 2);
}

}  // namespace
}  // namespace ry::gev::stream::testing
