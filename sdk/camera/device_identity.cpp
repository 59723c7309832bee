// Texts of the cameras on this camera's interface, as discovery found them.
#include <cstring>
#include <string>

#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyInterface.h"

namespace RYSDK {

namespace {

constexpr size_t kDeviceTextCapacity = 260;
// The older generation, started and stopped through fixed registers, reports this model.
constexpr const char* kRegisterDrivenModel = "GigE_Connect";

// Copies with its terminator when it fits; the size always receives the length needed.
RESULT CopyText(const std::string& text, char* out, size_t* size) {
    const size_t needed = text.size() + 1;
    const bool fits = *size >= needed;
    *size = needed;
    if (!fits)
        return RESULT_ERROR_INVALID_PARAMETER;
    std::memcpy(out, text.c_str(), needed);
    return RESULT_SUCCESS;
}

RESULT ReadDeviceId(RyInterface* adapter, unsigned int index, std::string& id) {
    if (adapter == nullptr || adapter->GetInterfaceHandle() == nullptr)
        return RESULT_ERROR_RYCAMERA_INTERFACE_HANDLE;
    char text[kDeviceTextCapacity] = {};
    size_t size = sizeof(text) - 1;
    if (camera::TL().IFGetDeviceID(adapter->GetInterfaceHandle(), index, text, &size) !=
        GC_ERR_SUCCESS) {
        return RESULT_ERROR_TLGETDEVICENAME;
    }
    id = text;
    return RESULT_SUCCESS;
}

// A text discovery found for the device at `index` on the adapter.
RESULT ReadDeviceText(RyInterface* adapter, unsigned int index, DEVICE_INFO_CMD command,
                      std::string& text) {
    std::string id;
    const RESULT result = ReadDeviceId(adapter, index, id);
    if (result != RESULT_SUCCESS)
        return result;
    char value[kDeviceTextCapacity] = {};
    size_t size = sizeof(value) - 1;
    INFO_DATATYPE type = 0;
    if (camera::TL().IFGetDeviceInfo(adapter->GetInterfaceHandle(), id.c_str(), command, &type,
                                     value, &size) != GC_ERR_SUCCESS) {
        return RESULT_ERROR_TLGETDEVICENAME;
    }
    text = value;
    return RESULT_SUCCESS;
}

RESULT CopyDeviceText(RyInterface* adapter, unsigned int index, DEVICE_INFO_CMD command, char* out,
                      size_t* size) {
    if (out == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    std::string text;
    const RESULT result = ReadDeviceText(adapter, index, command, text);
    return result != RESULT_SUCCESS ? result : CopyText(text, out, size);
}

}  // namespace

RESULT RyCamera::GetDeviceID(unsigned int index, char* id, size_t* size) {
    if (id == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    std::string text;
    const RESULT result = ReadDeviceId(m_pRyInterface, index, text);
    return result != RESULT_SUCCESS ? result : CopyText(text, id, size);
}

RESULT RyCamera::GetDeviceModelName(unsigned int index, char* name, size_t* size) {
    std::string model;
    const RESULT result = ReadDeviceText(m_pRyInterface, index, DEVICE_INFO_MODEL, model);
    if (result != RESULT_SUCCESS)
        return result;
    m_PlainDevice = model == kRegisterDrivenModel ? 0 : 1;
    return name == nullptr || size == nullptr ? RESULT_ERROR_INVALID_PARAMETER
                                              : CopyText(model, name, size);
}

RESULT RyCamera::GetDeviceVersion(unsigned int index, char* version, size_t* size) {
    return CopyDeviceText(m_pRyInterface, index, DEVICE_INFO_VERSION, version, size);
}

RESULT RyCamera::GetDeviceVendorName(unsigned int index, char* vendor, size_t* size) {
    return CopyDeviceText(m_pRyInterface, index, DEVICE_INFO_VENDOR, vendor, size);
}

RESULT RyCamera::GetDeviceIP(unsigned int index, char* address, size_t* size) {
    return CopyDeviceText(m_pRyInterface, index, DEVICE_INFO_IP_ADDRESS, address, size);
}

RESULT RyCamera::GetDeviceMAC(unsigned int index, char* mac, size_t* size) {
    return CopyDeviceText(m_pRyInterface, index, DEVICE_INFO_MAC_ADDRESS, mac, size);
}

}  // namespace RYSDK
