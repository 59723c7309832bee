#include "scripted_transport.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace RYSDK::testing {
namespace {

Script* script = nullptr;
char systemToken;

// Interface handles point into the script's interface list.
ScriptedInterface* InterfaceOf(void* handle) {
    return static_cast<ScriptedInterface*>(handle);
}

ScriptedInterface* InterfaceById(const char* id) {
    for (auto& scripted : script->interfaces) {
        const std::string& name = scripted.displayName;
        const std::string word = name.substr(0, name.find(' '));
        const std::string expected = word.size() > 3 ? word.substr(3) : word;
        if (expected == id || "if" + std::to_string(&scripted - script->interfaces.data()) == id) {
            return &scripted;
        }
    }
    return nullptr;
}

GC_ERROR CopyText(const std::string& text, void* buffer, size_t* size) {
    if (size == nullptr)
        return GC_ERR_INVALID_PARAMETER;
    if (buffer == nullptr || *size < text.size() + 1) {
        *size = text.size() + 1;
        return buffer == nullptr ? GC_ERR_SUCCESS : GC_ERR_INSUFFICIENT_SIZE;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    *size = text.size() + 1;
    return GC_ERR_SUCCESS;
}

GC_ERROR InitLib() {
    return GC_ERR_SUCCESS;
}
GC_ERROR CloseLib() {
    return GC_ERR_SUCCESS;
}

GC_ERROR ReadPort(PORT_HANDLE, uint64_t address, void* buffer, size_t* size) {
    ++script->portCalls;
    const uint32_t value = script->systemPort[address];
    std::memcpy(buffer, &value, sizeof(value));
    *size = sizeof(value);
    return GC_ERR_SUCCESS;
}

GC_ERROR WritePort(PORT_HANDLE, uint64_t address, const void* buffer, size_t* size) {
    ++script->portCalls;
    if (address > 100)
        return GC_ERR_INVALID_ADDRESS;
    uint32_t value = 0;
    std::memcpy(&value, buffer, sizeof(value));
    script->systemPort[address] = value;
    *size = sizeof(value);
    return GC_ERR_SUCCESS;
}

GC_ERROR Open(TL_HANDLE* handle) {
    if (script->tlOpenResult != GC_ERR_SUCCESS)
        return script->tlOpenResult;
    *handle = &systemToken;
    return GC_ERR_SUCCESS;
}

GC_ERROR Close(TL_HANDLE) {
    return GC_ERR_SUCCESS;
}

GC_ERROR UpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t) {
    if (changed != nullptr)
        *changed = 0;
    return GC_ERR_SUCCESS;
}

GC_ERROR GetNumInterfaces(TL_HANDLE, uint32_t* count) {
    *count = static_cast<uint32_t>(script->interfaces.size());
    return script->numInterfacesResult;
}

GC_ERROR GetInterfaceID(TL_HANDLE, uint32_t index, char* id, size_t* size) {
    if (index >= script->interfaces.size())
        return GC_ERR_INVALID_PARAMETER;
    if (script->interfaces[index].idResult != GC_ERR_SUCCESS) {
        return script->interfaces[index].idResult;
    }
    return CopyText("if" + std::to_string(index), id, size);
}

GC_ERROR GetInterfaceInfo(TL_HANDLE, const char* id, INTERFACE_INFO_CMD command,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
    ScriptedInterface* scripted = InterfaceById(id);
    if (scripted == nullptr)
        return GC_ERR_INVALID_ID;
    if (type != nullptr)
        *type = 1;
    switch (command) {
        case 1:
            if (scripted->infoResult != GC_ERR_SUCCESS)
                return scripted->infoResult;
            return CopyText(scripted->displayName, buffer, size);
        case 1003:
            return CopyText("127.0.0.1", buffer, size);
        case 1004:
            return CopyText("255.0.0.0", buffer, size);
        default:
            return GC_ERR_NOT_IMPLEMENTED;
    }
}

GC_ERROR OpenInterface(TL_HANDLE, const char* id, IF_HANDLE* handle) {
    script->openedInterfaceIds.emplace_back(id);
    ScriptedInterface* scripted = InterfaceById(id);
    if (scripted == nullptr)
        return GC_ERR_INVALID_ID;
    if (scripted->openResult != GC_ERR_SUCCESS)
        return scripted->openResult;
    *handle = scripted;
    return GC_ERR_SUCCESS;
}

GC_ERROR GetDiscoveryInfo(IF_HANDLE handle, uint32_t index, char* model, size_t* modelSize,
                          char* vendor, size_t* vendorSize, char* version, size_t* versionSize,
                          char* ip, size_t* ipSize, char* mac, size_t* macSize) {
    const std::string suffix = std::to_string(index);
    CopyText("Model" + suffix, model, modelSize);
    CopyText("Vendor", vendor, vendorSize);
    CopyText("1.0", version, versionSize);
    CopyText("127.0.0." + std::to_string(index + 2), ip, ipSize);
    CopyText("02:00:00:00:00:0" + suffix, mac, macSize);
    return InterfaceOf(handle) != nullptr ? GC_ERR_SUCCESS : GC_ERR_INVALID_HANDLE;
}

GC_ERROR SetIgnoreSubnet(IF_HANDLE, uint32_t) {
    return GC_ERR_SUCCESS;
}

GC_ERROR UpdateDeviceList(IF_HANDLE handle, bool8_t*, uint64_t) {
    return InterfaceOf(handle)->updateResult;
}

GC_ERROR GetNumDevices(IF_HANDLE handle, uint32_t* count) {
    *count = static_cast<uint32_t>(InterfaceOf(handle)->cameras);
    return InterfaceOf(handle)->numDevicesResult;
}

GC_ERROR GetDeviceID(IF_HANDLE handle, uint32_t index, char* id, size_t* size) {
    ScriptedInterface* scripted = InterfaceOf(handle);
    if (static_cast<int>(index) == scripted->failingDeviceId)
        return GC_ERR_IO;
    const auto position = scripted - script->interfaces.data();
    return CopyText("dev" + std::to_string(position) + "-" + std::to_string(index), id, size);
}

GC_ERROR GetDeviceInfo(IF_HANDLE, const char* id, DEVICE_INFO_CMD, INFO_DATATYPE* type,
                       void* buffer, size_t* size) {
    if (type != nullptr)
        *type = 1;
    return CopyText(std::string("Camera ") + id, buffer, size);
}

GC_ERROR CloseInterface(IF_HANDLE) {
    ++script->interfaceCloses;
    return GC_ERR_SUCCESS;
}

GC_ERROR ForceIp(IF_HANDLE, const uint8_t*, uint32_t, uint32_t, uint32_t, uint32_t) {
    ++script->forceIpCalls;
    return script->forceIpResult;
}

// The system-level calls are scripted; a camera-level call would reach no camera and is
// left null, so a test that strays there fails at once.
transport::TransportTable ScriptedTable() {
    transport::TransportTable table{};
    table.GCInitLib = InitLib;
    table.GCCloseLib = CloseLib;
    table.GCReadPort = ReadPort;
    table.GCWritePort = WritePort;
    table.TLOpen = Open;
    table.TLClose = Close;
    table.TLUpdateInterfaceList = UpdateInterfaceList;
    table.TLGetNumInterfaces = GetNumInterfaces;
    table.TLGetInterfaceID = GetInterfaceID;
    table.TLGetInterfaceInfo = GetInterfaceInfo;
    table.TLOpenInterface = OpenInterface;
    table.TLGetDiscoveryInfo = GetDiscoveryInfo;
    table.IFSetIgnoreSubnetDiscover = SetIgnoreSubnet;
    table.IFUpdateDeviceList = UpdateDeviceList;
    table.IFGetNumDevices = GetNumDevices;
    table.IFGetDeviceID = GetDeviceID;
    table.IFGetDeviceInfo = GetDeviceInfo;
    table.IFClose = CloseInterface;
    table.IFSetForceIP = ForceIp;
    return table;
}

const transport::TransportTable kScriptedTable = ScriptedTable();

}  // namespace

ScriptedTransport::ScriptedTransport(Script& scripted) {
    script = &scripted;
    transport::InstallTransport(&kScriptedTable);
}

ScriptedTransport::~ScriptedTransport() {
    transport::InstallTransport(nullptr);
    script = nullptr;
}

}  // namespace RYSDK::testing
