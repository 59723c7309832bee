// Answers to a discovery broadcast: every datagram that reaches the discovery socket is
// read as the client reads it, and the device it describes is written into the fixed-size
// text fields the SDK's camera records keep, as the transport layer writes them.
#include <cstdint>
#include <cstring>
#include <string>

#include "datagram_feed.h"
#include "info_output.h"
#include "ry/gev/client/device_answers.h"
#include "ry/gev/client/udp_socket.h"

namespace {

using namespace ry::gev;
using namespace ry::gev::client;
using ry::gev::fuzz::DatagramFeed;

// The sizes of the text fields of a camera record (model, vendor, version, address, MAC)
// and of the SDK's identifier and display-name buffers.
constexpr size_t kFieldSizes[] = {128, 128, 128, 32, 32, 260, 256};

void WriteField(const std::string& text, size_t capacity) {
    char field[260];
    std::memset(field, 0x7E, sizeof field);
    size_t size = capacity;
    if (ry::gentl::WriteText(text, field, &size) == GC_ERR_SUCCESS &&
        (size > capacity || strnlen(field, capacity) != size - 1))
        __builtin_trap();  // a text that does not end inside its field
}

void Record(const DiscoveredDevice& device) {
    const std::string texts[] = {device.model,
                                 device.vendor,
                                 device.version,
                                 Ipv4ToText(device.ip),
                                 MacToText(device.mac.data()),
                                 device.Id(),
                                 device.DisplayName()};
    for (size_t i = 0; i < std::size(texts); ++i)
        WriteField(texts[i], kFieldSizes[i]);
    WriteField(device.serial, 32);
    WriteField(device.userName, 32);
    WriteField(device.vendorInfo, 64);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DatagramFeed feed(data, size);
    while (const auto datagram = feed.Next()) {
        if (const auto device = ParseDiscoveryAck(*datagram))
            Record(*device);
    }
    return 0;
}
