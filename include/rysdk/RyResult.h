/// \file
/// Result codes returned by every operation of the SDK except the pixel conversions.
#pragma once

#include <cstdint>

#include "rysdk/RyExport.h"
#include "rysdk/RyResultCodes.h"

namespace RYSDK {

/// The value is also the index of its text (see GetResultText); numbers never change. The
/// names and numbers are listed in RyResultCodes.h.
enum RESULT : int32_t {
/// Turns one entry of RY_RESULT_CODES into an enumerator; undefined again right after.
#define RY_RESULT_ENUMERATOR(name, value) name = value,
    RY_RESULT_CODES(RY_RESULT_ENUMERATOR)
#undef RY_RESULT_ENUMERATOR
};

/// The number of results: every RESULT value lies in 0..RESULT_COUNT - 1.
inline constexpr int32_t RESULT_COUNT = 55;

/// The text of a result, or null for a number outside 0..54. The text is static.
RYSDK_API const wchar_t* GetResultText(RESULT result) noexcept;

}  // namespace RYSDK
