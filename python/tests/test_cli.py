"""python3 -m rygige list|info|grab as a user runs it, against the emulated camera."""

from __future__ import annotations

import struct
import subprocess
import sys
import zlib
from pathlib import Path

import numpy as np
import numpy.typing as npt

from conftest import ADDRESS, HEIGHT, TREE, WIDTH, Emulator
from test_grab import expected_mono8


def rygige(*arguments: str) -> subprocess.CompletedProcess[str]:
    """Runs the command line with the package of this tree."""
    return subprocess.run(
        [sys.executable, "-m", "rygige", *arguments],
        cwd=TREE / "python",
        capture_output=True,
        text=True,
        timeout=60,
    )


def read_grey_png(path: Path) -> npt.NDArray[np.uint8]:
    """The pixels of an 8-bit grey PNG file written without row filters."""
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    chunks, offset = {}, 8
    while offset < len(data):
        (length,) = struct.unpack(">I", data[offset : offset + 4])
        kind = data[offset + 4 : offset + 8]
        chunks[kind] = data[offset + 8 : offset + 8 + length]
        offset += 12 + length
    width, height, depth, colour = struct.unpack(">IIBB", chunks[b"IHDR"][:10])
    assert (depth, colour) == (8, 0)
    rows = np.frombuffer(zlib.decompress(chunks[b"IDAT"]), dtype=np.uint8)
    rows = rows.reshape(height, width + 1)
    assert not rows[:, 0].any()  # filter type 0 on every row
    pixels: npt.NDArray[np.uint8] = rows[:, 1:]
    return pixels


def test_list_and_info(emulator: Emulator) -> None:
    listed = rygige("list", "--timeout", "300")
    assert listed.returncode == 0, listed.stderr
    assert f"ip={ADDRESS}" in listed.stdout
    info = rygige("info", ADDRESS, "--timeout", "300")
    assert info.returncode == 0, info.stderr
    assert "DeviceModelName" in info.stdout and f"{WIDTH}" in info.stdout


def test_grab_writes_the_frames_as_png_files(emulator: Emulator, tmp_path: Path) -> None:
    done = rygige("grab", "0", "--count", "3", "--output", str(tmp_path), "--timeout", "300")
    assert done.returncode == 0, done.stderr
    written = sorted(tmp_path.glob("frame_*.png"))
    assert len(written) == 3
    for path in written:
        image = read_grey_png(path)
        block_id = int.from_bytes(image.reshape(-1)[:8].tobytes(), "little")
        np.testing.assert_array_equal(image, expected_mono8(block_id, WIDTH, HEIGHT))


def test_exit_statuses_of_bad_requests(emulator: Emulator) -> None:
    assert rygige("info", "no-such-camera", "--timeout", "300").returncode == 3
    assert rygige("grab").returncode == 2
    assert rygige("grab", "0", "--count", "0").returncode == 2
    assert rygige("frobnicate").returncode == 2
