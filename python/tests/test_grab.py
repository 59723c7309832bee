"""Grabbing from the emulated camera: every byte of the frames, the callback thread, the
frame lifetime, stopping, and a pulled cable."""

from __future__ import annotations

import logging
import subprocess
import sys
import threading
import time

import numpy as np
import numpy.typing as npt
import pytest

import rygige
from conftest import HEIGHT, TREE, WIDTH, Emulator


def expected_mono8(block_id: int, width: int = WIDTH, height: int = HEIGHT) -> npt.NDArray[np.uint8]:
    """The emulator's Mono8 test image: (x + 2y) mod 256, the first 8 bytes the block id."""
    y, x = np.mgrid[0:height, 0:width]
    image: npt.NDArray[np.uint8] = ((x + 2 * y) & 0xFF).astype(np.uint8)
    image.reshape(-1)[:8] = np.frombuffer(block_id.to_bytes(8, "little"), dtype=np.uint8)
    return image


def test_a_grab_of_100_frames_matches_the_test_images(camera: rygige.Camera) -> None:
    block_ids = []
    for frame in camera.grab(100, timeout=5):
        assert frame.array.shape == (HEIGHT, WIDTH) and frame.array.dtype == np.uint8
        np.testing.assert_array_equal(frame.array, expected_mono8(frame.block_id))
        block_ids.append(frame.block_id)
    assert block_ids == list(range(block_ids[0], block_ids[0] + 100))
    statistics = camera.statistics()
    assert statistics["lost_frames"] == 0 and statistics["delivered_to_python"] == 100


def test_a_released_frame_refuses_its_pixels_and_a_copy_stays(camera: rygige.Camera) -> None:
    frames = camera.grab(2, timeout=5)
    first = next(frames)
    kept = first.copy()
    view = first.array
    assert view.base is not None  # a view of the SDK's buffer, not a copy
    second = next(frames)
    assert first.released and not second.released
    with pytest.raises(rygige.FrameReleasedError):
        first.array
    with pytest.raises(rygige.FrameReleasedError):
        first.to_bgr()
    np.testing.assert_array_equal(kept, expected_mono8(first.block_id))
    assert first.block_id + 1 == second.block_id  # the metadata stays
    frames.close()
    assert second.released


def test_to_bgr_uses_the_sdk_conversion(camera: rygige.Camera) -> None:
    for frame in camera.grab(1):
        bgr = frame.to_bgr()
        assert bgr.shape == (HEIGHT, WIDTH, 3)
        for channel in range(3):
            np.testing.assert_array_equal(bgr[:, :, channel], frame.array)


def test_breaking_out_stops_and_a_new_grab_starts_afresh(camera: rygige.Camera) -> None:
    for _ in range(3):
        for taken, frame in enumerate(camera.grab(None, timeout=5)):
            if taken == 5:
                break
        assert frame.released
    assert len([frame.block_id for frame in camera.grab(10)]) == 10


def test_the_callback_runs_on_a_python_thread_and_survives_a_raise(
    camera: rygige.Camera, caplog: pytest.LogCaptureFixture
) -> None:
    seen: list[int] = []
    threads: set[str] = set()
    held: list[rygige.Frame] = []

    def on_frame(frame: rygige.Frame) -> None:
        threads.add(threading.current_thread().name)
        np.testing.assert_array_equal(frame.array, expected_mono8(frame.block_id))
        seen.append(frame.block_id)
        held.append(frame)
        if len(seen) % 10 == 0:
            raise RuntimeError("a user bug")

    with caplog.at_level(logging.ERROR, logger="rygige"):
        with camera.start(on_frame, count=50) as acquisition:
            assert acquisition.wait(timeout=20)
    assert acquisition.frames == 50 and acquisition.errors == 5
    assert seen == list(range(seen[0], seen[0] + 50))
    assert threads == {"rygige-frames"}
    assert sum("a user bug" in record.exc_text for record in caplog.records if record.exc_text) == 5
    assert all(frame.released for frame in held)


def test_stop_from_inside_the_callback(camera: rygige.Camera) -> None:
    def on_frame(frame: rygige.Frame) -> None:
        if frame.block_id >= first + 3:
            acquisition.stop()

    first = 1 + int(camera.statistics()["delivered_to_python"])
    acquisition = camera.start(on_frame)
    assert acquisition.wait(timeout=10)
    assert not acquisition.running
    assert len(list(camera.grab(3))) == 3  # the camera grabs again


def test_a_pulled_cable_ends_the_grab_with_an_error(
    camera: rygige.Camera, emulator: Emulator
) -> None:
    camera.features["GevHeartbeatTimeout"] = 500
    camera.set_heartbeat_tries(1)
    frames = camera.grab(None, timeout=3)
    next(frames)
    emulator.pull_cable()
    started = time.monotonic()
    with pytest.raises((rygige.RyGigETimeoutError, rygige.CameraDisconnectedError)):
        for _ in frames:
            pass
    assert time.monotonic() - started < 10
    deadline = time.monotonic() + 10
    while not camera.disconnected and time.monotonic() < deadline:
        time.sleep(0.1)
    assert camera.disconnected
    camera.close()  # returns although the camera does not answer


def test_bad_grab_arguments(camera: rygige.Camera) -> None:
    for count in (0, -1, 2**32):
        with pytest.raises(ValueError):
            camera.grab(count)
    with pytest.raises(TypeError):
        camera.grab("10")  # type: ignore[arg-type]
    with pytest.raises(rygige.RyGigETimeoutError):
        camera.features["TriggerMode"] = "On"
        next(camera.grab(1, timeout=0.3))


def test_a_grab_ended_by_close_or_a_new_grab_ends_quietly(system: rygige.System) -> None:
    camera = system.open(0)
    frames = camera.grab(None, timeout=5)
    next(frames)
    again = camera.grab(2)
    assert list(frames) == []  # the first grab ended without waiting for its time-out
    assert len(list(again)) == 2
    frames = camera.grab(None, timeout=5)
    next(frames)
    camera.close()
    started = time.monotonic()
    assert list(frames) == []
    assert time.monotonic() - started < 1


@pytest.mark.parametrize(
    "left_running",
    ["next(camera.grab(None))", "camera.start(lambda frame: time.sleep(0.01)); time.sleep(0.3)"],
)
def test_a_program_may_exit_in_the_middle_of_a_grab(emulator: Emulator, left_running: str) -> None:
    program = (
        "import time, rygige\n"
        "camera = rygige.System(discovery_timeout=0.3).open(0)\n"
        f"{left_running}\n"
    )
    done = subprocess.run(
        [sys.executable, "-c", program], cwd=TREE / "python", capture_output=True, timeout=60
    )
    assert done.returncode == 0, done.stderr


def bayer_rg_channels(height: int, width: int) -> npt.NDArray[np.intp]:
    """The BGR channel each pixel's own sample belongs to in an RG Bayer pattern."""
    y, x = np.mgrid[0:height, 0:width]
    channels: npt.NDArray[np.intp] = np.where(y % 2 == 0, np.where(x % 2 == 0, 2, 1),
                                              np.where(x % 2 == 0, 1, 0))
    return channels


def test_to_bgr_of_other_pixel_formats(camera: rygige.Camera) -> None:
    for pixel_format in ("RGB8Packed", "BayerRG8", "Mono10", "YUV422Packed"):
        camera.features["PixelFormat"] = pixel_format
        for frame in camera.grab(1):
            raw, bgr = frame.array, frame.to_bgr()
            assert bgr.shape == (HEIGHT, WIDTH, 3) and bgr.dtype == np.uint8
            if pixel_format == "RGB8Packed":
                np.testing.assert_array_equal(bgr, raw[:, :, ::-1])
            elif pixel_format == "BayerRG8":
                own = np.take_along_axis(bgr, bayer_rg_channels(HEIGHT, WIDTH)[..., None], 2)
                np.testing.assert_array_equal(own[..., 0], raw)  # each pixel keeps its sample
            elif pixel_format == "Mono10":
                assert raw.dtype == np.dtype("<u2")
                for channel in range(3):
                    np.testing.assert_array_equal(bgr[:, :, channel], (raw >> 2) & 0xFF)
    camera.features["PixelFormat"] = "Mono12Packed"
    for frame in camera.grab(1):
        assert frame.array.shape == (frame.info.size,)
        with pytest.raises(ValueError):
            frame.to_bgr()
