// A real stream beside a forged one: while the emulator streams to the producer, a hostile
// device sprays forged GVSP at the same stream port, from its own address and from the
// camera's address on another port. Every frame must still arrive complete, byte exact and
// in block order.
#include <gtest/gtest.h>

#include <cstring>

#include "hostile_device.h"
#include "producer_fixture.h"
#include "ry/emulator/camera.h"

namespace ry::gentl::testing {
namespace {

constexpr uint64_t kAcquisitionStart = 0x30024;
constexpr uint64_t kAcquisitionStop = 0x30028;
constexpr uint64_t kStreamChannelPort = 0x0D00;
constexpr size_t kFrameBytes = 640 * 480;
constexpr int kFrames = 90;

class ForgedStreamTest : public LibraryTest {
  protected:
    void SetUp() override {
        LibraryTest::SetUp();
        if (IsSkipped())
            return;
        emulator::CameraConfig config;
        config.address = "127.0.0.2";
        config.fps = 60;
        camera_ = std::make_unique<emulator::Camera>(config);
        bool8_t changed = 0;
        ASSERT_EQ(IFUpdateDeviceList(iface_, &changed, 200), GC_ERR_SUCCESS);
        ASSERT_EQ(IFOpenDevice(iface_, "127.0.0.2", DEVICE_ACCESS_CONTROL, &device_),
                  GC_ERR_SUCCESS);
        ASSERT_EQ(DevOpenDataStream(device_, "Stream0", &stream_), GC_ERR_SUCCESS);
        ASSERT_EQ(DSSetClearBuffer(stream_, 1), GC_ERR_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(AnnounceAndQueue(stream_, memory_));
        ASSERT_EQ(GCRegisterEvent(stream_, EVENT_NEW_BUFFER, &event_), GC_ERR_SUCCESS);
        ASSERT_EQ(DSStartAcquisition(stream_, 0, 1), GC_ERR_SUCCESS);
    }
    void TearDown() override {
        if (stream_) {
            WriteBigEndian(device_, kAcquisitionStop, 1);
            DSStopAcquisition(stream_, ACQ_STOP_FLAGS_KILL);
            GCUnregisterEvent(event_, EVENT_NEW_BUFFER);
            DSClose(stream_);
        }
        LibraryTest::TearDown();
        camera_.reset();
    }

    uint64_t Info(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
        uint64_t value = 0;
        size_t size = sizeof value;
        INFO_DATATYPE type = 0;
        DSGetBufferInfo(stream_, buffer, command, &type, &value, &size);
        return value;
    }

    void* Base(BUFFER_HANDLE buffer) {
        void* base = nullptr;
        size_t size = sizeof base;
        INFO_DATATYPE type = 0;
        DSGetBufferInfo(stream_, buffer, BUFFER_INFO_BASE, &type, &base, &size);
        return base;
    }

    // Streams while `forgers` spray forged packets at the stream port; every frame must be
    // complete, byte exact and the next block.
    void StreamBeside(const std::vector<std::string>& forgers) {
        const auto port = static_cast<uint16_t>(ReadBigEndian(device_, kStreamChannelPort));
        ASSERT_NE(port, 0);
        const emulator::hostile::ForgedStream forged(forgers, 0x7F000001, port);
        ASSERT_EQ(WriteBigEndian(device_, kAcquisitionStart, 1), GC_ERR_SUCCESS);
        std::vector<uint8_t> reference;
        uint64_t lastBlock = 0;
        for (int frame = 0; frame < kFrames; ++frame) {
            RY_NEW_BUFFER_DATA data{};
            size_t size = sizeof data;
            ASSERT_EQ(EventGetData(event_, &data, &size, 3000), GC_ERR_SUCCESS) << frame;
            ASSERT_EQ(Info(data.buffer, BUFFER_INFO_STATUS), uint64_t{RY_BUFFER_STATUS_COMPLETE})
                << frame;
            const uint64_t block = Info(data.buffer, BUFFER_INFO_BLOCK_ID);
            EXPECT_TRUE(lastBlock == 0 || block == lastBlock + 1)
                << block << " after " << lastBlock;
            lastBlock = block;
            EXPECT_EQ(Info(data.buffer, BUFFER_INFO_SIZE_FILLED), kFrameBytes);
            const auto* pixels = static_cast<const uint8_t*>(Base(data.buffer));
            ASSERT_NE(pixels, nullptr);
            uint64_t stamp = 0;
            std::memcpy(&stamp, pixels, sizeof stamp);
            EXPECT_EQ(stamp, block);
            if (reference.empty())
                reference.assign(pixels + 8, pixels + kFrameBytes);
            else
                ASSERT_EQ(std::memcmp(pixels + 8, reference.data(), reference.size()), 0) << frame;
            ASSERT_EQ(DSQueueBuffer(stream_, data.buffer), GC_ERR_SUCCESS);
        }
        EXPECT_GT(forged.packets_sent(), 1000u);
    }

    std::unique_ptr<emulator::Camera> camera_;
    DEV_HANDLE device_ = nullptr;
    DS_HANDLE stream_ = nullptr;
    EVENT_HANDLE event_ = nullptr;
    std::vector<std::vector<uint8_t>> memory_{4, std::vector<uint8_t>(kFrameBytes)};
};

TEST_F(ForgedStreamTest, PacketsFromAnotherAddressDoNotDisturbTheRealStream) {
    StreamBeside({"127.0.0.3"});
}

// The camera says which port it streams from (SCSP): packets from another port of its
// address are not its stream.
TEST_F(ForgedStreamTest, PacketsFromAnotherPortOfTheCameraDoNotDisturbTheRealStream) {
    StreamBeside({"127.0.0.2"});
}

}  // namespace
}  // namespace ry::gentl::testing
