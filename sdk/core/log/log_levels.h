// Levels of the diagnostic log. The event log and the trace formatter share 0 to 3; the
// event log calls its "etc" level 4 while the trace formatter calls it 5, and both keep
// that difference because applications filter on the numbers.
#pragma once

#include <cstdint>

namespace RYSDK::core {

inline constexpr uint32_t kLogInfo = 0;
inline constexpr uint32_t kLogErr = 1;
inline constexpr uint32_t kLogDebug = 2;
inline constexpr uint32_t kLogException = 3;
inline constexpr uint32_t kLogEtc = 4;
inline constexpr uint32_t kTraceEtc = 5;

// The label every record written by the SDK itself carries.
inline constexpr const wchar_t* kSdkSourceLabel = L"RyGigE.V7.DLL";

}  // namespace RYSDK::core
