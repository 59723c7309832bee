#include "core/log/syslog_writer.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <cstring>

#include "core/platform/text.h"
#include "rysdk/RyEventLog.h"

namespace RYSDK::core {

int SyslogPriority(uint16_t eventType) noexcept {
    switch (eventType) {
        case EVENT_LOG_ERROR:
            return LOG_USER | LOG_ERR;
        case EVENT_LOG_WARNING:
            return LOG_USER | LOG_WARNING;
        case EVENT_LOG_SUCCESS:
            return LOG_USER | LOG_NOTICE;
        default:
            return LOG_USER | LOG_INFO;
    }
}

bool SyslogWriter::Connect() noexcept {
    if (socket_.Valid())
        return true;
    UniqueFd fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!fd.Valid())
        return false;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, "/dev/log", sizeof(address.sun_path) - 1);
    if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        return false;
    }
    socket_ = std::move(fd);
    return true;
}

void SyslogWriter::Write(uint16_t eventType, const wchar_t* record) noexcept {
    try {
        if (!Connect())
            return;
        std::string datagram;
        datagram.append("<").append(std::to_string(SyslogPriority(eventType))).append(">");
        datagram.append(sourceName_).append("[").append(std::to_string(::getpid())).append("]: ");
        datagram += Narrow(record != nullptr ? record : L"");
        if (::send(socket_.Get(), datagram.data(), datagram.size(), MSG_NOSIGNAL) < 0) {
            // The log daemon may have restarted: reconnect on the next record.
            socket_.Reset();
        }
    } catch (...) {
        // Out of memory while building the datagram: the record is lost, nothing else.
    }
}

}  // namespace RYSDK::core
