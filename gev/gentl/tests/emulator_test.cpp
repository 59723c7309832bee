// The producer against the team's camera emulator over loopback in a private namespace:
// discovery of several cameras, streaming under injected loss, a pulled cable and a second
// client.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <set>

#include "producer_fixture.h"
#include "ry/emulator/camera.h"

namespace ry::gentl::testing {
namespace {

constexpr uint64_t kAcquisitionStart = 0x30024;
constexpr uint64_t kAcquisitionStop = 0x30028;
constexpr uint64_t kTestImageSelector = 0x30060;

emulator::CameraConfig Config(const std::string& address, const std::string& serial) {
    emulator::CameraConfig config;
    config.address = address;
    config.serial = serial;
    config.width = 640;
    config.height = 480;
    config.fps = 60;
    return config;
}

class EmulatorTest : public LibraryTest {
  protected:
    void TearDown() override {
        LibraryTest::TearDown();
        cameras_.clear();
    }

    emulator::Camera& Start(emulator::CameraConfig config) {
        cameras_.push_back(std::make_unique<emulator::Camera>(std::move(config)));
        return *cameras_.back();
    }

    DEV_HANDLE Open(const char* address, DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL) {
        bool8_t changed = 0;
        EXPECT_EQ(IFUpdateDeviceList(iface_, &changed, 200), GC_ERR_SUCCESS);
        DEV_HANDLE device = nullptr;
        EXPECT_EQ(IFOpenDevice(iface_, address, flags, &device), GC_ERR_SUCCESS);
        return device;
    }

  public:
    void WriteRegister(DEV_HANDLE device, uint64_t address, uint32_t value) {
        ASSERT_EQ(WriteBigEndian(device, address, value), GC_ERR_SUCCESS);
    }

  protected:
    std::vector<std::unique_ptr<emulator::Camera>> cameras_;
};

TEST_F(EmulatorTest, DiscoversSeveralCameras) {
    for (int i = 2; i <= 4; ++i) {
        std::string address = "127.0.0.";
        address += std::to_string(i);
        Start(Config(address, address));
    }
    bool8_t changed = 0;
    ASSERT_EQ(IFUpdateDeviceList(iface_, &changed, 300), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
    uint32_t count = 0;
    ASSERT_EQ(IFGetNumDevices(iface_, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 3u);
    std::set<std::string> addresses;
    for (uint32_t i = 0; i < count; ++i) {
        char model[128], vendor[128], version[128], ip[32], mac[32];
        size_t sizes[] = {128, 128, 128, 32, 32};
        ASSERT_EQ(TLGetDiscoveryInfo(iface_, i, model, &sizes[0], vendor, &sizes[1], version,
                                     &sizes[2], ip, &sizes[3], mac, &sizes[4]),
                  GC_ERR_SUCCESS);
        EXPECT_STREQ(model, "RyEmulator");
        EXPECT_STREQ(vendor, "RyVision");
        addresses.insert(ip);
    }
    EXPECT_EQ(addresses, (std::set<std::string>{"127.0.0.2", "127.0.0.3", "127.0.0.4"}));
}

// Streams `frames` frames with the static test image; every frame must be complete and equal
// to the pattern, its first 8 bytes carrying the block id.
void StreamAndCheck(EmulatorTest& test, DEV_HANDLE device, int frames, bool expectComplete,
                    uint64_t& incomplete) {
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    ASSERT_EQ(DSSetClearBuffer(stream, 1), GC_ERR_SUCCESS);  // lost bytes read as zero
    std::vector<std::vector<uint8_t>> memory(4, std::vector<uint8_t>(640 * 480));
    ASSERT_NO_FATAL_FAILURE(LibraryTest::AnnounceAndQueue(stream, memory));
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(GCRegisterEvent(stream, EVENT_NEW_BUFFER, &event), GC_ERR_SUCCESS);
    ASSERT_EQ(DSStartAcquisition(stream, 0, 1), GC_ERR_SUCCESS);
    test.WriteRegister(device, kAcquisitionStart, 1);
    std::vector<uint8_t> reference;
    incomplete = 0;
    for (int frame = 0; frame < frames; ++frame) {
        RY_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        ASSERT_EQ(EventGetData(event, &data, &size, 3000), GC_ERR_SUCCESS) << frame;
        uint64_t status = 0, block = 0;
        void* base = nullptr;
        INFO_DATATYPE type = 0;
        size = 8;
        DSGetBufferInfo(stream, data.buffer, BUFFER_INFO_STATUS, &type, &status, &size);
        DSGetBufferInfo(stream, data.buffer, BUFFER_INFO_BLOCK_ID, &type, &block, &size);
        DSGetBufferInfo(stream, data.buffer, BUFFER_INFO_BASE, &type, &base, &size);
        const auto* pixels = static_cast<const uint8_t*>(base);
        if (status != RY_BUFFER_STATUS_COMPLETE)
            ++incomplete;
        if (expectComplete) {
            ASSERT_EQ(status, uint64_t{RY_BUFFER_STATUS_COMPLETE}) << frame;
            uint64_t stamp = 0;
            std::memcpy(&stamp, pixels, sizeof stamp);
            EXPECT_EQ(stamp, block);
            if (reference.empty())
                reference.assign(pixels + 8, pixels + 640 * 480);
            else
                ASSERT_EQ(std::memcmp(pixels + 8, reference.data(), reference.size()), 0) << frame;
        }
        ASSERT_EQ(DSQueueBuffer(stream, data.buffer), GC_ERR_SUCCESS);
    }
    test.WriteRegister(device, kAcquisitionStop, 1);
    EXPECT_EQ(DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    EXPECT_EQ(GCUnregisterEvent(event, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EXPECT_EQ(DSClose(stream), GC_ERR_SUCCESS);
}

TEST_F(EmulatorTest, OnePercentLossIsRecoveredByteExact) {
    auto config = Config("127.0.0.2", "LOSS");
    config.faults.drop_fraction = 0.01;
    emulator::Camera& camera = Start(config);
    DEV_HANDLE device = Open("127.0.0.2");
    ASSERT_NE(device, nullptr);
    WriteRegister(device, kTestImageSelector, 1);  // a still image, the same in every frame
    uint64_t incomplete = 0;
    StreamAndCheck(*this, device, 40, true, incomplete);
    EXPECT_EQ(incomplete, 0u);
    EXPECT_GT(camera.packets_resent(), 0u);
}

TEST_F(EmulatorTest, ResendSwitchedOffLeavesLossyFramesIncomplete) {
    auto config = Config("127.0.0.2", "NORESEND");
    config.faults.drop_fraction = 0.05;
    emulator::Camera& camera = Start(config);
    const uint32_t off = 0, shortTimeout = 300;
    size_t size = 4;
    ASSERT_EQ(GCWritePort(iface_, RY_IF_PORT_RESEND_ENABLE, &off, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(GCWritePort(iface_, RY_IF_PORT_IMAGE_TIMEOUT_MS, &shortTimeout, &size),
              GC_ERR_SUCCESS);
    DEV_HANDLE device = Open("127.0.0.2");
    ASSERT_NE(device, nullptr);
    uint64_t incomplete = 0;
    StreamAndCheck(*this, device, 10, false, incomplete);
    EXPECT_GT(incomplete, 0u);
    EXPECT_EQ(camera.packets_resent(), 0u);
}

TEST_F(EmulatorTest, PulledCableRaisesTheErrorEvent) {
    emulator::Camera& camera = Start(Config("127.0.0.2", "CABLE"));
    DEV_HANDLE device = Open("127.0.0.2");
    ASSERT_NE(device, nullptr);
    ASSERT_EQ(DevSetHeartBeatTimeout(device, 1000), GC_ERR_SUCCESS);
    ASSERT_EQ(DevSetHeartBeatTimeoutCheckCount(device, 2), GC_ERR_SUCCESS);
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GCRegisterEvent(device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
    RY_DEVICE_ERROR_DATA data{1, 0};
    size_t size = sizeof data;
    EXPECT_EQ(EventGetData(error, &data, &size, 1200), GC_ERR_TIMEOUT) << "reported " << data.error;
    auto faults = camera.faults();
    faults.unplugged = true;
    camera.set_faults(faults);
    ASSERT_EQ(EventGetData(error, &data, &size, 1000 * 2), GC_ERR_SUCCESS);
    EXPECT_EQ(data.connected, 0u);
}

TEST_F(EmulatorTest, SecondClientIsRefusedControlAndMayMonitor) {
    Start(Config("127.0.0.2", "SHARED"));
    DEV_HANDLE owner = Open("127.0.0.2");
    ASSERT_NE(owner, nullptr);
    DEV_HANDLE second = nullptr;
    EXPECT_EQ(IFOpenDevice(iface_, "127.0.0.2", DEVICE_ACCESS_EXCLUSIVE, &second),
              GC_ERR_ACCESS_DENIED);
    DEV_HANDLE monitor = nullptr;
    ASSERT_EQ(IFOpenDevice(iface_, "127.0.0.2", DEVICE_ACCESS_READONLY, &monitor), GC_ERR_SUCCESS);
    uint32_t ccp = 0;
    size_t size = 4;
    EXPECT_EQ(GCReadPort(monitor, 0x0A00, &ccp, &size), GC_ERR_SUCCESS);
    EXPECT_NE(ccp, 0u);
    char url[260];
    size = sizeof url;
    EXPECT_EQ(GCGetPortURL(monitor, url, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(std::string(url).rfind("Local:", 0), 0u);
    EXPECT_EQ(DevClose(monitor), GC_ERR_SUCCESS);
    EXPECT_EQ(DevClose(owner), GC_ERR_SUCCESS);
}

TEST_F(EmulatorTest, MtuOptimisationNegotiatesTheLargestWorkingPacket) {
    Start(Config("127.0.0.2", "MTU"));
    const uint32_t on = 1;
    size_t size = 4;
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_MTU_OPTIMIZE, &on, &size), GC_ERR_SUCCESS);
    DEV_HANDLE device = Open("127.0.0.2");
    ASSERT_NE(device, nullptr);
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    uint64_t packetSize = 0;
    INFO_DATATYPE type = 0;
    size = sizeof packetSize;
    ASSERT_EQ(DSGetInfo(stream, STREAM_INFO_PACKET_SIZE, &type, &packetSize, &size),
              GC_ERR_SUCCESS);
    EXPECT_EQ(packetSize, 9000u);  // loopback carries jumbo packets
    EXPECT_EQ(ReadBigEndian(device, 0x0D04) & 0xFFFF, 9000u);
    EXPECT_NE(ReadBigEndian(device, 0x0D00) & 0xFFFF, 0u);  // pointed back at the receiver
}

TEST_F(EmulatorTest, SlowAndMalformedAnswersGiveErrorCodes) {
    emulator::Camera& camera = Start(Config("127.0.0.2", "FAULTY"));
    DEV_HANDLE device = Open("127.0.0.2");
    ASSERT_NE(device, nullptr);
    const uint32_t timeoutMs = 300;
    size_t size = 4;
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_GVCP_TIMEOUT_MS, &timeoutMs, &size), GC_ERR_SUCCESS);
    auto faults = camera.faults();
    faults.ack_delay_ms = 50;  // slower than usual, within the time-out
    camera.set_faults(faults);
    uint32_t value = 0;
    size = 4;
    EXPECT_EQ(GCReadPort(device, 0x0000, &value, &size), GC_ERR_SUCCESS);
    faults.ack_delay_ms = 0;
    faults.malformed_packets = true;  // answers cut short are never taken for data
    camera.set_faults(faults);
    std::vector<uint8_t> block(64);
    size = block.size();
    EXPECT_EQ(GCReadPort(device, 0x0048, block.data(), &size), GC_ERR_TIMEOUT);
    size = 4;
    EXPECT_EQ(GCReadPort(device, 0x0000, &value, &size), GC_ERR_TIMEOUT);
    faults.malformed_packets = false;
    camera.set_faults(faults);
    EXPECT_EQ(ReadBigEndian(device, 0x0000) >> 16, 2u);  // and the channel recovers

    // Without a limit a request waits out a device far slower than any default time-out.
    const uint32_t unlimited = 0;
    size = 4;
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_GVCP_TIMEOUT_MS, &unlimited, &size), GC_ERR_SUCCESS);
    faults.ack_delay_ms = 1200;
    camera.set_faults(faults);
    size = 4;
    EXPECT_EQ(GCReadPort(device, 0x0000, &value, &size), GC_ERR_SUCCESS);
    faults.ack_delay_ms = 0;
    camera.set_faults(faults);
}

TEST_F(EmulatorTest, ARequestWithoutLimitEndsWhenItsDeviceCloses) {
    emulator::Camera& camera = Start(Config("127.0.0.2", "GONE"));
    DEV_HANDLE device = Open("127.0.0.2");
    ASSERT_NE(device, nullptr);
    const uint32_t unlimited = 0;
    size_t size = 4;
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_GVCP_TIMEOUT_MS, &unlimited, &size), GC_ERR_SUCCESS);
    auto faults = camera.faults();
    faults.unplugged = true;
    camera.set_faults(faults);
    GC_ERROR waited = GC_ERR_SUCCESS;
    std::thread reader([&] {
        uint32_t value = 0;
        size_t bytes = 4;
        waited = GCReadPort(device, 0x0000, &value, &bytes);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
    reader.join();
    // Ended by the close, or refused because the handle was closed before it was asked.
    EXPECT_TRUE(waited == GC_ERR_ABORT || waited == GC_ERR_INVALID_HANDLE) << waited;
    // The close's own requests to the silent device are bounded, so the close ends.
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(15));
}

TEST_F(EmulatorTest, ForceIpMovesTheCameraToANewAddress) {
    emulator::Camera& camera = Start(Config("127.0.0.2", "MOVE"));
    bool8_t changed = 0;
    ASSERT_EQ(IFUpdateDeviceList(iface_, &changed, 200), GC_ERR_SUCCESS);
    char mac[32];
    size_t macSize = sizeof mac;
    ASSERT_EQ(TLGetDiscoveryInfo(iface_, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, mac, &macSize),
              GC_ERR_SUCCESS);
    unsigned parts[6] = {};
    ASSERT_EQ(std::sscanf(mac, "%x:%x:%x:%x:%x:%x", &parts[0], &parts[1], &parts[2], &parts[3],
                          &parts[4], &parts[5]),
              6);
    uint8_t bytes[6];
    for (int i = 0; i < 6; ++i)
        bytes[i] = static_cast<uint8_t>(parts[i]);
    uint8_t stranger[6] = {0x02, 0, 0, 0, 0, 0x99};
    EXPECT_EQ(IFSetForceIP(iface_, stranger, 0x7F000008, 0xFF000000, 0, 200), GC_ERR_TIMEOUT);
    EXPECT_EQ(IFSetForceIP(iface_, nullptr, 0x7F000008, 0xFF000000, 0, 200),
              GC_ERR_INVALID_PARAMETER);
    ASSERT_EQ(IFSetForceIP(iface_, bytes, 0x7F000007, 0xFF000000, 0, 1000), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.address(), "127.0.0.7");
    ASSERT_EQ(IFUpdateDeviceList(iface_, &changed, 200), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
    char ip[32];
    size_t ipSize = sizeof ip;
    ASSERT_EQ(TLGetDiscoveryInfo(iface_, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 ip, &ipSize, nullptr, nullptr),
              GC_ERR_SUCCESS);
    EXPECT_STREQ(ip, "127.0.0.7");
}

}  // namespace
}  // namespace ry::gentl::testing
