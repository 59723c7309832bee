// The device's description URL and the file it points at. The input up to its first zero
// byte (at most the 512 bytes of the URL register) is the URL as the transport layer reads
// it; the bytes after are the device memory at whatever address the URL names. Runs the
// SDK's whole path: URL through the transport layer's 260-byte copy, parsing, the read of
// the file, unzipping and the text encodings.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "camera/device_description.h"
#include "fuzz_device.h"
#include "info_output.h"

namespace {

using namespace RYSDK;

constexpr size_t kUrlRegister = 512;
// Larger files are legal but only cost time here: the reading code is the same.
constexpr uint64_t kLargestFileRead = 1u << 20;

std::string url;
const uint8_t* memory = nullptr;
size_t memorySize = 0;

GC_ERROR GetPortUrl(PORT_HANDLE, char* out, size_t* size) {
    return ry::gentl::WriteText(url, out, size);
}

GC_ERROR ReadPort(PORT_HANDLE, uint64_t, void* buffer, size_t* size) {
    const size_t taken = std::min(*size, memorySize);
    std::memcpy(buffer, memory, taken);
    std::memset(static_cast<uint8_t*>(buffer) + taken, 0, *size - taken);
    return GC_ERR_SUCCESS;
}

int handleTarget;
constexpr core::LogSite kSite{L"RyCamera", L"RYSDK::RyCamera::GetXML"};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::InstallFuzzDevice([](transport::TransportTable& table) {
        table.GCGetPortURL = GetPortUrl;
        table.GCReadPort = ReadPort;
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const size_t window = std::min(size, kUrlRegister);
    const size_t end = std::find(data, data + window, 0) - data;
    url.assign(reinterpret_cast<const char*>(data), end);
    const size_t fileStart = std::min(size, end < window ? end + 1 : window);
    memory = data + fileStart;
    memorySize = size - fileStart;

    camera::DescriptionLocation location;
    if (camera::ParseDescriptionUrl(url, location) == camera::UrlVerdict::Local &&
        location.length > kLargestFileRead)
        return 0;
    camera::RawDescription raw;
    if (!camera::ReadRawDescription(&handleTarget, kSite, raw))
        return 0;
    std::string text;
    camera::DecodeDescription(raw, kSite, text);
    if (!raw.zipped)
        text = camera::PlainDescriptionText(raw);
    return 0;
}
