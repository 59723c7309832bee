// The serial channel's answers: a device whose receive registers hand over whatever the
// input says. The first byte picks the command; then each poll of the waiting count takes
// one byte (count - 1, so a poll never finds the channel empty and never sleeps) and the
// read of the received bytes takes that many. When the input runs out the device claims
// more bytes than any answer holds, which ends the exchange at once.
#include <cstdint>
#include <cstring>

#include "fuzz_device.h"
#include "rysdk/RySerial.h"

namespace {

using namespace RYSDK;

struct DeviceBytes {
    const uint8_t* data = nullptr;
    size_t size = 0;
    size_t at = 0;
} device;

constexpr uint64_t kReceiveCount = 0x80000;

GC_ERROR ReadPort(PORT_HANDLE, uint64_t address, void* buffer, size_t* size) {
    auto* out = static_cast<uint8_t*>(buffer);
    if (address == kReceiveCount) {
        const uint32_t count = device.at < device.size ? device.data[device.at++] + 1u : ~0u;
        const uint8_t word[4] = {uint8_t(count >> 24), uint8_t(count >> 16), uint8_t(count >> 8),
                                 uint8_t(count)};
        std::memcpy(out, word, std::min<size_t>(*size, sizeof word));
        return GC_ERR_SUCCESS;
    }
    const size_t taken = std::min(*size, device.size - device.at);
    std::memcpy(out, device.data + device.at, taken);
    std::memset(out + taken, 0, *size - taken);
    device.at += taken;
    return GC_ERR_SUCCESS;
}

GC_ERROR WritePort(PORT_HANDLE, uint64_t, const void*, size_t*) {
    return GC_ERR_SUCCESS;
}

// The reply buffer of a pass-through command, read as RyCamera reads it.
class SerialChannel : public RySerial {
  public:
    int32_t Reply(char* reply, int size) { return ReadDataInner(reply, size); }
};

int handleTarget;

void RunCommand(SerialChannel& serial, uint8_t choice) {
    int first = -1, second = -1;
    switch (choice % 6) {
        case 0:
            serial.GetTriggerMode(&first);
            break;
        case 1:
            serial.GetHorizontalArea(&first, &second);
            break;
        case 2:
            serial.GetAnalogGain(choice / 6 % 3, &first, &second);
            break;
        case 3:
            if (const wchar_t* text = serial.GetCameraTemperature())
                first = static_cast<int>(wcslen(text));
            break;
        case 4:
            serial.GetFPGAVersion();
            break;
        default: {
            char reply[64];
            if (serial.Reply(reply, sizeof reply) == GC_ERR_SUCCESS &&
                strnlen(reply, sizeof reply) == sizeof reply)
                __builtin_trap();  // an answer without its terminator
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::InstallFuzzDevice([](transport::TransportTable& table) {
        table.GCReadPort = ReadPort;
        table.GCWritePort = WritePort;
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    device = {data, size, 1};
    SerialChannel serial;
    serial.SetCamHandle(&handleTarget);
    RunCommand(serial, data[0]);
    return 0;
}
