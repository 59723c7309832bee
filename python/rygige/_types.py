"""The records, callback types and enumerations of the flat C interface, as ctypes sees them.

Every record mirrors its C declaration field for field; the tests compare the sizes and
offsets with the static assertions of the C header.
"""

from __future__ import annotations

import ctypes
import enum
from typing import Any


class ObjectInfo(ctypes.Structure):
    """OBJECT_INFO: the application's record handed back to every callback."""

    _fields_ = [("pUserPointer", ctypes.c_void_p), ("pContext", ctypes.c_void_p)]


class ImageInfo(ctypes.Structure):
    """IMAGE_INFO: one delivered frame; valid only during the image callback."""

    _fields_ = [
        ("result", ctypes.c_int32),
        ("blockId", ctypes.c_uint32),
        ("pixelFormat", ctypes.c_uint32),
        ("width", ctypes.c_uint32),
        ("height", ctypes.c_uint32),
        ("reserved0", ctypes.c_uint32),
        ("timestamp", ctypes.c_uint64),
        ("bufferStatus", ctypes.c_uint32),
        ("frameFlag", ctypes.c_uint8),
        ("reserved1", ctypes.c_uint8 * 3),
        ("pImage", ctypes.c_void_p),
    ]


class DisconnectInfo(ctypes.Structure):
    """DISCONNECT_INFO: what the disconnect callback learns about the lost camera."""

    _fields_ = [
        ("heartBeatTimeout", ctypes.c_uint32),
        ("heartBeatTimeoutTryCount", ctypes.c_uint32),
    ]


def _words(*names: str) -> list[tuple[str, Any]]:
    """Unsigned 32-bit fields."""
    return [(name, ctypes.c_uint32) for name in names]


def _texts(**capacities: int) -> list[tuple[str, Any]]:
    """Fixed-size, zero-terminated text fields, each with its capacity in bytes."""
    return [(name, ctypes.c_char * capacity) for name, capacity in capacities.items()]


class CameraInfoRecord(ctypes.Structure):
    """RYCAMERA_INFO: one camera as discovery saw it."""

    _fields_ = _words("m_ErrorFlag", "m_Result", "m_DeviceIndex") + _texts(
        m_Name=256, m_ModelName=128, m_ManufacturerName=128, m_IPAddress=32, m_MACAddress=32
    )


class InterfaceInfoRecord(ctypes.Structure):
    """RYINTERFACE_INFO: one network interface as discovery saw it."""

    _fields_ = [("m_ErrorFlag", ctypes.c_uint32), ("m_Result", ctypes.c_int32)]
    _fields_ += _words("m_Index") + _texts(m_Name=256)


class PropertyInfo(ctypes.Structure):
    """PROPERTY_INFO: one feature of the camera's property list."""

    _fields_ = _words("type", "accessMode", "visibility", "representation", "reserved")
    _fields_ += _texts(name=256, displayName=256, description=2048)


class EventData(ctypes.Structure):
    """EVENT_DATA: a camera event as its callback receives it."""

    _fields_ = [
        ("eventId", ctypes.c_uint16),
        ("streamChannel", ctypes.c_uint16),
        ("dataSize", ctypes.c_uint32),
        ("object", ctypes.c_void_p),
        ("context", ctypes.c_void_p),
        ("blockId", ctypes.c_uint64),
        ("timestamp", ctypes.c_uint64),
        ("data", ctypes.POINTER(ctypes.c_uint8)),
    ]


# The header's names for the records, used by the tests that check the layouts.
RECORDS: dict[str, type[ctypes.Structure]] = {
    "OBJECT_INFO": ObjectInfo,
    "IMAGE_INFO": ImageInfo,
    "DISCONNECT_INFO": DisconnectInfo,
    "RYCAMERA_INFO": CameraInfoRecord,
    "RYINTERFACE_INFO": InterfaceInfoRecord,
    "PROPERTY_INFO": PropertyInfo,
    "EVENT_DATA": EventData,
}

ImageCallback = ctypes.CFUNCTYPE(None, ctypes.POINTER(ObjectInfo), ctypes.POINTER(ImageInfo))
DisconnectCallback = ctypes.CFUNCTYPE(None, ctypes.POINTER(ObjectInfo), DisconnectInfo)
EventCallback = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.POINTER(EventData))


class Privilege(enum.IntEnum):
    """The control-channel privilege a camera is opened with (CCP_PRIVILEGE)."""

    NONE = 0
    EXCLUSIVE = 1
    CONTROL = 2
    MONITOR = 3


class FeatureKind(enum.IntEnum):
    """A node's interface type, as the property list reports it."""

    VALUE = 0
    BASE = 1
    INTEGER = 2
    BOOLEAN = 3
    COMMAND = 4
    FLOAT = 5
    STRING = 6
    REGISTER = 7
    CATEGORY = 8
    ENUMERATION = 9
    ENUM_ENTRY = 10
    PORT = 11


class Access(enum.IntEnum):
    """A node's access mode: not implemented, not available, write-only, read-only, both."""

    NI = 0
    NA = 1
    WO = 2
    RO = 3
    RW = 4


class Visibility(enum.IntEnum):
    """Who a feature is meant for."""

    BEGINNER = 0
    EXPERT = 1
    GURU = 2
    INVISIBLE = 3


class StreamInfo(enum.IntEnum):
    """What CameraGetStreamInfo reads (STREAM_INFO)."""

    LOST_FRAMES = 0
    MISSING_PACKETS = 1


class CustomQuery(enum.IntEnum):
    """What CameraGetCustomCommand reads of a feature; entry i of an enumeration is INDEX + i."""

    VALUE = 240
    NUM = 241
    MIN = 242
    MAX = 243
    INC = 244
    INDEX = 245


class PixelFormat(enum.IntEnum):
    """GigE Vision pixel format codes; bits 16 to 23 give the bits per pixel."""

    MONO8 = 0x01080001
    MONO8SIGNED = 0x01080002
    MONO10 = 0x01100003
    MONO10PACKED = 0x010C0004
    MONO12 = 0x01100005
    MONO14 = 0x01100025
    MONO12PACKED = 0x010C0006
    MONO16 = 0x01100007
    BAYERGR8 = 0x01080008
    BAYERRG8 = 0x01080009
    BAYERGB8 = 0x0108000A
    BAYERBG8 = 0x0108000B
    BAYERGR10 = 0x0110000C
    BAYERRG10 = 0x0110000D
    BAYERGB10 = 0x0110000E
    BAYERBG10 = 0x0110000F
    BAYERGR10PACKED = 0x010C0026
    BAYERGR12PACKED = 0x010C002A
    BAYERGR12 = 0x01100010
    BAYERRG12 = 0x01100011
    BAYERGB12 = 0x01100012
    BAYERBG12 = 0x01100013
    BAYERRG10PACKED = 0x010C0027
    BAYERRG12PACKED = 0x010C002B
    RGB8PACKED = 0x02180014
    BGR8PACKED = 0x02180015
    RGB8 = 0x02180014
    BGR8 = 0x02180015
    YUV422PACKED = 0x0210001F
    YUV422YUYVPACKED = 0x02100032
    YUV411PACKED = 0x020C001E
    RGB10 = 0x02300018
    BGR10 = 0x02300019
    RGB12 = 0x0230001A
    BGR12 = 0x0230001B
    BGR10V1PACKED = 0x0220001C
    BGR10V2PACKED = 0x0220001D
    RGB12PACKED = 0x0230001A
    BGR12PACKED = 0x0230001B
    YUV444PACKED = 0x02180020
    PALINTERLACED = 0x02100001
    NTSCINTERLACED = 0x02100002
    YUV42210PACKED = 0x80180001
    YUV42212PACKED = 0x80180002
    YUV41110PACKED = 0x80120004
    YUV41112PACKED = 0x80120005

    @property
    def bits(self) -> int:
        """Bits per pixel."""
        return (self.value >> 16) & 0xFF


def pixel_bits(code: int) -> int:
    """Bits per pixel of any pixel format code, known to this package or not."""
    return (code >> 16) & 0xFF
