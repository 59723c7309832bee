// Event registration and the blocking wait.
#include "device_module.h"
#include "library.h"
#include "stream_module.h"

using namespace ry::gentl;

namespace {

std::shared_ptr<EventChannel> ChannelOf(EVENTSRC_HANDLE source, EVENT_TYPE type) {
    if (type == EVENT_NEW_BUFFER)
        if (const auto stream = Find<StreamModule>(source))
            return stream->NewBufferEvents();
    if (type == EVENT_ERROR)
        if (const auto device = Find<DeviceModule>(source))
            return device->ErrorEvents();
    return nullptr;
}

// The event module registered for (source, type), if any.
std::shared_ptr<EventModule> RegisteredEvent(EVENTSRC_HANDLE source,
                                             const std::shared_ptr<EventChannel>& channel) {
    return TheLibrary().handles.FindIf<EventModule>([&](const EventModule& event) {
        return event.source == source && event.channel == channel;
    });
}

}  // namespace

extern "C" {

RYGENTL_API GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* event) {
    return Guarded([&]() -> GC_ERROR {
        Library& library = TheLibrary();
        if (!library.handles.Contains(source))
            return GC_ERR_INVALID_HANDLE;
        if (!event)
            return GC_ERR_INVALID_PARAMETER;
        const auto channel = ChannelOf(source, type);
        if (!channel)
            return GC_ERR_NOT_IMPLEMENTED;
        std::lock_guard lock(library.mutex);
        const auto existing = RegisteredEvent(source, channel);
        // Registering twice hands back the same event: callers re-register after rebuilding
        // their buffers without unregistering first.
        *event = existing
                     ? existing.get()
                     : library.handles.Add(std::make_shared<EventModule>(channel, type, source));
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE sourceOrEvent, EVENT_TYPE type) {
    return Guarded([&]() -> GC_ERROR {
        Library& library = TheLibrary();
        std::lock_guard lock(library.mutex);
        std::shared_ptr<EventModule> removed;
        if (const auto event = library.handles.Find<EventModule>(sourceOrEvent)) {
            if (event->type != type)
                return GC_ERR_INVALID_PARAMETER;
            removed = library.handles.Remove<EventModule>(sourceOrEvent);
        } else {
            const auto channel = ChannelOf(sourceOrEvent, type);
            if (!channel)
                return GC_ERR_INVALID_HANDLE;
            const auto match = RegisteredEvent(sourceOrEvent, channel);
            if (!match)
                return GC_ERR_NOT_AVAILABLE;
            removed = library.handles.Remove<EventModule>(match.get());
        }
        removed->channel->Kill();  // a thread still waiting on it must not hang
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR InitEvent(EVENT_HANDLE event) {
    return WithModule<EventModule>(event,
                                   [&](const std::shared_ptr<EventModule>& module) -> GC_ERROR {
                                       module->channel->ClearKill();
                                       return GC_ERR_SUCCESS;
                                   });
}

RYGENTL_API GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size,
                                  uint64_t timeoutMs) {
    return WithModule<EventModule>(event,
                                   [&](const std::shared_ptr<EventModule>& module) -> GC_ERROR {
                                       if (!buffer || !size)
                                           return GC_ERR_INVALID_PARAMETER;
                                       return module->channel->Wait(buffer, size, timeoutMs);
                                   });
}

RYGENTL_API GC_ERROR EventFlush(EVENT_HANDLE event) {
    return WithModule<EventModule>(event,
                                   [&](const std::shared_ptr<EventModule>& module) -> GC_ERROR {
                                       module->channel->Flush();
                                       return GC_ERR_SUCCESS;
                                   });
}

RYGENTL_API GC_ERROR EventKill(EVENT_HANDLE event) {
    return WithModule<EventModule>(event,
                                   [&](const std::shared_ptr<EventModule>& module) -> GC_ERROR {
                                       module->channel->Kill();
                                       return GC_ERR_SUCCESS;
                                   });
}

}  // extern "C"
