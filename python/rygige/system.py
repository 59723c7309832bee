"""The process-wide system object: discovery, its records, and opening cameras."""

from __future__ import annotations

import atexit
import ctypes
from dataclasses import dataclass
from typing import Optional, Union

from rygige import _types as t
from rygige._flat import FlatLibrary, flat
from rygige.camera import Camera
from rygige.errors import CameraClosedError, RyGigENotFoundError, Result


@dataclass(frozen=True)
class CameraInfo:
    """One camera as the last discovery saw it; `index` is its global index."""

    index: int
    name: str
    model: str
    manufacturer: str
    ip_address: str
    mac_address: str
    result: int


@dataclass(frozen=True)
class InterfaceInfo:
    """One network interface as the last discovery saw it, with its cameras."""

    index: int
    name: str
    result: int
    cameras: tuple[CameraInfo, ...]


def _text(raw: bytes) -> str:
    return raw.decode("utf-8", errors="replace")


# Systems still open, kept as the SDK keeps its system object: until closed. The interpreter
# must not exit while an SDK thread waits in a frame callback for Python (a thread it ends
# that way takes the process down), so whatever the application left open is closed at exit.
_OPEN: "set[System]" = set()


@atexit.register
def _close_at_exit() -> None:
    for system in list(_OPEN):
        system.close()


class System:
    """The SDK's system object. One may exist per process at a time: a second gives
    RyGigEError (ERROR_OPENED_ALREADY) until the first is closed. Opening it discovers the
    network once; `discover()` looks again. Thread: application."""

    def __init__(self, discovery_timeout: Optional[float] = None) -> None:
        self._flat: FlatLibrary = flat()
        handle = ctypes.c_void_p()
        self._flat.OpenRyGigE(ctypes.byref(handle))
        self._handle: Optional[int] = handle.value
        self._cameras: list[Camera] = []
        _OPEN.add(self)
        if discovery_timeout is not None:
            self.discover(discovery_timeout)

    def handle(self) -> int:
        """The flat system handle; CameraClosedError once the system is closed."""
        if self._handle is None:
            raise CameraClosedError("the system object is closed")
        return self._handle

    def close(self) -> None:
        """Closes every camera opened through it and the system object."""
        if self._handle is None:
            return
        for camera in self._cameras:
            camera.close()
        self._cameras.clear()
        handle = ctypes.c_void_p(self._handle)
        self._handle = None
        _OPEN.discard(self)
        self._flat.unchecked("CloseRyGigE")(ctypes.byref(handle))

    def __enter__(self) -> "System":
        return self

    def __exit__(self, *_exception: object) -> None:
        self.close()

    def discover(self, timeout: float = 0.5) -> list[CameraInfo]:
        """Looks for cameras, waiting `timeout` seconds for answers; the cameras found."""
        milliseconds = round(timeout * 1000)
        if not 0 <= milliseconds < 2**32:
            raise ValueError(f"a discovery time-out of {timeout} s is out of range")
        self._flat.RySetDiscoveryTimeout(self.handle(), milliseconds)
        self._flat.RyDiscovery(self.handle())
        return self.cameras()

    def interfaces(self) -> list[InterfaceInfo]:
        """The interfaces of the last discovery, each with its cameras."""
        count = ctypes.c_uint32()
        self._flat.RyGetNumInterfaces(self.handle(), ctypes.byref(count))
        found, first = [], 0
        for index in range(count.value):
            record = t.InterfaceInfoRecord()
            self._flat.RyDiscoveryInterfaceInfo(self.handle(), index, ctypes.byref(record))
            cameras = ctypes.c_uint32()
            self._flat.RyGetNumCamerasByIndex(self.handle(), index, ctypes.byref(cameras))
            members = tuple(self._camera(first + n) for n in range(cameras.value))
            first += cameras.value
            found.append(InterfaceInfo(record.m_Index, _text(record.m_Name), record.m_Result,
                                       members))
        return found

    def cameras(self) -> list[CameraInfo]:
        """The cameras of the last discovery, by global index."""
        count = ctypes.c_uint32()
        self._flat.RyGetNumCameras(self.handle(), ctypes.byref(count))
        return [self._camera(index) for index in range(count.value)]

    def _camera(self, index: int) -> CameraInfo:
        record = t.CameraInfoRecord()
        self._flat.RyDiscoveryCameraInfo(self.handle(), index, ctypes.byref(record))
        return CameraInfo(
            index=index,
            name=_text(record.m_Name),
            model=_text(record.m_ModelName),
            manufacturer=_text(record.m_ManufacturerName),
            ip_address=_text(record.m_IPAddress),
            mac_address=_text(record.m_MACAddress),
            result=record.m_Result,
        )

    def find(self, selector: Union[int, str, CameraInfo]) -> CameraInfo:
        """The camera a selector names: its global index, its name, IP or MAC address, or
        its record. RyGigENotFoundError when none matches."""
        cameras = self.cameras()
        if isinstance(selector, CameraInfo):
            selector = selector.name
        if isinstance(selector, bool) or not isinstance(selector, (int, str)):
            raise TypeError(f"a camera is chosen by index or name, not {type(selector).__name__}")
        for camera in cameras:
            if selector in (camera.index, camera.name, camera.ip_address) or (
                isinstance(selector, str) and selector.lower() == camera.mac_address.lower()
            ):
                return camera
        raise RyGigENotFoundError(
            f"no camera matches {selector!r} ({len(cameras)} found)",
            Result.ERROR_CAMERA_NAME_DOES_NOT_EXIST,
            self._flat.result_text(Result.ERROR_CAMERA_NAME_DOES_NOT_EXIST),
        )

    def open(
        self,
        camera: Union[int, str, CameraInfo],
        privilege: t.Privilege = t.Privilege.CONTROL,
        buffers: int = 16,
    ) -> Camera:
        """Opens a camera (see `find` for the selector) with the control-channel privilege
        given and `buffers` frame buffers; use it in a `with` block or close it."""
        if not 1 <= buffers <= 1024:
            raise ValueError(f"buffers must be between 1 and 1024, not {buffers}")
        record = self.find(camera)
        self._flat.RySetCCPPrivilege(self.handle(), t.Privilege(privilege))
        opened = Camera(self._flat, record.name)
        handle = ctypes.c_void_p()
        result = self._flat.unchecked("RyOpenCameraByIndex")(
            self.handle(), record.index, ctypes.byref(handle), *opened.open_arguments(buffers)
        )
        if result != Result.SUCCESS:
            if handle.value:
                self._flat.unchecked("CameraClose")(handle)
            self._flat.raise_for(result, f"opening camera {record.name}")
        assert handle.value is not None
        opened._opened(handle.value)
        self._cameras = [c for c in self._cameras if not c.closed] + [opened]
        return opened
