"""Loading libRyGigE and declaring its flat functions, once, from one table.

`flat()` gives the loaded library with every function of the flat interface declared from
FUNCTIONS. Functions that return a RESULT raise RyGigEError on failure; `unchecked(name)`
gives the same function without that check, for the calls whose failure is an answer
(a size query, say).
"""

from __future__ import annotations

import ctypes
import ctypes.util
import functools
import os
from pathlib import Path
from typing import Any, Callable, Optional, Sequence

from rygige import _types as t
from rygige.errors import Result, error_for

_P = ctypes.POINTER
_H = ctypes.c_void_p  # every handle: the SDK owns the object behind it
_PH = _P(ctypes.c_void_p)
_U8, _I32, _U32 = ctypes.c_uint8, ctypes.c_int32, ctypes.c_uint32
_I64, _U64, _SIZE = ctypes.c_int64, ctypes.c_uint64, ctypes.c_size_t
_PU32, _PI32, _PU64, _PSIZE = _P(_U32), _P(_I32), _P(_U64), _P(_SIZE)
_TEXT_IN = ctypes.c_char_p  # zero-terminated text going in
_OUT = ctypes.c_void_p  # a buffer the SDK writes: bytes, text or pixels
_WTEXT = ctypes.c_wchar_p
Signature = tuple[Sequence[Any], Any]


def _sharing(signature: Signature, *names: str) -> dict[str, Signature]:
    """Functions of one signature: (argument types, result type)."""
    return {name: signature for name in names}


def _returning_result(*arguments: Any) -> Signature:
    """The signature of a function that takes `arguments` and returns a RESULT."""
    return list(arguments), _I32


_ONE = _returning_result(_H)
_GET_U32 = _returning_result(_H, _PU32)
_SET_U32 = _returning_result(_H, _U32)
_GET_I32 = _returning_result(_H, _PI32)
_SET_I32 = _returning_result(_H, _I32)
_LINEUP_U32 = _returning_result(_H, _U32, _PU32)  # entry `index` of a lineup
_LINEUP_I32 = _returning_result(_H, _U32, _PI32)
_TEXT = _returning_result(_H, _OUT, _PSIZE)  # buffer, in: its capacity, out: the length
_TEXT_AT = _returning_result(_H, _U32, _OUT, _PSIZE)  # the same for the camera at an index
_OPEN_TAIL = [_U32, _U32, _U32, _U32]  # buffers, width, height, packet size
_CALLBACKS = [t.ImageCallback, t.DisconnectCallback]
_BAYER = ([_OUT, _OUT, _U32, _U32], None)  # src, dst, width, height
_BYTES = ([_OUT, _U32, _OUT], None)  # src, bytes, dst
_GEOMETRY = ([_OUT, _U32, _U32, _OUT], None)  # src, width, height, dst

# Every function of the flat interface: name -> (argument types, result type).
FUNCTIONS: dict[str, Signature] = {
    # System
    **_sharing(_returning_result(_PH), "OpenRyGigE", "CloseRyGigE"),
    **_sharing(_ONE, "RyDiscovery"),
    **_sharing(
        _GET_U32,
        "RyGetNumInterfaces",
        "RyGetNumCameras",
        "RyGetMTUTimeout",
        "RyGetGVCPTimeout",
        "RyGetMultiCastAddress",
        "RyGetDiscoveryTimeout",
    ),
    **_sharing(
        _SET_U32, "RySetMTUTimeout", "RySetGVCPTimeout", "RySetMultiCastAddress",
        "RySetDiscoveryTimeout",
    ),
    **_sharing(_SET_I32, "RyUseMTUOptimize", "RySetIgnoreSubnet", "RySetCCPPrivilege"),
    **_sharing(_GET_I32, "RyGetIgnoreSubnet"),
    **_sharing(_LINEUP_U32, "RyGetNumCamerasByIndex"),
    "RyGetNumCamerasByName": _returning_result(_H, _TEXT_IN, _PU32),
    "RyDiscoveryInterfaceInfo": _returning_result(_H, _U32, _P(t.InterfaceInfoRecord)),
    "RyDiscoveryCameraInfo": _returning_result(_H, _U32, _P(t.CameraInfoRecord)),
    "RyOpenCameraByIndex": _returning_result(
        _H, _U32, _PH, *_OPEN_TAIL, _P(t.ObjectInfo), *_CALLBACKS
    ),
    "RyOpenCameraByName": _returning_result(
        _H, _TEXT_IN, _PH, *_OPEN_TAIL, _P(t.ObjectInfo), *_CALLBACKS
    ),
    "RyOpenInterfaceByIndex": _returning_result(_H, _U32, _PH),
    "RyOpenInterfaceByName": _returning_result(_H, _TEXT_IN, _PH),
    "RyForceIP": _returning_result(_H, _P(_U8), _U32, _U32, _U32),
    "RyUserLogging": _returning_result(_H, _WTEXT, _WTEXT, _WTEXT, _U32, _WTEXT),
    # Interface
    "InterfaceOpenCameraByIndex": _returning_result(
        _H, _P(t.ObjectInfo), _U32, _PH, *_OPEN_TAIL, *_CALLBACKS
    ),
    "InterfaceOpenCameraByName": _returning_result(
        _H, _P(t.ObjectInfo), _TEXT_IN, _PH, *_OPEN_TAIL, *_CALLBACKS
    ),
    **_sharing(
        _GET_U32,
        "InterfaceGetNumCameras",
        "InterfaceGetImageReceivingTimeout",
        "InterfaceGetImageRetransTimeout",
    ),
    **_sharing(
        _SET_U32, "InterfaceSetImageReceivingTimeout", "InterfaceSetImageRetransTimeout"
    ),
    **_sharing(
        _SET_I32,
        "InterfaceUsePacketResend",
        "InterfaceUsePacketResendFrequently",
        "InterfaceUseLAGMode",
    ),
    **_sharing(_TEXT_AT, "InterfaceGetCameraName", "InterfaceGetCameraID"),
    **_sharing(_TEXT, "InterfaceGetSubnet", "InterfaceGetIPAddress"),
    "InterfaceGetRyGigEHandle": _returning_result(_H, _H),
    **_sharing(_ONE, "InterfaceCloseInterface"),
    # Camera: open state and acquisition
    **_sharing(
        _ONE, "CameraClose", "CameraGrab", "CameraAbort", "CameraSetTriggerSoftware"
    ),
    "CameraGetInterfaceHandle": _returning_result(_H, _PH),
    "CameraSnap": _SET_U32,
    "CameraGetGrabData": _returning_result(_H, _P(t.ImageInfo)),
    "CameraChangeBufferFormat": _returning_result(_H, _U32, _U32, _U32, _U32),
    "CameraGetBufferInfo": _returning_result(_H, _PU32, _PU32, _PU32, _PU32),
    "CameraGetStreamInfo": _returning_result(_H, _I32, _PU32),
    "CameraSetImageCallback": _returning_result(_H, t.ImageCallback),
    # Camera: standard features
    **_sharing(
        _GET_U32,
        "CameraGetAcquisitionTimeOut",
        "CameraGetWidth",
        "CameraGetHeight",
        "CameraGetPixelFormat",
        "CameraGetPixelFormatLineupNum",
        "CameraGetTriggerModeLineupNum",
        "CameraGetTriggerSourceLineupNum",
        "CameraGetBinningHorizontal",
        "CameraGetBinningHorizontalLineupNum",
        "CameraGetBinningVertical",
        "CameraGetBinningVerticalLineupNum",
        "CameraGetBinningFactor",
        "CameraGetFrameCapacity",
        "CameraGetStreamHold",
        "CameraGetSCPSPacketSize",
        "CameraGetTestImageLineupNum",
        "CameraGetPixelSize",
        "CameraGetPixelSizeLineupNum",
        "CameraGetExposureTime",
        "CameraGetHorizontalStart",
        "CameraGetHorizontalEnd",
        "CameraGetVerticalStart",
        "CameraGetVerticalEnd",
        "CameraGigEGetPersistentSubnetMask",
    ),
    **_sharing(
        _SET_U32,
        "CameraSetAcquisitionTimeOut",
        "CameraSetWidth",
        "CameraSetHeight",
        "CameraSetPixelFormat",
        "CameraSetBinningHorizontal",
        "CameraSetBinningVertical",
        "CameraSetBinningFactor",
        "CameraSetStreamHold",
        "CameraSetSCPSPacketSize",
        "CameraSetPixelSize",
        "CameraSetExposureTime",
        "CameraSetHorizontalStart",
        "CameraSetHorizontalEnd",
        "CameraSetVerticalStart",
        "CameraSetVerticalEnd",
        "CameraSetStrobeOffset",
    ),
    **_sharing(
        _GET_I32,
        "CameraGetGrabCondition",
        "CameraGetTriggerMode",
        "CameraGetTriggerSource",
        "CameraGetTestImage",
        "CameraGetExposureMode",
        "CameraGigEGetCurrentIpConfigurationDHCP",
        "CameraGigEGetCurrentIpConfigurationPersistentIP",
        "CameraGetHeartBeatTimeoutTryCount",
        "CameraGetPropertyCount",
    ),
    **_sharing(
        _SET_I32,
        "CameraUseIndependentCallback",
        "CameraSetTriggerMode",
        "CameraSetTriggerSource",
        "CameraSetTriggerActivation",
        "CameraSetTestImage",
        "CameraSetReadoutMode",
        "CameraSetExposureMode",
        "CameraSetReverseX",
        "CameraSetStrobePolarity",
        "CameraGigESetCurrentIpConfigurationDHCP",
        "CameraGigESetCurrentIpConfigurationPersistentIP",
        "CameraSetHeartBeatTimeoutTryCount",
    ),
    **_sharing(
        _LINEUP_U32,
        "CameraGetPixelFormatLineup",
        "CameraGetTriggerModeLineup",
        "CameraGetBinningHorizontalLineup",
        "CameraGetBinningVerticalLineup",
        "CameraGetPixelSizeLineup",
    ),
    **_sharing(_LINEUP_I32, "CameraGetTriggerSourceLineup", "CameraGetTestImageLineup"),
    "CameraGetGain": _returning_result(_H, _PI32, _P(ctypes.c_float)),
    "CameraSetGain": _returning_result(_H, _I32, ctypes.c_float),
    "CameraSetBlackLevel": _returning_result(_H, _I32, _U32),
    **_sharing(
        _TEXT_AT,
        "CameraGetDeviceModelName",
        "CameraGetDeviceVersion",
        "CameraGetDeviceVendorName",
        "CameraGetDeviceID",
    ),
    # Camera: network settings and identity
    **_sharing(_TEXT, "CameraGigEGetCurrentMACAddress", "CameraGigEGetSerialNumber"),
    "CameraGigEGetColorRGBGain": _returning_result(_H, _I32, _P(ctypes.c_double)),
    "CameraGigESetColorRGBGain": _returning_result(_H, _I32, ctypes.c_double),
    "CameraGigEGetTemperature": _returning_result(_H, _P(ctypes.c_double)),
    # Camera: generic access, registers, files, events
    "CameraSetCustomCommand": _returning_result(_H, _TEXT_IN, _TEXT_IN, _U64, _I32, _I32),
    "CameraGetCustomCommand": _returning_result(_H, _TEXT_IN, _OUT, _PU64, _I32),
    "CameraGetPropertyInfo": _returning_result(_H, _TEXT_IN, _P(t.PropertyInfo)),
    "CameraGetPropertyInfoUsingIndex": _returning_result(_H, _I32, _P(t.PropertyInfo)),
    "CameraReadData": _returning_result(_H, _OUT, _I64, _P(_I64)),
    "CameraWriteData": _returning_result(_H, _OUT, _I64, _PU64),
    "CameraReadFileStream": _returning_result(_H, _TEXT_IN, _OUT, _PU64),
    "CameraWriteFileStream": _returning_result(_H, _TEXT_IN, _OUT, _U64),
    "CameraSetEventControl": _returning_result(
        _H, _U32, _TEXT_IN, _U64, t.EventCallback, ctypes.c_void_p
    ),
    # Camera: serial command channel
    "CameraGetUARTCustomCommand": _returning_result(_H, _TEXT_IN, _OUT, _PSIZE),
    "CameraSetUARTCustomCommand": _returning_result(_H, _TEXT_IN),
    # Pixel conversions: no handle, no result
    **_sharing(
        _BAYER,
        *(f"ConvertBAY{p}{bits}ToBGR8" for bits in (8, 10, 12) for p in ("GB", "RG", "GR")),
        *(f"ConvertBAY{p}10ToBGR10" for p in ("GB", "RG", "GR")),
    ),
    **_sharing(
        _BYTES,
        "ConvertYUV422toBGR8",
        "ConvertYUV422PackedtoBGR8",
        "ConvertYUV411toBGR8",
        "ConvertYUV444toBGR8",
        "ConvertRGB8toBGR8",
        "ConvertRGB12PackedtoBGR8",
        "ConvertBGR10V2PackedtoBGR8",
        *(f"ConvertMono{bits}ToBGR8" for bits in (8, 10, 12, 14)),
        "ConvertMonoPackedToBGR8",
        "ConvertMono10PackedToMono8",
    ),
    **_sharing(
        _GEOMETRY,
        "ConvertYUV422_UYVYtoBGR8",
        "ConvertYUV422_YUYVtoBGR8",
        "ConvertMono12PackedToMono16bit",
        "ConvertMono10PackedToMono16bit",
    ),
    "ConvertYUV422toBGR8Interlaced": ([_OUT, _U32, _OUT, ctypes.c_int, _U32, _U32, _U32], None),
    "Convert8a_4b_4a_8bTo16_16_MMX_I": ([_OUT, _OUT, _U32], None),
}

# RYSDK::GetResultText(RESULT), the C++ API's one plain function: the texts of the results.
_RESULT_TEXT_SYMBOL = "_ZN5RYSDK13GetResultTextENS_6RESULTE"
_LIBRARY_NAME = "libRyGigE.so"


def candidate_paths() -> list[str]:
    """Where the library is looked for, in order: $RYGIGE_LIBRARY, the build tree beside
    this package's source tree, then the system's own search (an installed SDK)."""
    found: list[str] = []
    explicit = os.environ.get("RYGIGE_LIBRARY")
    if explicit:
        found.append(explicit)
    tree = Path(__file__).resolve().parents[2] / "build" / "lib" / _LIBRARY_NAME
    if tree.exists():
        found.append(str(tree))
    installed = ctypes.util.find_library("RyGigE")
    found.append(installed or _LIBRARY_NAME)
    return found


class FlatLibrary:
    """libRyGigE with the flat functions declared; attribute access gives checked calls."""

    def __init__(self, library: ctypes.CDLL) -> None:
        self.library = library
        self._checked: dict[str, Any] = {}
        self._unchecked: dict[str, Any] = {}
        text = getattr(library, _RESULT_TEXT_SYMBOL, None)
        if text is not None:
            text.argtypes, text.restype = [ctypes.c_int32], ctypes.c_wchar_p
        self._result_text = text
        for name, (arguments, result) in FUNCTIONS.items():
            self._checked[name] = self._declare(name, arguments, result, checked=True)
            self._unchecked[name] = self._declare(name, arguments, result, checked=False)

    def _declare(self, name: str, arguments: Sequence[Any], result: Any, checked: bool) -> Any:
        function = self.library[name]  # a fresh function object each time
        function.argtypes = list(arguments)
        function.restype = result
        if checked and result is _I32:
            function.errcheck = self._check  # type: ignore[assignment]
        return function

    def __getattr__(self, name: str) -> Callable[..., Any]:
        """The flat function `name`; a failing RESULT raises RyGigEError."""
        try:
            function: Callable[..., Any] = self.__dict__["_checked"][name]
        except KeyError:
            raise AttributeError(f"the flat interface has no function {name}") from None
        return function

    def unchecked(self, name: str) -> Callable[..., int]:
        """The function `name` returning its RESULT as a number instead of raising."""
        function: Callable[..., int] = self._unchecked[name]
        return function

    def result_text(self, result: int) -> str:
        """The SDK's text of a result, or the result's name when the SDK has none."""
        text = self._result_text(result) if self._result_text is not None else None
        if text:
            return str(text)
        try:
            return Result(result).name
        except ValueError:
            return f"result {result}"

    def raise_for(self, result: int, what: str) -> None:
        """Raises the exception of `result` unless it is success."""
        if result != Result.SUCCESS:
            raise error_for(result, what, self.result_text)

    def _check(self, result: int, function: Any, _arguments: tuple[Any, ...]) -> int:
        self.raise_for(result, function.__name__)
        return result


@functools.lru_cache(maxsize=None)
def flat() -> FlatLibrary:
    """The loaded library, found on the first call (see candidate_paths)."""
    errors: list[str] = []
    for path in candidate_paths():
        try:
            return FlatLibrary(ctypes.CDLL(path))
        except OSError as error:
            errors.append(f"{path}: {error}")
    raise OSError(
        "libRyGigE.so not found; set RYGIGE_LIBRARY to its path or build the tree "
        "(cmake --build --preset release). Tried: " + "; ".join(errors)
    )


def loaded_path() -> Optional[str]:
    """The file the library was loaded from."""
    return getattr(flat().library, "_name", None)
