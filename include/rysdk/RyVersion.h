/// \file
/// The SDK's version, as compiled into the application and as found at run time.
#pragma once

#include "rysdk/RyExport.h"

#define RYSDK_VERSION_MAJOR 7  ///< Major version of these headers; the ABI changes with it.
#define RYSDK_VERSION_MINOR 0  ///< Minor version of these headers.
#define RYSDK_VERSION_PATCH 0  ///< Patch level of these headers.

namespace RYSDK {

/// "major.minor.patch" of the loaded library; compare with the macros to detect a
/// library older than the headers an application was built with.
RYSDK_API const char* GetSdkVersion() noexcept;

}  // namespace RYSDK
