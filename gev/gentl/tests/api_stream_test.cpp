// The data stream through the C interface: frames from a test camera into announced
// buffers, resend, incomplete frames, queues and events.
#include <cstring>
#include <future>
#include <random>

#include "producer_fixture.h"

namespace ry::gentl::testing {
namespace {

constexpr uint32_t kWidth = 320;
constexpr uint32_t kHeight = 240;
constexpr size_t kFrameBytes = kWidth * kHeight;

std::vector<uint8_t> Pattern(uint32_t seed) {
    std::vector<uint8_t> pixels(kFrameBytes);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i * 31 + seed);
    return pixels;
}

uint64_t BufferInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
    uint64_t value = 0;
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(DSGetBufferInfo(stream, buffer, cmd, &type, &value, &size), GC_ERR_SUCCESS) << cmd;
    return value;
}

uint64_t StreamInfo(DS_HANDLE stream, STREAM_INFO_CMD cmd) {
    uint64_t value = 0;
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(DSGetInfo(stream, cmd, &type, &value, &size), GC_ERR_SUCCESS) << cmd;
    return value;
}

class StreamTest : public ProducerTest {
  protected:
    void OpenStream(size_t buffers, size_t bufferBytes = kFrameBytes, bool queue = true,
                    uint32_t multicastGroup = 0) {
        device_ = Open(AddCamera(2));
        ASSERT_NE(device_, nullptr);
        if (multicastGroup != 0) {
            ASSERT_EQ(DevSetMultiCastMode(device_, 1, multicastGroup), GC_ERR_SUCCESS);
        }
        ASSERT_EQ(DevOpenDataStream(device_, "Stream0", &stream_), GC_ERR_SUCCESS);
        memory_.assign(buffers, std::vector<uint8_t>(bufferBytes));
        for (auto& block : memory_) {
            BUFFER_HANDLE handle = nullptr;
            ASSERT_EQ(DSAnnounceBuffer(stream_, block.data(), block.size(), nullptr, &handle),
                      GC_ERR_SUCCESS);
            handles_.push_back(handle);
            if (queue) {
                ASSERT_EQ(DSQueueBuffer(stream_, handle), GC_ERR_SUCCESS);
            }
        }
        ASSERT_EQ(GCRegisterEvent(stream_, EVENT_NEW_BUFFER, &event_), GC_ERR_SUCCESS);
        ASSERT_EQ(DSStartAcquisition(stream_, 0, 1), GC_ERR_SUCCESS);
        ASSERT_EQ(InitEvent(event_), GC_ERR_SUCCESS);
    }

    // Waits for the next filled buffer.
    BUFFER_HANDLE Next(uint64_t timeoutMs = 3000) {
        RY_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        const GC_ERROR rc = EventGetData(event_, &data, &size, timeoutMs);
        EXPECT_EQ(rc, GC_ERR_SUCCESS);
        return rc == GC_ERR_SUCCESS ? data.buffer : nullptr;
    }

    void SetInterface(uint64_t address, uint32_t value) {
        size_t size = sizeof value;
        ASSERT_EQ(GCWritePort(iface_, address, &value, &size), GC_ERR_SUCCESS);
    }

    DEV_HANDLE device_ = nullptr;
    DS_HANDLE stream_ = nullptr;
    EVENT_HANDLE event_ = nullptr;
    std::vector<std::vector<uint8_t>> memory_;
    std::vector<BUFFER_HANDLE> handles_;
};

TEST_F(StreamTest, FillsAnnouncedBuffersByteExactWithTheirDescription) {
    OpenStream(3);
    EXPECT_EQ(Camera().Register(0x0D18), 0x7F000001u);  // stream destination is the host
    EXPECT_NE(Camera().Register(0x0D00) & 0xFFFF, 0u);
    for (uint32_t frame = 0; frame < 6; ++frame) {
        const auto pixels = Pattern(frame);
        const uint64_t block = Camera().SendFrame(kWidth, kHeight, pixels);
        BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        const auto base = reinterpret_cast<uint8_t*>(BufferInfo(stream_, buffer, BUFFER_INFO_BASE));
        ASSERT_EQ(std::memcmp(base, pixels.data(), pixels.size()), 0) << frame;
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_STATUS), 0u);
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_WIDTH), kWidth);
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_HEIGHT), kHeight);
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_TIMESTAMP), 1000 + block);
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_BLOCK_ID), block);
        uint32_t flag = 0xFF;
        size_t size = sizeof flag;
        INFO_DATATYPE type = 0;
        ASSERT_EQ(DSGetBufferInfo(stream_, buffer, BUFFER_INFO_FRAME_FLAG, &type, &flag, &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(flag, 0u);
        ASSERT_EQ(DSSetForceQueueBuffer(stream_, 1), GC_ERR_SUCCESS);
        ASSERT_EQ(DSQueueBuffer(stream_, buffer), GC_ERR_SUCCESS);
    }
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_DELIVERED), 6u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_ANNOUNCED), 3u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_QUEUED), 3u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_UNDERRUN), 0u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_CORRUPTED), 0u);
}

// The other tests run on the automatic choice: the packet ring when the tests run as root.
TEST_F(StreamTest, TheSocketPathCanBeChosenAndFillsTheBuffersAlike) {
    SetInterface(RY_IF_PORT_RECEIVE_PATH, 1);
    OpenStream(2);
    for (uint32_t frame = 0; frame < 4; ++frame) {
        const auto pixels = Pattern(frame);
        Camera().SendFrame(kWidth, kHeight, pixels);
        BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        const auto base = reinterpret_cast<uint8_t*>(BufferInfo(stream_, buffer, BUFFER_INFO_BASE));
        EXPECT_EQ(std::memcmp(base, pixels.data(), pixels.size()), 0);
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_STATUS), 0u);
        ASSERT_EQ(DSQueueBuffer(stream_, buffer), GC_ERR_SUCCESS);
    }
}

TEST_F(StreamTest, RandomLossIsRecoveredByResend) {
    OpenStream(4);
    std::mt19937 random(5);
    const uint32_t packets = static_cast<uint32_t>(kFrameBytes / 1464 + 1);
    uint64_t skipped = 0;
    for (uint32_t frame = 0; frame < 30; ++frame) {
        std::set<uint32_t> lose;
        for (uint32_t id = 1; id <= packets; ++id)
            if (random() % 100 == 0)
                lose.insert(id);  // about 1% of the payload packets
        if (frame == 3)
            lose.insert(packets / 2);  // at least one loss for sure
        skipped += lose.size();
        const auto pixels = Pattern(frame);
        Camera().SendFrame(kWidth, kHeight, pixels, lose);
        BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_STATUS), 0u) << frame;
        const auto base = reinterpret_cast<uint8_t*>(BufferInfo(stream_, buffer, BUFFER_INFO_BASE));
        ASSERT_EQ(std::memcmp(base, pixels.data(), pixels.size()), 0) << frame;
        ASSERT_EQ(DSQueueBuffer(stream_, buffer), GC_ERR_SUCCESS);
    }
    EXPECT_GE(StreamInfo(stream_, STREAM_INFO_NUM_RESENT_PACKETS), skipped);
    EXPECT_GT(Camera().ResendRequests(), 0u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_CORRUPTED), 0u);
}

TEST_F(StreamTest, WithoutResendALossyFrameIsDeliveredIncomplete) {
    SetInterface(RY_IF_PORT_RESEND_ENABLE, 0);
    SetInterface(RY_IF_PORT_IMAGE_TIMEOUT_MS, 300);
    OpenStream(2);
    Camera().SendFrame(kWidth, kHeight, Pattern(1), {5});
    BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_STATUS),
              uint64_t{RY_BUFFER_STATUS_INCOMPLETE});
    EXPECT_EQ(Camera().ResendRequests(), 0u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_CORRUPTED), 1u);
    EXPECT_GE(StreamInfo(stream_, STREAM_INFO_NUM_MISSING_PACKETS), 1u);
    uint32_t flag = 0;
    size_t size = sizeof flag;
    INFO_DATATYPE type = 0;
    ASSERT_EQ(DSGetBufferInfo(stream_, buffer, BUFFER_INFO_FRAME_FLAG, &type, &flag, &size),
              GC_ERR_SUCCESS);
    EXPECT_EQ(flag & RY_FRAME_FLAG_INCOMPLETE, uint32_t{RY_FRAME_FLAG_INCOMPLETE});
}

TEST_F(StreamTest, FramesWithoutAQueuedBufferAreCountedLost) {
    OpenStream(1, kFrameBytes, false);
    Camera().SendFrame(kWidth, kHeight, Pattern(0));
    RY_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    EXPECT_EQ(EventGetData(event_, &data, &size, 300), GC_ERR_TIMEOUT);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_UNDERRUN), 1u);
    ASSERT_EQ(DSQueueBuffer(stream_, handles_[0]), GC_ERR_SUCCESS);
    Camera().SendFrame(kWidth, kHeight, Pattern(1));
    EXPECT_EQ(Next(), handles_[0]);
}

TEST_F(StreamTest, TooSmallBufferIsFlaggedNotOverrun) {
    OpenStream(1, kFrameBytes / 2 + 1);
    Camera().SendFrame(kWidth, kHeight, Pattern(0));
    BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_STATUS),
              uint64_t{RY_BUFFER_STATUS_TOO_SMALL});
    EXPECT_LE(BufferInfo(stream_, buffer, BUFFER_INFO_SIZE_FILLED), kFrameBytes / 2 + 1);
}

TEST_F(StreamTest, RevokingWhileStreamingIsRefusedCleanly) {
    OpenStream(2);
    void* data = nullptr;
    EXPECT_EQ(DSRevokeBuffer(stream_, handles_[0], &data, nullptr), GC_ERR_RESOURCE_IN_USE);
    Camera().SendFrame(kWidth, kHeight, Pattern(0));
    BUFFER_HANDLE delivered = Next();
    ASSERT_NE(delivered, nullptr);
    // A delivered buffer belongs to the application and may go.
    EXPECT_EQ(DSRevokeBuffer(stream_, delivered, &data, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(data, memory_[delivered == handles_[0] ? 0 : 1].data());
    EXPECT_EQ(DSRevokeBuffer(stream_, delivered, &data, nullptr), GC_ERR_INVALID_HANDLE);
    ASSERT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    BUFFER_HANDLE other = delivered == handles_[0] ? handles_[1] : handles_[0];
    EXPECT_EQ(DSRevokeBuffer(stream_, other, &data, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_ANNOUNCED), 0u);
    EXPECT_EQ(GCUnregisterEvent(event_, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EXPECT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
    EXPECT_EQ(DSClose(stream_), GC_ERR_INVALID_HANDLE);
}

TEST_F(StreamTest, QueueRulesForceAndRecovery) {
    OpenStream(2);
    EXPECT_EQ(DSQueueBuffer(stream_, handles_[0]), GC_ERR_RESOURCE_IN_USE);
    ASSERT_EQ(DSSetForceQueueBuffer(stream_, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(DSQueueBuffer(stream_, handles_[0]), GC_ERR_SUCCESS);
    EXPECT_EQ(DSQueueBuffer(stream_, nullptr), GC_ERR_INVALID_HANDLE);
    ASSERT_EQ(DSSetForceQueueBuffer(stream_, 0), GC_ERR_SUCCESS);
    Camera().SendFrame(kWidth, kHeight, Pattern(0));
    Camera().SendFrame(kWidth, kHeight, Pattern(1));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (StreamInfo(stream_, STREAM_INFO_NUM_DELIVERED) < 2 &&
           std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    // Both buffers wait in the output queue: queueing one without force is refused.
    EXPECT_EQ(DSQueueBuffer(stream_, handles_[0]), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_QUEUED), 0u);
    ASSERT_EQ(DSRecoverQueuedBuffer(stream_), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_QUEUED), 2u);
    RY_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    EXPECT_EQ(EventGetData(event_, &data, &size, 50), GC_ERR_TIMEOUT);
    EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_QUEUED), 0u);
    EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_NUM_QUEUED), 2u);
    EXPECT_EQ(DSFlushQueue(stream_, 77), GC_ERR_INVALID_PARAMETER);
}

TEST_F(StreamTest, EventKillReleasesAPendingWaitAtOnce) {
    OpenStream(1);
    for (int round = 0; round < 20; ++round) {
        auto waiter = std::async(std::launch::async, [&] {
            RY_NEW_BUFFER_DATA data{};
            size_t size = sizeof data;
            return EventGetData(event_, &data, &size, RY_EVENT_WAIT_FOREVER);
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(round % 3));
        ASSERT_EQ(EventKill(event_), GC_ERR_SUCCESS);
        ASSERT_EQ(waiter.wait_for(std::chrono::seconds(1)), std::future_status::ready);
        EXPECT_EQ(waiter.get(), GC_ERR_NO_DATA);
    }
    // Frames still arrive after a kill.
    Camera().SendFrame(kWidth, kHeight, Pattern(2));
    EXPECT_EQ(Next(), handles_[0]);
}

TEST_F(StreamTest, BufferCallsRefuseBadArguments) {
    OpenStream(1);
    BUFFER_HANDLE handle = nullptr;
    uint8_t byte = 0;
    EXPECT_EQ(DSAnnounceBuffer(stream_, nullptr, 10, nullptr, &handle), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DSAnnounceBuffer(stream_, &byte, 0, nullptr, &handle), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DSAnnounceBuffer(stream_, memory_[0].data(), 10, nullptr, &handle),
              GC_ERR_RESOURCE_IN_USE);
    uint64_t value = 0;
    size_t size = 2;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(DSGetInfo(stream_, STREAM_INFO_NUM_DELIVERED, &type, &value, &size),
              GC_ERR_INSUFFICIENT_SIZE);
    size = 8;
    EXPECT_EQ(DSGetInfo(stream_, 4242, &type, &value, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DSGetBufferInfo(stream_, &byte, BUFFER_INFO_BASE, &type, &value, &size),
              GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(DSGetBufferInfo(stream_, handles_[0], 4242, &type, &value, &size),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DSGetBufferInfo(stream_, handles_[0], BUFFER_INFO_BASE, &type, &value, nullptr),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DSStopAcquisition(stream_, 5), GC_ERR_INVALID_PARAMETER);
    DS_HANDLE again = nullptr;
    EXPECT_EQ(DevOpenDataStream(device_, "Stream0", &again), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(DevOpenDataStream(device_, "Stream7", &again), GC_ERR_INVALID_ID);
    EXPECT_EQ(DevOpenDataStream(device_, "bogus", &again), GC_ERR_INVALID_ID);
    // Closing the device closes its stream: the handle is gone afterwards.
    EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
    EXPECT_EQ(DSQueueBuffer(stream_, handles_[0]), GC_ERR_INVALID_HANDLE);
}

// LAG mode: a stream that arrives on another of the host's addresses is taken only when the
// interface accepts every address.
TEST_F(StreamTest, LinkAggregationAcceptsTheStreamOnAnyHostAddress) {
    for (const uint32_t lag : {0u, 1u}) {
        SetInterface(RY_IF_PORT_LAG_MODE, lag);
        SetInterface(RY_IF_PORT_IMAGE_TIMEOUT_MS, 200);
        OpenStream(1);
        Camera().SetRegister(0x0D18, 0x7F000009);  // the device sends to another host address
        Camera().SendFrame(kWidth, kHeight, Pattern(lag));
        RY_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        EXPECT_EQ(EventGetData(event_, &data, &size, 500), lag ? GC_ERR_SUCCESS : GC_ERR_TIMEOUT);
        ASSERT_EQ(DevClose(device_), GC_ERR_SUCCESS);
        cameras_.clear();
        handles_.clear();
    }
}

TEST_F(StreamTest, MulticastModeSendsTheStreamToTheGroupAndJoinsIt) {
    constexpr uint32_t kGroup = 0xEF010203;  // 239.1.2.3
    OpenStream(2, kFrameBytes, true, kGroup);
    EXPECT_EQ(Camera().Register(0x0D18), kGroup);
    const auto pixels = Pattern(9);
    Camera().SendFrame(kWidth, kHeight, pixels);
    BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo(stream_, buffer, BUFFER_INFO_STATUS), 0u);
    EXPECT_EQ(DevSetMultiCastMode(device_, 1, 0x7F000001), GC_ERR_INVALID_PARAMETER);
}

TEST_F(StreamTest, MtuOptimisationLeavesASilentDeviceItsPacketSize) {
    const uint32_t on = 1, probeMs = 40;
    size_t size = 4;
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_MTU_OPTIMIZE, &on, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_MTU_DETECT_TIMEOUT_MS, &probeMs, &size),
              GC_ERR_SUCCESS);
    OpenStream(1);  // the test camera never answers a test packet
    EXPECT_EQ(Camera().Register(0x0D04), 1500u);
    EXPECT_EQ(StreamInfo(stream_, STREAM_INFO_PACKET_SIZE), 1500u);
    Camera().SendFrame(kWidth, kHeight, Pattern(4));
    EXPECT_EQ(Next(), handles_[0]);
}

}  // namespace
}  // namespace ry::gentl::testing
