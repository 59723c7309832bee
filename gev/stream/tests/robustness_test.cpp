// Bad and unexpected input over real UDP: foreign senders, no buffer, buffers too small,
// truncated and malformed datagrams, LAG mode, and stopping with a frame half received.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <stdexcept>
#include <thread>

#include "gvsp_test_sender.h"

namespace ry::gev::stream::testing {
namespace {

class Robustness : public OnBothPaths {};
RY_ON_BOTH_PATHS(Robustness);

std::vector<uint8_t> Truncated(std::vector<uint8_t> packet, size_t drop) {
    packet.erase(packet.end() - static_cast<ptrdiff_t>(std::min(drop, packet.size())),
                 packet.end());
    return packet;
}

TEST_P(Robustness, ForeignSenderIsIgnoredAndTakesNoBuffer) {
    Harness h(NoResend());
    UdpSender stranger(kForeignIp, h.receiver->LocalPort());
    const Block block = BuildBlock({.blockId = 1});
    stranger.SendAll(block);
    h.device->SendAll(BuildBlock({.blockId = 2, .seed = 5}));
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const auto frames = h.collector.Frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].blockId, 2u);
    EXPECT_EQ(frames[0].status, FrameStatus::Complete);
    EXPECT_EQ(h.receiver->Counters().packetsIgnored, block.packets.size());
}

TEST_P(Robustness, BlocksWithoutABufferAreCountedAndTheirPacketsSkipped) {
    Harness h(NoResend(), 1);
    for (uint64_t id = 1; id <= 3; ++id) {
        h.device->SendAll(BuildBlock({.blockId = id}));
    }
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const ReceiverCounters counters = h.receiver->Counters();
    EXPECT_EQ(counters.framesDroppedNoBuffer, 2u);
    EXPECT_EQ(counters.framesDelivered, 1u);
    EXPECT_EQ(counters.packetsReceived, BuildBlock({}).packets.size());

    h.collector.Give(h.collector.Frames()[0].buffer);  // the next block gets it again
    h.device->SendAll(BuildBlock({.blockId = 4}));
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    EXPECT_EQ(h.collector.Frames()[1].status, FrameStatus::Complete);
}

TEST_P(Robustness, PayloadLargerThanTheBufferIsClippedAndFlagged) {
    Harness h(NoResend(), 2, 1500);  // 3072-byte blocks into 1500-byte buffers
    const Block block = BuildBlock({.blockId = 1});
    h.device->SendAll(block);
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::TooSmall);
    EXPECT_EQ(frame.bytesFilled, 1500u);
    const std::vector<uint8_t> head(block.payload.begin(), block.payload.begin() + 1500);
    EXPECT_EQ(h.collector.Bytes(frame), head);
    EXPECT_TRUE(h.collector.GuardsIntact());
    EXPECT_EQ(h.receiver->Counters().framesIncomplete, 1u);
}

TEST_P(Robustness, TruncatedPayloadNeverCountsAsData) {
    Harness h(NoResend());
    const Block block = BuildBlock({.blockId = 1});
    for (uint32_t id = 0; id <= block.TrailerId(); ++id) {
        h.device->Send(id == 4 ? Truncated(block.packets[id], 50) : block.packets[id]);
    }
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[0];
    EXPECT_EQ(frame.status, FrameStatus::Incomplete);
    EXPECT_EQ(frame.bytesFilled, block.payload.size() - 200);
    EXPECT_EQ(frame.missingPackets, 1u);
    EXPECT_GE(h.receiver->Counters().packetsRejected, 1u);
}

TEST_P(Robustness, TruncatedPacketArrivingBeforeLaterOnesIsWithdrawnAndResent) {
    ReceiverSettings settings;
    settings.resendTimeoutMs = 20;
    Harness h(settings);
    std::vector<Block> blocks{BuildBlock({.blockId = 10})};
    h.device->SendAll(BuildBlock({.blockId = 9}));  // teaches the packet size
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    h.collector.ServeResendsFrom(h.device.get(), &blocks);
    const Block& block = blocks[0];
    // The cut packet arrives first and looks like a short last packet until packet 6 shows up.
    h.device->Send(block.packets[0]);
    h.device->Send(Truncated(block.packets[5], 10));
    h.device->SendRange(block, 6, block.TrailerId());
    h.device->SendRange(block, 1, 4);
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[1];
    EXPECT_EQ(frame.status, FrameStatus::Complete);
    EXPECT_EQ(h.collector.Bytes(frame), block.payload);
    EXPECT_GE(frame.resentPackets, 1u);
    bool askedForTheCutPacket = false;
    for (const auto& request : h.collector.Requests()) {
        askedForTheCutPacket |= request.first <= 5 && request.last >= 5;
    }
    EXPECT_TRUE(askedForTheCutPacket);
}

TEST_P(Robustness, MalformedDatagramsAreRejectedWithoutHarm) {
    Harness h(NoResend());
    const Block good = BuildBlock({.blockId = 3, .seed = 8});
    std::vector<std::vector<uint8_t>> junk;
    for (size_t size = 0; size < 8; ++size) {
        junk.push_back(std::vector<uint8_t>(size, 0x01));  // shorter than any header
    }
    std::vector<uint8_t> cutExtended = BuildBlock({.blockId = 3, .extendedIds = true}).packets[1];
    cutExtended.resize(12);  // announces the 20-byte header it does not have
    junk.push_back(cutExtended);
    junk.push_back(BuildBlock({.blockId = 0}).packets[1]);  // block id 0 is never used
    std::vector<uint8_t> unknownFormat = good.packets[9];
    unknownFormat[4] = 0x09;
    junk.push_back(unknownFormat);
    std::vector<uint8_t> leaderWithId = good.packets[0];
    leaderWithId[7] = 5;
    junk.push_back(leaderWithId);
    junk.push_back(Truncated(good.packets[0], 30));     // leader too short to read
    junk.push_back(Truncated(good.packets.back(), 6));  // trailer without its type
    std::vector<uint8_t> oversized = good.packets[10];  // longer than the others
    oversized.resize(oversized.size() + 100, 0xAB);
    junk.push_back(oversized);
    std::vector<uint8_t> pastTheEnd = good.packets[2];
    pastTheEnd[7] = 0xF0;  // packet id 0xF0 lies beyond the buffer
    junk.push_back(pastTheEnd);
    std::mt19937 random(7);
    for (int i = 0; i < 500; ++i) {
        std::vector<uint8_t> noise(8 + random() % 300);
        for (auto& byte : noise) {
            byte = static_cast<uint8_t>(random());
        }
        noise[2] = 0;  // block 1: behind block 2, so the noise cannot open frames
        noise[3] = 1;
        noise[4] &= 0x7F;
        junk.push_back(noise);
    }
    h.device->SendAll(BuildBlock({.blockId = 2}));  // teaches the packet size
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    h.device->SendRange(good, 0, 8);
    for (const auto& datagram : junk) {
        h.device->Send(datagram);
    }
    h.device->SendRange(good, 9, good.TrailerId());
    ASSERT_TRUE(h.collector.WaitForFrames(2, kWaitMs));
    const ReceivedFrame frame = h.collector.Frames()[1];
    EXPECT_EQ(frame.blockId, 3u);
    EXPECT_EQ(frame.status, FrameStatus::Complete);
    EXPECT_EQ(h.collector.Bytes(frame), good.payload);
    EXPECT_TRUE(h.collector.GuardsIntact());
    EXPECT_GE(h.receiver->Counters().packetsRejected, 10u);
}

TEST_P(Robustness, RandomDatagramsNeverWritePastBuffers) {
    ReceiverSettings settings;
    settings.imageTimeoutMs = 50;
    settings.resendTimeoutMs = 5;
    Harness h(settings, 6, 1000);
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        std::vector<uint8_t> noise(8 + random() % 400);
        for (auto& byte : noise) {
            byte = static_cast<uint8_t>(random());
        }
        noise[4] = static_cast<uint8_t>((noise[4] & 0x80) | (1 + random() % 3));
        noise[5] = noise[6] = 0;  // small packet ids, so many land inside the buffers
        noise[0] = static_cast<uint8_t>(noise[0] & 0x01);
        noise[2] = 0;  // few block ids, so runs of them open frames
        noise[3] = static_cast<uint8_t>(1 + random() % 3);
        h.device->Send(noise);
        if (i % 100 == 0) {
            for (const ReceivedFrame& frame : h.collector.Frames()) {
                EXPECT_LE(frame.bytesFilled, frame.buffer.size);
            }
        }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    h.receiver->Stop(false, nullptr);
    EXPECT_TRUE(h.collector.GuardsIntact());
    EXPECT_GT(h.receiver->Counters().packetsReceived, 0u);
}

TEST_P(Robustness, StopHandsBackTheFrameInProgress) {
    for (const bool discard : {false, true}) {
        Harness h(NoResend(), 2);
        const Block block = BuildBlock({.blockId = 1});
        h.device->SendRange(block, 0, 5);
        for (int i = 0; i < 2000 && h.receiver->Counters().packetsReceived < 6; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::vector<LentBuffer> returned;
        h.receiver->Stop(discard, [&](const LentBuffer& buffer) { returned.push_back(buffer); });
        EXPECT_FALSE(h.receiver->Running());
        if (discard) {
            EXPECT_EQ(returned.size(), 1u);
            EXPECT_TRUE(h.collector.Frames().empty());
        } else {
            EXPECT_TRUE(returned.empty());
            ASSERT_EQ(h.collector.Frames().size(), 1u);
            EXPECT_EQ(h.collector.Frames()[0].status, FrameStatus::Incomplete);
            EXPECT_EQ(h.collector.Frames()[0].bytesFilled, 5u * 200);
        }
    }
}

TEST_P(Robustness, StopFromTheDeliverCallbackEndsTheThreadAndStartResumes) {
    FrameCollector collector(4, 64 * 48);
    ReceiverCallbacks callbacks = collector.Callbacks();
    FrameReceiver* self = nullptr;
    callbacks.deliver = [&, forward = callbacks.deliver](const ReceivedFrame& frame) {
        forward(frame);
        self->Stop(false, nullptr);
    };
    const ReceiverEndpoint endpoint = LoopbackEndpoint();
    auto receiver = FrameReceiver::Create(endpoint, NoResend(), callbacks, nullptr);
    ASSERT_NE(receiver, nullptr);
    self = receiver.get();
    ASSERT_TRUE(receiver->Start());
    UdpSender device(kDeviceIp, receiver->LocalPort());
    device.SendAll(BuildBlock({.blockId = 1}));
    ASSERT_TRUE(collector.WaitForFrames(1, kWaitMs));
    for (int i = 0; i < 2000 && receiver->Running(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(receiver->Running());
    ASSERT_TRUE(receiver->Start());
    device.SendAll(BuildBlock({.blockId = 2}));
    ASSERT_TRUE(collector.WaitForFrames(2, kWaitMs));
    EXPECT_EQ(collector.Frames()[1].status, FrameStatus::Complete);
    receiver->Stop(false, nullptr);
}

TEST_P(Robustness, ThrowingCallbackEndsTheThreadNotTheProcess) {
    FrameCollector collector(4, 64 * 48);
    ReceiverCallbacks callbacks = collector.Callbacks();
    std::atomic<bool> throwNext{true};
    callbacks.deliver = [&, forward = callbacks.deliver](const ReceivedFrame& frame) {
        forward(frame);
        if (throwNext.exchange(false)) {
            throw std::runtime_error("lender failure");
        }
    };
    const ReceiverEndpoint endpoint = LoopbackEndpoint();
    auto receiver = FrameReceiver::Create(endpoint, NoResend(), callbacks, nullptr);
    ASSERT_NE(receiver, nullptr);
    ASSERT_TRUE(receiver->Start());
    UdpSender device(kDeviceIp, receiver->LocalPort());
    device.SendAll(BuildBlock({.blockId = 1}));
    for (int i = 0; i < kWaitMs && receiver->Running(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(receiver->Running());
    ASSERT_TRUE(receiver->Start());
    device.SendAll(BuildBlock({.blockId = 2}));
    ASSERT_TRUE(collector.WaitForFrames(2, kWaitMs));
    EXPECT_EQ(collector.Frames()[1].status, FrameStatus::Complete);
    receiver->Stop(false, nullptr);
}

TEST_P(Robustness, RestartAfterStopReceivesAgainOnTheSamePort) {
    Harness h(NoResend());
    const uint16_t port = h.receiver->LocalPort();
    h.receiver->Stop(false, nullptr);
    ASSERT_TRUE(h.receiver->Start());
    EXPECT_TRUE(h.receiver->Running());
    EXPECT_EQ(h.receiver->LocalPort(), port);
    const Block block = BuildBlock({.blockId = 1});
    h.device->SendAll(block);
    ASSERT_TRUE(h.collector.WaitForFrames(1, kWaitMs));
    EXPECT_EQ(h.collector.Bytes(h.collector.Frames()[0]), block.payload);
}

TEST_P(Robustness, LagModeAcceptsTheStreamOnAnyLocalAddress) {
    for (const bool lag : {false, true}) {
        ReceiverSettings settings = NoResend();
        settings.acceptAnyInterface = lag;
        Harness h(settings);
        // The device reaches the host through another of its addresses.
        UdpSender otherPath(kDeviceIp, h.receiver->LocalPort(), 0x7F000005);
        otherPath.SendAll(BuildBlock({.blockId = 1}));
        EXPECT_EQ(h.collector.WaitForFrames(1, lag ? kWaitMs : 100), lag) << "lag " << lag;
    }
}

TEST_P(Robustness, CreateReportsABindFailure) {
    Harness h(NoResend());
    ReceiverEndpoint taken = LoopbackEndpoint();
    taken.localPort = h.receiver->LocalPort();
    std::string error;
    EXPECT_EQ(FrameReceiver::Create(taken, {}, {}, &error), nullptr);
    EXPECT_NE(error.find("bind"), std::string::npos) << error;
}

TEST_P(Robustness, MissingCallbacksAreTolerated) {
    ReceiverEndpoint endpoint = LoopbackEndpoint();
    endpoint.deviceIp = 0;
    auto receiver = FrameReceiver::Create(endpoint, {}, {}, nullptr);
    ASSERT_NE(receiver, nullptr);
    ASSERT_TRUE(receiver->Start());
    UdpSender device(kDeviceIp, receiver->LocalPort());
    device.SendAll(BuildBlock({.blockId = 1}));
    for (int i = 0; i < 2000 && receiver->Counters().framesDroppedNoBuffer == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(receiver->Counters().framesDroppedNoBuffer, 1u);
    receiver->Stop(false, nullptr);
}

}  // namespace
}  // namespace ry::gev::stream::testing
