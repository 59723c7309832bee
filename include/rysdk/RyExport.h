// Symbol export for libRyGigE. The library is built with hidden visibility; only what is
// marked RYSDK_API is part of its ABI.
#pragma once

#if defined(__GNUC__)
#define RYSDK_API __attribute__((visibility("default")))
#else
#define RYSDK_API
#endif

#ifdef __cplusplus
#define RYSDK_EXTERN_C extern "C"
#else
#define RYSDK_EXTERN_C
#endif
