// Reassembly over real UDP on loopback: byte-exact frames whatever the packet order, with
// standard and extended ids, across block id wrap and with several frames in flight.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "gvsp_test_sender.h"

namespace ry::gev::stream::testing {
namespace {

class Reassembly : public OnBothPaths {};
RY_ON_BOTH_PATHS(Reassembly);

void ExpectExact(FrameCollector& collector, const ReceivedFrame& frame, const Block& block) {
    EXPECT_EQ(frame.status, FrameStatus::Complete) << "block " << block.spec.blockId;
    EXPECT_EQ(frame.blockId, block.spec.blockId);
    EXPECT_EQ(frame.missingPackets, 0u);
    EXPECT_EQ(collector.Bytes(frame), block.payload) << "block " << block.spec.blockId;
}

TEST_P(Reassembly, InOrderFramesAreByteExactWithLeaderFields) {
    Harness h(NoResend());
    std::vector<Block> blocks;
    for (uint64_t id = 1; id <= 3; ++id) {
        blocks.push_back(BuildBlock({.blockId = id, .seed = static_cast<uint8_t>(id)}));
        h.device->SendAll(blocks.back());
    }
    ASSERT_TRUE(h.collector.WaitForFrames(3, kWaitMs));
    const auto frames = h.collector.Frames();
    for (size_t i = 0; i < 3; ++i) {
        ExpectExact(h.collector, frames[i], blocks[i]);
        EXPECT_EQ(frames[i].width, 64u);
        EXPECT_EQ(frames[i].height, 48u);
        EXPECT_EQ(frames[i].pixelFormat, kMono8);
        EXPECT_EQ(frames[i].payloadType, 1u);
        EXPECT_EQ(frames[i].timestamp, 0x0102030405060708ull + i + 1);
    }
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.framesDelivered, 3u);
    EXPECT_EQ(counters.framesIncomplete, 0u);
    EXPECT_EQ(counters.packetsReceived, 3u * blocks[0].packets.size());
    EXPECT_EQ(counters.bytesReceived, 3u * 64 * 48);
}

TEST_P(Reassembly, ShuffledAndDuplicatedPacketsGiveOneExactFrame) {
    Harness h;
    const Block block = BuildBlock({.blockId = 9, .packetDataBytes = 700});
    h.device->SendAll(BuildBlock({.blockId = 8, .packetDataBytes = 700}));  // teaches the size
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));

    std::vector<uint32_t> order;
    for (uint32_t id = 0; id <= block.TrailerId(); ++id) {
        order.push_back(id);
        order.push_back(id);  // every packet twice
    }
    std::shuffle(order.begin(), order.end(), std::mt19937(42));
    for (uint32_t id : order) {
        h.device->Send(block.packets[id]);
    }
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[1];
    ExpectExact(h.collector, frame, block);
    EXPECT_EQ(frame.bytesFilled, block.payload.size());
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.bytesReceived, 2 * block.payload.size());
    EXPECT_GE(counters.packetsDuplicated, 1u);
    EXPECT_EQ(counters.framesIncomplete, 0u);
}

TEST_P(Reassembly, PacketSizeIsLearnedWhenTheFirstPacketsArriveLast) {
    // Reverse order on a fresh stream: the short last packet comes first and must not be
    // taken for the packet size. The one packet that cannot be placed yet comes back by resend.
    Harness h;
    std::vector<Block> blocks{BuildBlock({.blockId = 5, .packetDataBytes = 1000})};
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    for (uint32_t id = blocks[0].TrailerId() + 1; id-- > 0;) {
        h.device->Send(blocks[0].packets[id]);
    }
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    ExpectExact(h.collector, h.collector.Frames()[0], blocks[0]);
}

TEST_P(Reassembly, PacketSizeHintPlacesPacketsBeforeAnyFullPacketIsSeen) {
    ReceiverSettings settings = NoResend();
    settings.packetSize = 1000 + 36;
    Harness h(settings);
    const Block block = BuildBlock({.blockId = 5, .packetDataBytes = 1000});
    for (uint32_t id = block.TrailerId() + 1; id-- > 0;) {
        h.device->Send(block.packets[id]);
    }
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    ExpectExact(h.collector, h.collector.Frames()[0], block);
}

TEST_P(Reassembly, WrongPacketSizeHintIsUnlearnedAfterOneFrame) {
    for (const uint32_t realBytes : {200u, 1400u}) {  // smaller and larger than the hint
        ReceiverSettings settings = NoResend();
        settings.packetSize = 1000 + 36;
        Harness h(settings);
        std::vector<Block> blocks;
        for (uint64_t id = 1; id <= 3; ++id) {
            blocks.push_back(BuildBlock({.blockId = id, .packetDataBytes = realBytes}));
            h.device->SendAll(blocks.back());
            ASSERT_TRUE(h.collector.WaitForFrames(id, kWaitMs)) << realBytes;
        }
        const auto frames = h.collector.Frames();
        EXPECT_NE(frames[0].status, FrameStatus::Complete) << realBytes;
        ExpectExact(h.collector, frames[1], blocks[1]);
        ExpectExact(h.collector, frames[2], blocks[2]);
    }
}

TEST_P(Reassembly, ExtendedIdsCarry64BitBlockIds) {
    ReceiverSettings settings = NoResend();
    settings.extendedIds = true;
    Harness h(settings);
    const uint64_t bigId = 0x123456789ull;
    std::vector<Block> blocks{BuildBlock({.blockId = bigId, .extendedIds = true}),
                              BuildBlock({.blockId = bigId + 1, .extendedIds = true, .seed = 3})};
    h.device->SendAll(blocks[0]);
    h.device->SendAll(blocks[1]);
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    ExpectExact(h.collector, h.collector.Frames()[0], blocks[0]);
    ExpectExact(h.collector, h.collector.Frames()[1], blocks[1]);
}

TEST_P(Reassembly, StandardBlockIdsWrapFrom65535ToOneAndLatePacketsAreIgnored) {
    Harness h(NoResend());
    std::vector<Block> blocks;
    for (uint64_t id : {65534u, 65535u, 1u, 2u}) {
        blocks.push_back(BuildBlock({.blockId = id, .seed = static_cast<uint8_t>(id)}));
        h.device->SendAll(blocks.back());
    }
    ASSERT_TRUE(h.collector.WaitForFrames(4, kWaitMs));
    const ReceiverCounters before = h.receiver->Counters();
    h.device->SendAll(blocks[1]);  // a late copy of 65535 must not open a new frame
    h.device->SendAll(BuildBlock({.blockId = 3}));
    ASSERT_TRUE(h.collector.WaitForFrames(5, kWaitMs));
    const auto frames = h.collector.Frames();
    ASSERT_EQ(frames.size(), 5u);
    for (size_t i = 0; i < 4; ++i) {
        ExpectExact(h.collector, frames[i], blocks[i]);
    }
    EXPECT_EQ(frames[4].blockId, 3u);
    EXPECT_EQ(h.receiver->Counters().packetsIgnored - before.packetsIgnored,
              blocks[1].packets.size());
}

TEST_P(Reassembly, ARestartedBlockCountOpensNewFrames) {
    Harness h(NoResend());
    h.device->SendAll(BuildBlock({.blockId = 5000}));
    const Block restarted = BuildBlock({.blockId = 1, .seed = 9});
    h.device->SendAll(restarted);
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    ExpectExact(h.collector, h.collector.Frames()[1], restarted);
}

TEST_P(Reassembly, InterleavedBlocksAreAllCompleted) {
    Harness h;
    const Block first = BuildBlock({.blockId = 20, .seed = 1});
    const Block second = BuildBlock({.blockId = 21, .seed = 2});
    const uint32_t half = first.TrailerId() / 2;
    h.device->SendRange(first, 0, half);
    h.device->SendAll(second);
    h.device->SendRange(first, half + 1, first.TrailerId());
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    auto frames = h.collector.Frames();
    std::sort(frames.begin(), frames.end(),
              [](const auto& a, const auto& b) { return a.blockId < b.blockId; });
    ExpectExact(h.collector, frames[0], first);
    ExpectExact(h.collector, frames[1], second);
}

TEST_P(Reassembly, VariableHeightFrameEndsAtTheTrailersLineCount) {
    Harness h(NoResend());
    const Block full = BuildBlock({.blockId = 1});
    Block cut = BuildBlock({.blockId = 1, .height = 30});  // 30 of the 48 announced lines
    cut.packets[0] = full.packets[0];
    h.device->SendAll(cut);
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::Complete);
    EXPECT_EQ(frame.height, 30u);
    EXPECT_EQ(h.collector.Bytes(frame), cut.payload);
}

TEST_P(Reassembly, SinglePacketBlocksAndExactMultiplesOfThePacketSize) {
    Harness h(NoResend(), 4, 64 * 48);
    const Block single = BuildBlock({.blockId = 1, .width = 10, .height = 10});
    const Block exact =
        BuildBlock({.blockId = 2, .width = 40, .height = 50, .packetDataBytes = 500});
    h.device->SendAll(single);
    h.device->SendAll(exact);
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    ExpectExact(h.collector, h.collector.Frames()[0], single);
    ExpectExact(h.collector, h.collector.Frames()[1], exact);
}

}  // namespace
}  // namespace ry::gev::stream::testing

namespace ry::gev::stream::testing {
namespace {

// Packets queued while the thread is stopped are read in full batches on restart, so the
// engine aims many of them at their places in the frame at once; disorder inside such a
// batch must still end byte-exact.
class BatchedReceive : public OnBothPaths {
  protected:
    static constexpr uint32_t kWidth = 200;
    static constexpr uint32_t kHeight = 150;  // 30000 bytes: 150 packets of 200 bytes

    BatchedReceive() : h(ReceiverSettings{}, 8, kWidth * kHeight) {}

    Block Make(uint64_t id, uint8_t seed) {
        return BuildBlock({.blockId = id, .width = kWidth, .height = kHeight, .seed = seed});
    }
    void Queue(const std::function<void()>& send) {
        h.receiver->Stop(true, nullptr);
        send();
        ASSERT_TRUE(h.receiver->Start());
    }

    Harness h;
};

RY_ON_BOTH_PATHS(BatchedReceive);

TEST_P(BatchedReceive, InOrderFramesLandInPlace) {
    std::vector<Block> blocks{Make(1, 1), Make(2, 2), Make(3, 3)};
    Queue([&] {
        for (const Block& block : blocks) {
            h.device->SendAll(block);
        }
    });
    ASSERT_TRUE(h.collector.WaitForFrames(3, kWaitMs));
    for (size_t i = 0; i < 3; ++i) {
        ExpectExact(h.collector, h.collector.Frames()[i], blocks[i]);
    }
}

TEST_P(BatchedReceive, GapsSwapsAndStrangersInsideABatchStayExact) {
    std::vector<Block> blocks{Make(1, 1), Make(2, 2), Make(3, 3)};
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    h.device->SendAll(blocks[0]);  // teaches the packet size
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    UdpSender stranger(kForeignIp, h.receiver->LocalPort());
    Queue([&] {
        const Block& b = blocks[1];
        h.device->SendRange(b, 0, 10);
        h.device->SendRange(b, 12, 20);  // 11 lost: every later hint is one off
        h.device->Send(b.packets[40]);   // far ahead
        h.device->Send(b.packets[22]);   // swapped pair
        h.device->Send(b.packets[21]);
        stranger.Send(b.packets[23]);  // a foreign copy where 23 is expected
        h.device->Send(Make(2, 9).packets[23]);
        h.device->Send(b.packets[23]);  // the device's own copy is a duplicate now
        h.device->Send(b.packets[0]);   // a duplicate leader
        h.device->SendRange(b, 24, b.TrailerId());
        h.device->SendAll(blocks[2]);
    });
    ASSERT_TRUE(h.collector.WaitForFrames(3, kWaitMs));
    auto frames = h.collector.Frames();  // block 3 may finish before block 2's resend
    std::sort(frames.begin(), frames.end(),
              [](const auto& a, const auto& b) { return a.blockId < b.blockId; });
    EXPECT_EQ(frames[1].status, FrameStatus::Complete);
    EXPECT_EQ(frames[2].status, FrameStatus::Complete);
    EXPECT_EQ(frames[1].resentPackets, 1u);
    EXPECT_EQ(h.collector.Bytes(frames[2]), blocks[2].payload);
    // Packet 23 came first from the device with other bytes: the first copy wins.
    std::vector<uint8_t> expected = blocks[1].payload;
    const Block other = Make(2, 9);
    std::copy_n(other.payload.begin() + 22 * 200, 200, expected.begin() + 22 * 200);
    EXPECT_EQ(h.collector.Bytes(frames[1]), expected);
    EXPECT_GE(h.receiver->Counters().packetsIgnored, 1u);
}

}  // namespace
}  // namespace ry::gev::stream::testing
