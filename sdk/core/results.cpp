#include "core/results.h"

#include <cwchar>
#include <iterator>

#include "RyGenTLErrors.h"

namespace RYSDK::core {
namespace {

// The texts are the ones applications have always seen, irregularities included: most
// are the enumerator without its prefix, some are sentences, two repeat the enumerator
// and slot 28 ends in a comma.
constexpr const wchar_t* kResultTexts[RESULT_COUNT] = {
    L"SUCCESS",
    L"ERROR : Default error code returned",
    L"ERROR_OPENED_ALREADY",
    L"ERROR_INVALID_HANDLE",
    L"ERROR_TL_HANDLE",
    L"ERROR_TLOPEN",
    L"ERROR_IF_HANDLE",
    L"ERROR_RYGIGE_INITIALIZATION",
    L"ERROR_INVALID_PARAMETER",
    L"ERROR_DISCOVERY",
    L"ERROR : RESULT_ERROR_NO_CAMERAS was returned \\ CHECK : NIC properties",
    L"ERROR_CAMERA_NAME_DOES_NOT_EXIST",
    L"ERROR_ABORTED_ALREADY",
    L"ERROR_ACCESS_DENIED",
    L"ERROR_RESOURCE_IN_USE",
    L"ERROR_CANNOT_FIND_INTERFACE",
    L"ERROR_XML_UNKNOWN_ARGUMENT",
    L"ERROR_XML_NODE_ACCESS_FAILED",
    L"ERROR_XML_NOT_EXIST_NODE",
    L"ERROR_XML_ENTERED_NODE_DOESNT_HAVE_ANY_VALUE",
    L"ERROR_XML_UNSUPPORTED_COMMAND",
    L"ERROR_INVALID_WIDTH",
    L"ERROR_INVALID_ADDRESS",
    L"ERROR_RYINTERFACE_NO_NIC",
    L"ERROR_RYINTERFACE_GETINTERFACENAME",
    L"ERROR_RYINTERFACE_OPENINTERFACE",
    L"ERROR_RYINTERFACE_CLOSEINTERFACE",
    L"ERROR_RYINTERFACE_GETNUMDEVICES",
    L"ERROR_RYINTERFACE_CANNOT_FIND_DEVICE,",
    L"ERROR_RYCAMERA_INTERFACE_HANDLE",
    L"ERROR : RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER was returned \\ CHECK : Zero-based camera "
    L"index",
    L"ERROR_RYCAMERA_GETXML",
    L"ERROR_RYCAMERA_IMAGE_NOT4DIVIDE",
    L"ERROR_RYCAMERA_IMAGE_NOT2DIVIDE",
    L"ERROR_RYCAMERA_READ_ONLY",
    L"RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT",
    L"ERROR : Time-out is occurred in grab routine",
    L"ERROR : Callback function pointer is not null",
    L"ERROR : RESULT_ERROR_DEVCREATESTREAM was returned",
    L"ERROR : RESULT_ERROR_STREAM_MTU was returned \\ CHECK : Check NIC MTU",
    L"ERROR_TLGETNUMINTERFACES",
    L"ERROR_TLOPENINTERFACE",
    L"ERROR_TLCLOSEINTERFACE",
    L"ERROR_TLGETINTERFACENAME",
    L"ERROR_TLGETNUMDEVICES",
    L"ERROR_TLGETDEVICENAME",
    L"ERROR_TLOPENDEVICE",
    L"ERROR : RESULT_ERROR_INSUFFICIENT_RESOURCES was returned \\ CHECK : Check system resources",
    L"ERROR : RESULT_ERROR_MEMORY_ALLOCATION was returned \\ CHECK : Check system resources",
    L"ERROR_FILE_STREAM_OPEN_FAILURE",
    L"ERROR_FILE_STREAM_READ_FAILURE",
    L"ERROR_FILE_STREAM_WRITE_FAILURE",
    L"ERROR_FILE_STREAM_CLOSE_FAILURE",
    L"ERROR_FILE_STREAM_NOT_CORRECT_FILE_LENGTH",
    L"RESULT_ERROR_EXCEPTION",
};

struct TransportCodeName {
    int32_t code;
    const wchar_t* format;
};

constexpr TransportCodeName kTransportCodeNames[] = {
    {GC_ERR_SUCCESS, L"GC_ERR_SUCCESS (%d)"},
    {GC_ERR_ERROR, L"GC_ERR_ERROR (%d)"},
    {GC_ERR_NOT_INITIALIZED, L"GC_ERR_NOT_INITIALIZED (%d)"},
    {GC_ERR_NOT_IMPLEMENTED, L"GC_ERR_NOT_IMPLEMENTED (%d)"},
    {GC_ERR_RESOURCE_IN_USE, L"GC_ERR_RESOURCE_IN_USE (%d)"},
    {GC_ERR_ACCESS_DENIED, L"GC_ERR_ACCESS_DENIED (%d)"},
    {GC_ERR_INVALID_HANDLE, L"GC_ERR_INVALID_HANDLE (%d)"},
    {GC_ERR_INVALID_ID, L"GC_ERR_INVALID_ID (%d)"},
    {GC_ERR_NO_DATA, L"GC_ERR_NO_DATA (%d)"},
    {GC_ERR_INVALID_PARAMETER, L"GC_ERR_INVALID_PARAMETER (%d)"},
    {GC_ERR_IO, L"GC_ERR_IO (%d)"},
    {GC_ERR_TIMEOUT, L"GC_ERR_TIMEOUT (%d)"},
    {GC_ERR_ABORT, L"GC_ERR_ABORT (%d)"},
    {GC_ERR_INVALID_BUFFER, L"GC_ERR_INVALID_BUFFER (%d)"},
    {GC_ERR_NOT_AVAILABLE, L"GC_ERR_NOT_AVAILABLE (%d)"},
    {GC_ERR_INVALID_ADDRESS, L"GC_ERR_INVALID_ADDRESS (%d)"},
    {GC_ERR_CUSTOM_ID, L"GC_ERR_CUSTOM_ID (%d)"},
    {GC_ERR_SOCKET, L"GC_ERR_SOCKET (%d)"},
    {GC_ERR_OPEN_STREAM, L"GC_ERR_OPEN_STREAM (%d)"},
    {GC_ERR_PUT_BUFFER, L"GC_ERR_PUT_BUFFER (%d)"},
    {GC_ERR_DEVICE, L"GC_ERR_DEVICE (%d)"},
    {GC_ERR_INTERFACE, L"GC_ERR_INTERFACE (%d)"},
    {GC_ERR_MEMORY_ALLOCATION, L"GC_ERR_MEMORY_ALLOCATION (%d)"},
    {GC_ERR_NO_SYSTEM_RESOURCES, L"GC_ERR_NO_SYSTEM_RESOURCES (%d)"},
    {GC_ERR_INSUFFICIENT_SIZE, L"GC_ERR_INSUFFICIENT_SIZE (%d)"},
    {GC_ERR_INVALID_DATA, L"GC_ERR_INVALID_DATA (%d)"},
};

constexpr const wchar_t* kUndefinedCodeFormat = L"Undefined error code. (%d)";

// Wide enough for the longest template with any 32-bit number.
constexpr size_t kTransportTextCapacity = 64;

}  // namespace

const wchar_t* ResultText(RESULT result) noexcept {
    const auto index = static_cast<uint32_t>(result);
    return index < static_cast<uint32_t>(RESULT_COUNT) ? kResultTexts[index] : nullptr;
}

RESULT ResultFromTransportCode(int32_t code) noexcept {
    switch (code) {
        case GC_ERR_SUCCESS:
            return RESULT_SUCCESS;
        case GC_ERR_RESOURCE_IN_USE:
            return RESULT_ERROR_RESOURCE_IN_USE;
        case GC_ERR_ACCESS_DENIED:
            return RESULT_ERROR_ACCESS_DENIED;
        case GC_ERR_INVALID_HANDLE:
            return RESULT_ERROR_INVALID_HANDLE;
        case GC_ERR_INVALID_PARAMETER:
            return RESULT_ERROR_INVALID_PARAMETER;
        case GC_ERR_INVALID_ADDRESS:
            return RESULT_ERROR_INVALID_ADDRESS;
        case GC_ERR_OPEN_STREAM:
            return RESULT_ERROR_DEVCREATESTREAM;
        case GC_ERR_INTERFACE:
            return RESULT_ERROR_IF_HANDLE;
        case GC_ERR_MEMORY_ALLOCATION:
            return RESULT_ERROR_MEMORY_ALLOCATION;
        case GC_ERR_NO_SYSTEM_RESOURCES:
        case GC_ERR_INSUFFICIENT_SIZE:
            return RESULT_ERROR_INSUFFICIENT_RESOURCES;
        default:
            return RESULT_ERROR;
    }
}

RESULT ResultFromTLOpenFailure(int32_t code) noexcept {
    switch (code) {
        case GC_ERR_INVALID_PARAMETER:
            return RESULT_ERROR_INVALID_PARAMETER;
        case GC_ERR_INVALID_HANDLE:
            return RESULT_ERROR_INVALID_HANDLE;
        case GC_ERR_RESOURCE_IN_USE:
            return RESULT_ERROR_OPENED_ALREADY;
        case GC_ERR_ERROR:
            return RESULT_ERROR;
        default:
            return RESULT_ERROR_TLOPEN;
    }
}

const wchar_t* TransportCodeText(int32_t code) noexcept {
    thread_local wchar_t text[kTransportTextCapacity];
    const wchar_t* format = kUndefinedCodeFormat;
    for (const auto& name : kTransportCodeNames) {
        if (name.code == code) {
            format = name.format;
            break;
        }
    }
    std::swprintf(text, std::size(text), format, code);
    return text;
}

}  // namespace RYSDK::core

const wchar_t* RYSDK::GetResultText(RESULT result) noexcept {
    return core::ResultText(result);
}
