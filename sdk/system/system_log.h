// Shared by the system object's source files: the log sites and the transport table.
#pragma once

#include "core/log/exception_guard.h"
#include "core/log/log.h"
#include "core/results.h"
#include "transport/transport_table.h"

namespace RYSDK::system {

inline const transport::TransportTable& TL() noexcept {
    return transport::Transport();
}

// Log site of a RyGigE member: RY_GIGE_SITE(Open) names "RYSDK::RyGigE::Open".
#define RY_GIGE_SITE(method)                        \
    static constexpr ::RYSDK::core::LogSite kSite { \
        L"RyGigE", L"RYSDK::RyGigE::" L## #method   \
    }
#define RY_INTERFACE_SITE(method)                           \
    static constexpr ::RYSDK::core::LogSite kSite {         \
        L"RyInterface", L"RYSDK::RyInterface::" L## #method \
    }

}  // namespace RYSDK::system
