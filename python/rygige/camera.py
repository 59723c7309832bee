"""An open camera: features, grabbing, statistics, serial commands and files."""

from __future__ import annotations

import ctypes
import threading
from typing import Any, Generator, Optional

from rygige import _types as t
from rygige._flat import FlatLibrary
from rygige.errors import CameraClosedError, RyGigETimeoutError
from rygige.features import Features, _encoded
from rygige.frames import Acquisition, Delivery, Frame, FrameCallback, FrameQueue

_SERIAL_ANSWER = 4096


class Camera:
    """A camera opened through `System.open`; closed by `close()` or the `with` block.

    Thread: application, one thread at a time; `Frame.release` and `Acquisition.stop`
    are the exceptions their docstrings name."""

    def __init__(self, library: FlatLibrary, name: str) -> None:
        self._flat = library
        self.name = name
        self._handle: Optional[int] = None
        self._delivery = Delivery()
        self._object = t.ObjectInfo()
        self._disconnect_callback = t.DisconnectCallback(self._on_disconnect)
        self._disconnected = threading.Event()
        self.features = Features(library, self.handle)

    # ---- open and close ----------------------------------------------------------------

    def _opened(self, handle: int) -> None:
        self._handle = handle

    def open_arguments(self, buffers: int) -> tuple[Any, ...]:
        """The arguments of the flat open functions after the out-handle."""
        return (
            buffers,
            0,
            0,
            0,
            ctypes.byref(self._object),
            self._delivery.image_callback,
            self._disconnect_callback,
        )

    def handle(self) -> int:
        """The flat handle; CameraClosedError once the camera is closed."""
        if self._handle is None:
            raise CameraClosedError(f"camera {self.name} is closed")
        return self._handle

    @property
    def closed(self) -> bool:
        """True once the camera was closed."""
        return self._handle is None

    @property
    def disconnected(self) -> bool:
        """True once the camera stopped answering its heartbeat."""
        return self._disconnected.is_set()

    def close(self) -> None:
        """Stops any acquisition and closes the camera; repeated calls do nothing."""
        if self._handle is None:
            return
        self.stop()
        handle, self._handle = self._handle, None
        self._flat.unchecked("CameraClose")(handle)

    def __enter__(self) -> "Camera":
        return self

    def __exit__(self, *_exception: object) -> None:
        self.close()

    def _on_disconnect(self, _object: Any, _info: Any) -> None:
        self._disconnected.set()
        self._delivery.on_disconnect()

    # ---- acquisition -------------------------------------------------------------------

    def _begin(self, count: Optional[int]) -> "FrameQueue[object]":
        if count is not None and (isinstance(count, bool) or not isinstance(count, int)):
            raise TypeError(f"count is an int or None, not {type(count).__name__}")
        if count is not None and not 0 < count < 2**32:
            raise ValueError(f"count must be at least 1, not {count}")
        handle = self.handle()
        self.stop()
        source = self._delivery.start()
        if count is None:
            self._flat.CameraGrab(handle)
        else:
            self._flat.CameraSnap(handle, count)
        return source

    def stop(self) -> None:
        """Stops the acquisition; the frame out, if any, is released. Thread: application,
        or a frame callback."""
        self._delivery.stop()
        if self._handle is not None:
            self._flat.unchecked("CameraAbort")(self._handle)

    def grab(
        self, count: Optional[int] = None, timeout: Optional[float] = 5.0
    ) -> Generator[Frame, None, None]:
        """Grabs `count` frames (None: until the loop ends) and yields each while it is
        held: a frame is released when the next one is taken or the loop ends.
        RyGigETimeoutError when no frame comes within `timeout` seconds,
        CameraDisconnectedError when the camera stops answering."""
        return self._frames(self._begin(count), count, timeout)

    def _frames(
        self, source: "FrameQueue[object]", count: Optional[int], timeout: Optional[float]
    ) -> Generator[Frame, None, None]:
        taken = 0
        try:
            while count is None or taken < count:
                try:
                    frame = Delivery.take(source, timeout)
                except RyGigETimeoutError as error:
                    raise self._explained(error, taken, count) from None
                if frame is None:
                    return  # stopped: by close(), or by a new grab
                taken += 1
                try:
                    yield frame
                finally:
                    frame.release()
        finally:
            self._stop_if_current(source)

    def _explained(
        self, error: RyGigETimeoutError, taken: int, count: Optional[int]
    ) -> RyGigETimeoutError:
        """The time-out, saying whether the camera's acquisition ended and what was lost."""
        grabbing = ctypes.c_int32(1)
        self._flat.unchecked("CameraGetGrabCondition")(self.handle(), ctypes.byref(grabbing))
        if grabbing.value:
            return error
        lost = self.statistics()["lost_frames"]
        wanted = "" if count is None else f" of {count}"
        return RyGigETimeoutError(
            f"{error.message}: the acquisition ended after {taken}{wanted} frames "
            f"({lost} lost since the camera was opened; more buffers may help)",
            error.result,
            error.text,
        )

    def start(self, callback: FrameCallback, count: Optional[int] = None) -> Acquisition:
        """Grabs `count` frames (None: until stopped) and calls `callback(frame)` for each on
        a thread of the package's own; the frame is released when the callback returns."""
        source = self._begin(count)
        return Acquisition(source, callback, count, lambda: self._stop_if_current(source))

    def _stop_if_current(self, source: "FrameQueue[object]") -> None:
        """Stops the acquisition of `source` unless a later one has replaced it."""
        if self._delivery.current is source:
            self.stop()

    # ---- statistics, serial channel, files ---------------------------------------------

    def statistics(self) -> dict[str, int]:
        """The stream's counters since the camera was opened, and the frames handed to
        Python."""
        handle = self.handle()
        counters = {}
        for item in t.StreamInfo:
            value = ctypes.c_uint32()
            self._flat.CameraGetStreamInfo(handle, item, ctypes.byref(value))
            counters[item.name.lower()] = value.value
        counters["delivered_to_python"] = self._delivery.delivered
        return counters

    def serial(self, command: str) -> str:
        """Sends one line through the camera's serial command channel; its answer."""
        answer = ctypes.create_string_buffer(_SERIAL_ANSWER)
        size = ctypes.c_size_t(_SERIAL_ANSWER - 1)
        self._flat.CameraGetUARTCustomCommand(
            self.handle(), _encoded(command, "serial command"), answer, ctypes.byref(size)
        )
        return answer.raw[: min(size.value, _SERIAL_ANSWER - 1)].decode("utf-8", "replace")

    def serial_send(self, command: str) -> None:
        """Sends one line through the serial command channel without reading an answer."""
        self._flat.CameraSetUARTCustomCommand(self.handle(), _encoded(command, "serial command"))

    def read_file(self, name: str) -> bytes:
        """The whole of a file stored on the camera (an entry of "FileSelector")."""
        self.features["FileSelector"] = name
        size = self.features["FileSize"]
        assert isinstance(size, int)
        if size == 0:
            return b""
        buffer = ctypes.create_string_buffer(size)
        length = ctypes.c_uint64(size)
        self._flat.CameraReadFileStream(
            self.handle(), _encoded(name, "file name"), buffer, ctypes.byref(length)
        )
        return buffer.raw[: min(length.value, size)]

    def write_file(self, name: str, data: bytes) -> None:
        """Writes a file stored on the camera, whole."""
        if not isinstance(data, (bytes, bytearray, memoryview)):
            raise TypeError(f"file data is bytes, not {type(data).__name__}")
        payload = bytes(data)
        self._flat.CameraWriteFileStream(
            self.handle(), _encoded(name, "file name"), payload, len(payload)
        )

    def set_heartbeat_tries(self, count: int) -> None:
        """Heartbeats that must fail in a row before the camera counts as lost."""
        self._flat.CameraSetHeartBeatTimeoutTryCount(self.handle(), count)

    def __repr__(self) -> str:
        return f"<Camera {self.name} {'closed' if self.closed else 'open'}>"


