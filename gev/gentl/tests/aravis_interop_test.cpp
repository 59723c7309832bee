// Interoperability with Aravis's fake GigE Vision camera (Debian package aravis-tools),
// started as a child process inside the test's private network namespace. It answers only
// on CCP reads for its heartbeat, drops refused writes without an answer, offers no packet
// resend and starts its block ids near the 16-bit wrap.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "device_description.h"
#include "producer_fixture.h"

extern char** environ;

namespace ry::gentl::testing {
namespace {

constexpr const char* kFakeCamera = "/usr/bin/arv-fake-gv-camera-0.8";

class AravisInteropTest : public LibraryTest {
  protected:
    void SetUp() override {
        if (::access(kFakeCamera, X_OK) != 0)
            GTEST_SKIP() << kFakeCamera << " is not installed (Debian package aravis-tools)";
        LibraryTest::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        char* const args[] = {const_cast<char*>(kFakeCamera), const_cast<char*>("-i"),
                              const_cast<char*>("127.0.0.1"), nullptr};
        ASSERT_EQ(::posix_spawn(&child_, kFakeCamera, nullptr, nullptr, args, environ), 0);
        // The fake camera needs a moment to bind its sockets.
        uint32_t count = 0;
        for (int attempt = 0; attempt < 30 && count == 0; ++attempt) {
            bool8_t changed = 0;
            IFUpdateDeviceList(iface_, &changed, 100);
            IFGetNumDevices(iface_, &count);
        }
        ASSERT_EQ(count, 1u) << "the fake camera did not answer discovery";
    }

    void TearDown() override {
        LibraryTest::TearDown();
        if (child_ > 0) {
            ::kill(child_, SIGTERM);
            ::waitpid(child_, nullptr, 0);
        }
    }

    DEV_HANDLE Open(DEVICE_ACCESS_FLAGS flags) {
        DEV_HANDLE device = nullptr;
        EXPECT_EQ(IFOpenDevice(iface_, "127.0.0.1", flags, &device), GC_ERR_SUCCESS);
        return device;
    }

    std::string Description(DEV_HANDLE device) {
        char url[600] = {};
        size_t size = sizeof url;
        EXPECT_EQ(GCGetPortURL(device, url, &size), GC_ERR_SUCCESS);
        const auto local = ry::gev::tools::ParseLocalUrl(url);
        if (!local)
            return {};
        std::vector<uint8_t> bytes(local->length);
        size = bytes.size();
        EXPECT_EQ(GCReadPort(device, local->address, bytes.data(), &size), GC_ERR_SUCCESS);
        if (auto text = ry::gev::tools::UnzipFirstFile(bytes))
            return *text;
        return std::string(bytes.begin(), bytes.end());
    }

    pid_t child_ = -1;
};

TEST_F(AravisInteropTest, DiscoversOpensReadsAndWrites) {
    char model[128], vendor[128], version[128], ip[32], mac[32];
    size_t sizes[] = {128, 128, 128, 32, 32};
    ASSERT_EQ(TLGetDiscoveryInfo(iface_, 0, model, &sizes[0], vendor, &sizes[1], version, &sizes[2],
                                 ip, &sizes[3], mac, &sizes[4]),
              GC_ERR_SUCCESS);
    EXPECT_STREQ(ip, "127.0.0.1");
    EXPECT_GT(std::strlen(model), 0u);
    DEV_HANDLE device = Open(DEVICE_ACCESS_CONTROL);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(ReadBigEndian(device, 0x0A00) & 0x3, 0x2u);
    ASSERT_EQ(DevSetHeartBeatTimeout(device, 4000), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadBigEndian(device, 0x0938), 4000u);
    const std::string xml = Description(device);
    EXPECT_NE(xml.find("RegisterDescription"), std::string::npos);

    // A second client: its control request is dropped unanswered, which still reads as a
    // refusal because the privilege is held; reading as a monitor works.
    uint32_t timeout = 200;
    size_t size = 4;
    ASSERT_EQ(GCWritePort(system_, RY_TL_PORT_GVCP_TIMEOUT_MS, &timeout, &size), GC_ERR_SUCCESS);
    DEV_HANDLE second = nullptr;
    EXPECT_EQ(IFOpenDevice(iface_, "127.0.0.1", DEVICE_ACCESS_CONTROL, &second),
              GC_ERR_ACCESS_DENIED);
    DEV_HANDLE monitor = Open(DEVICE_ACCESS_READONLY);
    ASSERT_NE(monitor, nullptr);
    EXPECT_EQ(ReadBigEndian(monitor, 0x0938), 4000u);
    EXPECT_EQ(DevClose(monitor), GC_ERR_SUCCESS);
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
}

TEST_F(AravisInteropTest, StreamsCompleteFrames) {
    DEV_HANDLE device = Open(DEVICE_ACCESS_CONTROL);
    ASSERT_NE(device, nullptr);
    const std::string xml = Description(device);
    const auto start = ry::gev::tools::FindFeatureRegister(xml, "AcquisitionStart");
    const auto stop = ry::gev::tools::FindFeatureRegister(xml, "AcquisitionStop");
    // Its payload size is a formula: width x height x bits per pixel / 8.
    const auto width = ry::gev::tools::FindFeatureRegister(xml, "Width");
    const auto height = ry::gev::tools::FindFeatureRegister(xml, "Height");
    const auto format = ry::gev::tools::FindFeatureRegister(xml, "PixelFormat");
    ASSERT_TRUE(start && stop && width && height && format);
    const uint32_t payloadSize = ReadBigEndian(device, width->address) *
                                 ReadBigEndian(device, height->address) *
                                 ((ReadBigEndian(device, format->address) >> 16) & 0xFF) / 8;
    ASSERT_GT(payloadSize, 0u);
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    std::vector<std::vector<uint8_t>> memory(4, std::vector<uint8_t>(payloadSize));
    ASSERT_NO_FATAL_FAILURE(LibraryTest::AnnounceAndQueue(stream, memory));
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(GCRegisterEvent(stream, EVENT_NEW_BUFFER, &event), GC_ERR_SUCCESS);
    ASSERT_EQ(DSStartAcquisition(stream, 0, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteBigEndian(device, start->address, static_cast<uint32_t>(start->commandValue)),
              GC_ERR_SUCCESS);
    for (int frame = 0; frame < 8; ++frame) {
        RY_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        ASSERT_EQ(EventGetData(event, &data, &size, 3000), GC_ERR_SUCCESS) << frame;
        uint64_t status = 99, filled = 0;
        INFO_DATATYPE type = 0;
        size = 8;
        ASSERT_EQ(DSGetBufferInfo(stream, data.buffer, BUFFER_INFO_STATUS, &type, &status, &size),
                  GC_ERR_SUCCESS);
        ASSERT_EQ(
            DSGetBufferInfo(stream, data.buffer, BUFFER_INFO_SIZE_FILLED, &type, &filled, &size),
            GC_ERR_SUCCESS);
        EXPECT_EQ(status, uint64_t{RY_BUFFER_STATUS_COMPLETE}) << frame;
        EXPECT_EQ(filled, payloadSize);
        ASSERT_EQ(DSQueueBuffer(stream, data.buffer), GC_ERR_SUCCESS);
    }
    EXPECT_EQ(WriteBigEndian(device, stop->address, static_cast<uint32_t>(stop->commandValue)),
              GC_ERR_SUCCESS);
    EXPECT_EQ(DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(DSClose(stream), GC_ERR_SUCCESS);
}

}  // namespace
}  // namespace ry::gentl::testing
