// GCInitLib/GCCloseLib, the system module and its interface list.
#include <cstring>

#include "device_module.h"
#include "info_output.h"
#include "library.h"
#include "modules.h"
#include "ry/gev/client/udp_socket.h"
#include "stream_module.h"

namespace ry::gentl {

Library& TheLibrary() {
    static Library library;
    return library;
}

void CloseEverything() {
    Library& library = TheLibrary();
    for (const auto& event : library.handles.TakeAll<EventModule>())
        event->channel->Kill();
    for (const auto& stream : library.handles.TakeAll<StreamModule>())
        stream->Close();
    for (const auto& device : library.handles.TakeAll<DeviceModule>())
        device->Close();
    library.handles.TakeAll<InterfaceModule>();
    library.handles.TakeAll<SystemModule>();
    library.system = nullptr;
}

namespace {

GC_ERROR InterfaceInfo(const client::HostInterface& host, INTERFACE_INFO_CMD cmd,
                       INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (!size)
        return GC_ERR_INVALID_PARAMETER;
    switch (cmd) {
        case INTERFACE_INFO_ID:
            return WriteInfoText(host.Id(), type, buffer, size);
        case INTERFACE_INFO_DISPLAYNAME:
            // The first word less its first three characters must give the identifier back:
            // that is how callers turn a listed name into something TLOpenInterface takes.
            return WriteInfoText(
                "IF:" + host.Id() + " (" + host.name + ", " + client::Ipv4ToText(host.ip) + ")",
                type, buffer, size);
        case INTERFACE_INFO_TLTYPE:
            return WriteInfoText("GEV", type, buffer, size);
        case INTERFACE_INFO_IP_ADDRESS:
            return WriteInfoText(client::Ipv4ToText(host.ip), type, buffer, size);
        case INTERFACE_INFO_SUBNET_MASK:
            return WriteInfoText(client::Ipv4ToText(host.mask), type, buffer, size);
        case INTERFACE_INFO_MAC_ADDRESS:
            return WriteInfoText(client::MacToText(host.mac.data()), type, buffer, size);
        default:
            return GC_ERR_INVALID_PARAMETER;
    }
}

}  // namespace

GC_ERROR QueryInterfaceInfo(const client::HostInterface& host, INTERFACE_INFO_CMD cmd,
                            INFO_DATATYPE* type, void* buffer, size_t* size) {
    return InterfaceInfo(host, cmd, type, buffer, size);
}

}  // namespace ry::gentl

using namespace ry::gentl;

extern "C" {

RYGENTL_API GC_ERROR GCInitLib(void) {
    return Guarded([]() -> GC_ERROR {
        Library& library = TheLibrary();
        std::lock_guard lock(library.mutex);
        if (library.initialized)
            return GC_ERR_RESOURCE_IN_USE;
        library.initialized = true;
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR GCCloseLib(void) {
    return Guarded([]() -> GC_ERROR {
        Library& library = TheLibrary();
        std::lock_guard lock(library.mutex);
        if (!library.initialized)
            return GC_ERR_NOT_INITIALIZED;
        CloseEverything();
        library.initialized = false;
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR TLOpen(TL_HANDLE* system) {
    return Guarded([&]() -> GC_ERROR {
        if (!system)
            return GC_ERR_INVALID_PARAMETER;
        Library& library = TheLibrary();
        std::lock_guard lock(library.mutex);
        if (!library.initialized)
            return GC_ERR_NOT_INITIALIZED;
        if (library.system)
            return GC_ERR_RESOURCE_IN_USE;
        library.system = library.handles.Add(std::make_shared<SystemModule>());
        *system = library.system;
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR TLClose(TL_HANDLE system) {
    return Guarded([&]() -> GC_ERROR {
        Library& library = TheLibrary();
        std::lock_guard lock(library.mutex);
        if (!library.handles.Find<SystemModule>(system))
            return GC_ERR_INVALID_HANDLE;
        // Closing the system closes everything opened through it.
        CloseEverything();
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t) {
    return WithModule<SystemModule>(system,
                                    [&](const std::shared_ptr<SystemModule>& module) -> GC_ERROR {
                                        bool differs = false;
                                        module->UpdateInterfaces(&differs);
                                        if (changed)
                                            *changed = differs;
                                        return GC_ERR_SUCCESS;
                                    });
}

RYGENTL_API GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* count) {
    return WithModule<SystemModule>(system,
                                    [&](const std::shared_ptr<SystemModule>& module) -> GC_ERROR {
                                        if (!count)
                                            return GC_ERR_INVALID_PARAMETER;
                                        *count = static_cast<uint32_t>(module->InterfaceCount());
                                        return GC_ERR_SUCCESS;
                                    });
}

RYGENTL_API GC_ERROR TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* id, size_t* size) {
    return WithModule<SystemModule>(system,
                                    [&](const std::shared_ptr<SystemModule>& module) -> GC_ERROR {
                                        if (!size)
                                            return GC_ERR_INVALID_PARAMETER;
                                        const auto state = module->InterfaceAt(index);
                                        if (!state)
                                            return GC_ERR_INVALID_PARAMETER;
                                        return WriteText(state->host.Id(), id, size);
                                    });
}

RYGENTL_API GC_ERROR TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD cmd,
                                        INFO_DATATYPE* type, void* buffer, size_t* size) {
    return WithModule<SystemModule>(
        system, [&](const std::shared_ptr<SystemModule>& module) -> GC_ERROR {
            if (!id || !size)
                return GC_ERR_INVALID_PARAMETER;
            const auto state = module->FindInterface(id);
            if (!state)
                return GC_ERR_INVALID_ID;
            return QueryInterfaceInfo(state->host, cmd, type, buffer, size);
        });
}

RYGENTL_API GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* iface) {
    return WithModule<SystemModule>(
        system, [&](const std::shared_ptr<SystemModule>& module) -> GC_ERROR {
            if (!id || !iface)
                return GC_ERR_INVALID_PARAMETER;
            auto state = module->FindInterface(id);
            if (!state)
                return GC_ERR_INVALID_ID;
            *iface = TheLibrary().handles.Add(
                std::make_shared<InterfaceModule>(std::move(state), module->Settings()));
            return GC_ERR_SUCCESS;
        });
}

}  // extern "C"
