#include "system/port_settings.h"

#include "system/system_log.h"

namespace RYSDK::system {

RESULT WritePortValue(TransportHandle port, uint64_t pseudoAddress, uint32_t value,
                      const core::LogSite& site, uint32_t line, const wchar_t* failureFormat) {
    size_t size = sizeof(value);
    const GC_ERROR rc = TL().GCWritePort(port, pseudoAddress, &value, &size);
    if (rc != GC_ERR_SUCCESS) {
        core::LogEvent(site, line, core::kLogErr, failureFormat, core::TransportCodeText(rc));
    }
    return core::ResultFromTransportCode(rc);
}

RESULT ReadPortValue(TransportHandle port, uint64_t pseudoAddress, uint32_t& value,
                     const core::LogSite& site, uint32_t line) {
    uint32_t read = 0;
    size_t size = sizeof(read);
    const GC_ERROR rc = TL().GCReadPort(port, pseudoAddress, &read, &size);
    if (rc != GC_ERR_SUCCESS) {
        core::LogEvent(site, line, core::kLogErr, L"GCReadPort returned not success ret[%ls]",
                       core::TransportCodeText(rc));
        return core::ResultFromTransportCode(rc);
    }
    value = read;
    return RESULT_SUCCESS;
}

}  // namespace RYSDK::system
