"""Results of the flat C interface and the exceptions they become.

Every flat function returns a RESULT; anything but success is raised as a RyGigEError that
carries the number and the SDK's text. Callers catch the family they care about:
RyGigETimeoutError, RyGigENotFoundError, RyGigEAccessDeniedError, or RyGigEError for all.
"""

from __future__ import annotations

import enum
from typing import Callable, Optional


class Result(enum.IntEnum):
    """The SDK's result numbers; each is also the index of its text."""

    SUCCESS = 0
    ERROR = 1
    ERROR_OPENED_ALREADY = 2
    ERROR_INVALID_HANDLE = 3
    ERROR_TL_HANDLE = 4
    ERROR_TLOPEN = 5
    ERROR_IF_HANDLE = 6
    ERROR_RYGIGE_INITIALIZATION = 7
    ERROR_INVALID_PARAMETER = 8
    ERROR_DISCOVERY = 9
    ERROR_NO_CAMERAS = 10
    ERROR_CAMERA_NAME_DOES_NOT_EXIST = 11
    ERROR_ABORTED_ALREADY = 12
    ERROR_ACCESS_DENIED = 13
    ERROR_RESOURCE_IN_USE = 14
    ERROR_CANNOT_FIND_INTERFACE = 15
    ERROR_XML_UNKNOWN_ARGUMENT = 16
    ERROR_XML_NODE_ACCESS_FAILED = 17
    ERROR_XML_NOT_EXIST_NODE = 18
    ERROR_XML_ENTERED_NODE_DOESNT_HAVE_ANY_VALUE = 19
    ERROR_XML_UNSUPPORTED_COMMAND = 20
    ERROR_INVALID_WIDTH = 21
    ERROR_INVALID_ADDRESS = 22
    ERROR_RYINTERFACE_NO_NIC = 23
    ERROR_RYINTERFACE_GETINTERFACENAME = 24
    ERROR_RYINTERFACE_OPENINTERFACE = 25
    ERROR_RYINTERFACE_CLOSEINTERFACE = 26
    ERROR_RYINTERFACE_GETNUMDEVICES = 27
    ERROR_RYINTERFACE_CANNOT_FIND_DEVICE = 28
    ERROR_RYCAMERA_INTERFACE_HANDLE = 29
    ERROR_RYCAMERA_CAMERAINDEX_OVER = 30
    ERROR_RYCAMERA_GETXML = 31
    ERROR_RYCAMERA_IMAGE_NOT4DIVIDE = 32
    ERROR_RYCAMERA_IMAGE_NOT2DIVIDE = 33
    ERROR_RYCAMERA_READ_ONLY = 34
    ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT = 35
    ERROR_RYCAMERA_GRAB_TIMEOUT = 36
    ERROR_RYCAMERA_CALLBACK_NOT_NULL = 37
    ERROR_DEVCREATESTREAM = 38
    ERROR_STREAM_MTU = 39
    ERROR_TLGETNUMINTERFACES = 40
    ERROR_TLOPENINTERFACE = 41
    ERROR_TLCLOSEINTERFACE = 42
    ERROR_TLGETINTERFACENAME = 43
    ERROR_TLGETNUMDEVICES = 44
    ERROR_TLGETDEVICENAME = 45
    ERROR_TLOPENDEVICE = 46
    ERROR_INSUFFICIENT_RESOURCES = 47
    ERROR_MEMORY_ALLOCATION = 48
    ERROR_FILE_STREAM_OPEN_FAILURE = 49
    ERROR_FILE_STREAM_READ_FAILURE = 50
    ERROR_FILE_STREAM_WRITE_FAILURE = 51
    ERROR_FILE_STREAM_CLOSE_FAILURE = 52
    ERROR_FILE_STREAM_NOT_CORRECT_FILE_LENGTH = 53
    ERROR_EXCEPTION = 54


class RyGigEError(Exception):
    """A call of the SDK failed; `result` is the SDK's number (None for the package's own
    refusals, such as a closed camera or a released frame) and `text` its text."""

    def __init__(self, message: str, result: Optional[int] = None, text: str = "") -> None:
        super().__init__(message)
        self.message = message
        self.result = result
        self.text = text

    def __str__(self) -> str:
        return self.message


class RyGigETimeoutError(RyGigEError, TimeoutError):
    """Nothing came in time: no frame within the grab's time-out."""


class RyGigENotFoundError(RyGigEError, KeyError):
    """No such camera, interface or feature."""


class RyGigEAccessDeniedError(RyGigEError, PermissionError):
    """The camera or the feature refuses this caller: another holds it, or it is read-only."""


class CameraClosedError(RyGigEError):
    """The camera (or the system) was closed; its handle is no longer valid."""


class FrameReleasedError(RyGigEError):
    """The frame's buffer went back to the SDK; its pixels can no longer be read."""


class CameraDisconnectedError(RyGigEError):
    """The camera stopped answering its heartbeat while a grab waited for it."""


_FAMILIES: dict[int, type[RyGigEError]] = {
    Result.ERROR_RYCAMERA_GRAB_TIMEOUT: RyGigETimeoutError,
    Result.ERROR_NO_CAMERAS: RyGigENotFoundError,
    Result.ERROR_CAMERA_NAME_DOES_NOT_EXIST: RyGigENotFoundError,
    Result.ERROR_CANNOT_FIND_INTERFACE: RyGigENotFoundError,
    Result.ERROR_XML_NOT_EXIST_NODE: RyGigENotFoundError,
    Result.ERROR_RYINTERFACE_NO_NIC: RyGigENotFoundError,
    Result.ERROR_RYINTERFACE_CANNOT_FIND_DEVICE: RyGigENotFoundError,
    Result.ERROR_RYCAMERA_CAMERAINDEX_OVER: RyGigENotFoundError,
    Result.ERROR_ACCESS_DENIED: RyGigEAccessDeniedError,
    Result.ERROR_RESOURCE_IN_USE: RyGigEAccessDeniedError,
    Result.ERROR_RYCAMERA_READ_ONLY: RyGigEAccessDeniedError,
}


def error_for(result: int, what: str, text_of: Callable[[int], str]) -> RyGigEError:
    """The exception of `result` from the call described by `what`."""
    text = text_of(result)
    try:
        name = Result(result).name
    except ValueError:
        name = "unknown result"
    family = _FAMILIES.get(result, RyGigEError)
    return family(f"{what} failed: {text} ({name}, {result})", result, text)
