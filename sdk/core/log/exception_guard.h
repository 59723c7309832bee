// Every public operation runs its body inside this guard: an exception never crosses the
// API. It is logged with the operation's site and the operation returns
// RESULT_ERROR_EXCEPTION.
#pragma once

#include <exception>

#include "core/log/log.h"
#include "rysdk/RyResult.h"

namespace RYSDK::core {

// Logs an exception's text at level 1 to the event log and at level 3 as a trace line.
void ReportException(const LogSite& site, uint32_t line, const char* what) noexcept;

// Logs an exception of a type that carries no text.
void ReportUnknownException(const LogSite& site, uint32_t line) noexcept;

template <typename Body>
RESULT RunGuarded(const LogSite& site, uint32_t line, Body&& body) noexcept {
    try {
        return body();
    } catch (const std::exception& error) {
        ReportException(site, line, error.what());
    } catch (...) {
        ReportUnknownException(site, line);
    }
    return RESULT_ERROR_EXCEPTION;
}

}  // namespace RYSDK::core

// RY_GUARDED(kSite, [&] { ...; return RESULT_SUCCESS; })
// Variadic so that a body with braced initialisers needs no extra parentheses.
#define RY_GUARDED(site, ...) ::RYSDK::core::RunGuarded((site), __LINE__, __VA_ARGS__)
