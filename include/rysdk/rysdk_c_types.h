/* Records, enumerations and handle types of the flat C interface (see rysdk_c.h). Every
 * record has the layout of its C++ counterpart in namespace RYSDK, byte for byte; the
 * sizes and offsets below are checked by the compiler in C and in C++. */
#ifndef RYSDK_C_TYPES_H
#define RYSDK_C_TYPES_H

#include <stddef.h>
#include <stdint.h>

#include "RyPixelFormatCodes.h"
#include "RyResultCodes.h"

#ifdef __cplusplus
#define RY_C_STATIC_ASSERT(condition, name) static_assert(condition, #name)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define RY_C_STATIC_ASSERT(condition, name) _Static_assert(condition, #name)
#else
/* C99 has no static assertion: an array of negative size stops the compiler instead. */
#define RY_C_STATIC_ASSERT(condition, name) typedef char ry_c_assert_##name[(condition) ? 1 : -1]
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Handles are the objects' own addresses, made distinct types so that a compiler catches a
 * camera handle passed where an interface handle belongs. The SDK owns every object behind
 * a handle; see rysdk_c.h for how long each stays valid. */
typedef struct RY_GIGE_OBJECT* RYGIGE_HANDLE;
typedef struct RY_INTERFACE_OBJECT* RYINTERFACE_HANDLE;
typedef struct RY_CAMERA_OBJECT* RYCAMERA_HANDLE;

/* The result of every flat function except the pixel conversions; the value is also the
 * index of its text. */
typedef int32_t RESULT;
#define RY_C_ENUMERATOR(name, value) name = value,
enum { RY_RESULT_CODES(RY_C_ENUMERATOR) };

/* GigE Vision pixel format codes; bits 16 to 23 give the bits per pixel. */
typedef uint32_t PIXEL_FORMAT;
enum { RY_PIXEL_FORMAT_CODES(RY_C_ENUMERATOR) };
#ifdef __cplusplus
enum : uint32_t { RY_PIXEL_FORMAT_MAKER_CODES(RY_C_ENUMERATOR) };
#else
/* C99 enumerators stop at INT_MAX, so the maker-specific codes are constants of type
 * PIXEL_FORMAT (the test suite checks them against the list). */
#define PIXEL_FORMAT_YUV42210PACKED ((PIXEL_FORMAT)0x80180001u)
#define PIXEL_FORMAT_YUV42212PACKED ((PIXEL_FORMAT)0x80180002u)
#define PIXEL_FORMAT_YUV41110PACKED ((PIXEL_FORMAT)0x80120004u)
#define PIXEL_FORMAT_YUV41112PACKED ((PIXEL_FORMAT)0x80120005u)
#endif
#undef RY_C_ENUMERATOR

/* The control-channel privilege cameras are opened with. */
typedef int32_t CCP_PRIVILEGE;
enum {
    CCP_PRIVILEGE_NONE = 0,
    CCP_PRIVILEGE_EXCLUSIVE = 1,
    CCP_PRIVILEGE_CONTROL = 2,
    CCP_PRIVILEGE_MONITOR = 3
};

typedef int32_t TRIGGER_SOURCE;
enum { TRIGGER_SOURCE_SOFTWARE = 0, TRIGGER_SOURCE_EXTERNAL = 1 };

typedef int32_t TRIGGER_ACTIVATION;
enum { TRIGGER_ACTIVATION_RISING_EDGE = 0, TRIGGER_ACTIVATION_FALLING_EDGE = 1 };

typedef int32_t TESTIMAGE;
enum {
    TESTIMAGE_OFF = 0,
    TESTIMAGE_HORIZONTAL_RAMP = 3,
    TESTIMAGE_VERTICAL_RAMP = 7,
    TESTIMAGE_DIAGONAL_RAMP = 8
};

typedef int32_t READOUT;
enum { READOUT_NORMAL = 0, READOUT_FAST = 1 };

typedef int32_t EXPOSURE_MODE;
enum { EXPOSURE_MODE_TIMED = 0, EXPOSURE_MODE_TRIGGER_WIDTH = 1 };

typedef int32_t GAIN_SEL;
enum { GAIN_SEL_ALL = 0, GAIN_SEL_RED = 1, GAIN_SEL_GREEN = 2, GAIN_SEL_BLUE = 3 };

typedef int32_t BLACKLEVEL_SEL;
enum {
    BLACKLEVEL_SEL_ALL = 0,
    BLACKLEVEL_SEL_RED = 1,
    BLACKLEVEL_SEL_GREEN = 2,
    BLACKLEVEL_SEL_BLUE = 3
};

typedef int32_t STROBE_POLARITY;
enum { STROBE_POLARITY_ACTIVE_HIGH = 0, STROBE_POLARITY_ACTIVE_LOW = 1 };

/* What CameraGetCustomCommand reads of a feature; entry i of an enumeration is 245 + i. */
typedef int32_t GET_CUSTOM_COMMAND;
enum {
    GET_CUSTOM_COMMAND_VALUE = 240,
    GET_CUSTOM_COMMAND_NUM = 241,
    GET_CUSTOM_COMMAND_MIN = 242,
    GET_CUSTOM_COMMAND_MAX = 243,
    GET_CUSTOM_COMMAND_INC = 244,
    GET_CUSTOM_COMMAND_INDEX = 245
};

/* What CameraGetStreamInfo reads. */
typedef int32_t STREAM_INFO;
enum { STREAM_INFO_LOST_FRAMES = 0, STREAM_INFO_MISSING_PACKETS = 1 };

/* The application's own record: the SDK hands the pointer given at open back as the first
 * argument of every callback and never reads the fields. */
typedef struct OBJECT_INFO {
    void* pUserPointer;
    void* pContext;
} OBJECT_INFO;

/* One delivered frame. The record is valid during the image callback (or, from
 * CameraGetGrabData, as the caller's copy); pImage points into the camera's buffer pool and
 * stays valid until the buffer is queued again. */
typedef struct IMAGE_INFO {
    RESULT result;
    uint32_t blockId;
    PIXEL_FORMAT pixelFormat;
    uint32_t width;
    uint32_t height;
    uint32_t reserved0;
    uint64_t timestamp;
    uint32_t bufferStatus;
    uint8_t frameFlag;
    uint8_t reserved1[3];
    void* pImage;
} IMAGE_INFO;

/* What the disconnect callback learns about the lost camera. */
typedef struct DISCONNECT_INFO {
    uint32_t heartBeatTimeout;
    uint32_t heartBeatTimeoutTryCount;
} DISCONNECT_INFO;

/* One camera as discovery saw it. */
typedef struct RYCAMERA_INFO {
    uint32_t m_ErrorFlag;
    uint32_t m_Result;
    uint32_t m_DeviceIndex;
    char m_Name[256];
    char m_ModelName[128];
    char m_ManufacturerName[128];
    char m_IPAddress[32];
    char m_MACAddress[32];
} RYCAMERA_INFO;

/* One network interface as discovery saw it, without its cameras (count them with
 * RyGetNumCamerasByIndex, read them with RyDiscoveryCameraInfo). */
typedef struct RYINTERFACE_INFO {
    uint32_t m_ErrorFlag;
    RESULT m_Result;
    uint32_t m_Index;
    char m_Name[256];
} RYINTERFACE_INFO;

/* One feature of the camera's property list. */
typedef struct PROPERTY_INFO {
    uint32_t type;
    uint32_t accessMode;
    uint32_t visibility;
    uint32_t representation;
    uint32_t reserved;
    char name[256];
    char displayName[256];
    char description[2048];
} PROPERTY_INFO;

/* A camera event as its callback receives it; `object` is the camera, `context` the
 * context given to CameraSetEventControl. */
typedef struct EVENT_DATA {
    uint16_t eventId;
    uint16_t streamChannel;
    uint32_t dataSize;
    void* object;
    void* context;
    uint64_t blockId;
    uint64_t timestamp;
    const uint8_t* data;
} EVENT_DATA;

/* Called for every frame, on the camera's grab thread (or its callback thread). */
typedef void (*pImageCallbackFn)(OBJECT_INFO* object, IMAGE_INFO* image);
/* Called once when the camera stops answering, on its connection monitor thread. */
typedef void (*pDisconnectCallbackFn)(OBJECT_INFO* object, DISCONNECT_INFO info);
/* Called for a camera event, on the transport layer's event thread. */
typedef void (*pEventCallbackFn)(char* eventName, EVENT_DATA* eventData);

RY_C_STATIC_ASSERT(sizeof(OBJECT_INFO) == 16, object_info_size);
RY_C_STATIC_ASSERT(sizeof(IMAGE_INFO) == 48, image_info_size);
RY_C_STATIC_ASSERT(offsetof(IMAGE_INFO, timestamp) == 24, image_info_timestamp);
RY_C_STATIC_ASSERT(offsetof(IMAGE_INFO, bufferStatus) == 32, image_info_status);
RY_C_STATIC_ASSERT(offsetof(IMAGE_INFO, frameFlag) == 36, image_info_flag);
RY_C_STATIC_ASSERT(offsetof(IMAGE_INFO, pImage) == 40, image_info_pixels);
RY_C_STATIC_ASSERT(sizeof(DISCONNECT_INFO) == 8, disconnect_info_size);
RY_C_STATIC_ASSERT(sizeof(RYCAMERA_INFO) == 588, camera_info_size);
RY_C_STATIC_ASSERT(offsetof(RYCAMERA_INFO, m_ModelName) == 268, camera_info_model);
RY_C_STATIC_ASSERT(offsetof(RYCAMERA_INFO, m_MACAddress) == 556, camera_info_mac);
RY_C_STATIC_ASSERT(sizeof(RYINTERFACE_INFO) == 268, interface_info_size);
RY_C_STATIC_ASSERT(sizeof(PROPERTY_INFO) == 2580, property_info_size);
RY_C_STATIC_ASSERT(sizeof(EVENT_DATA) == 48, event_data_size);

#ifdef __cplusplus
}
#endif

#endif /* RYSDK_C_TYPES_H */
