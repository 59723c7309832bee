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
_TEXT = ctypes.c_char_p  # zero-terminated text going in
_OUT = ctypes.c_void_p  # a buffer the SDK writes: bytes, text or pixels
_WTEXT = ctypes.c_wchar_p
_OPEN_TAIL = [_U32, _U32, _U32, _U32]  # buffers, width, height, packet size
_CALLBACKS = [t.ImageCallback, t.DisconnectCallback]
_BAYER = [_OUT, _OUT, _U32, _U32]  # src, dst, width, height
_BYTES = [_OUT, _U32, _OUT]  # src, bytes, dst
_GEOMETRY = [_OUT, _U32, _U32, _OUT]  # src, width, height, dst
_VOID = None  # the pixel conversions return nothing

# name: (argument types, result type); the result type is RESULT unless given.
FUNCTIONS: dict[str, tuple[Sequence[Any], Any]] = {
    # System
    "OpenRyGigE": ([_PH], _I32),
    "CloseRyGigE": ([_PH], _I32),
    "RyDiscovery": ([_H], _I32),
    "RyGetNumInterfaces": ([_H, _PU32], _I32),
    "RyGetNumCameras": ([_H, _PU32], _I32),
    "RyGetNumCamerasByIndex": ([_H, _U32, _PU32], _I32),
    "RyGetNumCamerasByName": ([_H, _TEXT, _PU32], _I32),
    "RyDiscoveryInterfaceInfo": ([_H, _U32, _P(t.InterfaceInfoRecord)], _I32),
    "RyDiscoveryCameraInfo": ([_H, _U32, _P(t.CameraInfoRecord)], _I32),
    "RyOpenCameraByIndex": ([_H, _U32, _PH, *_OPEN_TAIL, _P(t.ObjectInfo), *_CALLBACKS], _I32),
    "RyOpenCameraByName": ([_H, _TEXT, _PH, *_OPEN_TAIL, _P(t.ObjectInfo), *_CALLBACKS], _I32),
    "RyOpenInterfaceByIndex": ([_H, _U32, _PH], _I32),
    "RyOpenInterfaceByName": ([_H, _TEXT, _PH], _I32),
    "RyForceIP": ([_H, _P(_U8), _U32, _U32, _U32], _I32),
    "RyUseMTUOptimize": ([_H, _I32], _I32),
    "RySetMTUTimeout": ([_H, _U32], _I32),
    "RyGetMTUTimeout": ([_H, _PU32], _I32),
    "RySetGVCPTimeout": ([_H, _U32], _I32),
    "RyGetGVCPTimeout": ([_H, _PU32], _I32),
    "RySetMultiCastAddress": ([_H, _U32], _I32),
    "RyGetMultiCastAddress": ([_H, _PU32], _I32),
    "RySetIgnoreSubnet": ([_H, _I32], _I32),
    "RyGetIgnoreSubnet": ([_H, _PI32], _I32),
    "RySetDiscoveryTimeout": ([_H, _U32], _I32),
    "RyGetDiscoveryTimeout": ([_H, _PU32], _I32),
    "RySetCCPPrivilege": ([_H, _I32], _I32),
    "RyUserLogging": ([_H, _WTEXT, _WTEXT, _WTEXT, _U32, _WTEXT], _I32),
    # Interface
    "InterfaceOpenCameraByIndex": (
        [_H, _P(t.ObjectInfo), _U32, _PH, *_OPEN_TAIL, *_CALLBACKS],
        _I32,
    ),
    "InterfaceOpenCameraByName": (
        [_H, _P(t.ObjectInfo), _TEXT, _PH, *_OPEN_TAIL, *_CALLBACKS],
        _I32,
    ),
    "InterfaceGetNumCameras": ([_H, _PU32], _I32),
    "InterfaceGetCameraName": ([_H, _U32, _OUT, _PSIZE], _I32),
    "InterfaceGetCameraID": ([_H, _U32, _OUT, _PSIZE], _I32),
    "InterfaceGetRyGigEHandle": ([_H, _H], _I32),
    "InterfaceGetSubnet": ([_H, _OUT, _PSIZE], _I32),
    "InterfaceGetIPAddress": ([_H, _OUT, _PSIZE], _I32),
    "InterfaceUsePacketResend": ([_H, _I32], _I32),
    "InterfaceUsePacketResendFrequently": ([_H, _I32], _I32),
    "InterfaceUseLAGMode": ([_H, _I32], _I32),
    "InterfaceGetImageReceivingTimeout": ([_H, _PU32], _I32),
    "InterfaceSetImageReceivingTimeout": ([_H, _U32], _I32),
    "InterfaceGetImageRetransTimeout": ([_H, _PU32], _I32),
    "InterfaceSetImageRetransTimeout": ([_H, _U32], _I32),
    "InterfaceCloseInterface": ([_H], _I32),
    # Camera: open state and acquisition
    "CameraClose": ([_H], _I32),
    "CameraGetInterfaceHandle": ([_H, _PH], _I32),
    "CameraGrab": ([_H], _I32),
    "CameraSnap": ([_H, _U32], _I32),
    "CameraAbort": ([_H], _I32),
    "CameraGetGrabData": ([_H, _P(t.ImageInfo)], _I32),
    "CameraGetGrabCondition": ([_H, _PI32], _I32),
    "CameraSetAcquisitionTimeOut": ([_H, _U32], _I32),
    "CameraGetAcquisitionTimeOut": ([_H, _PU32], _I32),
    "CameraChangeBufferFormat": ([_H, _U32, _U32, _U32, _U32], _I32),
    "CameraGetBufferInfo": ([_H, _PU32, _PU32, _PU32, _PU32], _I32),
    "CameraGetStreamInfo": ([_H, _I32, _PU32], _I32),
    "CameraUseIndependentCallback": ([_H, _I32], _I32),
    "CameraSetImageCallback": ([_H, t.ImageCallback], _I32),
    # Camera: standard features
    "CameraGetWidth": ([_H, _PU32], _I32),
    "CameraGetHeight": ([_H, _PU32], _I32),
    "CameraSetWidth": ([_H, _U32], _I32),
    "CameraSetHeight": ([_H, _U32], _I32),
    "CameraSetPixelFormat": ([_H, _U32], _I32),
    "CameraGetPixelFormat": ([_H, _PU32], _I32),
    "CameraGetPixelFormatLineup": ([_H, _U32, _PU32], _I32),
    "CameraGetPixelFormatLineupNum": ([_H, _PU32], _I32),
    "CameraSetTriggerMode": ([_H, _I32], _I32),
    "CameraGetTriggerMode": ([_H, _PI32], _I32),
    "CameraGetTriggerModeLineup": ([_H, _U32, _PU32], _I32),
    "CameraGetTriggerModeLineupNum": ([_H, _PU32], _I32),
    "CameraSetTriggerSource": ([_H, _I32], _I32),
    "CameraGetTriggerSource": ([_H, _PI32], _I32),
    "CameraGetTriggerSourceLineup": ([_H, _U32, _PI32], _I32),
    "CameraGetTriggerSourceLineupNum": ([_H, _PU32], _I32),
    "CameraSetTriggerSoftware": ([_H], _I32),
    "CameraSetTriggerActivation": ([_H, _I32], _I32),
    "CameraSetBinningHorizontal": ([_H, _U32], _I32),
    "CameraGetBinningHorizontal": ([_H, _PU32], _I32),
    "CameraGetBinningHorizontalLineup": ([_H, _U32, _PU32], _I32),
    "CameraGetBinningHorizontalLineupNum": ([_H, _PU32], _I32),
    "CameraSetBinningVertical": ([_H, _U32], _I32),
    "CameraGetBinningVertical": ([_H, _PU32], _I32),
    "CameraGetBinningVerticalLineup": ([_H, _U32, _PU32], _I32),
    "CameraGetBinningVerticalLineupNum": ([_H, _PU32], _I32),
    "CameraGetBinningFactor": ([_H, _PU32], _I32),
    "CameraSetBinningFactor": ([_H, _U32], _I32),
    "CameraGetFrameCapacity": ([_H, _PU32], _I32),
    "CameraSetStreamHold": ([_H, _U32], _I32),
    "CameraGetStreamHold": ([_H, _PU32], _I32),
    "CameraSetSCPSPacketSize": ([_H, _U32], _I32),
    "CameraGetSCPSPacketSize": ([_H, _PU32], _I32),
    "CameraSetTestImage": ([_H, _I32], _I32),
    "CameraGetTestImage": ([_H, _PI32], _I32),
    "CameraGetTestImageLineup": ([_H, _U32, _PI32], _I32),
    "CameraGetTestImageLineupNum": ([_H, _PU32], _I32),
    "CameraSetPixelSize": ([_H, _U32], _I32),
    "CameraGetPixelSize": ([_H, _PU32], _I32),
    "CameraGetPixelSizeLineupNum": ([_H, _PU32], _I32),
    "CameraGetPixelSizeLineup": ([_H, _U32, _PU32], _I32),
    "CameraSetReadoutMode": ([_H, _I32], _I32),
    "CameraGetExposureMode": ([_H, _PI32], _I32),
    "CameraSetExposureMode": ([_H, _I32], _I32),
    "CameraGetExposureTime": ([_H, _PU32], _I32),
    "CameraSetExposureTime": ([_H, _U32], _I32),
    "CameraGetGain": ([_H, _PI32, _P(ctypes.c_float)], _I32),
    "CameraSetGain": ([_H, _I32, ctypes.c_float], _I32),
    "CameraSetHorizontalStart": ([_H, _U32], _I32),
    "CameraGetHorizontalStart": ([_H, _PU32], _I32),
    "CameraSetHorizontalEnd": ([_H, _U32], _I32),
    "CameraGetHorizontalEnd": ([_H, _PU32], _I32),
    "CameraSetVerticalStart": ([_H, _U32], _I32),
    "CameraGetVerticalStart": ([_H, _PU32], _I32),
    "CameraSetVerticalEnd": ([_H, _U32], _I32),
    "CameraGetVerticalEnd": ([_H, _PU32], _I32),
    "CameraSetBlackLevel": ([_H, _I32, _U32], _I32),
    "CameraSetReverseX": ([_H, _I32], _I32),
    "CameraSetStrobeOffset": ([_H, _U32], _I32),
    "CameraSetStrobePolarity": ([_H, _I32], _I32),
    "CameraGetDeviceModelName": ([_H, _U32, _OUT, _PSIZE], _I32),
    "CameraGetDeviceVersion": ([_H, _U32, _OUT, _PSIZE], _I32),
    "CameraGetDeviceVendorName": ([_H, _U32, _OUT, _PSIZE], _I32),
    "CameraGetDeviceID": ([_H, _U32, _OUT, _PSIZE], _I32),
    # Camera: network settings and identity
    "CameraGigESetCurrentIpConfigurationDHCP": ([_H, _I32], _I32),
    "CameraGigESetCurrentIpConfigurationPersistentIP": ([_H, _I32], _I32),
    "CameraGigEGetCurrentIpConfigurationDHCP": ([_H, _PI32], _I32),
    "CameraGigEGetCurrentIpConfigurationPersistentIP": ([_H, _PI32], _I32),
    "CameraGigEGetPersistentSubnetMask": ([_H, _PU32], _I32),
    "CameraGigEGetCurrentMACAddress": ([_H, _OUT, _PSIZE], _I32),
    "CameraGigEGetColorRGBGain": ([_H, _I32, _P(ctypes.c_double)], _I32),
    "CameraGigESetColorRGBGain": ([_H, _I32, ctypes.c_double], _I32),
    "CameraGigEGetTemperature": ([_H, _P(ctypes.c_double)], _I32),
    "CameraGigEGetSerialNumber": ([_H, _OUT, _PSIZE], _I32),
    # Camera: generic access, registers, files, events
    "CameraSetCustomCommand": ([_H, _TEXT, _TEXT, _U64, _I32, _I32], _I32),
    "CameraGetCustomCommand": ([_H, _TEXT, _OUT, _PU64, _I32], _I32),
    "CameraGetPropertyCount": ([_H, _PI32], _I32),
    "CameraGetPropertyInfo": ([_H, _TEXT, _P(t.PropertyInfo)], _I32),
    "CameraGetPropertyInfoUsingIndex": ([_H, _I32, _P(t.PropertyInfo)], _I32),
    "CameraReadData": ([_H, _OUT, _I64, _P(_I64)], _I32),
    "CameraWriteData": ([_H, _OUT, _I64, _PU64], _I32),
    "CameraReadFileStream": ([_H, _TEXT, _OUT, _PU64], _I32),
    "CameraWriteFileStream": ([_H, _TEXT, _OUT, _U64], _I32),
    "CameraSetEventControl": ([_H, _U32, _TEXT, _U64, t.EventCallback, ctypes.c_void_p], _I32),
    "CameraSetHeartBeatTimeoutTryCount": ([_H, _I32], _I32),
    "CameraGetHeartBeatTimeoutTryCount": ([_H, _PI32], _I32),
    # Camera: serial command channel
    "CameraGetUARTCustomCommand": ([_H, _TEXT, _OUT, _PSIZE], _I32),
    "CameraSetUARTCustomCommand": ([_H, _TEXT], _I32),
    # Pixel conversions: no handle, no result
    "ConvertBAYGB8ToBGR8": (_BAYER, _VOID),
    "ConvertBAYRG8ToBGR8": (_BAYER, _VOID),
    "ConvertBAYGR8ToBGR8": (_BAYER, _VOID),
    "ConvertBAYGB10ToBGR8": (_BAYER, _VOID),
    "ConvertBAYRG10ToBGR8": (_BAYER, _VOID),
    "ConvertBAYGR10ToBGR8": (_BAYER, _VOID),
    "ConvertBAYGB10ToBGR10": (_BAYER, _VOID),
    "ConvertBAYRG10ToBGR10": (_BAYER, _VOID),
    "ConvertBAYGR10ToBGR10": (_BAYER, _VOID),
    "ConvertBAYGB12ToBGR8": (_BAYER, _VOID),
    "ConvertBAYRG12ToBGR8": (_BAYER, _VOID),
    "ConvertBAYGR12ToBGR8": (_BAYER, _VOID),
    "ConvertYUV422toBGR8": (_BYTES, _VOID),
    "ConvertYUV422PackedtoBGR8": (_BYTES, _VOID),
    "ConvertYUV411toBGR8": (_BYTES, _VOID),
    "ConvertYUV444toBGR8": (_BYTES, _VOID),
    "ConvertYUV422toBGR8Interlaced": ([_OUT, _U32, _OUT, ctypes.c_int, _U32, _U32, _U32], _VOID),
    "ConvertYUV422_UYVYtoBGR8": (_GEOMETRY, _VOID),
    "ConvertYUV422_YUYVtoBGR8": (_GEOMETRY, _VOID),
    "ConvertRGB8toBGR8": (_BYTES, _VOID),
    "ConvertRGB12PackedtoBGR8": (_BYTES, _VOID),
    "ConvertBGR10V2PackedtoBGR8": (_BYTES, _VOID),
    "ConvertMono8ToBGR8": (_BYTES, _VOID),
    "ConvertMono10ToBGR8": (_BYTES, _VOID),
    "ConvertMono12ToBGR8": (_BYTES, _VOID),
    "ConvertMono14ToBGR8": (_BYTES, _VOID),
    "ConvertMonoPackedToBGR8": (_BYTES, _VOID),
    "ConvertMono10PackedToMono8": (_BYTES, _VOID),
    "ConvertMono12PackedToMono16bit": (_GEOMETRY, _VOID),
    "ConvertMono10PackedToMono16bit": (_GEOMETRY, _VOID),
    "Convert8a_4b_4a_8bTo16_16_MMX_I": ([_OUT, _OUT, _U32], _VOID),
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
