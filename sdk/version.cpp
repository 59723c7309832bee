#include "rysdk/RyVersion.h"

#define RYSDK_STRINGIFY_(x) #x
#define RYSDK_STRINGIFY(x) RYSDK_STRINGIFY_(x)

const char* RYSDK::GetSdkVersion() noexcept {
    return RYSDK_STRINGIFY(RYSDK_VERSION_MAJOR) "." RYSDK_STRINGIFY(
        RYSDK_VERSION_MINOR) "." RYSDK_STRINGIFY(RYSDK_VERSION_PATCH);
}
