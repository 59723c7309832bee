/* Records, enumerations and handle types of the flat C interface (see rysdk_c.h). Every
 * record has the layout of its C++ counterpart in namespace RYSDK, byte for byte; the
 * sizes and offsets below are checked by the compiler in C and in C++. */
#ifndef RYSDK_C_TYPES_H
#define RYSDK_C_TYPES_H

#include <stddef.h>
#include <stdint.h>

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
enum {
    RESULT_SUCCESS = 0,
    RESULT_ERROR = 1,
    RESULT_ERROR_OPENED_ALREADY = 2,
    RESULT_ERROR_INVALID_HANDLE = 3,
    RESULT_ERROR_TL_HANDLE = 4,
    RESULT_ERROR_TLOPEN = 5,
    RESULT_ERROR_IF_HANDLE = 6,
    RESULT_ERROR_RYGIGE_INITIALIZATION = 7,
    RESULT_ERROR_INVALID_PARAMETER = 8,
    RESULT_ERROR_DISCOVERY = 9,
    RESULT_ERROR_NO_CAMERAS = 10,
    RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST = 11,
    RESULT_ERROR_ABORTED_ALREADY = 12,
    RESULT_ERROR_ACCESS_DENIED = 13,
    RESULT_ERROR_RESOURCE_IN_USE = 14,
    RESULT_ERROR_CANNOT_FIND_INTERFACE = 15,
    RESULT_ERROR_XML_UNKNOWN_ARGUMENT = 16,
    RESULT_ERROR_XML_NODE_ACCESS_FAILED = 17,
    RESULT_ERROR_XML_NOT_EXIST_NODE = 18,
    RESULT_ERROR_XML_ENTERED_NODE_DOESNT_HAVE_ANY_VALUE = 19,
    RESULT_ERROR_XML_UNSUPPORTED_COMMAND = 20,
    RESULT_ERROR_INVALID_WIDTH = 21,
    RESULT_ERROR_INVALID_ADDRESS = 22,
    RESULT_ERROR_RYINTERFACE_NO_NIC = 23,
    RESULT_ERROR_RYINTERFACE_GETINTERFACENAME = 24,
    RESULT_ERROR_RYINTERFACE_OPENINTERFACE = 25,
    RESULT_ERROR_RYINTERFACE_CLOSEINTERFACE = 26,
    RESULT_ERROR_RYINTERFACE_GETNUMDEVICES = 27,
    RESULT_ERROR_RYINTERFACE_CANNOT_FIND_DEVICE = 28,
    RESULT_ERROR_RYCAMERA_INTERFACE_HANDLE = 29,
    RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER = 30,
    RESULT_ERROR_RYCAMERA_GETXML = 31,
    RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE = 32,
    RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE = 33,
    RESULT_ERROR_RYCAMERA_READ_ONLY = 34,
    RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT = 35,
    RESULT_ERROR_RYCAMERA_GRAB_TIMEOUT = 36,
    RESULT_ERROR_RYCAMERA_CALLBACK_NOT_NULL = 37,
    RESULT_ERROR_DEVCREATESTREAM = 38,
    RESULT_ERROR_STREAM_MTU = 39,
    RESULT_ERROR_TLGETNUMINTERFACES = 40,
    RESULT_ERROR_TLOPENINTERFACE = 41,
    RESULT_ERROR_TLCLOSEINTERFACE = 42,
    RESULT_ERROR_TLGETINTERFACENAME = 43,
    RESULT_ERROR_TLGETNUMDEVICES = 44,
    RESULT_ERROR_TLGETDEVICENAME = 45,
    RESULT_ERROR_TLOPENDEVICE = 46,
    RESULT_ERROR_INSUFFICIENT_RESOURCES = 47,
    RESULT_ERROR_MEMORY_ALLOCATION = 48,
    RESULT_ERROR_FILE_STREAM_OPEN_FAILURE = 49,
    RESULT_ERROR_FILE_STREAM_READ_FAILURE = 50,
    RESULT_ERROR_FILE_STREAM_WRITE_FAILURE = 51,
    RESULT_ERROR_FILE_STREAM_CLOSE_FAILURE = 52,
    RESULT_ERROR_FILE_STREAM_NOT_CORRECT_FILE_LENGTH = 53,
    RESULT_ERROR_EXCEPTION = 54,
};

/* GigE Vision pixel format codes; bits 16 to 23 give the bits per pixel. */
typedef uint32_t PIXEL_FORMAT;
enum {
    PIXEL_FORMAT_MONO8 = 0x01080001,
    PIXEL_FORMAT_MONO8SIGNED = 0x01080002,
    PIXEL_FORMAT_MONO10 = 0x01100003,
    PIXEL_FORMAT_MONO10PACKED = 0x010C0004,
    PIXEL_FORMAT_MONO12 = 0x01100005,
    PIXEL_FORMAT_MONO14 = 0x01100025,
    PIXEL_FORMAT_MONO12PACKED = 0x010C0006,
    PIXEL_FORMAT_MONO16 = 0x01100007,
    PIXEL_FORMAT_BAYERGR8 = 0x01080008,
    PIXEL_FORMAT_BAYERRG8 = 0x01080009,
    PIXEL_FORMAT_BAYERGB8 = 0x0108000A,
    PIXEL_FORMAT_BAYERBG8 = 0x0108000B,
    PIXEL_FORMAT_BAYERGR10 = 0x0110000C,
    PIXEL_FORMAT_BAYERRG10 = 0x0110000D,
    PIXEL_FORMAT_BAYERGB10 = 0x0110000E,
    PIXEL_FORMAT_BAYERBG10 = 0x0110000F,
    PIXEL_FORMAT_BAYERGR10PACKED = 0x010C0026,
    PIXEL_FORMAT_BAYERGR12PACKED = 0x010C002A,
    PIXEL_FORMAT_BAYERGR12 = 0x01100010,
    PIXEL_FORMAT_BAYERRG12 = 0x01100011,
    PIXEL_FORMAT_BAYERGB12 = 0x01100012,
    PIXEL_FORMAT_BAYERBG12 = 0x01100013,
    PIXEL_FORMAT_BAYERRG10PACKED = 0x010C0027,
    PIXEL_FORMAT_BAYERRG12PACKED = 0x010C002B,
    PIXEL_FORMAT_RGB8PACKED = 0x02180014,
    PIXEL_FORMAT_BGR8PACKED = 0x02180015,
    PIXEL_FORMAT_YUV422PACKED = 0x0210001F,
    PIXEL_FORMAT_YUV422YUYVPACKED = 0x02100032,
    PIXEL_FORMAT_YUV411PACKED = 0x020C001E,
    PIXEL_FORMAT_RGB8 = 0x02180014,
    PIXEL_FORMAT_BGR8 = 0x02180015,
    PIXEL_FORMAT_RGB10 = 0x02300018,
    PIXEL_FORMAT_BGR10 = 0x02300019,
    PIXEL_FORMAT_RGB12 = 0x0230001A,
    PIXEL_FORMAT_BGR12 = 0x0230001B,
    PIXEL_FORMAT_BGR10V1PACKED = 0x0220001C,
    PIXEL_FORMAT_BGR10V2PACKED = 0x0220001D,
    PIXEL_FORMAT_RGB12PACKED = 0x0230001A,
    PIXEL_FORMAT_BGR12PACKED = 0x0230001B,
    PIXEL_FORMAT_YUV444PACKED = 0x02180020,
    PIXEL_FORMAT_PALINTERLACED = 0x02100001,
    PIXEL_FORMAT_NTSCINTERLACED = 0x02100002,
};
#ifdef __cplusplus
enum : uint32_t {
    PIXEL_FORMAT_YUV42210PACKED = 0x80180001u,
    PIXEL_FORMAT_YUV42212PACKED = 0x80180002u,
    PIXEL_FORMAT_YUV41110PACKED = 0x80120004u,
    PIXEL_FORMAT_YUV41112PACKED = 0x80120005u,
};
#else
#define PIXEL_FORMAT_YUV42210PACKED ((PIXEL_FORMAT)0x80180001u)
#define PIXEL_FORMAT_YUV42212PACKED ((PIXEL_FORMAT)0x80180002u)
#define PIXEL_FORMAT_YUV41110PACKED ((PIXEL_FORMAT)0x80120004u)
#define PIXEL_FORMAT_YUV41112PACKED ((PIXEL_FORMAT)0x80120005u)
#endif

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
