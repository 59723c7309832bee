"""rygige: Python access to GigE Vision cameras through libRyGigE's flat C interface.

    import rygige

    with rygige.System(discovery_timeout=0.5) as system:
        with system.open(0) as camera:
            camera.features["ExposureTime"] = 5000
            for frame in camera.grab(10):
                print(frame.block_id, frame.array.mean())

See python/README.md in the source tree for the frame lifetime and the threads.
"""

from rygige._types import Access, FeatureKind, PixelFormat, Privilege, Visibility
from rygige.camera import Camera
from rygige.errors import (
    CameraClosedError,
    CameraDisconnectedError,
    FrameReleasedError,
    Result,
    RyGigEAccessDeniedError,
    RyGigEError,
    RyGigENotFoundError,
    RyGigETimeoutError,
)
from rygige.features import Category, Feature, Features
from rygige.frames import Acquisition, Frame, FrameInfo, to_bgr
from rygige.system import CameraInfo, InterfaceInfo, System

__all__ = [
    "Access",
    "Acquisition",
    "Camera",
    "CameraClosedError",
    "CameraDisconnectedError",
    "CameraInfo",
    "Category",
    "Feature",
    "FeatureKind",
    "Features",
    "Frame",
    "FrameInfo",
    "FrameReleasedError",
    "InterfaceInfo",
    "PixelFormat",
    "Privilege",
    "Result",
    "RyGigEAccessDeniedError",
    "RyGigEError",
    "RyGigENotFoundError",
    "RyGigETimeoutError",
    "System",
    "Visibility",
    "to_bgr",
]
