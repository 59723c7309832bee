// RyGigE: construction, Open/Close, settings and the application's own log records.
#include <cstdint>

#include "core/log/bounded_format.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/port_settings.h"
#include "system/system_log.h"

namespace RYSDK {

using core::kLogDebug;
using core::kLogErr;
using core::kLogEtc;
using system::TL;

namespace {

// Settings the transport layer keeps behind pseudo-addresses of the system port.
constexpr uint64_t kGvcpTimeoutAddress = 2;
constexpr uint64_t kMtuOptimizeAddress = 3;
constexpr uint64_t kMtuTimeoutAddress = 4;
constexpr const wchar_t* kWriteFailure = L"RESULT_ERROR : GCWritePort return not success ret[%ls]";

unsigned int AddressForLog(const void* object) {
    return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(object));
}

// The time-out setters refuse a closed transport layer and report what they set.
RESULT WriteTimeoutSetting(TransportHandle systemHandle, uint64_t pseudoAddress,
                           unsigned int timeoutMs, const core::LogSite& site, uint32_t line,
                           const wchar_t* successFormat) {
    if (systemHandle == nullptr) {
        core::LogEvent(site, line, kLogErr,
                       L"RESULT_ERROR_INVALID_HANDLE : hTL is invalid pointer");
        return RESULT_ERROR_INVALID_HANDLE;
    }
    const RESULT result =
        system::WritePortValue(systemHandle, pseudoAddress, timeoutMs, site, line, kWriteFailure);
    if (result == RESULT_SUCCESS)
        core::LogEvent(site, line, kLogDebug, successFormat, timeoutMs);
    return result;
}

RESULT ReadTimeoutSetting(TransportHandle systemHandle, uint64_t pseudoAddress,
                          unsigned int& timeoutMs, const core::LogSite& site, uint32_t line) {
    if (systemHandle == nullptr)
        return RESULT_ERROR_INVALID_HANDLE;
    return system::ReadPortValue(systemHandle, pseudoAddress, timeoutMs, site, line);
}

}  // namespace

// Copies share one transport-layer session: the library stays initialised and the system
// handle open until the last of them is destroyed, so no copy closes what another uses.
struct RyGigE::SystemSession {
    TransportHandle handle = nullptr;

    SystemSession() { TL().GCInitLib(); }
    ~SystemSession() {
        if (handle != nullptr)
            TL().TLClose(handle);
        TL().GCCloseLib();
    }
    SystemSession(const SystemSession&) = delete;
    SystemSession& operator=(const SystemSession&) = delete;
};

RyGigE::RyGigE() {
    RY_GIGE_SITE(RyGigE);
    RY_LOG_TRACE(kSite, kLogDebug, L"RyGigE::RyGigE - Start");
    core::RegisterEventSource();
    RY_LOG_EVENT(kSite, kLogEtc, L"RyGigE DLL was loaded (0x%X)", AddressForLog(this));
    m_Session = std::make_shared<SystemSession>();
    RY_LOG_TRACE(kSite, kLogDebug, L"RyGigE::RyGigE - End");
}

RyGigE::RyGigE(const RyGigE& other) = default;
RyGigE& RyGigE::operator=(const RyGigE& other) = default;

RyGigE::~RyGigE() {
    RY_GIGE_SITE(~RyGigE);
    RY_LOG_TRACE(kSite, kLogDebug, L"~RyGigE - Start");
    RY_LOG_EVENT(kSite, kLogEtc, L"RyGigE DLL was unloaded (0x%X)", AddressForLog(this));
    m_InterfaceInfoList.clear();
    // Interfaces this object alone still holds close their cameras while the transport
    // layer is still open.
    m_Interfaces.clear();
    m_Session.reset();
    core::DeregisterEventSource();
    RY_LOG_TRACE(kSite, kLogDebug, L"~RyGigE - End");
}

RESULT RyGigE::Open() {
    RY_GIGE_SITE(Open);
    return RY_GUARDED(kSite, [&] {
        const GC_ERROR rc = TL().TLOpen(&m_hTL);
        if (rc == GC_ERR_SUCCESS && m_Session->handle != m_hTL) {
            if (m_Session->handle != nullptr)
                TL().TLClose(m_Session->handle);
            m_Session->handle = m_hTL;
        }
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"TLOpen is failed Ret[%ls]", core::TransportCodeText(rc));
            return core::ResultFromTLOpenFailure(rc);
        }
        if (m_Discovered != 0)
            return RESULT_SUCCESS;
        const RESULT result = Discovery();
        if (result != RESULT_SUCCESS)
            return result;
        m_Discovered = 1;
        return RESULT_SUCCESS;
    });
}

RESULT RyGigE::Close() {
    RY_GIGE_SITE(Close);
    return RY_GUARDED(kSite, [&] {
        m_InterfaceInfoList.clear();
        for (auto it = m_Interfaces.begin(); it != m_Interfaces.end();) {
            it->second->CloseInterface();
            it = m_Interfaces.erase(it);
        }
        return RESULT_SUCCESS;
    });
}

RESULT RyGigE::SetGVCPTimeout(unsigned int timeoutMs) {
    RY_GIGE_SITE(SetGVCPTimeout);
    return WriteTimeoutSetting(m_hTL, kGvcpTimeoutAddress, timeoutMs, kSite, __LINE__,
                               L"SetGVCPTimeout uTimeout(%d)");
}

RESULT RyGigE::GetGVCPTimeout(unsigned int& timeoutMs) {
    RY_GIGE_SITE(GetGVCPTimeout);
    return ReadTimeoutSetting(m_hTL, kGvcpTimeoutAddress, timeoutMs, kSite, __LINE__);
}

RESULT RyGigE::UseMTUOptimize(int use) {
    if (m_hTL == nullptr)
        return RESULT_ERROR_INVALID_HANDLE;
    uint32_t value = static_cast<uint32_t>(use);
    size_t size = sizeof(value);
    return core::ResultFromTransportCode(
        TL().GCWritePort(m_hTL, kMtuOptimizeAddress, &value, &size));
}

RESULT RyGigE::SetMTUTimeout(unsigned int timeoutMs) {
    RY_GIGE_SITE(SetMTUTimeout);
    return WriteTimeoutSetting(m_hTL, kMtuTimeoutAddress, timeoutMs, kSite, __LINE__,
                               L"SetMTUTimeout uTimeout(%d)");
}

RESULT RyGigE::GetMTUTimeout(unsigned int& timeoutMs) {
    RY_GIGE_SITE(GetMTUTimeout);
    return ReadTimeoutSetting(m_hTL, kMtuTimeoutAddress, timeoutMs, kSite, __LINE__);
}

RESULT RyGigE::SetMultiCastAddress(uint32_t address) {
    m_MultiCastAddress = address;
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetMultiCastAddress(uint32_t& address) {
    address = m_MultiCastAddress;
    return RESULT_SUCCESS;
}

RESULT RyGigE::SetIgnoreSubnet(bool ignore) {
    m_IgnoreSubnet = ignore;
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetIgnoreSubnet(bool& ignore) {
    ignore = m_IgnoreSubnet;
    return RESULT_SUCCESS;
}

RESULT RyGigE::SetDiscoveryTimeout(unsigned int timeoutMs) {
    m_DiscoveryTimeout = timeoutMs;
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetDiscoveryTimeout(unsigned int& timeoutMs) {
    timeoutMs = m_DiscoveryTimeout;
    return RESULT_SUCCESS;
}

RESULT RyGigE::UseQueueManager(int use) {
    m_UseQueueManager = use;
    return RESULT_SUCCESS;
}

RESULT RyGigE::SetCCPPrivilege(CCP_PRIVILEGE privilege) {
    m_Privilege = privilege;
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetFilterType(unsigned int* filterType) {
    if (filterType == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *filterType = m_FilterType;
    return RESULT_SUCCESS;
}

RESULT RyGigE::SetFilterType(unsigned int filterType) {
    m_FilterType = filterType;
    return RESULT_SUCCESS;
}

RESULT RyGigE::UserLogging(const wchar_t* label, const wchar_t* file, const wchar_t* function,
                           uint32_t line, const wchar_t* message) {
    const core::EventSourceHandle source = core::CurrentEventSource();
    if (source == nullptr)
        return RESULT_ERROR_RYGIGE_INITIALIZATION;
    if (label == nullptr || file == nullptr || function == nullptr || message == nullptr) {
        return RESULT_ERROR_INVALID_PARAMETER;
    }
    thread_local wchar_t formatted[core::kEventMessageCapacity];
    core::FormatWithoutArguments(formatted, core::kEventMessageCapacity, message);
    core::WriteEventLogMessage(source, label, core::kLogInfo, file, function, line, formatted);
    return RESULT_SUCCESS;
}

}  // namespace RYSDK
