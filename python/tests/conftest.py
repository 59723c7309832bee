"""Fixtures: an emulated camera (ry-camera-emulator) on loopback and the SDK's system object.

The tests discover cameras, so they run only in a private network namespace with nothing
but loopback (scripts/in-private-net.sh); elsewhere they are skipped.
"""

from __future__ import annotations

import os
import signal
import socket
import subprocess
import sys
from pathlib import Path
from typing import Iterator

import pytest

TREE = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "python"))

import rygige  # noqa: E402  (the package of this tree, not an installed one)

ADDRESS = "127.0.0.2"
WIDTH, HEIGHT = 320, 240


def emulator_path() -> str:
    """The emulator program: $RYGIGE_EMULATOR or the build tree's."""
    return os.environ.get("RYGIGE_EMULATOR", str(TREE / "build" / "bin" / "ry-camera-emulator"))


def in_private_network() -> bool:
    """True when loopback is the only network interface."""
    return [name for _, name in socket.if_nameindex()] == ["lo"]


class Emulator:
    """A ry-camera-emulator process, stopped with the test."""

    def __init__(self, *options: str) -> None:
        self.process = subprocess.Popen(
            [emulator_path(), "--address", ADDRESS, *options],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )
        assert self.process.stdout is not None
        ready = self.process.stdout.readline()  # one line once the camera listens
        if not ready:
            _, error = self.process.communicate(timeout=10)
            raise RuntimeError(f"the emulator did not start: {error}")

    def pull_cable(self) -> None:
        """Freezes the camera: it neither answers nor streams until `replug`."""
        self.process.send_signal(signal.SIGSTOP)

    def replug(self) -> None:
        """Lets a frozen camera run again."""
        self.process.send_signal(signal.SIGCONT)

    def stop(self) -> None:
        """Ends the process (a frozen one included)."""
        self.replug()
        self.process.terminate()
        self.process.wait(timeout=10)


@pytest.fixture(scope="session", autouse=True)
def private_network() -> None:
    """Skips every test outside a private network namespace."""
    if not in_private_network():
        pytest.skip("run in a private network namespace: bash scripts/in-private-net.sh ...")


@pytest.fixture
def emulator() -> Iterator[Emulator]:
    """A Mono8 camera of WIDTH x HEIGHT at 100 frames a second."""
    camera = Emulator("--width", str(WIDTH), "--height", str(HEIGHT), "--fps", "100")
    yield camera
    camera.stop()


@pytest.fixture
def system(emulator: Emulator) -> Iterator[rygige.System]:
    """The system object after a discovery that found the emulator."""
    with rygige.System(discovery_timeout=0.3) as opened:
        yield opened


@pytest.fixture
def camera(system: rygige.System) -> Iterator[rygige.Camera]:
    """The emulated camera, open with control privilege; 32 buffers are a third of a
    second of slack for a loaded machine."""
    with system.open(0, buffers=32) as opened:
        yield opened
