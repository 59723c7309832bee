// Packet trains: a sender using segmentation offload delivers many packets in one datagram,
// which the engine takes whole. Frames stay byte-exact whatever the trains' lengths and
// contents, and a short packet ending a train still flags the frame.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "gvsp_test_sender.h"

namespace ry::gev::stream::testing {
namespace {

constexpr uint32_t kPacketData = 1000;  // 64x48: 3 packets of 1000 and one of 72

using Datagrams = std::vector<std::vector<uint8_t>>;

// Socket path only: a packet socket on loopback sees a train as one oversized datagram, as it
// would see a NIC's GRO aggregate.
class Trains : public ::testing::Test {
  protected:
    Trains() { SetPathUnderTest(ReceivePath::Socket); }
};

// Sends the payload packets of `block` in trains of the given lengths, cycling through them;
// the leader and the trailer go alone, as a device sends them.
void SendInTrains(const UdpSender& device, const Block& block, std::vector<uint32_t> lengths) {
    device.Send(block.packets[0]);
    size_t turn = 0;
    for (uint32_t id = 1; id < block.TrailerId();) {
        Datagrams train;
        for (uint32_t n = 0; n < lengths[turn % lengths.size()] && id < block.TrailerId(); ++n)
            train.push_back(block.packets[id++]);
        ASSERT_TRUE(device.SendTrain(train));
        ++turn;
    }
    device.Send(block.packets[block.TrailerId()]);
}

BlockSpec Spec(uint64_t blockId, uint32_t width = 64, uint32_t height = 48) {
    return {.blockId = blockId,
            .width = width,
            .height = height,
            .packetDataBytes = kPacketData,
            .seed = static_cast<uint8_t>(blockId)};
}

void ExpectExactFrames(Harness& h, const std::vector<Block>& blocks) {
    ASSERT_TRUE(h.collector.WaitForFrames(blocks.size(), kWaitMs));
    const auto frames = h.collector.Frames();
    for (size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(frames[i].status, FrameStatus::Complete) << "block " << i;
        EXPECT_EQ(h.collector.Bytes(frames[i]), blocks[i].payload) << "block " << i;
    }
    EXPECT_TRUE(h.collector.GuardsIntact());
}

TEST_F(Trains, FramesInTrainsOfAnyLengthAreByteExact) {
    // 480x100: 48 packets, enough for several trains per frame and batch.
    const size_t frameBytes = 480 * 100;
    Harness h(NoResend(), 8, frameBytes);
    std::vector<Block> blocks;
    const std::vector<std::vector<uint32_t>> patterns = {{7}, {7}, {3, 5, 2}, {1}, {48}, {6, 1}};
    for (uint64_t id = 1; id <= patterns.size(); ++id) {
        blocks.push_back(BuildBlock(Spec(id, 480, 100)));
        SendInTrains(*h.device, blocks.back(), patterns[id - 1]);
    }
    ExpectExactFrames(h, blocks);
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.packetsReceived, blocks.size() * blocks[0].packets.size());
    EXPECT_EQ(counters.packetsRejected, 0u);
}

TEST_F(Trains, PacketsOutOfOrderOrFromOtherBlocksInsideATrainArePlacedRight) {
    Harness h(NoResend(), 8, 480 * 100);
    const Block first = BuildBlock(Spec(1, 480, 100));
    const Block second = BuildBlock(Spec(2, 480, 100));
    h.device->SendAll(first);  // teaches the packet size
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    h.device->Send(second.packets[0]);
    // Ids reversed, then a train that repeats a packet of the finished block.
    ASSERT_TRUE(h.device->SendTrain({second.packets[3], second.packets[2], second.packets[1]}));
    ASSERT_TRUE(h.device->SendTrain({first.packets[2], second.packets[4], second.packets[5]}));
    SendInTrains(*h.device, second, {7});  // the rest, from a leader already seen

    ExpectExactFrames(h, {first, second});
}

TEST_F(Trains, ShortPacketEndingATrainMidFrameIsNotTakenAsData) {
    ReceiverSettings settings;
    settings.resendTimeoutMs = 20;
    Harness h(settings);
    std::vector<Block> blocks{BuildBlock(Spec(2))};
    h.device->SendAll(BuildBlock(Spec(1)));  // teaches the packet size
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    const Block& block = blocks[0];
    h.device->Send(block.packets[0]);
    std::vector<uint8_t> cut = block.packets[2];
    cut.resize(cut.size() - 100);
    ASSERT_TRUE(h.device->SendTrain({block.packets[1], cut}));
    h.device->SendRange(block, 3, block.TrailerId());
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    // Complete only because the cut packet was asked for again and came back whole.
    const ReceivedFrame frame = h.collector.Frames()[1];
    EXPECT_EQ(frame.status, FrameStatus::Complete);
    EXPECT_EQ(h.collector.Bytes(frame), block.payload);
    EXPECT_GE(frame.resentPackets, 1u);
    EXPECT_TRUE(h.collector.GuardsIntact());
}

TEST_F(Trains, SingleDatagramsAfterTrainsStillArriveWhole) {
    Harness h(NoResend(), 8, 480 * 100);
    std::vector<Block> blocks{BuildBlock(Spec(1, 480, 100)), BuildBlock(Spec(2, 480, 100)),
                              BuildBlock(Spec(3, 480, 100))};
    SendInTrains(*h.device, blocks[0], {7});
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    h.device->SendAll(blocks[1]);  // aimed at trains of 7, one packet per datagram comes
    SendInTrains(*h.device, blocks[2], {4});
    ExpectExactFrames(h, blocks);
}

// The receive slot aimed at a frame's short last packet has little room in its region; the
// longest train a sender may send must still arrive whole there.
TEST_F(Trains, LongestTrainFitsASlotAimedAtAShortLastPacket) {
    ReceiverSettings settings;
    settings.resendTimeoutMs = 2000;  // the first frame waits for its last packet
    Harness h(settings, 8, 640 * 100);
    const Block small = BuildBlock(Spec(1));            // 3 packets of 1000 and one of 72
    const Block large = BuildBlock(Spec(2, 640, 100));  // 64 packets of 1000
    h.device->Send(small.packets[0]);
    ASSERT_TRUE(h.device->SendTrain({small.packets[1], small.packets[2], small.packets[3]}));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));  // now only packet 4 is planned
    ASSERT_TRUE(
        h.device->SendTrain(Datagrams(large.packets.begin() + 1, large.packets.begin() + 65)));
    h.device->Send(large.packets[0]);
    h.device->SendRange(small, 4, small.TrailerId());
    h.device->Send(large.packets[large.TrailerId()]);
    ExpectExactFrames(h, {small, large});
    EXPECT_EQ(h.receiver->Counters().packetsRejected, 0u);
}

TEST_F(Trains, ExtendedIdTrainsAreByteExact) {
    ReceiverSettings settings = NoResend();
    settings.extendedIds = true;
    Harness h(settings, 8, 480 * 100);
    BlockSpec spec = Spec(0x1'0000'0001ull, 480, 100);
    spec.extendedIds = true;
    const Block block = BuildBlock(spec);
    SendInTrains(*h.device, block, {5});
    ExpectExactFrames(h, {block});
}

}  // namespace
}  // namespace ry::gev::stream::testing
