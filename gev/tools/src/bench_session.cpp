#include "bench_session.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "device_description.h"

namespace ry::gev::tools {
namespace {

using Clock = std::chrono::steady_clock;
constexpr uint64_t kStreamPacketSizeRegister = 0x0D04;
constexpr uint64_t kPrivilegeRegister = 0x0A00;
constexpr uint64_t kDefaultBufferBytes = 16u << 20;

std::string Text(const char* buffer) {
    return buffer;
}

uint64_t BigEndian(const uint8_t* bytes, size_t length) {
    uint64_t value = 0;
    for (size_t i = 0; i < length; ++i)
        value = (value << 8) | bytes[i];
    return value;
}

uint64_t BufferValue(DS_HANDLE stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
    uint64_t value = 0;
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    DSGetBufferInfo(stream, buffer, cmd, &type, &value, &size);
    return value;
}

}  // namespace

BenchSession::~BenchSession() {
    if (event_)
        GCUnregisterEvent(event_, EVENT_NEW_BUFFER);
    if (stream_)
        DSClose(stream_);
    if (device_)
        DevClose(device_);
    if (iface_)
        IFClose(iface_);
    if (system_)
        TLClose(system_);
    if (initialized_)
        GCCloseLib();
}

bool BenchSession::Open(const BenchOptions& options, std::string& error) {
    initialized_ = GCInitLib() == GC_ERR_SUCCESS;
    if (!initialized_ || TLOpen(&system_) != GC_ERR_SUCCESS) {
        error = "cannot open the transport layer";
        return false;
    }
    return FindAndOpenDevice(options, error) && ReadDescription(error);
}

// Discovers on every interface and opens the device that reports the address; a device
// that does not answer broadcasts is asked by address directly.
bool BenchSession::FindAndOpenDevice(const BenchOptions& options, std::string& error) {
    const std::string& address = options.device;
    bool8_t changed = 0;
    uint32_t interfaces = 0;
    TLUpdateInterfaceList(system_, &changed, 100);
    TLGetNumInterfaces(system_, &interfaces);
    for (uint32_t i = 0; i < interfaces && !device_; ++i) {
        char id[128];
        size_t size = sizeof id;
        if (TLGetInterfaceID(system_, i, id, &size) != GC_ERR_SUCCESS)
            continue;
        if (TLOpenInterface(system_, id, &iface_) != GC_ERR_SUCCESS)
            continue;
        IFSetIgnoreSubnetDiscover(iface_, 1);
        if (options.receivePath != 0) {
            size_t pathSize = sizeof options.receivePath;
            GCWritePort(iface_, RY_IF_PORT_RECEIVE_PATH, &options.receivePath, &pathSize);
        }
        IFUpdateDeviceList(iface_, &changed, 500);
        GC_ERROR rc = IFOpenDevice(iface_, address.c_str(), DEVICE_ACCESS_CONTROL, &device_);
        if (rc != GC_ERR_SUCCESS) {
            if (rc == GC_ERR_ACCESS_DENIED)
                error = "the device is controlled by another application";
            device_ = nullptr;
            IFClose(iface_);
            iface_ = nullptr;
        }
    }
    if (!device_ && error.empty())
        error = "no device answers at " + address;
    return device_ != nullptr;
}

bool BenchSession::ReadDescription(std::string& error) {
    char url[600] = {};
    size_t size = sizeof url;
    if (GCGetPortURL(device_, url, &size) != GC_ERR_SUCCESS) {
        error = "cannot read the description URL";
        return false;
    }
    const auto local = ParseLocalUrl(Text(url));
    if (!local || local->length == 0 || local->length > RyGenApi::kMaxDescriptionBytes)
        return true;  // optional
    std::vector<uint8_t> bytes(local->length);
    size = bytes.size();
    if (GCReadPort(device_, local->address, bytes.data(), &size) != GC_ERR_SUCCESS)
        return true;
    if (auto unzipped = UnzipFirstFile(bytes))
        xml_ = std::move(*unzipped);
    else
        xml_.assign(bytes.begin(), bytes.end());
    return true;
}

bool BenchSession::ExecuteCommand(const char* feature) {
    const auto reg = FindFeatureRegister(xml_, feature);
    if (!reg || reg->length != 4)
        return false;
    const uint32_t value = static_cast<uint32_t>(reg->commandValue);
    const uint8_t bytes[4] = {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8),
                              uint8_t(value)};
    size_t size = sizeof bytes;
    return GCWritePort(device_, reg->address, bytes, &size) == GC_ERR_SUCCESS;
}

uint64_t BenchSession::PayloadSize() {
    const auto reg = FindFeatureRegister(xml_, "PayloadSize");
    if (!reg || reg->length == 0 || reg->length > 8)
        return 0;
    uint8_t bytes[8] = {};
    size_t size = reg->length;
    if (GCReadPort(device_, reg->address, bytes, &size) != GC_ERR_SUCCESS)
        return 0;
    return BigEndian(bytes, reg->length);
}

int BenchSession::MeasureLatency(uint32_t reads) {
    std::vector<double> micros;
    micros.reserve(reads);
    uint32_t value = 0;
    for (uint32_t i = 0; i < reads; ++i) {
        size_t size = sizeof value;
        const auto start = Clock::now();
        if (GCReadPort(device_, kPrivilegeRegister, &value, &size) != GC_ERR_SUCCESS)
            continue;
        micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    if (micros.empty()) {
        std::printf("reads=0 median_us=0 p99_us=0\n");
        return 1;
    }
    std::sort(micros.begin(), micros.end());
    const double median = micros[micros.size() / 2];
    const double p99 = micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];
    std::printf("reads=%zu median_us=%.1f p99_us=%.1f\n", micros.size(), median, p99);
    return micros.size() == reads ? 0 : 1;
}

bool BenchSession::SetUpStream(const BenchOptions& options) {
    if (options.packetSize != 0) {
        const uint32_t value = options.packetSize;
        const uint8_t bytes[4] = {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8),
                                  uint8_t(value)};
        size_t size = sizeof bytes;
        GCWritePort(device_, kStreamPacketSizeRegister, bytes, &size);
    }
    char streamId[64];
    size_t size = sizeof streamId;
    if (DevGetDataStreamID(device_, 0, streamId, &size) != GC_ERR_SUCCESS ||
        DevOpenDataStream(device_, streamId, &stream_) != GC_ERR_SUCCESS) {
        std::fprintf(stderr, "cannot open the stream\n");
        return false;
    }
    uint64_t bytesPerBuffer = options.bufferBytes ? options.bufferBytes : PayloadSize();
    if (bytesPerBuffer == 0)
        bytesPerBuffer = kDefaultBufferBytes;
    buffers_.assign(options.buffers, std::vector<uint8_t>(bytesPerBuffer));
    for (auto& memory : buffers_) {
        BUFFER_HANDLE handle = nullptr;
        if (DSAnnounceBuffer(stream_, memory.data(), memory.size(), nullptr, &handle) !=
                GC_ERR_SUCCESS ||
            DSQueueBuffer(stream_, handle) != GC_ERR_SUCCESS)
            return false;
    }
    return GCRegisterEvent(stream_, EVENT_NEW_BUFFER, &event_) == GC_ERR_SUCCESS &&
           DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE) == GC_ERR_SUCCESS;
}

bool BenchSession::StartStreaming(const BenchOptions& options) {
    if (!SetUpStream(options))
        return false;
    if (!ExecuteCommand("AcquisitionStart"))
        std::fprintf(stderr, "no AcquisitionStart register found; waiting for frames anyway\n");
    return true;
}

bool BenchSession::NextFrame(const std::function<void(uint64_t, bool, uint64_t)>& onFrame) {
    RY_NEW_BUFFER_DATA data{};
    size_t dataSize = sizeof data;
    if (EventGetData(event_, &data, &dataSize, 100) != GC_ERR_SUCCESS)
        return false;
    onFrame(BufferValue(stream_, data.buffer, BUFFER_INFO_BLOCK_ID),
            BufferValue(stream_, data.buffer, BUFFER_INFO_STATUS) == RY_BUFFER_STATUS_COMPLETE,
            BufferValue(stream_, data.buffer, BUFFER_INFO_SIZE_FILLED));
    DSQueueBuffer(stream_, data.buffer);
    return true;
}

void BenchSession::StopStreaming() {
    ExecuteCommand("AcquisitionStop");
    DSStopAcquisition(stream_, ACQ_STOP_FLAGS_KILL);
}

std::optional<StreamFigures> BenchSession::Stream(const BenchOptions& options) {
    if (!StartStreaming(options))
        return std::nullopt;
    FrameTally tally;
    const double cpuStart = ProcessCpuSeconds();
    const auto start = Clock::now();
    const auto end = start + std::chrono::duration<double>(options.seconds);
    while (Clock::now() < end) {
        NextFrame([&tally](uint64_t blockId, bool complete, uint64_t bytes) {
            tally.Add(blockId, complete, bytes);
        });
    }
    StreamFigures figures = tally.Figures();
    figures.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    figures.cpuSeconds = ProcessCpuSeconds() - cpuStart;
    StopStreaming();
    return figures;
}

// The producer's own view, to tell frames lost for want of a buffer from lost packets.
void BenchSession::PrintProducerCounters() {
    const auto counter = [&](STREAM_INFO_CMD cmd) {
        uint64_t value = 0;
        size_t size = sizeof value;
        INFO_DATATYPE type = 0;
        DSGetInfo(stream_, cmd, &type, &value, &size);
        return static_cast<unsigned long long>(value);
    };
    std::printf("underrun=%llu corrupted=%llu missing_packets=%llu resent_packets=%llu\n",
                counter(STREAM_INFO_NUM_UNDERRUN), counter(STREAM_INFO_NUM_CORRUPTED),
                counter(STREAM_INFO_NUM_MISSING_PACKETS), counter(STREAM_INFO_NUM_RESENT_PACKETS));
}

int BenchSession::MeasureStream(const BenchOptions& options) {
    const auto figures = Stream(options);
    if (!figures)
        return 1;
    PrintProducerCounters();
    const double gigabytes = figures->bytes / 1e9;
    std::printf("frames=%llu incomplete=%llu lost=%llu MBps=%.1f cpu_s_per_GB=%.3f\n",
                static_cast<unsigned long long>(figures->frames),
                static_cast<unsigned long long>(figures->incomplete),
                static_cast<unsigned long long>(figures->lost),
                figures->bytes / 1e6 / figures->seconds,
                gigabytes > 0 ? figures->cpuSeconds / gigabytes : 0.0);
    return figures->frames > 0 ? 0 : 1;
}

}  // namespace ry::gev::tools
