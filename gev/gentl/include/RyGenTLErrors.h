/* Status codes of the transport layer's C API. -1001 to -1015 and -10000 are the GenTL
 * standard's; -10001 to -10009 are this library's own extensions. Applications and the
 * SDK compare against these numbers, so they never change. */
#ifndef RY_GENTL_ERRORS_H
#define RY_GENTL_ERRORS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t GC_ERROR;

enum GC_ERROR_LIST {
    GC_ERR_SUCCESS = 0,
    GC_ERR_ERROR = -1001,
    GC_ERR_NOT_INITIALIZED = -1002,
    GC_ERR_NOT_IMPLEMENTED = -1003,
    GC_ERR_RESOURCE_IN_USE = -1004,
    GC_ERR_ACCESS_DENIED = -1005,
    GC_ERR_INVALID_HANDLE = -1006,
    GC_ERR_INVALID_ID = -1007,
    GC_ERR_NO_DATA = -1008,
    GC_ERR_INVALID_PARAMETER = -1009,
    GC_ERR_IO = -1010,
    GC_ERR_TIMEOUT = -1011,
    GC_ERR_ABORT = -1012,
    GC_ERR_INVALID_BUFFER = -1013,
    GC_ERR_NOT_AVAILABLE = -1014,
    GC_ERR_INVALID_ADDRESS = -1015,
    GC_ERR_CUSTOM_ID = -10000,
    GC_ERR_SOCKET = -10001,
    GC_ERR_OPEN_STREAM = -10002,
    GC_ERR_PUT_BUFFER = -10003,
    GC_ERR_DEVICE = -10004,
    GC_ERR_INTERFACE = -10005,
    GC_ERR_MEMORY_ALLOCATION = -10006,
    GC_ERR_NO_SYSTEM_RESOURCES = -10007,
    GC_ERR_INSUFFICIENT_SIZE = -10008,
    GC_ERR_INVALID_DATA = -10009
};

#ifdef __cplusplus
}
#endif

#endif
