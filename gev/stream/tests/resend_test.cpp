// Missing packets: resend requests through the callback (served by the test device from its
// copy of the block), bounded retries, refusals, the frequent mode and the frame time-out.
#include <gtest/gtest.h>

#include <mutex>
#include <random>
#include <set>
#include <thread>

#include "gvsp_test_sender.h"

namespace ry::gev::stream::testing {
namespace {

class Resend : public OnBothPaths {};
RY_ON_BOTH_PATHS(Resend);

ReceiverSettings FastResend(uint32_t maxRequests = 3) {
    ReceiverSettings settings;
    settings.resendTimeoutMs = 20;
    settings.maxResendRequests = maxRequests;
    settings.imageTimeoutMs = 2000;
    return settings;
}

void SendExcept(const UdpSender& device, const Block& block, const std::set<uint32_t>& dropped) {
    for (uint32_t id = 0; id <= block.TrailerId(); ++id) {
        if (dropped.count(id) == 0) {
            device.Send(block.packets[id]);
        }
    }
}

TEST_P(Resend, LostPacketsAreRecoveredByteExact) {
    Harness h(FastResend());
    std::vector<Block> blocks;
    for (uint64_t id = 1; id <= 4; ++id) {
        blocks.push_back(BuildBlock({.blockId = id, .seed = static_cast<uint8_t>(id * 3)}));
    }
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    // Lost: payload runs, the leader of one block and the trailer of the last.
    SendExcept(*h.device, blocks[0], {3, 7, 8});
    SendExcept(*h.device, blocks[1], {0});
    SendExcept(*h.device, blocks[2], {1, 2});
    SendExcept(*h.device, blocks[3], {blocks[3].TrailerId(), blocks[3].TrailerId() - 1});
    ASSERT_TRUE(h.collector.WaitForFrames(4, kWaitMs));
    uint32_t resent = 0;
    for (const ReceivedFrame& frame : h.collector.Frames()) {
        const Block& block = blocks[frame.blockId - 1];
        EXPECT_EQ(frame.status, FrameStatus::Complete) << frame.blockId;
        EXPECT_EQ(h.collector.Bytes(frame), block.payload) << frame.blockId;
        EXPECT_EQ(frame.width, 64u);
        resent += frame.resentPackets;
    }
    EXPECT_EQ(resent, 8u);
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.packetsResent, 8u);
    EXPECT_GE(counters.resendRequests, 4u);
    EXPECT_EQ(counters.framesIncomplete, 0u);
}

TEST_P(Resend, OnePercentRandomLossIsFullyRecovered) {
    constexpr size_t kFrames = 40;
    ReceiverSettings settings = FastResend(6);
    Harness h(settings, kFrames, 200 * 150);
    std::vector<Block> blocks;
    for (uint64_t id = 1; id <= kFrames; ++id) {
        blocks.push_back(BuildBlock(
            {.blockId = id, .width = 200, .height = 150, .seed = static_cast<uint8_t>(id)}));
    }
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    std::mt19937 random(2024);
    uint32_t dropped = 0;
    for (size_t i = 0; i < kFrames; ++i) {
        for (const auto& packet : blocks[i].packets) {
            if (random() % 100 == 0) {
                ++dropped;
            } else {
                h.device->Send(packet);
            }
        }
        ASSERT_TRUE(h.collector.WaitForFrames(i + 1, kWaitMs)) << "frame " << i + 1;
    }
    ASSERT_GT(dropped, 10u);
    for (const ReceivedFrame& frame : h.collector.Frames()) {
        EXPECT_EQ(frame.status, FrameStatus::Complete) << frame.blockId;
        EXPECT_EQ(h.collector.Bytes(frame), blocks[frame.blockId - 1].payload) << frame.blockId;
    }
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.framesIncomplete, 0u);
    EXPECT_EQ(counters.packetsResent, dropped);
    EXPECT_EQ(counters.packetsMissing, 0u);
}

TEST_P(Resend, RequestsCoverExactlyTheMissingRuns) {
    Harness h(FastResend());
    const Block block = BuildBlock({.blockId = 7});
    std::vector<Block> blocks{block};
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    SendExcept(*h.device, block, {2, 3, 4, 9});
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const auto requests = h.collector.Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].blockId, 7u);
    EXPECT_EQ(requests[0].first, 2u);
    EXPECT_EQ(requests[0].last, 4u);
    EXPECT_EQ(requests[1].first, 9u);
    EXPECT_EQ(requests[1].last, 9u);
}

TEST_P(Resend, DisabledResendClosesTheFrameIncompleteWithoutAsking) {
    ReceiverSettings settings;
    settings.resendEnabled = false;
    Harness h(settings);
    const Block block = BuildBlock({.blockId = 1});
    SendExcept(*h.device, block, {2, 5});
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::Incomplete);
    EXPECT_EQ(frame.missingPackets, 2u);
    EXPECT_EQ(frame.bytesFilled, block.payload.size() - 2 * 200);
    EXPECT_TRUE(h.collector.Requests().empty());
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.framesIncomplete, 1u);
    EXPECT_EQ(counters.packetsMissing, 2u);
}

TEST_P(Resend, UnansweredRequestsAreRepeatedUpToTheLimitThenTheFrameIsIncomplete) {
    Harness h(FastResend(3));
    const Block block = BuildBlock({.blockId = 1});
    SendExcept(*h.device, block, {4});
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Incomplete);
    EXPECT_EQ(h.collector.Frames()[0].missingPackets, 1u);
    const auto requests = h.collector.Requests();
    ASSERT_EQ(requests.size(), 3u);
    for (const auto& request : requests) {
        EXPECT_EQ(request.first, 4u);
        EXPECT_EQ(request.last, 4u);
    }
}

TEST_P(Resend, UnavailablePacketAnswerStopsFurtherRequests) {
    ReceiverSettings settings = FastResend(5);
    settings.resendTimeoutMs = 200;
    Harness h(settings);
    const Block block = BuildBlock({.blockId = 3});
    SendExcept(*h.device, block, {6});
    for (int i = 0; i < 2000 && h.collector.Requests().empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    h.device->Send(BuildErrorPacket(block.spec, 6, 0x800C));
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Incomplete);
    EXPECT_EQ(h.collector.Requests().size(), 1u);
}

TEST_P(Resend, FrequentModeAsksAtTheFirstGapBeforeTheTrailer) {
    ReceiverSettings settings = FastResend();
    settings.frequentResend = true;
    settings.resendTimeoutMs = 1000;  // only the gap itself may trigger the request
    Harness h(settings);
    std::vector<Block> blocks{BuildBlock({.blockId = 2})};
    const Block& block = blocks[0];
    h.device->SendRange(block, 0, 2);
    h.device->SendRange(block, 5, 6);  // 3 and 4 lost; trailer not sent yet
    for (int i = 0; i < 2000 && h.collector.Requests().empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto requests = h.collector.Requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].first, 3u);
    EXPECT_EQ(requests[0].last, 4u);
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    h.device->SendRange(block, 3, block.TrailerId());
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Complete);
    EXPECT_EQ(h.collector.Bytes(h.collector.Frames()[0]), block.payload);
}

TEST_P(Resend, NormalModeWaitsForTheTrailerOrANewerBlock) {
    ReceiverSettings settings = FastResend();
    settings.resendTimeoutMs = 300;  // the silence rule must not fire during the check
    Harness h(settings);
    const Block block = BuildBlock({.blockId = 2});
    h.device->SendRange(block, 0, 2);
    h.device->SendRange(block, 5, 6);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_TRUE(h.collector.Requests().empty());
    h.device->SendAll(BuildBlock({.blockId = 3}));
    for (int i = 0; i < 2000 && h.collector.Requests().empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto requests = h.collector.Requests();
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests[0].blockId, 2u);
    EXPECT_EQ(requests[0].first, 3u);
    EXPECT_EQ(requests[0].last, 4u);
    // The leader's size tells where the block ends, so its lost tail is asked for as well.
    EXPECT_EQ(requests.back().last, block.TrailerId());
}

TEST_P(Resend, FrameWithoutTrailerClosesAtTheImageTimeout) {
    ReceiverSettings settings;
    settings.resendEnabled = false;
    settings.imageTimeoutMs = 150;
    Harness h(settings);
    const Block block = BuildBlock({.blockId = 1});
    const auto start = std::chrono::steady_clock::now();
    h.device->SendRange(block, 0, block.TrailerId() - 1);
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(140));
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::Incomplete);
    EXPECT_EQ(frame.bytesFilled, block.payload.size());
    EXPECT_EQ(frame.missingPackets, 1u);
}

TEST_P(Resend, SilentBlockHasItsLostTailRequested) {
    Harness h(FastResend());
    std::vector<Block> blocks{BuildBlock({.blockId = 11})};
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    h.device->SendRange(blocks[0], 0, blocks[0].TrailerId() - 3);
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Complete);
    EXPECT_EQ(h.collector.Bytes(h.collector.Frames()[0]), blocks[0].payload);
}

TEST_P(Resend, RequestsTellTheIdModeOfTheirBlock) {
    ReceiverSettings settings = FastResend();
    settings.resendTimeoutMs = 20;
    settings.extendedIds = true;
    FrameCollector collector(4, 64 * 48);
    ReceiverCallbacks callbacks = collector.Callbacks();
    std::mutex mutex;
    std::vector<std::pair<uint64_t, bool>> asked;
    callbacks.requestResendWithIdMode = [&](uint64_t blockId, uint32_t, uint32_t, bool extended) {
        std::lock_guard lock(mutex);
        asked.emplace_back(blockId, extended);
    };
    const ReceiverEndpoint endpoint = LoopbackEndpoint();
    auto receiver = FrameReceiver::Create(endpoint, settings, callbacks, nullptr);
    ASSERT_NE(receiver, nullptr);
    ASSERT_TRUE(receiver->Start());
    UdpSender device(kDeviceIp, receiver->LocalPort());
    SendExcept(device, BuildBlock({.blockId = 7, .extendedIds = true}), {3});  // small id
    ASSERT_TRUE(collector.WaitForFrames(1, kWaitMs));
    settings.extendedIds = false;  // the device was switched back to 16-bit ids
    receiver->SetSettings(settings);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    SendExcept(device, BuildBlock({.blockId = 7}), {3});
    ASSERT_TRUE(collector.WaitForFrames(2, kWaitMs));
    receiver->Stop(false, nullptr);
    std::lock_guard lock(mutex);
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked.front(), std::make_pair(uint64_t{7}, true));
    EXPECT_EQ(asked.back(), std::make_pair(uint64_t{7}, false));
    EXPECT_TRUE(collector.Requests().empty());  // the plain callback is not used as well
}

TEST_P(Resend, ExtendedIdRequestsCarryThe64BitBlockId) {
    ReceiverSettings settings = FastResend();
    settings.extendedIds = true;
    Harness h(settings);
    const uint64_t bigId = 0xABCDEF012345ull;
    std::vector<Block> blocks{BuildBlock({.blockId = bigId, .extendedIds = true})};
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    SendExcept(*h.device, blocks[0], {1, 2});
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Complete);
    ASSERT_FALSE(h.collector.Requests().empty());
    EXPECT_EQ(h.collector.Requests()[0].blockId, bigId);
}

TEST_P(Resend, SettingsChangedWhileRunningTakeEffect) {
    Harness h(FastResend());
    ReceiverSettings off = FastResend();
    off.resendEnabled = false;
    h.receiver->SetSettings(off);
    EXPECT_FALSE(h.receiver->Settings().resendEnabled);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    SendExcept(*h.device, BuildBlock({.blockId = 1}), {3});
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Incomplete);
    EXPECT_TRUE(h.collector.Requests().empty());
}

}  // namespace
}  // namespace ry::gev::stream::testing
