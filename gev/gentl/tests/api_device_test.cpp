// Discovery, device open with privileges, register access, heartbeat and events through
// the C interface against test cameras on loopback.
#include <atomic>
#include <cstring>
#include <future>

#include "producer_fixture.h"
#include "ry/gev/protocol/bootstrap.h"

namespace ry::gentl::testing {
namespace {

namespace reg = ry::gev::bootstrap;

TEST_F(ProducerTest, DiscoversSeveralCamerasWithTheirTexts) {
    AddCamera(2);
    const std::string id3 = AddCamera(3);
    uint32_t count = 0;
    ASSERT_EQ(IFGetNumDevices(iface_, &count), GC_ERR_SUCCESS);
    ASSERT_EQ(count, 2u);
    std::vector<std::string> ids;
    for (uint32_t i = 0; i < count; ++i) {
        char id[128];
        size_t size = sizeof id;
        ASSERT_EQ(IFGetDeviceID(iface_, i, id, &size), GC_ERR_SUCCESS);
        ids.push_back(id);
        char name[256];
        INFO_DATATYPE type = 0;
        size = sizeof name;
        ASSERT_EQ(IFGetDeviceInfo(iface_, id, DEVICE_INFO_DISPLAYNAME, &type, name, &size),
                  GC_ERR_SUCCESS);
        EXPECT_NE(std::string(name).find("RyTest TestCam"), std::string::npos);
    }
    EXPECT_NE(std::find(ids.begin(), ids.end(), id3), ids.end());
    const size_t index3 = std::find(ids.begin(), ids.end(), id3) - ids.begin();
    char model[128], vendor[128], version[128], ip[32], mac[32];
    size_t sizes[] = {128, 128, 128, 32, 32};
    ASSERT_EQ(TLGetDiscoveryInfo(iface_, static_cast<uint32_t>(index3), model, &sizes[0], vendor,
                                 &sizes[1], version, &sizes[2], ip, &sizes[3], mac, &sizes[4]),
              GC_ERR_SUCCESS);
    EXPECT_STREQ(model, "TestCam");
    EXPECT_STREQ(vendor, "RyTest");
    EXPECT_STREQ(version, "1.0");
    EXPECT_STREQ(ip, "127.0.0.3");
    EXPECT_STREQ(mac, "02:00:00:00:00:03");
    size_t tiny = 3;
    EXPECT_EQ(TLGetDiscoveryInfo(iface_, 0, model, &tiny, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr),
              GC_ERR_INSUFFICIENT_SIZE);
    EXPECT_EQ(TLGetDiscoveryInfo(iface_, 2, model, &sizes[0], vendor, &sizes[1], version, &sizes[2],
                                 ip, &sizes[3], mac, &sizes[4]),
              GC_ERR_INVALID_PARAMETER);
    char id[128];
    size_t size = sizeof id;
    EXPECT_EQ(IFGetDeviceID(iface_, 2, id, &size), GC_ERR_INVALID_PARAMETER);
}

TEST_F(ProducerTest, ReadsAndWritesTheDevicePort) {
    const std::string id = AddCamera(2);
    DEV_HANDLE device = Open(id);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(Camera().Register(reg::kControlChannelPrivilege), 2u);
    uint32_t version = 0;
    size_t size = 4;
    ASSERT_EQ(GCReadPort(device, reg::kVersion, &version, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(version, 0x00000200u);  // big-endian bytes as the device holds them
    std::vector<uint8_t> block(1200);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<uint8_t>(i * 3);
    size = block.size();
    ASSERT_EQ(GCWritePort(device, 0x14000, block.data(), &size), GC_ERR_SUCCESS);
    EXPECT_EQ(Camera().ReadBytes(0x14000, block.size()), block);
    char url[260];
    size = sizeof url;
    ASSERT_EQ(GCGetPortURL(device, url, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(url, "Local:test.xml;10000;40");
    size = 0;
    EXPECT_EQ(GCReadPort(device, 0, &version, &size), GC_ERR_INVALID_PARAMETER);
    size = 4;
    EXPECT_EQ(GCReadPort(device, 0x7FFFFFF0, &version, &size), GC_ERR_INVALID_ADDRESS);
    char streamId[260];
    size = sizeof streamId;
    ASSERT_EQ(DevGetDataStreamID(device, 0, streamId, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(streamId, "Stream0");
    size = sizeof streamId;
    EXPECT_EQ(DevGetDataStreamID(device, 1, streamId, &size), GC_ERR_INVALID_PARAMETER);
    ASSERT_EQ(CloseCCP(device), GC_ERR_SUCCESS);
    EXPECT_EQ(Camera().Register(reg::kControlChannelPrivilege), 0u);
    ASSERT_EQ(DevClose(device), GC_ERR_SUCCESS);
    EXPECT_EQ(DevClose(device), GC_ERR_INVALID_HANDLE);
}

TEST_F(ProducerTest, SecondClientIsRefusedControlButMayMonitor) {
    for (bool silent : {false, true}) {
        TestCameraOptions options;
        options.silentlyDropRefusedWrites = silent;  // some devices never answer the refusal
        const std::string id = AddCamera(silent ? 5 : 4, options);
        DEV_HANDLE owner = Open(id);
        ASSERT_NE(owner, nullptr);
        DEV_HANDLE second = nullptr;
        EXPECT_EQ(IFOpenDevice(iface_, id.c_str(), DEVICE_ACCESS_CONTROL, &second),
                  GC_ERR_ACCESS_DENIED);
        EXPECT_EQ(second, nullptr);
        DEV_HANDLE monitor = Open(id, DEVICE_ACCESS_READONLY);
        ASSERT_NE(monitor, nullptr);
        uint32_t value = 0;
        size_t size = 4;
        EXPECT_EQ(GCReadPort(monitor, reg::kControlChannelPrivilege, &value, &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(GCWritePort(monitor, 0xB000, &value, &size), GC_ERR_ACCESS_DENIED);
        EXPECT_EQ(DevClose(monitor), GC_ERR_SUCCESS);
        EXPECT_EQ(DevClose(owner), GC_ERR_SUCCESS);
    }
}

TEST_F(ProducerTest, OpenRefusesUnknownDevicesAndFlags) {
    AddCamera(2);
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(IFOpenDevice(iface_, "RyTest-TestCam-nobody", DEVICE_ACCESS_CONTROL, &device),
              GC_ERR_INVALID_ID);
    EXPECT_EQ(IFOpenDevice(iface_, "RyTest-TestCam-S2", 9, &device), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(IFOpenDevice(iface_, nullptr, DEVICE_ACCESS_CONTROL, &device),
              GC_ERR_INVALID_PARAMETER);
    // A dotted address names the device as well as its identifier.
    EXPECT_EQ(IFOpenDevice(iface_, "127.0.0.2", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
}

TEST_F(ProducerTest, PulledCableRaisesTheErrorEventWithinTimeoutTimesCount) {
    TestCameraOptions options;
    options.heartbeatTimeoutMs = 600;
    const std::string id = AddCamera(2, options);
    DEV_HANDLE device = Open(id);
    ASSERT_NE(device, nullptr);
    uint32_t timeout = 0;
    ASSERT_EQ(DevGetHeartBeatTimeout(device, &timeout), GC_ERR_SUCCESS);
    EXPECT_EQ(timeout, 600u);
    ASSERT_EQ(DevSetHeartBeatTimeoutCheckCount(device, 2), GC_ERR_SUCCESS);
    int32_t count = 0;
    ASSERT_EQ(DevGetHeartBeatTimeoutCheckCount(device, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(DevSetHeartBeatTimeoutCheckCount(device, 0), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DevSetHeartBeatTimeout(device, 10), GC_ERR_INVALID_PARAMETER);
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GCRegisterEvent(device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
    RY_DEVICE_ERROR_DATA data{1, 0};
    size_t size = sizeof data;
    // Still connected: the wait times out, as the connection monitor expects.
    EXPECT_EQ(EventGetData(error, &data, &size, 700), GC_ERR_TIMEOUT);
    Camera().SetUnplugged(true);
    const auto pulled = std::chrono::steady_clock::now();
    ASSERT_EQ(EventGetData(error, &data, &size, 600 * 2), GC_ERR_SUCCESS);
    EXPECT_LE(std::chrono::steady_clock::now() - pulled, std::chrono::milliseconds(1200));
    EXPECT_EQ(data.connected, 0u);
    EXPECT_EQ(size, sizeof data);
    EXPECT_EQ(GCUnregisterEvent(error, EVENT_ERROR), GC_ERR_SUCCESS);
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
}

struct EventSink {
    std::promise<RY_EVENT_DATA> received;
    std::string name;
};

void OnEvent(char* name, RY_EVENT_DATA* data) {
    auto* sink = static_cast<EventSink*>(data->context);
    sink->name = name;
    sink->received.set_value(*data);
}

TEST_F(ProducerTest, DeliversEnabledMessageChannelEventsToTheCallback) {
    const std::string id = AddCamera(2);
    DEV_HANDLE device = Open(id);
    ASSERT_NE(device, nullptr);
    EventSink sink;
    const char name[] = "ExposureEnd";
    ASSERT_EQ(DevSetEventControl(device, 0x9001, name, sizeof name - 1, &OnEvent, &sink),
              GC_ERR_SUCCESS);
    EXPECT_NE(Camera().Register(reg::kMessageChannelPort), 0u);
    EXPECT_EQ(Camera().Register(reg::kMessageChannelDestination), 0x7F000001u);
    ASSERT_TRUE(Camera().SendEvent(0x9002, 1));  // nobody asked for this one
    ASSERT_TRUE(Camera().SendEvent(0x9001, 42));
    auto future = sink.received.get_future();
    ASSERT_EQ(future.wait_for(std::chrono::seconds(2)), std::future_status::ready);
    const RY_EVENT_DATA data = future.get();
    EXPECT_EQ(data.eventId, 0x9001);
    EXPECT_EQ(data.timestamp, 42u);
    EXPECT_EQ(data.object, nullptr);
    EXPECT_EQ(sink.name, "ExposureEnd");
    EXPECT_EQ(DevSetEventControl(device, 0x10000, name, 3, &OnEvent, &sink),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
}

}  // namespace
}  // namespace ry::gentl::testing
