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

}  // namespace

RESULT RyCamera::GetDeviceID(unsigned int index, char* id, size_t* size) {
    if (id == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    std::string text;
    const RESULT result = ReadDeviceId(m_pRyInterface, index, text);
    return result != RESULT_SUCCESS ? result : CopyText(text, id, size);
}

RESULT RyCamera::GetDeviceModelName(unsigned int index, char* name, size_t* size) {
    if (name == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    std::string id;
    const RESULT result = ReadDeviceId(m_pRyInterface, index, id);
    if (result != RESULT_SUCCESS)
        return result;
    char model[kDeviceTextCapacity] = {};
    size_t modelSize = sizeof(model) - 1;
    INFO_DATATYPE type = 0;
    if (camera::TL().IFGetDeviceInfo(m_pRyInterface->GetInterfaceHandle(), id.c_str(),
                                     DEVICE_INFO_MODEL, &type, model,
                                     &modelSize) != GC_ERR_SUCCESS) {
        return RESULT_ERROR_TLGETDEVICENAME;
    }
    m_PlainDevice = std::strcmp(model, kRegisterDrivenModel) == 0 ? 0 : 1;
    return CopyText(model, name, size);
}

}  // namespace RYSDK
