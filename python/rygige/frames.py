"""Frames and how they travel from the SDK's grab thread to Python.

The SDK queues a frame's buffer again as soon as its image callback returns. So the image
callback the SDK calls (`Delivery.on_image`, on the grab thread) only records the frame,
puts it on a queue and waits, without the interpreter lock, until Python has released the
frame; user code runs on the thread that takes the frame from the queue (the caller's
thread for `Camera.grab`, a Python-owned thread for `Camera.start`). While a frame is held,
`frame.array` is a NumPy view of the SDK's buffer; once it is released the buffer belongs
to the SDK again and the frame refuses to give its pixels (FrameReleasedError).
"""

from __future__ import annotations

import ctypes
import logging
import queue
import threading
from dataclasses import dataclass
from typing import Any, Callable, Optional, Union

import numpy as np
import numpy.typing as npt

from rygige import _types as t
from rygige._flat import flat
from rygige.errors import (
    CameraDisconnectedError,
    FrameReleasedError,
    Result,
    RyGigETimeoutError,
)

log = logging.getLogger("rygige")

_WORDS = {
    t.PixelFormat.MONO10,
    t.PixelFormat.MONO12,
    t.PixelFormat.MONO14,
    t.PixelFormat.MONO16,
    t.PixelFormat.BAYERGR10,
    t.PixelFormat.BAYERRG10,
    t.PixelFormat.BAYERGB10,
    t.PixelFormat.BAYERBG10,
    t.PixelFormat.BAYERGR12,
    t.PixelFormat.BAYERRG12,
    t.PixelFormat.BAYERGB12,
    t.PixelFormat.BAYERBG12,
}
_BYTES_PER_PIXEL = {t.PixelFormat.MONO8, t.PixelFormat.MONO8SIGNED} | {
    t.PixelFormat.BAYERGR8,
    t.PixelFormat.BAYERRG8,
    t.PixelFormat.BAYERGB8,
    t.PixelFormat.BAYERBG8,
}
_THREE_BYTES = {t.PixelFormat.RGB8, t.PixelFormat.BGR8, t.PixelFormat.YUV444PACKED}

# Conversions to BGR8 by how they take their arguments: (src, dst, width, height) ...
_BAYER_TO_BGR = {
    t.PixelFormat.BAYERGB8: "ConvertBAYGB8ToBGR8",
    t.PixelFormat.BAYERRG8: "ConvertBAYRG8ToBGR8",
    t.PixelFormat.BAYERGR8: "ConvertBAYGR8ToBGR8",
    t.PixelFormat.BAYERGB10: "ConvertBAYGB10ToBGR8",
    t.PixelFormat.BAYERRG10: "ConvertBAYRG10ToBGR8",
    t.PixelFormat.BAYERGR10: "ConvertBAYGR10ToBGR8",
    t.PixelFormat.BAYERGB12: "ConvertBAYGB12ToBGR8",
    t.PixelFormat.BAYERRG12: "ConvertBAYRG12ToBGR8",
    t.PixelFormat.BAYERGR12: "ConvertBAYGR12ToBGR8",
}
# ... (src, bytes, dst) ...
_BYTES_TO_BGR = {
    t.PixelFormat.MONO8: "ConvertMono8ToBGR8",
    t.PixelFormat.MONO10: "ConvertMono10ToBGR8",
    t.PixelFormat.MONO12: "ConvertMono12ToBGR8",
    t.PixelFormat.MONO14: "ConvertMono14ToBGR8",
    t.PixelFormat.RGB8: "ConvertRGB8toBGR8",
    t.PixelFormat.YUV411PACKED: "ConvertYUV411toBGR8",
    t.PixelFormat.YUV444PACKED: "ConvertYUV444toBGR8",
}
# ... and (src, width, height, dst).
_GEOMETRY_TO_BGR = {
    t.PixelFormat.YUV422PACKED: "ConvertYUV422_UYVYtoBGR8",
    t.PixelFormat.YUV422YUYVPACKED: "ConvertYUV422_YUYVtoBGR8",
}


@dataclass(frozen=True)
class FrameInfo:
    """What the SDK says about a frame: its IMAGE_INFO, copied."""

    block_id: int
    width: int
    height: int
    pixel_format: int
    timestamp: int
    status: int
    result: int
    frame_flag: int

    @property
    def size(self) -> int:
        """Bytes of the image, as the SDK's buffer pool sizes it."""
        return self.width * self.height * t.pixel_bits(self.pixel_format) // 8


class Frame:
    """One frame, borrowed from the SDK's buffer pool until it is released. Its block id,
    width, height and pixel format (and the rest of `info`) stay readable afterwards.

    Thread: the thread that took it; `release` from any thread."""

    def __init__(self, info: FrameInfo, address: int, delivery: Optional["Delivery"]) -> None:
        self.info = info
        self.block_id, self.pixel_format = info.block_id, info.pixel_format
        self.width, self.height = info.width, info.height
        self._address = address
        self._delivery = delivery
        self._released = threading.Event()
        self._array: Optional[npt.NDArray[Any]] = None

    @property
    def released(self) -> bool:
        """True once the buffer went back to the SDK."""
        return self._released.is_set()

    @property
    def array(self) -> npt.NDArray[Any]:
        """A NumPy view of the SDK's buffer, without a copy: (height, width) for one sample
        a pixel, (height, width, 3) for RGB8, BGR8 and YUV444, the bytes otherwise. Valid
        while the frame is held: it is released when the next frame is taken or the
        callback returns; keep `copy()` for longer. Raises FrameReleasedError afterwards."""
        if self._released.is_set():
            raise FrameReleasedError(
                f"frame {self.block_id} was released and its buffer requeued; "
                "call frame.copy() while the frame is held to keep its pixels"
            )
        if self._array is None:
            self._array = _view(self.info, self._address)
        return self._array

    def copy(self) -> npt.NDArray[Any]:
        """The pixels in an array of Python's own, valid after the release."""
        return self.array.copy()

    def to_bgr(self) -> npt.NDArray[np.uint8]:
        """The image as (height, width, 3) blue-green-red bytes, through the SDK's own
        conversions. ValueError for a pixel format without one."""
        return to_bgr(self.info, self.array)

    def release(self) -> None:
        """Gives the buffer back to the SDK; the pixels are unreadable afterwards. Repeated
        calls do nothing."""
        if self._delivery is not None:
            self._delivery.release(self)
        else:
            self._mark_released()

    def _mark_released(self) -> bool:
        if self._released.is_set():
            return False
        self._array = None
        self._released.set()
        return True

    def __enter__(self) -> "Frame":
        return self

    def __exit__(self, *_exception: object) -> None:
        self.release()

    def __repr__(self) -> str:
        state = "released" if self.released else "held"
        return (
            f"<Frame {self.block_id} {self.width}x{self.height} "
            f"format 0x{self.pixel_format:08X} {state}>"
        )


def _shape(info: FrameInfo) -> tuple[Union[np.dtype[Any], type], tuple[int, ...]]:
    try:
        known = t.PixelFormat(info.pixel_format)
    except ValueError:
        return np.uint8, (info.size,)
    if known in _BYTES_PER_PIXEL:
        return np.uint8, (info.height, info.width)
    if known in _WORDS:
        return np.dtype("<u2"), (info.height, info.width)
    if known in _THREE_BYTES:
        return np.uint8, (info.height, info.width, 3)
    return np.uint8, (info.size,)


def _view(info: FrameInfo, address: int) -> npt.NDArray[Any]:
    dtype, shape = _shape(info)
    if address == 0 or info.size == 0:
        raise FrameReleasedError(f"frame {info.block_id} has no pixels")
    raw = memoryview((ctypes.c_uint8 * info.size).from_address(address))
    view: npt.NDArray[Any] = np.frombuffer(raw, dtype=np.dtype(dtype), count=int(np.prod(shape)))
    return view.reshape(shape)


def to_bgr(info: FrameInfo, pixels: npt.NDArray[Any]) -> npt.NDArray[np.uint8]:
    """Converts a frame's pixels (its `array`, or a copy of it) to blue-green-red bytes."""
    source = np.ascontiguousarray(pixels)
    if source.nbytes < info.size:
        raise ValueError(f"{source.nbytes} bytes given, the frame needs {info.size}")
    out = np.empty((info.height, info.width, 3), dtype=np.uint8)
    if info.width == 0 or info.height == 0:
        return out
    code = info.pixel_format
    src, dst, library = source.ctypes.data, out.ctypes.data, flat()
    if code == t.PixelFormat.BGR8:
        out[...] = source.reshape(out.shape)
    elif code in _BAYER_TO_BGR:
        if info.width % 2 or info.height % 2:
            raise ValueError("Bayer conversions need an even width and height")
        getattr(library, _BAYER_TO_BGR[t.PixelFormat(code)])(src, dst, info.width, info.height)
    elif code in _BYTES_TO_BGR:
        getattr(library, _BYTES_TO_BGR[t.PixelFormat(code)])(src, info.size, dst)
    elif code in _GEOMETRY_TO_BGR:
        getattr(library, _GEOMETRY_TO_BGR[t.PixelFormat(code)])(src, info.width, info.height, dst)
    else:
        raise ValueError(f"no conversion from pixel format 0x{code:08X} to BGR8")
    return out


FrameQueue = queue.SimpleQueue  # frames, or one of these two signals:
_DISCONNECTED = object()  # put on the queue when the camera stops answering
_STOPPED = object()  # put on the queue when the acquisition is stopped


class Delivery:
    """Hands frames from the SDK's grab thread to the Python thread that takes them.

    At most one frame is out at a time: the grab thread waits in `on_image` until it is
    released, and the transport layer fills the camera's other buffers meanwhile."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._queue: "FrameQueue[object]" = queue.SimpleQueue()
        self._open = False
        self._out: Optional[Frame] = None
        self.delivered = 0
        # Kept alive here for as long as the SDK may call them.
        self.image_callback = t.ImageCallback(self.on_image)

    def start(self) -> "FrameQueue[object]":
        """Accepts frames from now on; the queue this acquisition's frames go to (a stopped
        acquisition's consumer must not take the next one's frames). Thread: application."""
        with self._lock:
            self._queue = queue.SimpleQueue()
            self._open = True
            return self._queue

    @property
    def current(self) -> "FrameQueue[object]":
        """The queue of the latest acquisition."""
        return self._queue

    def stop(self) -> None:
        """Refuses further frames and releases the one out, so that the grab thread returns
        and a stop of the acquisition cannot wait for Python. Thread: any."""
        with self._lock:
            self._open = False
            out = self._out
            self._queue.put(_STOPPED)
        if out is not None:
            self.release(out)

    def on_image(self, _object: Any, image: Any) -> None:
        """The SDK's image callback, on its grab thread: records the frame, queues it and
        waits (the interpreter lock released) until Python has released it."""
        try:
            record = image.contents
            info = FrameInfo(
                record.blockId,
                record.width,
                record.height,
                record.pixelFormat,
                record.timestamp,
                record.bufferStatus,
                record.result,
                record.frameFlag,
            )
            frame = Frame(info, record.pImage or 0, self)
            with self._lock:
                if not self._open:
                    return
                self._out = frame
                self.delivered += 1
                self._queue.put(frame)
            frame._released.wait()
        except BaseException:  # nothing may escape into the SDK's thread
            log.exception("rygige: the image callback failed")

    def on_disconnect(self) -> None:
        """Wakes whoever waits for a frame: the camera is gone. Thread: any."""
        self._queue.put(_DISCONNECTED)

    @staticmethod
    def take(source: "FrameQueue[object]", timeout: Optional[float]) -> Optional[Frame]:
        """The next frame, or None once the acquisition was stopped; RyGigETimeoutError
        when none comes within `timeout` seconds, CameraDisconnectedError when the camera
        stopped answering. Thread: the consumer."""
        try:
            item = source.get(timeout=timeout)
        except queue.Empty:
            raise RyGigETimeoutError(
                f"no frame within {timeout} s",
                Result.ERROR_RYCAMERA_GRAB_TIMEOUT,
                flat().result_text(Result.ERROR_RYCAMERA_GRAB_TIMEOUT),
            ) from None
        if item is _DISCONNECTED:
            raise CameraDisconnectedError("the camera stopped answering")
        if item is _STOPPED:
            return None
        assert isinstance(item, Frame)
        return item

    def release(self, frame: Frame) -> None:
        """Marks the frame released and lets the grab thread requeue its buffer."""
        with self._lock:
            if self._out is frame:
                self._out = None
        frame._mark_released()


FrameCallback = Callable[[Frame], object]


class Acquisition:
    """A running acquisition whose frames go to a Python function on a thread of its own.

    The function gets each frame while it is held; an exception it raises is logged (logger
    "rygige") and counted, and the acquisition goes on."""

    def __init__(
        self,
        source: "FrameQueue[object]",
        callback: FrameCallback,
        count: Optional[int],
        stop_camera: Callable[[], None],
    ) -> None:
        self._source = source
        self._callback = callback
        self._count = count
        self._stop_camera = stop_camera
        self._stopping = threading.Event()
        self._finished = threading.Event()
        self.frames = 0
        self.errors = 0
        self.disconnected = False
        self._thread = threading.Thread(target=self._run, name="rygige-frames", daemon=True)
        self._thread.start()

    def _run(self) -> None:
        try:
            while not self._stopping.is_set():
                if self._count is not None and self.frames >= self._count:
                    break
                try:
                    frame = Delivery.take(self._source, timeout=0.1)
                except RyGigETimeoutError:
                    continue
                except CameraDisconnectedError:
                    self.disconnected = True
                    break
                if frame is None:
                    break
                self._call(frame)
        finally:
            self._finished.set()

    def _call(self, frame: Frame) -> None:
        try:
            self._callback(frame)
        except Exception:
            self.errors += 1
            log.exception("rygige: the frame callback raised on frame %d", frame.block_id)
        finally:
            frame.release()
            self.frames += 1

    def wait(self, timeout: Optional[float] = None) -> bool:
        """Waits until the frame count is reached (or the camera is lost); True if so."""
        return self._finished.wait(timeout)

    @property
    def running(self) -> bool:
        """True while frames are still handed to the function."""
        return not self._finished.is_set()

    def stop(self) -> None:
        """Stops the camera and the thread; no call of the function starts afterwards.
        Thread: application, or the function itself."""
        self._stopping.set()
        self._stop_camera()
        if threading.current_thread() is not self._thread:
            self._thread.join()

    def __enter__(self) -> "Acquisition":
        return self

    def __exit__(self, *_exception: object) -> None:
        self.stop()
