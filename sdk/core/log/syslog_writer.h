// Writes event-log records to the system log through the /dev/log socket, under a source
// name of our own. Talking to the socket directly (instead of openlog/syslog) leaves the
// application's own syslog identity untouched.
#pragma once

#include <cstdint>
#include <string>

#include "core/platform/unique_fd.h"

namespace RYSDK::core {

class SyslogWriter {
  public:
    explicit SyslogWriter(std::string sourceName) : sourceName_(std::move(sourceName)) {}

    // Sends one record with the severity that follows its event type. A system without a
    // log socket loses the record silently: logging must never fail an operation.
    void Write(uint16_t eventType, const wchar_t* record) noexcept;

  private:
    bool Connect() noexcept;

    std::string sourceName_;
    UniqueFd socket_;
};

// The syslog priority (facility user) for an event type.
int SyslogPriority(uint16_t eventType) noexcept;

}  // namespace RYSDK::core
