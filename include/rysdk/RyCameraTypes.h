/// \file
/// Records and callback types a camera hands to the application: the frame record, the
/// connection-loss report, the feature property record and the general event codes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "rysdk/RyPixelFormat.h"
#include "rysdk/RyResult.h"

namespace RYSDK {

/// The application's own record. The SDK keeps only the pointer given at open and hands it
/// back unchanged as the first argument of every callback; it never reads the fields.
struct OBJECT_INFO {
    void* pUserPointer;  ///< the application's own
    void* pContext;      ///< the application's own
};

/// One delivered frame. Valid only during the image callback; the pixels stay valid until
/// the buffer is queued again (or, on the callback thread, until the next frame is copied).
struct IMAGE_INFO {
    RESULT result;             ///< 0 when the camera's pixel format was read for this frame
    uint32_t blockId;          ///< block id of the frame (low 32 bits)
    PIXEL_FORMAT pixelFormat;  ///< Mono8 when the camera's pixel format could not be read
    uint32_t width;            ///< pixels per line, from the frame's leader
    uint32_t height;           ///< lines, from the frame's leader
    uint32_t reserved0;        ///< never written
    uint64_t timestamp;        ///< device ticks
    uint32_t bufferStatus;     ///< 0 complete, 1 incomplete, 2 too large for the buffer, 3 empty
    uint8_t frameFlag;         ///< bits: 0x01 incomplete, 0x02 too small, 0x04 a packet resent
    uint8_t reserved1[3];      ///< never written
    void* pImage;              ///< pixels; owned by the camera's buffer pool
};

/// What the disconnect callback learns about the lost camera; 0xFFFFFFFF where the heartbeat
/// setting could not be read any more.
struct DISCONNECT_INFO {
    uint32_t heartBeatTimeout;          ///< the camera's heartbeat time-out in milliseconds
    uint32_t heartBeatTimeoutTryCount;  ///< heartbeats that failed in a row before the report
};

/// What GetStreamInfo reads.
enum STREAM_INFO : int32_t {
    STREAM_INFO_LOST_FRAMES = 0,      ///< frames lost for want of a free buffer
    STREAM_INFO_MISSING_PACKETS = 1,  ///< packets never received
};

/// Receives each frame, on the camera's grab thread (or its callback thread); `object` is
/// the pointer given at open.
using pImageCallbackFn = void (*)(OBJECT_INFO* object, IMAGE_INFO* image);
/// Called once when the camera stops answering, on its connection monitor thread.
using pDisconnectCallbackFn = void (*)(OBJECT_INFO* object, DISCONNECT_INFO info);

/// Codes handed to the general event callback: a lost frame seen by the grab thread, and one
/// per clear status bit the camera's "ResultAll" feature reports.
enum EventType : int32_t {
    EVENT_TYPE_FRAME_LOST = 1,  ///< the grab thread saw the lost-frame count move
    EVENT_TYPE_STATUS_BIT0 = 2,
    EVENT_TYPE_STATUS_BIT1 = 3,
    EVENT_TYPE_STATUS_BIT2 = 4,
    EVENT_TYPE_STATUS_BIT3 = 5,
};
/// Receives one general event code, on the camera's grab thread or general event thread.
using pGeneralEventCallbackFn = void (*)(EventType type);

}  // namespace RYSDK

namespace RyGenICam {

/// A camera event as its callback receives it. `object` is the camera and `context` the
/// context given when the callback was registered; both are set before the callback runs.
struct EVENT_DATA {
    uint16_t eventId;        ///< the event's identifier as the camera sent it
    uint16_t streamChannel;  ///< 0xFFFF when the event names no stream
    uint32_t dataSize;       ///< bytes at `data` (the event's payload), 0 for a plain event
    void* object;            ///< the camera (RYSDK::RyCamera*)
    void* context;           ///< the context given at registration
    uint64_t blockId;        ///< the block id the event refers to
    uint64_t timestamp;      ///< device ticks
    const uint8_t* data;     ///< the payload; valid during the callback only
};

}  // namespace RyGenICam

namespace RYSDK {

/// Receives one camera event: its name (as registered) and its record. Called on the
/// transport layer's event thread.
using pEventCallbackFn = void (*)(char* eventName, RyGenICam::EVENT_DATA* eventData);

/// The largest report GetFileAccessControlStatus(char*) writes, its zero included.
inline constexpr size_t FILE_ACCESS_STATUS_SIZE = 4096;

/// One feature of the camera's property list.
struct _PROPERTY {
    uint32_t type;            ///< the node's interface type (RyGenApi::EInterfaceType)
    uint32_t accessMode;      ///< NI 0, NA 1, WO 2, RO 3, RW 4
    uint32_t visibility;      ///< Beginner 0, Expert 1, Guru 2, Invisible 3
    uint32_t representation;  ///< of an integer or float feature; 7 for every other kind
    uint32_t reserved;        ///< 0xFFFFFFFF
    char name[256];           ///< the feature's name
    char displayName[256];    ///< its display name
    char description[2048];   ///< its description (the tool tip when it has none)
};

static_assert(sizeof(OBJECT_INFO) == 16, "OBJECT_INFO is 16 bytes");
static_assert(sizeof(IMAGE_INFO) == 48, "IMAGE_INFO is 48 bytes");
static_assert(offsetof(IMAGE_INFO, blockId) == 4);
static_assert(offsetof(IMAGE_INFO, pixelFormat) == 8);
static_assert(offsetof(IMAGE_INFO, width) == 12);
static_assert(offsetof(IMAGE_INFO, height) == 16);
static_assert(offsetof(IMAGE_INFO, timestamp) == 24);
static_assert(offsetof(IMAGE_INFO, bufferStatus) == 32);
static_assert(offsetof(IMAGE_INFO, frameFlag) == 36);
static_assert(offsetof(IMAGE_INFO, pImage) == 40);
static_assert(sizeof(DISCONNECT_INFO) == 8, "DISCONNECT_INFO is 8 bytes");

}  // namespace RYSDK
