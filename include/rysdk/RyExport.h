/// \file
/// Symbol export for libRyGigE. The library is built with hidden visibility; only what is
/// marked RYSDK_API is part of its ABI.
#pragma once

#if defined(__GNUC__)
/// Marks a class or function as exported from libRyGigE.
#define RYSDK_API __attribute__((visibility("default")))
#else
/// Marks a class or function as exported from libRyGigE (nothing on this compiler).
#define RYSDK_API
#endif

#ifdef __cplusplus
/// C linkage for a declaration shared by C and C++ callers; empty in C.
#define RYSDK_EXTERN_C extern "C"
#else
/// C linkage for a declaration shared by C and C++ callers; empty in C.
#define RYSDK_EXTERN_C
#endif
