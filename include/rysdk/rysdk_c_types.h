/** \file
 * Records, enumerations and handle types of the flat C interface (see rysdk_c.h). Every
 * record has the layout of its C++ counterpart in namespace RYSDK, byte for byte; the
 * sizes and offsets below are checked by the compiler in C and in C++. */
#ifndef RYSDK_C_TYPES_H
#define RYSDK_C_TYPES_H

#include <stddef.h>
#include <stdint.h>

#include "RyPixelFormatCodes.h"
#include "RyResultCodes.h"

/** \cond INTERNAL */
#ifdef __cplusplus
#define RY_C_STATIC_ASSERT(condition, name) static_assert(condition, #name)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define RY_C_STATIC_ASSERT(condition, name) _Static_assert(condition, #name)
#else
/** C99 has no static assertion: an array of negative size stops the compiler instead. */
#define RY_C_STATIC_ASSERT(condition, name) typedef char ry_c_assert_##name[(condition) ? 1 : -1]
#endif
/** \endcond */

#ifdef __cplusplus
extern "C" {
#endif

/** Handles are the objects' own addresses, made distinct types so that a compiler catches a
 * camera handle passed where an interface handle belongs. The SDK owns every object behind
 * a handle; see rysdk_c.h for how long each stays valid. */
/** @{ */
typedef struct RY_GIGE_OBJECT* RYGIGE_HANDLE;
typedef struct RY_INTERFACE_OBJECT* RYINTERFACE_HANDLE;
typedef struct RY_CAMERA_OBJECT* RYCAMERA_HANDLE;
/** @} */

/** The result of every flat function except the pixel conversions; the value is also the
 * index of its text. */
typedef int32_t RESULT;
/** Turns one entry of the code lists into an enumerator; undefined again below. */
#define RY_C_ENUMERATOR(name, value) name = value,
enum { RY_RESULT_CODES(RY_C_ENUMERATOR) };

/** GigE Vision pixel format codes; bits 16 to 23 give the bits per pixel. */
typedef uint32_t PIXEL_FORMAT;
enum { RY_PIXEL_FORMAT_CODES(RY_C_ENUMERATOR) };
#ifdef __cplusplus
enum : uint32_t { RY_PIXEL_FORMAT_MAKER_CODES(RY_C_ENUMERATOR) };
#else
/** C99 enumerators stop at INT_MAX, so the maker-specific codes are constants of type
 * PIXEL_FORMAT (the test suite checks them against the list). */
#define PIXEL_FORMAT_YUV42210PACKED ((PIXEL_FORMAT)0x80180001u)
#define PIXEL_FORMAT_YUV42212PACKED ((PIXEL_FORMAT)0x80180002u)
#define PIXEL_FORMAT_YUV41110PACKED ((PIXEL_FORMAT)0x80120004u)
#define PIXEL_FORMAT_YUV41112PACKED ((PIXEL_FORMAT)0x80120005u)
#endif
#undef RY_C_ENUMERATOR

/** The control-channel privilege cameras are opened with. */
typedef int32_t CCP_PRIVILEGE;
enum {
    CCP_PRIVILEGE_NONE = 0,
    CCP_PRIVILEGE_EXCLUSIVE = 1,
    CCP_PRIVILEGE_CONTROL = 2,
    CCP_PRIVILEGE_MONITOR = 3
};

/** "Software" or "External" (see RYSDK::TRIGGER_SOURCE). */
typedef int32_t TRIGGER_SOURCE;
enum { TRIGGER_SOURCE_SOFTWARE = 0, TRIGGER_SOURCE_EXTERNAL = 1 };

/** The camera's "TriggerActivation" entry values. */
typedef int32_t TRIGGER_ACTIVATION;
enum { TRIGGER_ACTIVATION_RISING_EDGE = 0, TRIGGER_ACTIVATION_FALLING_EDGE = 1 };

/** Test images (see RYSDK::TESTIMAGE). */
typedef int32_t TESTIMAGE;
enum {
    TESTIMAGE_OFF = 0,
    TESTIMAGE_HORIZONTAL_RAMP = 3,
    TESTIMAGE_VERTICAL_RAMP = 7,
    TESTIMAGE_DIAGONAL_RAMP = 8
};

/** The camera's "ReadoutMode" entry values. */
typedef int32_t READOUT;
enum { READOUT_NORMAL = 0, READOUT_FAST = 1 };

/** The camera's "ExposureMode" entry values. */
typedef int32_t EXPOSURE_MODE;
enum { EXPOSURE_MODE_TIMED = 0, EXPOSURE_MODE_TRIGGER_WIDTH = 1 };

/** The camera's "GainSelector" entry values. */
typedef int32_t GAIN_SEL;
enum { GAIN_SEL_ALL = 0, GAIN_SEL_RED = 1, GAIN_SEL_GREEN = 2, GAIN_SEL_BLUE = 3 };

/** The camera's "BlackLevelSelector" entry values. */
typedef int32_t BLACKLEVEL_SEL;
enum {
    BLACKLEVEL_SEL_ALL = 0,
    BLACKLEVEL_SEL_RED = 1,
    BLACKLEVEL_SEL_GREEN = 2,
    BLACKLEVEL_SEL_BLUE = 3
};

/** The level the camera's strobe output takes while it is active. */
typedef int32_t STROBE_POLARITY;
enum { STROBE_POLARITY_ACTIVE_HIGH = 0, STROBE_POLARITY_ACTIVE_LOW = 1 };

/** What CameraGetCustomCommand reads of a feature; entry i of an enumeration is 245 + i. */
typedef int32_t GET_CUSTOM_COMMAND;
enum {
    GET_CUSTOM_COMMAND_VALUE = 240,
    GET_CUSTOM_COMMAND_NUM = 241,
    GET_CUSTOM_COMMAND_MIN = 242,
    GET_CUSTOM_COMMAND_MAX = 243,
    GET_CUSTOM_COMMAND_INC = 244,
    GET_CUSTOM_COMMAND_INDEX = 245
};

/** What CameraGetStreamInfo reads. */
typedef int32_t STREAM_INFO;
enum { STREAM_INFO_LOST_FRAMES = 0, STREAM_INFO_MISSING_PACKETS = 1 };

/** The application's own record: the SDK hands the pointer given at open back as the first
 * argument of every callback and never reads the fields. */
typedef struct OBJECT_INFO {
    void* pUserPointer; /**< the application's own */
    void* pContext;     /**< the application's own */
} OBJECT_INFO;

/** One delivered frame. The record is valid during the image callback (or, from
 * CameraGetGrabData, as the caller's copy); pImage points into the camera's buffer pool and
 * stays valid until the buffer is queued again. */
typedef struct IMAGE_INFO {
    RESULT result;            /**< 0 when the camera's pixel format was read for this frame */
    uint32_t blockId;         /**< block id of the frame (low 32 bits) */
    PIXEL_FORMAT pixelFormat; /**< Mono8 when the camera's pixel format could not be read */
    uint32_t width;           /**< pixels per line */
    uint32_t height;          /**< lines */
    uint32_t reserved0;       /**< never written */
    uint64_t timestamp;       /**< device ticks */
    uint32_t bufferStatus;    /**< 0 complete, 1 incomplete, 2 too large for the buffer, 3 empty */
    uint8_t frameFlag;        /**< bits: 0x01 incomplete, 0x02 too small, 0x04 a packet resent */
    uint8_t reserved1[3];     /**< never written */
    void* pImage;             /**< pixels; owned by the camera's buffer pool */
} IMAGE_INFO;

/** What the disconnect callback learns about the lost camera. */
typedef struct DISCONNECT_INFO {
    uint32_t heartBeatTimeout;         /**< milliseconds; 0xFFFFFFFF when it could not be read */
    uint32_t heartBeatTimeoutTryCount; /**< failed heartbeats that report a loss; 0xFFFFFFFF when
                                          unreadable */
} DISCONNECT_INFO;

/** One camera as discovery saw it. */
typedef struct RYCAMERA_INFO {
    uint32_t m_ErrorFlag;         /**< 1 once opening the camera's interface failed */
    uint32_t m_Result;            /**< RESULT of the failing step; 55 while not set */
    uint32_t m_DeviceIndex;       /**< the camera's index on its interface */
    char m_Name[256];             /**< device identifier: the key to open and find it by */
    char m_ModelName[128];        /**< from the camera's discovery answer */
    char m_ManufacturerName[128]; /**< from the camera's discovery answer */
    char m_IPAddress[32];         /**< dotted IPv4 address */
    char m_MACAddress[32];        /**< "00:11:22:33:44:55" */
} RYCAMERA_INFO;

/** One network interface as discovery saw it, without its cameras (count them with
 * RyGetNumCamerasByIndex, read them with RyDiscoveryCameraInfo). */
typedef struct RYINTERFACE_INFO {
    uint32_t m_ErrorFlag; /**< 1 once opening the interface for a camera failed */
    RESULT m_Result;      /**< the failing step's result, else 0 */
    uint32_t m_Index;     /**< index in the transport layer's interface list */
    char m_Name[256];     /**< display name */
} RYINTERFACE_INFO;

/** One feature of the camera's property list. */
typedef struct PROPERTY_INFO {
    uint32_t type;           /**< the node's interface type */
    uint32_t accessMode;     /**< NI 0, NA 1, WO 2, RO 3, RW 4 */
    uint32_t visibility;     /**< Beginner 0, Expert 1, Guru 2, Invisible 3 */
    uint32_t representation; /**< of an integer or float feature; 7 for every other kind */
    uint32_t reserved;       /**< 0xFFFFFFFF */
    char name[256];          /**< the feature's name */
    char displayName[256];   /**< its display name */
    char description[2048];  /**< its description (the tool tip when it has none) */
} PROPERTY_INFO;

/** A camera event as its callback receives it; `object` is the camera, `context` the
 * context given to CameraSetEventControl. */
typedef struct EVENT_DATA {
    uint16_t eventId;       /**< the event's identifier */
    uint16_t streamChannel; /**< 0xFFFF when the event names no stream */
    uint32_t dataSize;      /**< bytes at `data`, 0 for a plain event */
    void* object;           /**< the camera */
    void* context;          /**< the context given at registration */
    uint64_t blockId;       /**< the block id the event refers to */
    uint64_t timestamp;     /**< device ticks */
    const uint8_t* data;    /**< the payload; valid during the callback only */
} EVENT_DATA;

/** Called for every frame, on the camera's grab thread (or its callback thread). */
typedef void (*pImageCallbackFn)(OBJECT_INFO* object, IMAGE_INFO* image);
/** Called once when the camera stops answering, on its connection monitor thread. */
typedef void (*pDisconnectCallbackFn)(OBJECT_INFO* object, DISCONNECT_INFO info);
/** Called for a camera event, on the transport layer's event thread. */
typedef void (*pEventCallbackFn)(char* eventName, EVENT_DATA* eventData);

/** \cond INTERNAL */
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
/** \endcond */

#ifdef __cplusplus
}
#endif

#endif /* RYSDK_C_TYPES_H */
