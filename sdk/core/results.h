// Results, their texts, and how the transport layer's status codes become results.
#pragma once

#include <cstdint>

#include "rysdk/RyResult.h"

namespace RYSDK::core {

// The text of a result, or null outside 0..54.
const wchar_t* ResultText(RESULT result) noexcept;

// The general mapping of a transport status onto a result; anything not listed is
// RESULT_ERROR, so callers that must tell a time-out apart test the status first.
RESULT ResultFromTransportCode(int32_t code) noexcept;

// The result RyGigE::Open reports when the transport layer refuses to open.
RESULT ResultFromTLOpenFailure(int32_t code) noexcept;

// Names a transport status for a log line, such as "GC_ERR_TIMEOUT (-1011)". The text
// lives in a buffer of the calling thread that the thread's next call overwrites.
const wchar_t* TransportCodeText(int32_t code) noexcept;

}  // namespace RYSDK::core
