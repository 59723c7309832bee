"""python3 -m rygige list|info|grab: the first subcommands of rycam, in Python.

Exit statuses as rycam's: 0 done, 1 the camera or the SDK refused, 2 a wrong command line,
3 no camera (or none that matches).
"""

from __future__ import annotations

import argparse
import struct
import sys
import time
import zlib
from pathlib import Path
from typing import Callable, Optional, Sequence

import numpy as np
import numpy.typing as npt

from rygige import _types as t
from rygige.camera import Camera
from rygige.errors import RyGigEError, RyGigENotFoundError
from rygige.features import Category, Feature
from rygige.frames import Frame
from rygige.system import System

EXIT_OK, EXIT_FAILURE, EXIT_USAGE, EXIT_NOTHING_FOUND = 0, 1, 2, 3
# Shown after the identity features (the camera's "DeviceControl" category).
IMAGE_FEATURES = ("Width", "Height", "PixelFormat", "PayloadSize", "AcquisitionMode")


def _png(path: Path, image: npt.NDArray[np.uint8]) -> None:
    """Writes 8-bit grey (height, width) or RGB (height, width, 3) pixels as a PNG file."""
    height, width = image.shape[:2]
    colour = 2 if image.ndim == 3 else 0
    rows = np.zeros((height, 1 + image[0].size), dtype=np.uint8)  # filter byte 0 a row
    rows[:, 1:] = image.reshape(height, -1)

    def chunk(kind: bytes, data: bytes) -> bytes:
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, height, 8, colour, 0, 0, 0)
    path.write_bytes(
        b"\x89PNG\r\n\x1a\n"
        + chunk(b"IHDR", header)
        + chunk(b"IDAT", zlib.compress(rows.tobytes(), 1))
        + chunk(b"IEND", b"")
    )


def _save(frame: Frame, directory: Path, number: int) -> None:
    if frame.pixel_format == t.PixelFormat.MONO8:
        _png(directory / f"frame_{number:05d}.png", frame.array)
        return
    try:
        bgr = frame.to_bgr()
    except ValueError:
        (directory / f"frame_{number:05d}.raw").write_bytes(frame.array.tobytes())
        return
    _png(directory / f"frame_{number:05d}.png", np.ascontiguousarray(bgr[:, :, ::-1]))


def _list(system: System, _arguments: argparse.Namespace) -> int:
    index = 0
    for interface in system.interfaces():
        print(f"interface {interface.index}\t{interface.name}")
        for camera in interface.cameras:
            print(
                f"  camera {index}\t{camera.name}\tmodel={camera.model}\t"
                f"manufacturer={camera.manufacturer}\tip={camera.ip_address}\t"
                f"mac={camera.mac_address}"
            )
            index += 1
    if index == 0:
        print("rygige: no camera answered", file=sys.stderr)
        return EXIT_NOTHING_FOUND
    return EXIT_OK


def _info(camera: Camera, arguments: argparse.Namespace, system: System) -> int:
    record = system.find(_selector(arguments.camera))
    print(f"{'Device identifier':<22} {record.name}")
    print(f"{'IP address':<22} {record.ip_address}")
    print(f"{'MAC address':<22} {record.mac_address}")
    tree = camera.features.tree()
    identity = [
        entry.name
        for category in tree.children
        if isinstance(category, Category) and category.name == "DeviceControl"
        for entry in category.children
        if isinstance(entry, Feature) and entry.readable and entry.kind != t.FeatureKind.COMMAND
    ]
    for name in [*identity, *IMAGE_FEATURES]:
        try:
            print(f"{name:<22} {camera.features[name]}")
        except RyGigEError:
            continue  # a feature this camera lacks, or cannot read now
    print(f"{'Features':<22} {sum(1 for _ in tree.walk())} (see camera.features.tree())")
    return EXIT_OK


def _grab(camera: Camera, arguments: argparse.Namespace, _system: System) -> int:
    output = Path(arguments.output)
    output.mkdir(parents=True, exist_ok=True)
    start = time.monotonic()
    saved = 0
    for frame in camera.grab(arguments.count, timeout=arguments.frame_timeout / 1000):
        _save(frame, output, saved)
        saved += 1
    seconds = time.monotonic() - start
    for name, value in camera.statistics().items():
        print(f"{name.replace('_', ' '):<24} {value}")
    print(f"{'frames written':<24} {saved}")
    print(f"{'elapsed':<24} {seconds:.2f} s")
    print(f"{'written to':<24} {output}")
    return EXIT_OK


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python3 -m rygige", description=__doc__)
    commands = parser.add_subparsers(dest="command", required=True)
    listing = commands.add_parser("list", help="the interfaces and the cameras on them")
    info = commands.add_parser("info", help="what a camera says about itself")
    grab = commands.add_parser("grab", help="a counted burst of frames, written as files")
    for command in (listing, info, grab):
        command.add_argument("--timeout", type=int, default=500, help="discovery time-out, ms")
    for command in (info, grab):
        command.add_argument("camera", help="index, name, IP or MAC address")
    grab.add_argument("--count", type=int, default=10)
    grab.add_argument("--output", default="frames")
    grab.add_argument("--buffers", type=int, default=16)
    grab.add_argument("--frame-timeout", type=int, default=5000, help="ms")
    return parser


def _selector(text: str) -> int | str:
    return int(text) if text.isdigit() else text


def main(argv: Optional[Sequence[str]] = None) -> int:
    """Runs one subcommand; the process's exit status."""
    try:
        arguments = _parser().parse_args(argv)
    except SystemExit as exit_:
        return EXIT_OK if exit_.code == 0 else EXIT_USAGE
    if getattr(arguments, "count", 1) < 1 or getattr(arguments, "buffers", 1) < 1:
        print("rygige: --count and --buffers must be at least 1", file=sys.stderr)
        return EXIT_USAGE
    try:
        with System(discovery_timeout=arguments.timeout / 1000) as system:
            if arguments.command == "list":
                return _list(system, arguments)
            run: Callable[[Camera, argparse.Namespace, System], int] = (
                _info if arguments.command == "info" else _grab
            )
            buffers = getattr(arguments, "buffers", 4)
            with system.open(_selector(arguments.camera), buffers=buffers) as camera:
                return run(camera, arguments, system)
    except RyGigENotFoundError as error:
        print(f"rygige: {error}", file=sys.stderr)
        return EXIT_NOTHING_FOUND
    except RyGigEError as error:
        print(f"rygige: {error}", file=sys.stderr)
        return EXIT_FAILURE


if __name__ == "__main__":
    sys.exit(main())
