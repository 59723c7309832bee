#include "core/log/log_routing.h"

#include <mutex>

#include "core/log/syslog_writer.h"
#include "rysdk/RyEventLog.h"

namespace RYSDK::core {
namespace {

enum class SinkKind { Syslog, Callback, Silent };

struct Routing {
    std::mutex mutex;
    SinkKind sink = SinkKind::Syslog;
    EventLogCallback eventCallback = nullptr;
    void* eventContext = nullptr;
    TraceCallback traceCallback = nullptr;
    void* traceContext = nullptr;
    SyslogWriter syslog{"RyGigE"};
};

Routing& TheRouting() {
    static Routing routing;
    return routing;
}

}  // namespace

void DeliverEventRecord(uint16_t eventType, uint32_t eventId, const wchar_t* record) noexcept {
    Routing& routing = TheRouting();
    std::unique_lock lock(routing.mutex);
    switch (routing.sink) {
        case SinkKind::Silent:
            return;
        case SinkKind::Syslog:
            routing.syslog.Write(eventType, record);
            return;
        case SinkKind::Callback: {
            const auto callback = routing.eventCallback;
            void* context = routing.eventContext;
            lock.unlock();
            callback(context, eventType, eventId, record);
            return;
        }
    }
}

void DeliverTraceLine(const wchar_t* line) noexcept {
    Routing& routing = TheRouting();
    std::unique_lock lock(routing.mutex);
    const auto callback = routing.traceCallback;
    void* context = routing.traceContext;
    lock.unlock();
    if (callback != nullptr)
        callback(context, line);
}

}  // namespace RYSDK::core

void RYSDK::SetEventLogCallback(EventLogCallback callback, void* context) noexcept {
    auto& routing = core::TheRouting();
    std::lock_guard lock(routing.mutex);
    routing.sink = callback != nullptr ? core::SinkKind::Callback : core::SinkKind::Silent;
    routing.eventCallback = callback;
    routing.eventContext = context;
}

void RYSDK::UseSyslogEventLog() noexcept {
    auto& routing = core::TheRouting();
    std::lock_guard lock(routing.mutex);
    routing.sink = core::SinkKind::Syslog;
    routing.eventCallback = nullptr;
    routing.eventContext = nullptr;
}

void RYSDK::SetTraceCallback(TraceCallback callback, void* context) noexcept {
    auto& routing = core::TheRouting();
    std::lock_guard lock(routing.mutex);
    routing.traceCallback = callback;
    routing.traceContext = context;
}
