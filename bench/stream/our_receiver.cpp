#include "our_receiver.h"

#include <cstdio>
#include <vector>

#include "RyGenTL.h"
#include "device_description.h"

namespace ry::bench {
namespace {

using ry::gev::tools::FindFeatureRegister;
constexpr uint64_t kStreamPacketSizeRegister = 0x0D04;

// Every handle the run opened, closed in reverse order whatever happens.
struct Handles {
    bool library = false;
    TL_HANDLE system = nullptr;
    IF_HANDLE iface = nullptr;
    DEV_HANDLE device = nullptr;
    DS_HANDLE stream = nullptr;
    EVENT_HANDLE event = nullptr;
    std::string xml;

    ~Handles() {
        if (event)
            GCUnregisterEvent(event, EVENT_NEW_BUFFER);
        if (stream)
            DSClose(stream);
        if (device)
            DevClose(device);
        if (iface)
            IFClose(iface);
        if (system)
            TLClose(system);
        if (library)
            GCCloseLib();
    }
};

bool WriteRegister(DEV_HANDLE device, uint64_t address, uint32_t value) {
    const uint8_t bytes[4] = {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8),
                              uint8_t(value)};
    size_t size = sizeof bytes;
    return GCWritePort(device, address, bytes, &size) == GC_ERR_SUCCESS;
}

bool Execute(const Handles& h, const char* command) {
    const auto reg = FindFeatureRegister(h.xml, command);
    return reg && WriteRegister(h.device, reg->address, static_cast<uint32_t>(reg->commandValue));
}

uint64_t ReadFeature(const Handles& h, const char* feature) {
    const auto reg = FindFeatureRegister(h.xml, feature);
    uint8_t bytes[8] = {};
    size_t size = reg ? reg->length : 0;
    if (!reg || size == 0 || size > 8 ||
        GCReadPort(h.device, reg->address, bytes, &size) != GC_ERR_SUCCESS)
        return 0;
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | bytes[i];
    return value;
}

// The loopback interface with the receive path set before the stream opens, then the camera.
bool OpenCamera(const OurRun& run, Handles& h) {
    h.library = GCInitLib() == GC_ERR_SUCCESS;
    bool8_t changed = 0;
    if (!h.library || TLOpen(&h.system) != GC_ERR_SUCCESS ||
        TLUpdateInterfaceList(h.system, &changed, 100) != GC_ERR_SUCCESS ||
        TLOpenInterface(h.system, "lo-127.0.0.1", &h.iface) != GC_ERR_SUCCESS)
        return false;
    size_t size = sizeof run.receivePath;
    return GCWritePort(h.iface, RY_IF_PORT_RECEIVE_PATH, &run.receivePath, &size) ==
               GC_ERR_SUCCESS &&
           IFUpdateDeviceList(h.iface, &changed, 500) == GC_ERR_SUCCESS &&
           IFOpenDevice(h.iface, run.deviceAddress.c_str(), DEVICE_ACCESS_CONTROL, &h.device) ==
               GC_ERR_SUCCESS;
}

bool ReadDescription(Handles& h) {
    char url[600] = {};
    size_t size = sizeof url;
    if (GCGetPortURL(h.device, url, &size) != GC_ERR_SUCCESS)
        return false;
    const auto local = ry::gev::tools::ParseLocalUrl(url);
    if (!local || local->length == 0 || local->length > (64u << 20))
        return false;
    std::vector<uint8_t> bytes(local->length);
    size = bytes.size();
    if (GCReadPort(h.device, local->address, bytes.data(), &size) != GC_ERR_SUCCESS)
        return false;
    const auto unzipped = ry::gev::tools::UnzipFirstFile(bytes);
    h.xml = unzipped ? *unzipped : std::string(bytes.begin(), bytes.end());
    return true;
}

bool StartStream(const OurRun& run, Handles& h, std::vector<std::vector<uint8_t>>& memory) {
    WriteRegister(h.device, kStreamPacketSizeRegister, run.packetSize);
    if (DevOpenDataStream(h.device, "Stream0", &h.stream) != GC_ERR_SUCCESS)
        return false;
    memory.assign(run.buffers, std::vector<uint8_t>(ReadFeature(h, "PayloadSize")));
    for (auto& block : memory) {
        BUFFER_HANDLE buffer = nullptr;
        if (block.empty() ||
            DSAnnounceBuffer(h.stream, block.data(), block.size(), nullptr, &buffer) !=
                GC_ERR_SUCCESS ||
            DSQueueBuffer(h.stream, buffer) != GC_ERR_SUCCESS)
            return false;
    }
    return GCRegisterEvent(h.stream, EVENT_NEW_BUFFER, &h.event) == GC_ERR_SUCCESS &&
           DSStartAcquisition(h.stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE) ==
               GC_ERR_SUCCESS &&
           Execute(h, "AcquisitionStart");
}

uint64_t BufferValue(DS_HANDLE stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
    uint64_t value = 0;
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    DSGetBufferInfo(stream, buffer, cmd, &type, &value, &size);
    return value;
}

}  // namespace

std::optional<ReceiverReport> MeasureOurs(const OurRun& run, DeliveryLog& log) {
    const int inherited = OwnedPacketSockets();
    Handles h;
    std::vector<std::vector<uint8_t>> memory;
    if (!OpenCamera(run, h) || !ReadDescription(h) || !StartStream(run, h, memory)) {
        std::fprintf(stderr, "ours: cannot open the camera or its stream\n");
        return std::nullopt;
    }
    MeasuredRun measured(run.seconds, run.emulator, inherited, log);
    while (measured.Going()) {
        RY_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        if (EventGetData(h.event, &data, &size, 100) != GC_ERR_SUCCESS)
            continue;
        const uint64_t blockId = BufferValue(h.stream, data.buffer, BUFFER_INFO_BLOCK_ID);
        measured.Delivered(
            blockId,
            BufferValue(h.stream, data.buffer, BUFFER_INFO_STATUS) == RY_BUFFER_STATUS_COMPLETE,
            BufferValue(h.stream, data.buffer, BUFFER_INFO_SIZE_FILLED));
        DSQueueBuffer(h.stream, data.buffer);
    }
    const ReceiverReport report = measured.Finish();
    Execute(h, "AcquisitionStop");
    DSStopAcquisition(h.stream, ACQ_STOP_FLAGS_KILL);
    return report;
}

}  // namespace ry::bench
