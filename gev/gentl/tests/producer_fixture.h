// Opens the producer through its C interface on the loopback interface of a private network
// namespace, with test cameras listening on 127.0.0.x:3956.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RyGenTL.h"
#include "private_network.h"
#include "test_camera.h"

namespace ry::gentl::testing {

using ry::gev::testing::TestCamera;
using ry::gev::testing::TestCameraOptions;

inline TestCameraOptions CameraAt(uint32_t ip, std::string serial) {
    TestCameraOptions options;
    options.ip = ip;
    options.port = 3956;
    options.answerBroadcast = true;
    options.mac[5] = static_cast<uint8_t>(ip);
    options.serial = std::move(serial);
    return options;
}

// The library opened on loopback, and big-endian register access on a device port.
class LibraryTest : public ::testing::Test {
  public:
    static uint32_t ReadBigEndian(DEV_HANDLE device, uint64_t address) {
        uint8_t bytes[4] = {};
        size_t size = sizeof bytes;
        EXPECT_EQ(GCReadPort(device, address, bytes, &size), GC_ERR_SUCCESS);
        return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (bytes[2] << 8) | bytes[3];
    }
    static GC_ERROR WriteBigEndian(DEV_HANDLE device, uint64_t address, uint32_t value) {
        const uint8_t bytes[4] = {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8),
                                  uint8_t(value)};
        size_t size = sizeof bytes;
        return GCWritePort(device, address, bytes, &size);
    }

    // Announces each block of `memory` on the stream and queues it.
    static void AnnounceAndQueue(DS_HANDLE stream, std::vector<std::vector<uint8_t>>& memory) {
        for (auto& block : memory) {
            BUFFER_HANDLE handle = nullptr;
            ASSERT_EQ(DSAnnounceBuffer(stream, block.data(), block.size(), nullptr, &handle),
                      GC_ERR_SUCCESS);
            ASSERT_EQ(DSQueueBuffer(stream, handle), GC_ERR_SUCCESS);
        }
    }

  protected:
    void SetUp() override {
        if (!ry::gev::testing::EnterPrivateNetwork())
            GTEST_SKIP() << "needs a private network namespace (run as root)";
        ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
        ASSERT_EQ(TLOpen(&system_), GC_ERR_SUCCESS);
        ASSERT_EQ(TLOpenInterface(system_, "lo-127.0.0.1", &iface_), GC_ERR_SUCCESS);
    }
    void TearDown() override {
        if (system_)
            GCCloseLib();
    }

    TL_HANDLE system_ = nullptr;
    IF_HANDLE iface_ = nullptr;
};

class ProducerTest : public LibraryTest {
  protected:
    // Starts a camera at 127.0.0.<last> and returns its device identifier after discovery.
    std::string AddCamera(uint8_t last, TestCameraOptions options = {}) {
        std::string serial = "S";
        serial += std::to_string(last);
        TestCameraOptions full = CameraAt(0x7F000000u | last, serial);
        full.silentlyDropRefusedWrites = options.silentlyDropRefusedWrites;
        full.supportsResend = options.supportsResend;
        full.heartbeatTimeoutMs = options.heartbeatTimeoutMs;
        cameras_.push_back(std::make_unique<TestCamera>(full));
        bool8_t changed = 0;
        EXPECT_EQ(IFUpdateDeviceList(iface_, &changed, 150), GC_ERR_SUCCESS);
        std::string id = "RyTest-TestCam-";
        id += serial;
        return id;
    }

    DEV_HANDLE Open(const std::string& id, DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL) {
        DEV_HANDLE device = nullptr;
        EXPECT_EQ(IFOpenDevice(iface_, id.c_str(), flags, &device), GC_ERR_SUCCESS);
        return device;
    }

    TestCamera& Camera(size_t index = 0) { return *cameras_.at(index); }

    std::vector<std::unique_ptr<TestCamera>> cameras_;
};

}  // namespace ry::gentl::testing
