/* The C interface of the GigE Vision transport layer (libRyGenTL.so): a GenTL-style producer
 * with this library's extensions. Every function returns a GC_ERROR (RyGenTLErrors.h).
 *
 * Module chain: system (TL) -> interface (IF, one per host IPv4 address) -> device (DEV,
 * one camera) -> data stream (DS) -> buffers. Handles are opaque; a handle that was never
 * returned, or was closed, is answered with GC_ERR_INVALID_HANDLE. Sizes are passed as
 * pointers to a byte count: in, the capacity of the buffer; out, the bytes written (or, with
 * a null buffer, the bytes needed). Texts are zero-terminated and the count includes the zero.
 *
 * Port handles: a TL handle is the system port (pseudo-addresses RY_TL_PORT_*), an IF handle
 * the interface port (RY_IF_PORT_*), a DEV handle the camera's register space. */
#ifndef RY_GENTL_H
#define RY_GENTL_H

#include <stddef.h>
#include <stdint.h>

#include "RyGenTLErrors.h"

#if defined(RYGENTL_BUILDING)
#define RYGENTL_API __attribute__((visibility("default")))
#else
#define RYGENTL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef void* TL_HANDLE;
typedef void* IF_HANDLE;
typedef void* DEV_HANDLE;
typedef void* DS_HANDLE;
typedef void* PORT_HANDLE;
typedef void* BUFFER_HANDLE;
typedef void* EVENT_HANDLE;
typedef void* EVENTSRC_HANDLE;

typedef uint8_t bool8_t;

#define GENTL_INFINITE 0xFFFFFFFFFFFFFFFFULL
/* EventGetData waits without limit when given this time-out (or GENTL_INFINITE). */
#define RY_EVENT_WAIT_FOREVER 0xFFFFFFFFULL

/* Data type of a value returned by the *GetInfo calls. */
typedef int32_t INFO_DATATYPE;
enum INFO_DATATYPE_LIST {
    INFO_DATATYPE_UNKNOWN = 0,
    INFO_DATATYPE_STRING = 1,
    INFO_DATATYPE_STRINGLIST = 2,
    INFO_DATATYPE_INT16 = 3,
    INFO_DATATYPE_UINT16 = 4,
    INFO_DATATYPE_INT32 = 5,
    INFO_DATATYPE_UINT32 = 6,
    INFO_DATATYPE_INT64 = 7,
    INFO_DATATYPE_UINT64 = 8,
    INFO_DATATYPE_FLOAT64 = 9,
    INFO_DATATYPE_PTR = 10,
    INFO_DATATYPE_BOOL8 = 11,
    INFO_DATATYPE_SIZET = 12,
    INFO_DATATYPE_BUFFER = 13
};

/* TLGetInterfaceInfo / IFGetInfo. */
typedef int32_t INTERFACE_INFO_CMD;
enum INTERFACE_INFO_CMD_LIST {
    INTERFACE_INFO_ID = 0, /* string: the interface identifier */
    /* string: "IF:<identifier> (<host interface name>, <address>)". Callers recover the
     * identifier as the first word less its first three characters. */
    INTERFACE_INFO_DISPLAYNAME = 1,
    INTERFACE_INFO_TLTYPE = 2,         /* string: "GEV" */
    INTERFACE_INFO_IP_ADDRESS = 1003,  /* string: dotted IPv4 address */
    INTERFACE_INFO_SUBNET_MASK = 1004, /* string: dotted IPv4 mask */
    INTERFACE_INFO_MAC_ADDRESS = 1005  /* string: "xx:xx:xx:xx:xx:xx" (zeros for loopback) */
};

/* IFGetDeviceInfo / DevGetInfo. */
typedef int32_t DEVICE_INFO_CMD;
enum DEVICE_INFO_CMD_LIST {
    DEVICE_INFO_ID = 0,                  /* string */
    DEVICE_INFO_VENDOR = 1,              /* string: manufacturer name */
    DEVICE_INFO_MODEL = 2,               /* string: model name */
    DEVICE_INFO_TLTYPE = 3,              /* string: "GEV" */
    DEVICE_INFO_DISPLAYNAME = 4,         /* string: "<vendor> <model> (<address>)" */
    DEVICE_INFO_ACCESS_STATUS = 5,       /* int32: DEVICE_ACCESS_STATUS */
    DEVICE_INFO_USER_DEFINED_NAME = 6,   /* string */
    DEVICE_INFO_SERIAL_NUMBER = 7,       /* string */
    DEVICE_INFO_VERSION = 8,             /* string: device version */
    DEVICE_INFO_TIMESTAMP_FREQUENCY = 9, /* uint64: ticks per second, 0 when unknown */
    DEVICE_INFO_IP_ADDRESS = 1003,       /* string: dotted IPv4 address */
    DEVICE_INFO_SUBNET_MASK = 1004,      /* string */
    DEVICE_INFO_MAC_ADDRESS = 1005,      /* string: "xx:xx:xx:xx:xx:xx" */
    DEVICE_INFO_GATEWAY = 1006           /* string */
};

typedef int32_t DEVICE_ACCESS_STATUS;
enum DEVICE_ACCESS_STATUS_LIST {
    DEVICE_ACCESS_STATUS_UNKNOWN = 0,
    DEVICE_ACCESS_STATUS_READWRITE = 1, /* nobody holds control */
    DEVICE_ACCESS_STATUS_READONLY = 2,  /* another application holds control */
    DEVICE_ACCESS_STATUS_NOACCESS = 3,  /* another application holds exclusive access */
    DEVICE_ACCESS_STATUS_BUSY = 4,      /* opened by this process */
    DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5,
    DEVICE_ACCESS_STATUS_OPEN_READONLY = 6
};

/* IFOpenDevice. READONLY opens in monitor mode: no privilege, no heartbeat, writes refused
 * with GC_ERR_ACCESS_DENIED. NONE behaves as READONLY. CONTROL and EXCLUSIVE take the control
 * channel privilege and keep it with a heartbeat. */
typedef int32_t DEVICE_ACCESS_FLAGS;
enum DEVICE_ACCESS_FLAGS_LIST {
    DEVICE_ACCESS_UNKNOWN = 0,
    DEVICE_ACCESS_NONE = 1,
    DEVICE_ACCESS_READONLY = 2,
    DEVICE_ACCESS_CONTROL = 3,
    DEVICE_ACCESS_EXCLUSIVE = 4
};

/* DSGetInfo; every counter is a uint64. */
typedef int32_t STREAM_INFO_CMD;
enum STREAM_INFO_CMD_LIST {
    STREAM_INFO_ID = 0,            /* string */
    STREAM_INFO_NUM_DELIVERED = 1, /* frames put into the output queue */
    STREAM_INFO_NUM_UNDERRUN = 2,  /* frames lost because no buffer was queued */
    STREAM_INFO_NUM_ANNOUNCED = 3,
    STREAM_INFO_NUM_QUEUED = 4,             /* buffers in the input queue */
    STREAM_INFO_NUM_AWAIT_DELIVERY = 5,     /* buffers in the output queue */
    STREAM_INFO_NUM_STARTED = 6,            /* frames begun (leader seen) */
    STREAM_INFO_IS_GRABBING = 8,            /* bool8 */
    STREAM_INFO_TLTYPE = 10,                /* string: "GEV" */
    STREAM_INFO_NUM_CORRUPTED = 1002,       /* frames delivered incomplete */
    STREAM_INFO_NUM_MISSING_PACKETS = 1003, /* packets never received */
    STREAM_INFO_NUM_RESEND_REQUESTS = 1004,
    STREAM_INFO_NUM_RESENT_PACKETS = 1005, /* packets that arrived after a resend request */
    STREAM_INFO_NUM_PACKETS = 1006,
    STREAM_INFO_NUM_BYTES = 1007,
    STREAM_INFO_PACKET_SIZE = 1008 /* negotiated stream packet size in bytes */
};

/* DSGetBufferInfo. */
typedef int32_t BUFFER_INFO_CMD;
enum BUFFER_INFO_CMD_LIST {
    BUFFER_INFO_BASE = 0,          /* ptr: the announced memory */
    BUFFER_INFO_SIZE = 1,          /* size_t */
    BUFFER_INFO_USER_PTR = 2,      /* ptr */
    BUFFER_INFO_TIMESTAMP = 3,     /* uint64: device ticks from the leader */
    BUFFER_INFO_NEW_DATA = 4,      /* bool8: filled and not yet requeued */
    BUFFER_INFO_IS_QUEUED = 5,     /* bool8 */
    BUFFER_INFO_IS_ACQUIRING = 6,  /* bool8: lent to the receiver */
    BUFFER_INFO_IS_INCOMPLETE = 7, /* bool8 */
    BUFFER_INFO_TLTYPE = 8,        /* string */
    BUFFER_INFO_SIZE_FILLED = 9,   /* size_t: payload bytes placed */
    BUFFER_INFO_WIDTH = 10,        /* size_t */
    BUFFER_INFO_HEIGHT = 11,       /* size_t */
    BUFFER_INFO_XOFFSET = 12,
    BUFFER_INFO_YOFFSET = 13,
    BUFFER_INFO_XPADDING = 14,
    BUFFER_INFO_YPADDING = 15,
    BUFFER_INFO_FRAMEID = 16,           /* uint64: block ID */
    BUFFER_INFO_PAYLOADTYPE = 19,       /* uint32: GVSP payload type */
    BUFFER_INFO_PIXELFORMAT = 20,       /* uint64: PFNC code from the leader */
    BUFFER_INFO_STATUS = 1002,          /* uint64: RY_BUFFER_STATUS */
    BUFFER_INFO_BLOCK_ID = 1003,        /* uint64 */
    BUFFER_INFO_MISSING_PACKETS = 1004, /* uint64 */
    BUFFER_INFO_RESENT_PACKETS = 1005,  /* uint64 */
    BUFFER_INFO_FRAME_FLAG = 2000       /* uint32: RY_FRAME_FLAG */
};

/* Value of BUFFER_INFO_STATUS. */
enum RY_BUFFER_STATUS {
    RY_BUFFER_STATUS_COMPLETE = 0,
    RY_BUFFER_STATUS_INCOMPLETE = 1, /* packets missing after resend and time-out */
    RY_BUFFER_STATUS_TOO_SMALL = 2,  /* the payload did not fit; the rest was dropped */
    RY_BUFFER_STATUS_EMPTY = 3       /* no frame has been placed in the buffer */
};

/* Value of BUFFER_INFO_FRAME_FLAG: bit set describing the last frame. */
enum RY_FRAME_FLAG {
    RY_FRAME_FLAG_COMPLETE = 0x00,
    RY_FRAME_FLAG_INCOMPLETE = 0x01,
    RY_FRAME_FLAG_TOO_SMALL = 0x02,
    RY_FRAME_FLAG_RESENT = 0x04 /* at least one packet arrived after a resend request */
};

typedef int32_t EVENT_TYPE;
enum EVENT_TYPE_LIST {
    EVENT_ERROR = 0,     /* device module: RY_DEVICE_ERROR_DATA records */
    EVENT_NEW_BUFFER = 1 /* stream module: RY_NEW_BUFFER_DATA records */
};

typedef int32_t EVENT_INFO_CMD;

/* DSStartAcquisition. */
typedef int32_t ACQ_START_FLAGS;
enum ACQ_START_FLAGS_LIST { ACQ_START_FLAGS_DEFAULT = 0 };

/* DSStopAcquisition: DEFAULT hands a frame in progress to the output queue as incomplete;
 * KILL drops it and puts its buffer back at the front of the input queue. */
typedef int32_t ACQ_STOP_FLAGS;
enum ACQ_STOP_FLAGS_LIST { ACQ_STOP_FLAGS_DEFAULT = 0, ACQ_STOP_FLAGS_KILL = 1 };

/* DSFlushQueue modes. ALL_TO_INPUT (0) is what an abort needs: every announced buffer that
 * is not lent to the receiver goes back to the input queue and the pending new-buffer
 * events are dropped. */
typedef int32_t ACQ_QUEUE_TYPE;
enum ACQ_QUEUE_TYPE_LIST {
    ACQ_QUEUE_ALL_TO_INPUT = 0,
    ACQ_QUEUE_INPUT_TO_OUTPUT = 1,   /* unused buffers become new-buffer events, marked empty */
    ACQ_QUEUE_OUTPUT_DISCARD = 2,    /* output queue emptied; its buffers are no longer queued */
    ACQ_QUEUE_UNQUEUED_TO_INPUT = 3, /* buffers in no queue are queued */
    ACQ_QUEUE_ALL_DISCARD = 4        /* both queues emptied */
};

/* System port pseudo-addresses (4-byte values). A time-out of 0 sets no limit: a control
 * request is sent again every 500 ms until the device answers or the device is closed; MTU
 * detection waits for each test packet as long as a control request may take. */
enum RY_TL_PORT_ADDRESS {
    RY_TL_PORT_GVCP_TIMEOUT_MS = 2,      /* default 500 */
    RY_TL_PORT_MTU_OPTIMIZE = 3,         /* non-zero: DevOpenDataStream probes the packet size */
    RY_TL_PORT_MTU_DETECT_TIMEOUT_MS = 4 /* default 200 */
};

/* Interface port pseudo-addresses (4-byte values), applied to streams opened afterwards and
 * to running streams of the interface's devices. A time-out of 0 sets no limit: an image time-out
 * of 0 never closes a frame for its age (a newer frame still does), a resend time-out of 0 asks
 * once for what a frame misses and never again on a timer. */
enum RY_IF_PORT_ADDRESS {
    RY_IF_PORT_IMAGE_TIMEOUT_MS = 7,  /* frame closed this long after its leader; default 3000 */
    RY_IF_PORT_RESEND_TIMEOUT_MS = 8, /* wait before asking again; default 100 */
    RY_IF_PORT_RESEND_ENABLE = 9,     /* default 1 */
    RY_IF_PORT_LAG_MODE = 16,         /* accept the stream on any host address; default 0 */
    RY_IF_PORT_FREQUENT_RESEND = 17,  /* ask as soon as a gap is seen; default 0 */
    /* How stream packets are received, for streams opened afterwards (DevOpenDataStream):
     * 0 automatic (default): a memory-mapped packet ring when the process may open a packet
     *   socket (CAP_NET_RAW), the UDP socket otherwise;
     * 1 the UDP socket;
     * 2 the packet ring; DevOpenDataStream fails with GC_ERR_OPEN_STREAM without CAP_NET_RAW.
     * Either way the stream's UDP port stays bound, so the host never answers the device
     * with ICMP port-unreachable. Frames and counters are the same on both. Other values give
     * GC_ERR_INVALID_PARAMETER. */
    RY_IF_PORT_RECEIVE_PATH = 18
};

/* What EventGetData writes for EVENT_NEW_BUFFER (16 bytes). */
typedef struct RY_NEW_BUFFER_DATA {
    BUFFER_HANDLE buffer;
    void* userPointer; /* as given to DSAnnounceBuffer */
} RY_NEW_BUFFER_DATA;

/* What EventGetData writes for EVENT_ERROR on a device (8 bytes). */
typedef struct RY_DEVICE_ERROR_DATA {
    uint32_t connected; /* 0: the device stopped answering the heartbeat */
    GC_ERROR error;     /* what the last heartbeat got */
} RY_DEVICE_ERROR_DATA;

/* A message-channel event as handed to a DevSetEventControl callback. The callback may
 * overwrite `object` and `context`; the record lives until the callback returns. */
typedef struct RY_EVENT_DATA {
    uint16_t eventId;
    uint16_t streamChannel; /* 0xFFFF when the event names no stream */
    uint32_t dataSize;      /* bytes at `data` (EVENTDATA payload), 0 for a plain event */
    void* object;           /* null on arrival */
    void* context;          /* the context given to DevSetEventControl */
    uint64_t blockId;
    uint64_t timestamp; /* device ticks */
    const uint8_t* data;
} RY_EVENT_DATA;

/* First argument: the event name given to DevSetEventControl (zero-terminated). */
typedef void (*RY_EVENT_CALLBACK)(char* eventName, RY_EVENT_DATA* eventData);

/* Library. */
RYGENTL_API GC_ERROR GCInitLib(void);
RYGENTL_API GC_ERROR GCCloseLib(void);
RYGENTL_API GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size);
RYGENTL_API GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer,
                                 size_t* size);
/* The first URL register of the device ("Local:file.xml;addr;len" etc.). */
RYGENTL_API GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size);
RYGENTL_API GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* event);
/* Accepts the module handle or the event handle itself. */
RYGENTL_API GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE sourceOrEvent, EVENT_TYPE type);

/* System. */
RYGENTL_API GC_ERROR TLOpen(TL_HANDLE* system);
RYGENTL_API GC_ERROR TLClose(TL_HANDLE system);
RYGENTL_API GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t timeoutMs);
RYGENTL_API GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* count);
RYGENTL_API GC_ERROR TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* id, size_t* size);
RYGENTL_API GC_ERROR TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD cmd,
                                        INFO_DATATYPE* type, void* buffer, size_t* size);
RYGENTL_API GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* iface);
/* Texts of a discovered device: model, manufacturer, device version, IPv4 address, MAC. */
RYGENTL_API GC_ERROR TLGetDiscoveryInfo(IF_HANDLE iface, uint32_t deviceIndex, char* model,
                                        size_t* modelSize, char* vendor, size_t* vendorSize,
                                        char* version, size_t* versionSize, char* ip,
                                        size_t* ipSize, char* mac, size_t* macSize);

/* Interface. */
RYGENTL_API GC_ERROR IFSetIgnoreSubnetDiscover(IF_HANDLE iface, uint32_t ignore);
RYGENTL_API GC_ERROR IFUpdateDeviceList(IF_HANDLE iface, bool8_t* changed, uint64_t timeoutMs);
RYGENTL_API GC_ERROR IFGetNumDevices(IF_HANDLE iface, uint32_t* count);
RYGENTL_API GC_ERROR IFGetDeviceID(IF_HANDLE iface, uint32_t index, char* id, size_t* size);
RYGENTL_API GC_ERROR IFGetDeviceInfo(IF_HANDLE iface, const char* id, DEVICE_INFO_CMD cmd,
                                     INFO_DATATYPE* type, void* buffer, size_t* size);
RYGENTL_API GC_ERROR IFGetInfo(IF_HANDLE iface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type,
                               void* buffer, size_t* size);
RYGENTL_API GC_ERROR IFOpenDevice(IF_HANDLE iface, const char* id, DEVICE_ACCESS_FLAGS flags,
                                  DEV_HANDLE* device);
RYGENTL_API GC_ERROR IFClose(IF_HANDLE iface);
/* Sends FORCEIP (broadcast on the interface) to the device with this MAC; addresses in host
 * byte order. Succeeds when the device acknowledges within the time-out. */
RYGENTL_API GC_ERROR IFSetForceIP(IF_HANDLE iface, const uint8_t* mac, uint32_t ip, uint32_t mask,
                                  uint32_t gateway, uint32_t timeoutMs);

/* Device. */
RYGENTL_API GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* port);
RYGENTL_API GC_ERROR DevGetInfo(DEV_HANDLE device, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type,
                                void* buffer, size_t* size);
RYGENTL_API GC_ERROR DevGetNumDataStreams(DEV_HANDLE device, uint32_t* count);
RYGENTL_API GC_ERROR DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* id, size_t* size);
RYGENTL_API GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* stream);
RYGENTL_API GC_ERROR DevClose(DEV_HANDLE device);
/* enable != 0: streams opened afterwards join `multicastIp` (host byte order) and the stream
 * channel destination is set to it. */
RYGENTL_API GC_ERROR DevSetMultiCastMode(DEV_HANDLE device, uint32_t enable, uint32_t multicastIp);
/* Heartbeat time-out in ms: written to the device and the heartbeat period follows it. */
RYGENTL_API GC_ERROR DevSetHeartBeatTimeout(DEV_HANDLE device, uint32_t timeoutMs);
RYGENTL_API GC_ERROR DevGetHeartBeatTimeout(DEV_HANDLE device, uint32_t* timeoutMs);
/* Heartbeats that must fail in a row before the device is declared lost (1..100). */
RYGENTL_API GC_ERROR DevSetHeartBeatTimeoutCheckCount(DEV_HANDLE device, int32_t count);
RYGENTL_API GC_ERROR DevGetHeartBeatTimeoutCheckCount(DEV_HANDLE device, int32_t* count);
/* Routes message-channel events with `eventId` to `callback` (opening the channel on first
 * use). A null callback removes the route. */
RYGENTL_API GC_ERROR DevSetEventControl(DEV_HANDLE device, uint32_t eventId, const char* eventName,
                                        uint64_t eventNameLength, RY_EVENT_CALLBACK callback,
                                        void* context);
/* Gives up the control privilege and stops the heartbeat; the handle stays open for reads. */
RYGENTL_API GC_ERROR CloseCCP(DEV_HANDLE device);

/* Data stream. */
RYGENTL_API GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* buffer, size_t size,
                                      void* userPointer, BUFFER_HANDLE* bufferHandle);
RYGENTL_API GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE bufferHandle, void** buffer,
                                    void** userPointer);
/* A buffer already queued or waiting in the output queue is refused with
 * GC_ERR_RESOURCE_IN_USE unless DSSetForceQueueBuffer is on. */
RYGENTL_API GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE bufferHandle);
RYGENTL_API GC_ERROR DSFlushQueue(DS_HANDLE stream, ACQ_QUEUE_TYPE operation);
/* The frame count is not a limit: the SDK starts every stream with a count of 1 and expects
 * frames until it stops the acquisition; how many frames come is the device's business
 * (its AcquisitionMode and frame count). */
RYGENTL_API GC_ERROR DSStartAcquisition(DS_HANDLE stream, ACQ_START_FLAGS flags,
                                        uint64_t numToAcquire);
RYGENTL_API GC_ERROR DSStopAcquisition(DS_HANDLE stream, ACQ_STOP_FLAGS flags);
/* While grabbing is stopped, frames arriving on a started stream are not placed into
 * buffers; grabbing is on after DSStartAcquisition. */
RYGENTL_API GC_ERROR DSStartBufferGrabbing(DS_HANDLE stream);
RYGENTL_API GC_ERROR DSStopBufferGrabbing(DS_HANDLE stream);
/* On: DSQueueBuffer accepts a buffer that is queued already (no-op) or waiting in the output
 * queue (taken out and requeued). */
RYGENTL_API GC_ERROR DSSetForceQueueBuffer(DS_HANDLE stream, bool8_t force);
/* On: a buffer's memory is zeroed when it is queued, so gaps of incomplete frames read 0. */
RYGENTL_API GC_ERROR DSSetClearBuffer(DS_HANDLE stream, bool8_t clear);
/* Buffers waiting in the output queue go back to the input queue; their events are dropped. */
RYGENTL_API GC_ERROR DSRecoverQueuedBuffer(DS_HANDLE stream);
RYGENTL_API GC_ERROR DSGetInfo(DS_HANDLE stream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type,
                               void* buffer, size_t* size);
RYGENTL_API GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE bufferHandle,
                                     BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                                     size_t* size);
RYGENTL_API GC_ERROR DSClose(DS_HANDLE stream);

/* Events. EventGetData returns GC_ERR_TIMEOUT when nothing arrived in time and GC_ERR_NO_DATA
 * when EventKill released it (a kill with nobody waiting releases the next wait). InitEvent
 * forgets such a pending kill. */
RYGENTL_API GC_ERROR InitEvent(EVENT_HANDLE event);
RYGENTL_API GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size,
                                  uint64_t timeoutMs);
RYGENTL_API GC_ERROR EventFlush(EVENT_HANDLE event);
RYGENTL_API GC_ERROR EventKill(EVENT_HANDLE event);

#ifdef __cplusplus
}
#endif

#endif
